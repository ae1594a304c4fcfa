#include "plugin/collector/system_keys.h"

#include "host/cim_objects.h"
#include "host/exception.h"
#include "host/services.h"

using NQRXZELT20::ICIMClass;
using NQRXZELT20::ICIMNamespace;
using NQRXZELT20::TCIMQueryContext;
using NQRXZELT20::TCIMSchemaHelper;
using NQRXZELT20::TCIMValue;
using NQRXZELT20::TZELTException;

namespace {

constexpr const char* kCreationClassName = "SystemCreationClassName";
constexpr const char* kName = "SystemName";

}  // namespace

void InsertSystemKeys(PropertyMap* properties, ICIMClass& cimClass) {
  try {
    const boost::shared_ptr<ICIMNamespace> ns = cimClass.GetNamespace(TCIMQueryContext());
    InsertProperty(properties, kCreationClassName, TCIMValue(TCIMSchemaHelper::GetSystemCreationClassName(ns)));
    InsertProperty(properties, kName, TCIMValue(TCIMSchemaHelper::GetSystemName(ns)));
  } catch (const TZELTException&) {
    // Only what is missing: InsertProperty keeps the value that came in before the failure.
    InsertProperty(properties, kCreationClassName, TCIMValue(""));
    InsertProperty(properties, kName, TCIMValue(""));
  }
}
