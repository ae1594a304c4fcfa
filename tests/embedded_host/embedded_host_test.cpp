#include "embedded_host/embedded_host.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "host/exception.h"
#include "host/plugin_callbacks.h"
#include "host/plugin_manager.h"
#include "host/services.h"

using NQRXZELT20::ILogger;
using NQRXZELT20::IPluginCallbacks;
using NQRXZELT20::TCIMSchemaHelper;
using NQRXZELT20::TOSSpecific;
using NQRXZELT20::TPluginManagerNamespace;
using NQRXZELT20::TRootObject;
using NQRXZELT20::TZELTException;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class TPlugin : public IPluginCallbacks {
 public:
  int GetType() override { return 0; }
  std::string GetName() override { return "A plug-in"; }
  std::string GetVersion() override { return "1"; }
  std::string GetInterfaceVersion() override { return "1"; }
  void PrepareForUnload() override {}
  void Init() override {}
  void DeInit() override {}
  using IPluginCallbacks::GetProvider;
};

void Register(IPluginCallbacks& plugin) {
  boost::dynamic_pointer_cast<TPluginManagerNamespace>(TRootObject::GetPluginManager())->RegisterPlugin(&plugin);
}

/// Files whose look-ups fail in one of two ways.
class TFailingFiles : public IMachineFiles {
 public:
  bool Exists(const std::string&) const override { throw std::runtime_error("no descriptor is left"); }
  std::string Read(const std::string& path) const override { throw TZELTException(path + ": cannot be read"); }
};

THostConfiguration Configure(bool provider) {
  THostConfiguration configuration;
  configuration.provider = provider;
  return configuration;
}

}  // namespace

TEST(EmbeddedHost, HandsOutTheRegisteredPluginsOnce) {
  TEmbeddedHost host(THostConfiguration(), {});
  TPlugin plugin;
  Register(plugin);
  EXPECT_THAT(host.TakeRegistered(), ElementsAre(&plugin));
  EXPECT_THAT(host.TakeRegistered(), IsEmpty());
}

TEST(EmbeddedHost, HasTheClassesOfItsStoreInThePluginManagersNamespace) {
  TEmbeddedHost host(THostConfiguration(), {});
  const char* const name = "QRXSG_DesktopMonitor";
  EXPECT_EQ(TRootObject::GetPluginManager()->GetClass(name, {}), host.GetStore()->GetClass(name, {}));
}

TEST(EmbeddedHost, GivesAProviderAtRegistration) {
  const TEmbeddedHost host(Configure(true), {});
  TPlugin plugin;
  EXPECT_EQ(plugin.GetProvider(), nullptr);
  Register(plugin);
  EXPECT_NE(plugin.GetProvider(), nullptr);
}

TEST(EmbeddedHost, LeavesTheProviderNullWhenItHasNoneToGive) {
  const TEmbeddedHost host(Configure(false), {});
  TPlugin plugin;
  Register(plugin);
  EXPECT_EQ(plugin.GetProvider(), nullptr);
}

TEST(EmbeddedHost, AnswersWithItsConfiguration) {
  THostConfiguration configuration;
  configuration.systemName = "ws-17";
  configuration.systemCreationClassName = "Some_System";
  configuration.systemType = 7;
  const TEmbeddedHost host(configuration, {});
  EXPECT_EQ(TCIMSchemaHelper::GetSystemName(nullptr), "ws-17");
  EXPECT_EQ(TCIMSchemaHelper::GetSystemCreationClassName(nullptr), "Some_System");
  EXPECT_EQ(TOSSpecific::GetRunningTypeOnXen(), 7);
}

namespace {

/// One file, whose content is its path.
class TOneFile : public IMachineFiles {
 public:
  bool Exists(const std::string& path) const override { return path == "/etc/xorg.conf"; }
  std::string Read(const std::string& path) const override { return path; }
};

}  // namespace

TEST(EmbeddedHost, HandsOutTheMachinesFilesAndNotesWhichItWasAskedFor) {
  THostConfiguration configuration;
  configuration.files = std::make_shared<TOneFile>();
  TEmbeddedHost host(configuration, {});
  EXPECT_FALSE(TOSSpecific::FileExists("/etc/other.conf"));
  EXPECT_TRUE(TOSSpecific::FileExists("/etc/xorg.conf"));
  EXPECT_EQ(TOSSpecific::CaptureFile("/etc/xorg.conf"), "/etc/xorg.conf");
  ASSERT_EQ(host.GetFileQueries().size(), 2U);
  EXPECT_EQ(host.GetFileQueries()[1].path, "/etc/xorg.conf");
  EXPECT_FALSE(host.GetFileQueries()[0].exists);
  EXPECT_TRUE(host.GetFileQueries()[1].exists);
}

TEST(EmbeddedHost, HasNoFilesWithoutAny) {
  const TEmbeddedHost host(THostConfiguration(), {});
  EXPECT_FALSE(TOSSpecific::FileExists("/etc/passwd"));
  EXPECT_THROW(TOSSpecific::CaptureFile("/etc/passwd"), TZELTException);
}

TEST(EmbeddedHost, LogsInOrderAndTellsTheListenerAtOnce) {
  std::vector<TLogEntry> heard;
  TEmbeddedHost host(THostConfiguration(), [&](const TLogEntry& entry) { heard.push_back(entry); });
  TRootObject::GetCoreLogger()->Write(ILogger::kError, "first");
  TRootObject::GetCoreLogger()->Write(ILogger::kVerbose, "second");
  EXPECT_THAT(heard, ElementsAre(TLogEntry{ILogger::kError, "first"}, TLogEntry{ILogger::kVerbose, "second"}));
  EXPECT_EQ(host.GetLog().GetEntries(), heard);
}

TEST(EmbeddedHost, NamesTheSeverities) {
  EXPECT_STREQ(GetSeverityName(ILogger::kError), "error");
  EXPECT_STREQ(GetSeverityName(ILogger::kWarning), "warning");
  EXPECT_STREQ(GetSeverityName(ILogger::kStatus), "status");
  EXPECT_STREQ(GetSeverityName(ILogger::kDebug), "debug");
  EXPECT_STREQ(GetSeverityName(ILogger::kVerbose), "verbose");
}

TEST(EmbeddedHost, TakesItsServicesAwayWhenItGoes) {
  { const TEmbeddedHost host(THostConfiguration(), {}); }
  EXPECT_THROW(TRootObject::GetCoreLogger(), TZELTException);
}

TEST(EmbeddedHost, KeepsAFailureThatThePluginCaught) {
  THostConfiguration configuration;
  configuration.files = std::make_shared<TFailingFiles>();
  const TEmbeddedHost host(configuration, {});
  EXPECT_THROW(TOSSpecific::CaptureFile("/etc/X11/xorg.conf"), TZELTException);
  EXPECT_NO_THROW(host.RethrowFailure()) << "that one is the machine's";
  EXPECT_THROW(TOSSpecific::FileExists("/etc/X11/xorg.conf"), std::runtime_error);
  EXPECT_THROW(host.RethrowFailure(), std::runtime_error);
}
