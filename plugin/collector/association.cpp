#include "plugin/collector/association.h"

#include <boost/function.hpp>

#include "host/add_to_vector_callback.h"
#include "host/services.h"

using NQRXZELT20::ICIMClass;
using NQRXZELT20::ICIMInstance;
using NQRXZELT20::ICIMNamespace;
using NQRXZELT20::TAddToVectorCallback;
using NQRXZELT20::TCIMQueryContext;
using NQRXZELT20::TCIMReference;
using NQRXZELT20::TCIMSchemaHelper;
using NQRXZELT20::TCIMValue;

TInstanceList EnumerateInstances(ICIMNamespace& ns, const std::string& className) {
  const TCIMQueryContext associationContext = {
      {TCIMSchemaHelper::kContextName, TCIMValue(TCIMSchemaHelper::kPluginNSPName)}};
  TInstanceList instances;
  const boost::shared_ptr<ICIMClass> cimClass = ns.GetClass(className, associationContext);
  cimClass->EnumerateInstances(TAddToVectorCallback<ICIMInstance>(&instances), false, TCIMQueryContext());
  return instances;
}

std::string GetPropertyText(ICIMInstance& instance, const std::string& name) {
  return instance.GetProperty(name, TCIMQueryContext())->GetValue(TCIMQueryContext());
}

TCIMValue GetPathValue(ICIMInstance& instance) {
  TCIMReference path = instance.GetObjectPath(TCIMQueryContext());
  return TCIMValue(path);
}
