#include "command/collection/collection.h"

#include <gmock/gmock.h>

#include "command/base/unusable.h"
#include "command/machine/captured_machine.h"
#include "realmode/choose_bios.h"
#include "tests/support/captured_machine_builder.h"
#include "tests/support/edid_builder.h"

using NQRXZELT20::ILogger;
using testing::ElementsAre;
using testing::EndsWith;
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

TEST_F(Collection, TellsWhereTheEdidsCameFrom) {
  TMachine captured = ReadCapturedMachine(machine.GetPath());
  captured.edidOrigin = {"none there.", [](std::size_t unit) { return "output " + std::to_string(unit); }};
  const TAnswer answer = Collect(captured, PLUGIN_FILE, {}, {});
  EXPECT_EQ(answer.edidOrigin.none, "none there.");
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
