// Loads the plug-in, asks it, and unloads it, with a host and a video BIOS of which any call can be made to fail:
// requests for all six classes of a machine with two heads on one card and two monitors.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "realmode/choose_bios.h"
#include "realmode/virtual_video_bios.h"
#include "tests/support/edid_builder.h"
#include "tests/support/loaded_plugin.h"
#include "tests/support/watched_cim.h"

class TFaultySession {
 public:
  /// `bios`: instead of the virtual one with the two monitors.
  explicit TFaultySession(std::shared_ptr<IVideoBios> bios = MakeBios()) {
    m_host.files["/etc/X11/xorg.conf"] =
        "Section \"Device\"\nIdentifier \"Left\"\nBusID \"PCI:1:0:0\"\nEndSection\n"
        "Section \"Device\"\nIdentifier \"Right\"\nBusID \"PCI:1:0:0\"\nEndSection\n";
    m_host.pluginManager = boost::make_shared<TTestPluginManager>(TTestHost::Provider());
    ChooseVideoBios(std::move(bios));
    m_plugin = std::make_unique<TLoadedPlugin>(m_host, PLUGIN_FILE);
    const auto onCall = [this](const std::string& call) {
      if (onHostCall) onHostCall(call);
    };
    m_watcher.onCall = onCall;
    m_host.onCall = onCall;
  }
  ~TFaultySession() {
    m_plugin.reset();
    ChooseVideoBios(nullptr);
  }
  TFaultySession(const TFaultySession&) = delete;
  TFaultySession& operator=(const TFaultySession&) = delete;

  static std::shared_ptr<TVirtualVideoBios> MakeBios() {
    TVirtualBiosConfiguration configuration;
    configuration.units[0].edid = TEdidBuilder().Name(0, "A").Established(0x21, 0).Build();
    configuration.units[1].edid = TEdidBuilder().Name(0, "B").Established(0x20, 0).Build();
    return std::make_shared<TVirtualVideoBios>(configuration);
  }

  /// Called before each call of the host, except those of its log; it may throw.
  std::function<void(const std::string& call)> onHostCall;

  /// Called for each message of later requests as it is written; it may throw.
  std::function<void(const TLogEntry&)> onMessage;

  /// Asks for all six classes in one call. Exceptions that leave the plug-in pass through.
  void Ask() {
    m_host.Forget();
    m_host.log = TLog(onMessage);
    std::vector<boost::shared_ptr<NQRXZELT20::ICIMClass>> classes;
    for (const TClassDeclaration& declaration : GetSchema()) {
      classes.push_back(boost::make_shared<TWatchedClass>(m_watcher, m_host.GetClass(declaration.name)));
    }
    dynamic_cast<NQRXZELT20::IPluginBasicQueryCallbacks&>(m_plugin->GetCallbacks())
        .GetData(boost::make_shared<TWatchedNamespace>(m_watcher, m_host.store), classes);
  }

  /// What was committed since the last call. Each instance counts once.
  std::set<TDescribed> TakeInstances() {
    std::set<TDescribed> instances;
    for (const auto& instance : m_host.store->TakeCommits()) instances.insert(Describe(*instance));
    return instances;
  }

  /// Asks in an empty model, and returns what was committed.
  std::set<TDescribed> AskForAll() {
    EmptyModel();
    Ask();
    return TakeInstances();
  }

  /// Gives the host an empty model: which mode a setting names depends on the order in which they were committed first.
  void EmptyModel() { m_host.store = TCimStore::Create(GetSchema()); }

  /// The messages of the last request.
  const std::vector<TLogEntry>& GetLog() const { return m_host.log.GetEntries(); }

  /// Those of status severity and worse.
  std::vector<std::string> GetComplaints() const {
    std::vector<std::string> complaints;
    for (const TLogEntry& entry : GetLog()) {
      if (entry.severity <= NQRXZELT20::ILogger::kStatus) complaints.push_back(entry.message);
    }
    return complaints;
  }

  /// The objects of the CIM model that somebody still refers to.
  int CountObjects() const { return m_watcher.objects; }

 private:
  TTestHost m_host;
  TWatcher m_watcher;
  std::unique_ptr<TLoadedPlugin> m_plugin;
};
