#include "video/video_info.h"

#include <utility>

using NQRXZELT20::ICIMClass;
using NQRXZELT20::ICIMInstance;
using NQRXZELT20::TPluginManagerProvider;

TVideoInfo::TVideoInfo(boost::shared_ptr<ICIMClass> cimClass) : TDisplay(std::move(cimClass)) {}

TVideoInfo::TVideoInfo(boost::shared_ptr<ICIMClass> cimClass, TPluginManagerProvider* provider)
    : TDisplay(std::move(cimClass), provider) {}

std::vector<ICIMInstance*> TVideoInfo::GetCIMInstances(std::string) { return {}; }
