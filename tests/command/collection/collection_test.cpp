#include "command/collection/collection.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <stdexcept>

#include "command/base/unusable.h"
#include "command/base/version.h"
#include "command/machine/captured_machine.h"
#include "command/machine/xconfig_files.h"
#include "realmode/choose_bios.h"
#include "tests/support/captured_machine_builder.h"
#include "tests/support/edid_builder.h"
#include "tests/support/time_zone.h"

using NQRXZELT20::ILogger;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

class Collection : public testing::Test {
 protected:
  ~Collection() override { ChooseVideoBios(nullptr); }

  TAnswer Run(const std::vector<TRequest>& requests) const {
    return Collect(ReadCapturedMachine(machine.GetPath()), PLUGIN_FILE, requests, {});
  }

  std::string GetFailure(const std::filesystem::path& plugin) const {
    try {
      Collect(ReadCapturedMachine(machine.GetPath()), plugin, {{"QRXSG_DesktopMonitor"}}, {});
    } catch (const TUnusable& failure) {
      return failure.what();
    }
    return "no failure";
  }

  static std::vector<std::string> GetMessages(const std::vector<TLogEntry>& log) {
    std::vector<std::string> messages;
    for (const TLogEntry& entry : log) messages.push_back(entry.message.substr(0, entry.message.find(" - ")));
    return messages;
  }

  TCapturedMachineBuilder machine;
};

}  // namespace

TEST_F(Collection, TellsWhichPluginAnswered) {
  const TPluginIdentity plugin = Run({{"QRXSG_DesktopMonitor"}}).plugin;
  EXPECT_EQ(plugin.name, "Display Information Collector");
  EXPECT_EQ(plugin.version, "1.0");
  EXPECT_EQ(plugin.interfaceVersion, "1.0");
  EXPECT_EQ(plugin.type, 0);
}

TEST_F(Collection, TellsWhoseAnswerItIs) {
  machine.Json(R"({"systemName": "ws-17", "collected": "2026-11-21T21:30:00Z"})");
  const TAnswerIdentity identity = Run({}).identity;
  EXPECT_EQ(identity.systemName, "ws-17");
  EXPECT_EQ(identity.collected, "2026-11-21T21:30:00Z");
  EXPECT_EQ(identity.version, kCommandVersion);
}

TEST_F(Collection, TellsNoTimeThatACaptureDoesNotSay) { EXPECT_EQ(Run({}).identity.collected, ""); }

/// Files of which none exists; notes which were asked for.
class TAskedFiles : public IMachineFiles {
 public:
  bool Exists(const std::string& path) const override {
    m_asked.push_back(path);
    return false;
  }
  std::string Read(const std::string&) const override { return {}; }

  const std::vector<std::string>& GetAsked() const { return m_asked; }

 private:
  mutable std::vector<std::string> m_asked;
};

// The code that makes a configuration if no file exists must know every file that could exist.
TEST_F(Collection, AsksForTheConfigurationsWhoseAbsenceMakesOneOfTheKernel) {
  const auto asked = std::make_shared<TAskedFiles>();
  const TXconfigFiles kernel(asked, EXconfigSource::kAuto, [] { return "made"; });
  EXPECT_TRUE(kernel.Exists("/etc/X11/xorg.conf"));
  std::vector<std::string> queries;
  for (const TFileQuery& query : Run({{"QRXSG_VideoController"}}).fileQueries) queries.push_back(query.path);
  EXPECT_EQ(asked->GetAsked(), queries);
}

