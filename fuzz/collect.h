// Collects in the fuzzer's own process, with the embedded host and the plug-in's objects, but without its library.
#pragma once

#include <string>
#include <vector>

#include "command/collection/collection.h"
#include "command/machine/machine.h"
#include "embedded_host/schema.h"
#include "plugin/display_info_callbacks.h"
#include "plugin/video/video_info.h"
#include "realmode/choose_bios.h"

inline const TRequest kThroughDispatch = {kHeadOfVideoControllerClass, kDesktopMonitorClass, kMonitorResolutionClass,
                                          kMonitorSettingClass};

/// Reads the configuration in each request. The product's own collector keeps it until the library is unloaded.
class TFreshVideoInfo : public TVideoInfo {
 public:
  using TVideoInfo::TVideoInfo;

  std::vector<NQRXZELT20::ICIMInstance*> GetCIMInstances(std::string className) override {
    std::vector<PropertyMap> controllers;
    std::vector<PropertyMap> heads;
    GetVideoInfo(&controllers, &heads);
    std::vector<NQRXZELT20::ICIMInstance*> result;
    GenerateVideoInstances(&result, className == kVideoControllerClass ? controllers : heads, className);
    return result;
  }
};

/// The plug-in's object, for as long as a host holds it.
class TPlugin {
 public:
  TPlugin() : m_callbacks(new NQRXZELT20::TDisplayInfoCallbacks) {}
  ~TPlugin() { m_callbacks->PrepareForUnload(); }
  TPlugin(const TPlugin&) = delete;
  TPlugin& operator=(const TPlugin&) = delete;

  NQRXZELT20::TDisplayInfoCallbacks* operator->() { return m_callbacks; }

 private:
  NQRXZELT20::TDisplayInfoCallbacks* m_callbacks;
};

/// All six classes.
inline TAnswer CollectHere(const TMachine& machine) {
  ChooseVideoBios(machine.bios);
  TEmbeddedHost host(machine.host, {});
  TPlugin plugin;
  plugin->Init();
  const boost::shared_ptr<TCimStore> store = host.GetStore();
  for (const char* name : {kVideoControllerClass, kVideoHeadClass}) {
    TFreshVideoInfo collector(store->GetClass(name, NQRXZELT20::TCIMQueryContext()));
    plugin->RetrieveDataForClass(&collector);
  }
  std::vector<boost::shared_ptr<NQRXZELT20::ICIMClass>> classes;
  for (const std::string& name : kThroughDispatch)
    classes.push_back(store->GetClass(name, NQRXZELT20::TCIMQueryContext()));
  plugin->GetData(store, classes);
  plugin->DeInit();

  TRequest request = {kVideoControllerClass, kVideoHeadClass};
  request.insert(request.end(), kThroughDispatch.begin(), kThroughDispatch.end());
  TAnswer answer;
  answer.identity = {machine.host.systemName, machine.collected, "1"};
  answer.plugin = {plugin->GetName(), plugin->GetVersion(), plugin->GetInterfaceVersion(), plugin->GetType()};
  answer.log = host.GetLog().GetEntries();
  answer.requests = {{request, store->TakeCommits(), answer.log}};
  answer.fileQueries = host.GetFileQueries();
  answer.edidOrigin = machine.edidOrigin;
  answer.outputs = JoinOutputs(machine, answer.requests);
  answer.reasons = FindReasons(machine, answer.fileQueries, answer.outputs);
  return answer;
}
