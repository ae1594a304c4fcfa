// The plug-in as a library that a test loads and unloads, in a test host.
#pragma once

#include <dlfcn.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "host/plugin_callbacks.h"
#include "tests/support/properties.h"
#include "tests/support/test_host.h"

class TLoadedPlugin {
 public:
  /// Loads the library; it registers with the host, whose plug-in manager is a TTestPluginManager.
  TLoadedPlugin(TTestHost& host, const char* file) : m_host(host), m_library(dlopen(file, RTLD_NOW | RTLD_LOCAL)) {
    if (m_library == nullptr) throw std::runtime_error(dlerror());
    m_callbacks = GetRegistered(host).back();
  }
  ~TLoadedPlugin() {
    m_callbacks->PrepareForUnload();
    dlclose(m_library);
  }
  TLoadedPlugin(const TLoadedPlugin&) = delete;
  TLoadedPlugin& operator=(const TLoadedPlugin&) = delete;

  /// Asks for the classes in one call; what was committed, described.
  std::vector<TDescribed> Ask(const std::vector<std::string>& classNames) {
    std::vector<boost::shared_ptr<NQRXZELT20::ICIMClass>> classes;
    for (const std::string& name : classNames) classes.push_back(m_host.GetClass(name));
    dynamic_cast<NQRXZELT20::IPluginBasicQueryCallbacks&>(*m_callbacks).GetData(m_host.store, classes);
    std::vector<TDescribed> answer;
    for (const auto& instance : m_host.store->TakeCommits()) answer.push_back(Describe(*instance));
    return answer;
  }

  NQRXZELT20::IPluginCallbacks& GetCallbacks() { return *m_callbacks; }
  void* GetLibrary() { return m_library; }

  static const std::vector<NQRXZELT20::IPluginCallbacks*>& GetRegistered(const TTestHost& host) {
    return boost::dynamic_pointer_cast<TTestPluginManager>(host.pluginManager)->registered;
  }

 private:
  TTestHost& m_host;
  void* m_library;
  NQRXZELT20::IPluginCallbacks* m_callbacks;
};