TEST_F(Collection, TellsWhatTheMachineKnowsOfItsOutputsAndItsConfiguration) {
  machine.Edid(0, TEdidBuilder().Name(0, "A").Build()).Edid(1, TEdidBuilder().Name(0, "A").Build());
  TMachine captured = ReadCapturedMachine(machine.GetPath());
  captured.connectors[1] = "card0-DP-2";
  captured.getXconfigOrigin = [] { return "made"; };
  captured.getNotes = [] { return std::vector<std::string>{"no names"}; };
  const TAnswer answer = Collect(captured, PLUGIN_FILE, {{"QRXSG_DesktopMonitor"}}, {});
  ASSERT_THAT(answer.outputs, SizeIs(2));
  EXPECT_EQ(answer.outputs[0].deviceId, "Monitor 1");
  EXPECT_EQ(answer.outputs[1].connector, "card0-DP-2");
  EXPECT_EQ(answer.outputs[1].reason, "its EDID repeats that of unit 0");
  EXPECT_EQ(answer.xconfigOrigin, "made");
  EXPECT_THAT(answer.notes, ElementsAre("no names"));
}

TEST_F(Collection, RemarksOnOutputsThatAreNotListedOnlyWhereMonitorsAreAskedFor) {
  const std::vector<std::uint8_t> edid = TEdidBuilder().Name(0, "A").Build();
  machine.Edid(0, edid).Edid(1, edid).File("edid/2.bin", "damaged");
  const TMachine captured = ReadCapturedMachine(machine.GetPath());
  const auto list = [&](const std::string& name) {
    return ListRemarks(captured, Collect(captured, PLUGIN_FILE, {{name}}, {}));
  };
  const std::string ofDamage = (machine.GetPath() / "edid/2.bin").string();
  const std::string ofTwin = "unit 1 is not listed: its EDID repeats that of unit 0";
  EXPECT_THAT(list("QRXSG_VideoHead"), ElementsAre(HasSubstr(ofDamage)));
  EXPECT_THAT(list("QRXSG_DesktopMonitor"), ElementsAre(HasSubstr(ofDamage), ofTwin));
  EXPECT_THAT(list("QRXSG_MonitorResolution"), ElementsAre(HasSubstr(ofDamage), ofTwin));
}

TEST_F(Collection, RemarksOnOutputsWhereMonitorsAreAskedForAmongOthers) {
  const std::vector<std::uint8_t> edid = TEdidBuilder().Name(0, "A").Build();
  machine.Edid(0, edid).Edid(1, edid);
  const TMachine captured = ReadCapturedMachine(machine.GetPath());
  EXPECT_THAT(ListRemarks(captured, Collect(captured, PLUGIN_FILE, {{"QRXSG_VideoHead", "QRXSG_DesktopMonitor"}}, {})),
              ElementsAre("unit 1 is not listed: its EDID repeats that of unit 0"));
}

TEST_F(Collection, LeavesTheTimeZoneUnset) {
  const TTimeZone zone("UTC");  // restores the machine's own
  unsetenv("TZ");
  Run({{"QRXSG_DesktopMonitor"}});
  EXPECT_EQ(std::getenv("TZ"), nullptr);
}

/// Files that cannot be looked for.
class TFailingFiles : public IMachineFiles {
 public:
  bool Exists(const std::string&) const override { throw std::runtime_error("out of order"); }
  std::string Read(const std::string&) const override { return {}; }
};

TEST_F(Collection, FailsWithTheFilesEvenIfThePlugInGoesOn) {
  TMachine captured = ReadCapturedMachine(machine.GetPath());
  captured.host.files = std::make_shared<TFailingFiles>();
  EXPECT_THROW(Collect(captured, PLUGIN_FILE, {{"QRXSG_VideoController"}}, {}), std::runtime_error);
}

