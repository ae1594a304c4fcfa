#include "command/collection/plugin_texts.h"

#include <gmock/gmock.h>

#include "command/collection/collection.h"
#include "command/machine/captured_machine.h"
#include "realmode/choose_bios.h"
#include "tests/support/captured_machine_builder.h"
#include "tests/support/edid_builder.h"

using testing::Contains;
using testing::EndsWith;
using testing::StartsWith;

namespace {

/// A device whose screen has that depth and these modes.
std::string MakeConfiguration(const std::string& depth, const std::string& modes) {
  return "Section \"Device\"\n  Identifier \"a\"\nEndSection\nSection \"Screen\"\n  Device \"a\"\n  DefaultDepth " +
         depth + "\n  SubSection \"Display\"\n    Depth " + depth + "\n    Modes \"" + modes +
         "\"\n  EndSubSection\nEndSection\n";
}

/// The plug-in's answer for a machine with an EDID and that configuration.
TRequestAnswer AskPlugin(const TRequest& request, const std::string& configuration = "") {
  const TCapturedMachineBuilder machine;
  machine.Edid(0, TEdidBuilder().Established(1, 0).Build()).File("root/etc/X11/xorg.conf", configuration);
  const TAnswer answer = Collect(ReadCapturedMachine(machine.GetPath()), PLUGIN_FILE, {request}, {});
  ChooseVideoBios(nullptr);
  return answer.requests.at(0);
}

std::vector<std::string> ReadLog(const std::string& depth, const std::string& modes) {
  std::vector<std::string> messages;
  for (const TLogEntry& entry : AskPlugin({"QRXSG_VideoHead"}, MakeConfiguration(depth, modes)).log) {
    messages.push_back(entry.message);
  }
  return messages;
}

}  // namespace

TEST(PluginTexts, AreThoseOfAMode) {
  const TRequestAnswer answer = AskPlugin({"QRXSG_MonitorResolution"});
  ASSERT_EQ(answer.instances.size(), 1U);
  const std::string id = answer.instances[0]->GetProperties().at("SettingID");
  EXPECT_EQ(id, std::string("Monitor 1") + kModeOfMonitor + "1");
  EXPECT_EQ(GetMonitorOfMode(id), "Monitor 1");
}

TEST(PluginTexts, AreThoseOfTheLog) {
  EXPECT_THAT(ReadLog("24", "1x1"), Contains(EndsWith(kServesClass + std::string("QRXSG_VideoHead."))));
  EXPECT_THAT(ReadLog("abc", "1x1"), Contains(kNoColourDepth + std::string("abc")));
  EXPECT_THAT(ReadLog("24", "autox1"), Contains(kNoWidthOrDepth + std::string("auto")));
  EXPECT_THAT(ReadLog("24", "1024x768i"), Contains(kNoHeight + std::string("1024")));
}
