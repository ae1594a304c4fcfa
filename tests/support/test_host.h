// A host for tests: the static services with data that the test sets. Records every call, and can make any call fail.
#pragma once

#include <boost/make_shared.hpp>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "embedded_host/cim_store.h"
#include "embedded_host/host_services.h"
#include "embedded_host/log.h"
#include "embedded_host/schema.h"
#include "host/exception.h"
#include "host/plugin_manager.h"

/// A plug-in manager that keeps what registered.
class TTestPluginManager : public NQRXZELT20::TPluginManagerNamespace {
 public:
  explicit TTestPluginManager(NQRXZELT20::TPluginManagerProvider* provider = nullptr)
      : TPluginManagerNamespace(provider) {}

  boost::shared_ptr<NQRXZELT20::ICIMClass> GetClass(const std::string&, NQRXZELT20::TCIMQueryContext) override {
    return nullptr;
  }

  std::vector<NQRXZELT20::IPluginCallbacks*> registered;

 protected:
  void Accept(NQRXZELT20::IPluginCallbacks* plugin) override { registered.push_back(plugin); }
};

/// Installed as the host's services from construction to destruction.
class TTestHost : public IHostServices {
 public:
  TTestHost() { InstallHostServices(this); }
  ~TTestHost() override { InstallHostServices(nullptr); }

  // What the services answer.
  std::map<std::string, std::string> files;  // content by path
  std::string systemName = "test-system";
  std::string systemCreationClassName = "CIM_UnitaryComputerSystem";
  int runningType = 2;
  boost::shared_ptr<NQRXZELT20::ICIMNamespace> pluginManager = boost::make_shared<TTestPluginManager>();
  /// Called before each service with its name and argument, as they are in `calls`; it may throw.
  std::function<void(const std::string& call)> onCall;

  // What was seen.
  std::vector<std::string> calls;  // such as "FileExists /etc/X11/xorg.conf"; log accesses are left out
  TLog log;

  /// Forgets what was seen, so that many requests need no more memory than one.
  void Forget() {
    calls.clear();
    log = TLog();
  }

  /// The messages of status severity that the log has.
  std::vector<std::string> GetStatusMessages() const {
    std::vector<std::string> messages;
    for (const TLogEntry& entry : log.GetEntries()) {
      if (entry.severity == NQRXZELT20::ILogger::kStatus) messages.push_back(entry.message);
    }
    return messages;
  }

  // A CIM model with the six classes.
  boost::shared_ptr<TCimStore> store = TCimStore::Create(GetSchema());

  boost::shared_ptr<NQRXZELT20::ICIMClass> GetClass(const std::string& name) {
    return store->GetClass(name, NQRXZELT20::TCIMQueryContext());
  }

  /// Some provider: collectors only test it for null.
  static NQRXZELT20::TPluginManagerProvider* Provider() {
    static int something;
    return reinterpret_cast<NQRXZELT20::TPluginManagerProvider*>(&something);
  }

  NQRXZELT20::ILogger* GetCoreLogger() override { return &log; }
  boost::shared_ptr<NQRXZELT20::ICIMNamespace> GetPluginManager() override {
    Note("GetPluginManager");
    return pluginManager;
  }
  std::string GetSystemName(boost::shared_ptr<NQRXZELT20::ICIMNamespace>) override {
    Note("GetSystemName");
    return systemName;
  }
  std::string GetSystemCreationClassName(boost::shared_ptr<NQRXZELT20::ICIMNamespace>) override {
    Note("GetSystemCreationClassName");
    return systemCreationClassName;
  }
  bool FileExists(const std::string& path) override {
    Note("FileExists " + path);
    return files.count(path) != 0;
  }
  std::string CaptureFile(const std::string& path) override {
    Note("CaptureFile " + path);
    return files.at(path);
  }
  int GetRunningTypeOnXen() override {
    Note("GetRunningTypeOnXen");
    return runningType;
  }

 private:
  void Note(const std::string& call) {
    calls.push_back(call);
    if (onCall) onCall(call);
  }
};
