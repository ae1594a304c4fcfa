#include "plugin/display_info_callbacks.h"

#include <algorithm>
#include <iterator>
#include <memory>

#include "host/logger.h"
#include "host/plugin_manager.h"
#include "host/services.h"
#include "plugin/collector/display.h"
#include "plugin/monitor/monitor_info.h"
#include "plugin/video/video_info.h"

namespace NQRXZELT20 {

namespace {

// Two constants of equal text: the plug-in and the interface it was built for each get their own next version.
constexpr const char* kVersion = "1.0";
constexpr const char* kInterfaceVersion = "1.0";

typedef std::unique_ptr<TDisplay> TMakeCollector(boost::shared_ptr<ICIMClass> cimClass,
                                                 TPluginManagerProvider* provider);

template <typename TCollector>
std::unique_ptr<TDisplay> Make(boost::shared_ptr<ICIMClass> cimClass, TPluginManagerProvider* provider) {
  return std::make_unique<TCollector>(cimClass, provider);
}

// The classes served, by exact name, and what collects each.
struct TService {
  const char* className;
  TMakeCollector* makeCollector;
};

constexpr TService kServices[] = {
    {"QRXSG_VideoController", Make<TVideoInfo>},       {"QRXSG_VideoHead", Make<TVideoInfo>},
    {"QRXSG_HeadOfVideoController", Make<TVideoInfo>}, {"QRXSG_DesktopMonitor", Make<TMonitorInfo>},
    {"QRXSG_MonitorResolution", Make<TMonitorInfo>},   {"QRXSG_MonitorSetting", Make<TMonitorInfo>},
};

void Log(ILogger::EZELTLogSeverity severity, const std::string& message) {
  TRootObject::GetCoreLogger()->Write(severity, message);
}

}  // namespace

TDisplayInfoCallbacks::TDisplayInfoCallbacks() {
  const boost::shared_ptr<ICIMNamespace> manager = TRootObject::GetPluginManager();
  boost::dynamic_pointer_cast<TPluginManagerNamespace>(manager)->RegisterPlugin(this);
}

TDisplayInfoCallbacks::~TDisplayInfoCallbacks() = default;

int TDisplayInfoCallbacks::GetType() { return 0; }
std::string TDisplayInfoCallbacks::GetName() { return "Display Information Collector"; }
std::string TDisplayInfoCallbacks::GetVersion() { return kVersion; }
std::string TDisplayInfoCallbacks::GetInterfaceVersion() { return kInterfaceVersion; }

void TDisplayInfoCallbacks::PrepareForUnload() { delete this; }

void TDisplayInfoCallbacks::Init() { Log(ILogger::kDebug, "TDisplayInfoCallbacks::Init - Initializing the plugin."); }

void TDisplayInfoCallbacks::DeInit() {
  Log(ILogger::kDebug, "TDisplayInfoCallbacks::DeInit - De-initializing the plugin.");
}

void TDisplayInfoCallbacks::GetData(boost::shared_ptr<ICIMNamespace>,
                                    std::vector<boost::shared_ptr<ICIMClass>>& classes) {
  for (const boost::shared_ptr<ICIMClass>& cimClass : classes) {
    const std::string name = cimClass->GetName(TCIMQueryContext());
    Log(ILogger::kDebug, "TDisplayInfoCallbacks::GetData - Received request for class " + name + ".");
    const TService* const service =
        std::find_if(std::begin(kServices), std::end(kServices),
                     [&](const TService& candidate) { return name == candidate.className; });
    if (service == std::end(kServices)) continue;
    RetrieveDataForClass(service->makeCollector(cimClass, GetProvider()).get());
  }
  Log(ILogger::kDebug, "TDisplayInfoCallbacks::GetData - Normal exit from plugin.");
}

int TDisplayInfoCallbacks::RetrieveDataForClass(TDisplay* collector) {
  std::vector<ICIMInstance*> instances;
  try {
    instances = collector->GetCIMInstances();
  } catch (...) {
    // Catch everything: an exception that reached the host would end it. One text and one severity for every kind, so
    // that a search of the log finds them all.
    Log(ILogger::kStatus, "DisplayInfo plugin threw unknown exception");
  }
  // "retrieveDataForClass" with a small r: a search of the log for these texts would miss others.
  Log(ILogger::kDebug, instances.empty()
                           ? "TDisplayInfoCallbacks::retrieveDataForClass - No instances of the requested class were "
                             "created."
                           : "TDisplayInfoCallbacks::retrieveDataForClass - Data successfully retrieved.");
  return 0;
}

}  // namespace NQRXZELT20