// Without asking the plug-in, the command says what it does with each output.
TEST_F(Collection, ListsTheMonitorsThatTheOutputsSay) {
  const char* const machines[] = {"{}",
                                  R"({"bios": {"ignoresUnit": true}})",
                                  R"({"bios": {"present": false}})",
                                  R"({"bios": {"memory": false}})",
                                  R"({"systemType": 1})",
                                  R"({"bios": {"units": {"0": {"failAtBlock": 0}}}})",
                                  R"({"bios": {"units": {"1": {"errorAtBlock": 0}}}})",
                                  R"({"bios": {"units": {"1": {"failAtBlock": 1}}}})"};
  const std::vector<std::uint8_t> edids[] = {TEdidBuilder().Name(0, "A").Build(),
                                             TEdidBuilder().Name(0, "B").Extension({0x40}).Build(),
                                             TEdidBuilder().Name(0, "B").Build(), TEdidBuilder().Version(2, 0).Build()};
  for (const char* const json : machines) {
    for (unsigned int choice = 0; choice < 64; ++choice) {
      const TCapturedMachineBuilder made;
      made.Json(json).Edid(0, edids[choice % 4]).Edid(1, edids[choice / 4 % 4]).Edid(2, edids[choice / 16]);
      const TAnswer answer = Collect(ReadCapturedMachine(made.GetPath()), PLUGIN_FILE, {{"QRXSG_DesktopMonitor"}}, {});
      std::vector<std::string> listed;
      for (const auto& instance : answer.requests[0].instances)
        listed.push_back(instance->GetProperties().at("DeviceID"));
      std::vector<std::string> told;
      for (const TOutput& output : answer.outputs) {
        if (output.deviceId) told.push_back(*output.deviceId);
      }
      EXPECT_EQ(told, listed) << json << ", " << choice;
    }
  }
}

TEST_F(Collection, TellsWhereTheEdidsCameFrom) {
  TMachine captured = ReadCapturedMachine(machine.GetPath());
  captured.edidOrigin = {"none there", [](std::size_t unit) { return "output " + std::to_string(unit); }};
  const TAnswer answer = Collect(captured, PLUGIN_FILE, {}, {});
  EXPECT_EQ(answer.edidOrigin.none, "none there");
  EXPECT_EQ(answer.edidOrigin.describe(1), "output 1");
}

TEST_F(Collection, LogsTheWholeLifeOfThePlugin) {
  const TAnswer answer = Run({{}, {}});
  EXPECT_THAT(GetMessages(answer.log), ElementsAre("TDisplayInfoCallbacks::Init", "TDisplayInfoCallbacks::GetData",
                                                   "TDisplayInfoCallbacks::GetData", "TDisplayInfoCallbacks::DeInit"));
}

TEST_F(Collection, GivesEachRequestItsOwnInstancesAndLog) {
  machine.Edid(0, TEdidBuilder().Build());
  const TAnswer answer = Run({{"QRXSG_DesktopMonitor", "QRXSG_DesktopMonitor"}, {}, {"QRXSG_DesktopMonitor"}});
  ASSERT_THAT(answer.requests, SizeIs(3));
  EXPECT_THAT(answer.requests[0].instances, SizeIs(2));
  EXPECT_THAT(answer.requests[1].instances, IsEmpty());
  EXPECT_THAT(answer.requests[2].instances, SizeIs(1));
  EXPECT_THAT(answer.requests[1].log,
              ElementsAre(TLogEntry{ILogger::kDebug, "TDisplayInfoCallbacks::GetData - Normal exit from plugin."}));
}

TEST_F(Collection, SilencesTheCollectorsOfAMachineWithoutAProvider) {
  machine.Json(R"({"provider": false, "bios": {"present": false}})");
  const TAnswer answer = Run({{"QRXSG_DesktopMonitor"}});
  EXPECT_THAT(GetMessages(answer.requests[0].log),
              ElementsAre("TDisplayInfoCallbacks::GetData", "TDisplayInfoCallbacks::retrieveDataForClass",
                          "TDisplayInfoCallbacks::GetData"));
}

TEST_F(Collection, NamesAPluginThatIsNotThere) {
  EXPECT_EQ(GetFailure("/no/such/plugin.so"),
            "/no/such/plugin.so: no such plug-in; build it, or name another with --plugin FILE");
}

TEST_F(Collection, NamesAPluginThatIsNotALibrary) {
  machine.File("plugin.so", "not a library");
  const std::string failure = GetFailure(machine.GetPath() / "plugin.so");
  EXPECT_THAT(failure, StartsWith("the plug-in cannot be loaded: " + machine.GetPath().string() + "/plugin.so: "));
  EXPECT_THAT(failure, EndsWith("; name another with --plugin FILE"));
}
