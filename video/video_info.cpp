#include "video/video_info.h"

#include <utility>

#include "collector/data_to_string.h"
#include "host/exception.h"

using NQRXZELT20::ICIMClass;
using NQRXZELT20::ICIMInstance;
using NQRXZELT20::TCIMValue;
using NQRXZELT20::TPluginManagerProvider;
using NQRXZELT20::TZELTException;

namespace {

constexpr const char* kController = "QRXSG_VideoController";
constexpr const char* kHead = "QRXSG_VideoHead";
constexpr const char* kHeadOfController = "QRXSG_HeadOfVideoController";

}  // namespace

TVideoInfo::TVideoInfo(boost::shared_ptr<ICIMClass> cimClass) : TDisplay(std::move(cimClass)) {}

TVideoInfo::TVideoInfo(boost::shared_ptr<ICIMClass> cimClass, TPluginManagerProvider* provider)
    : TDisplay(std::move(cimClass), provider) {}

std::vector<ICIMInstance*> TVideoInfo::GetCIMInstances(std::string className) {
  // Kept until the library is unloaded. A reading that ends by an exception is repeated, behind what it left here.
  static std::vector<PropertyMap> controllerPropertyMap;
  static std::vector<PropertyMap> headPropertyMap;
  static bool alreadyDone = false;

  if (!alreadyDone && (className == kController || className == kHead)) {
    GetVideoInfo(&controllerPropertyMap, &headPropertyMap);
    alreadyDone = true;
  }
  std::vector<ICIMInstance*> result;
  if (className == kController) GenerateVideoInstances(&result, controllerPropertyMap, className);
  if (className == kHead) GenerateVideoInstances(&result, headPropertyMap, className);
  if (className == kHeadOfController) GenerateVideoInstances(&result, MakeHeadAssociation(), className);
  return result;
}

void TVideoInfo::GenerateVideoInstances(std::vector<ICIMInstance*>* result, std::vector<PropertyMap> maps,
                                        std::string className) {
  for (const PropertyMap& map : maps) {
    try {
      result->push_back(GenerateCIMInstance(map, className));
    } catch (const TZELTException& exception) {
      WriteStatus("VideoInfo encountered an error\t\t\t\t\t\t\t\t generating CIM instances for " + className +
                  " Error Code: " + dataToString(exception.what()));
    }
  }
}

void TVideoInfo::Insert(const char* name, const TCIMValue& value) { InsertProperty(&m_deviceProperties, name, value); }
