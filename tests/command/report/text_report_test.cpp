#include "command/report/text_report.h"

#include <gmock/gmock.h>

#include <sstream>

#include "tests/support/answer_test.h"
#include "tests/support/edid_builder.h"
#include "tests/support/temporary_folder.h"

using NQRXZELT20::ILogger;
using NQRXZELT20::TCIMValue;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

class TextReport : public TAnswerTest {
 protected:
  TextReport() { answer.identity = {"ws-17", "2026-11-21T21:30:00Z", "1.4.0"}; }

  /// The report after its first lines, which name the machine.
  std::string Make(const TRequest& classes, const std::vector<TLogEntry>& log = {}) {
    EndRequest(classes, log);
    return MakeBody();
  }

  std::string MakeBody(std::size_t width = kTextWidth) const {
    const std::string text = MakeTextReport(answer, TMakerNames(), width);
    return text.substr(text.find("\n\n") + 2);
  }

  void CommitHead(const char* id, const char* model, unsigned int width, unsigned int height) {
    Commit("QRXSG_VideoHead", {{"DeviceID", TCIMValue(id)},
                               {"MonitorString", TCIMValue(TCIMValue::TCIMType::kString, 1, {TCIMValue(model)})},
                               {"CurrentHorizontalResolution", TCIMValue(width)},
                               {"CurrentVerticalResolution", TCIMValue(height)}});
  }

  void CommitMonitorWithTwoModes(const std::string& id, const char* name) {
    Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue(id)}, {"Name", TCIMValue(name)}});
    CommitMode(id + "\\ Setting 1", 800, 600, 60);
    CommitMode(id + "\\ Setting 2", 640, 480, 60);
  }

  /// The modes of each monitor, with their marks.
  std::vector<std::string> ListModes() {
    std::istringstream report(Make({"QRXSG_VideoHead", "QRXSG_DesktopMonitor", "QRXSG_MonitorResolution"}));
    const std::string label = "    Modes             ";
    std::vector<std::string> modes;
    for (std::string line; std::getline(report, line);) {
      if (line.compare(0, label.size(), label) == 0) modes.push_back(line.substr(label.size()));
    }
    return modes;
  }

  void CommitMode(const std::string& settingId, unsigned int width, unsigned int height, unsigned int rate) {
    Commit("QRXSG_MonitorResolution", {{"SettingID", TCIMValue(settingId)},
                                       {"HorizontalResolution", TCIMValue(width)},
                                       {"VerticalResolution", TCIMValue(height)},
                                       {"RefreshRate", TCIMValue(rate)}});
  }

  std::string ShowVideoMemory(unsigned int bytes) {
    Commit("QRXSG_VideoController", {{"DeviceID", TCIMValue("Card0")}, {"VideoRamSize", TCIMValue(bytes)}});
    const std::string text = Make({"QRXSG_VideoController"});
    answer.requests.clear();
    return text;
  }

  /// Gives the first monitor's output that EDID.
  void SetOutput(const TEdidBuilder& edid) {
    const std::vector<std::uint8_t> bytes = edid.Build();
    answer.outputs = {{0, "card0-DP-1", "Monitor 1", "", ReadEdidFacts(bytes), bytes}};
  }

  void CommitMonitor(const TEdidBuilder& edid) {
    Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}});
    SetOutput(edid);
  }

  static std::size_t GetWidth(const std::string& text) {
    std::istringstream lines(text);
    std::size_t width = 0;
    for (std::string line; std::getline(lines, line);) width = std::max(width, line.size());
    return width;
  }
};

}  // namespace

TEST_F(TextReport, BeginsWithTheMachineTheTimeAndTheVersion) {
  EndRequest({"QRXSG_DesktopMonitor"});
  EXPECT_EQ(MakeTextReport(answer),
            "ws-17\n"
            "Collected 2026-11-21 21:30:00 UTC, shown by displayinfo 1.4.0\n"
            "\n"
            "Monitors\n"
            "  None: no EDID from unit 0 of the video BIOS.\n");
}

TEST_F(TextReport, ShowsAMonitorWithAllItSays) {
  Commit("QRXSG_DesktopMonitor", MakeFullMonitor());
  EXPECT_EQ(Make({"QRXSG_DesktopMonitor"}),
            "Monitors\n"
            "  Monitor 1: Acme A190\n"
            "    Picture           38 x 30 cm\n"
            "    Serial number     A190-1\n"
            "    Manufacturer      ACM\n"
            "    Manufactured      week of 2008-04-01\n"
            "    Line rate         30 to 83 kHz\n"
            "    Field rate        56 to 76 Hz\n"
            "    Pixel clock       140 MHz at most\n"
            "    Gamma             2.2\n"
            "    Power saving      standby, active off\n"
            "    Digital interface 2\n"
            "    EDID version      1.3\n");
}

TEST_F(TextReport, ShowsAMonitorThatSaysNothing) {
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}});
  EXPECT_EQ(Make({"QRXSG_DesktopMonitor"}), "Monitors\n  Monitor 1\n    Power saving      none\n");
}

TEST_F(TextReport, SaysWhyThereAreNoMonitorsInThePluginsOwnWords) {
  const std::vector<TLogEntry> log = {
      {ILogger::kDebug, "TDisplayInfoCallbacks::GetData - Received request for class QRXSG_DesktopMonitor."},
      {ILogger::kStatus, "Lib not initialized. Cannot get monitor info."},
      {ILogger::kStatus, "Lib not initialized. Cannot get monitor info."},
      {ILogger::kDebug, "some detail"}};
  EXPECT_EQ(Make({"QRXSG_DesktopMonitor"}, log),
            "Monitors\n"
            "  None: no EDID from unit 0 of the video BIOS.\n"
            "  The plug-in says:\n"
            "    Lib not initialized. Cannot get monitor info.\n");
}

TEST_F(TextReport, DoesNotBlameTheMonitorsForAnotherClass) {
  const std::vector<TLogEntry> log = {
      {ILogger::kDebug, "TDisplayInfoCallbacks::GetData - Received request for class QRXSG_VideoHead."},
      {ILogger::kStatus, "trouble with the heads"}};
  EXPECT_EQ(Make({"QRXSG_VideoHead", "QRXSG_DesktopMonitor"}, log),
            "Video controllers\n"
            "  None: no X server configuration was asked for.\n"
            "  The plug-in says:\n"
            "    trouble with the heads\n"
            "\n"
            "Monitors\n"
            "  None: no EDID from unit 0 of the video BIOS.\n");
}

TEST_F(TextReport, BlamesNoPartForWhatWasLoggedBeforeTheFirstClass) {
  EXPECT_THAT(Make({"QRXSG_VideoHead", "QRXSG_DesktopMonitor"}, {{ILogger::kError, "trouble"}}),
              Not(HasSubstr("The plug-in says:")));
}

TEST_F(TextReport, SaysWhyThereAreNoControllers) {
  answer.reasons.noControllers = "/etc/X11/xorg.conf is empty";
  EXPECT_EQ(Make({"QRXSG_VideoController", "QRXSG_VideoHead"}),
            "Video controllers\n  None: /etc/X11/xorg.conf is empty.\n");
}

TEST_F(TextReport, CountsTheLinksOfARequestThatAskedForNothingElse) {
  Commit("QRXSG_HeadOfVideoController", {});
  Commit("QRXSG_MonitorSetting", {});
  Commit("QRXSG_MonitorSetting", {});
  EXPECT_EQ(Make({"QRXSG_HeadOfVideoController", "QRXSG_MonitorSetting"}),
            "Video controllers\n"
            "  Links of heads to controllers: 1\n"
            "\n"
            "Monitors\n"
            "  Links of monitors to modes: 2\n");
}

TEST_F(TextReport, StaysWithinItsWidth) {
  std::string words;
  for (int count = 0; count < 50; ++count) words += "word ";
  answer.identity.systemName = words;
  Commit("QRXSG_DesktopMonitor",
         {{"DeviceID", TCIMValue("Monitor 1")}, {"Name", TCIMValue(words)}, {"SerialNumber", TCIMValue(words)}});
  EndRequest({"QRXSG_DesktopMonitor", "QRXSG_MonitorResolution"});
  EndRequest({"QRXSG_VideoController"});
  for (const std::size_t width : {kMinTextWidth, kTextWidth, kMaxTextWidth}) {
    const std::string text = MakeTextReport(answer, TMakerNames(), width);
    EXPECT_LE(GetWidth(text), width) << text;
    EXPECT_GT(GetWidth(text), width - 6) << text;
  }
}

TEST_F(TextReport, KeepsTheBlanksOfAName) {
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}, {"Name", TCIMValue(" a  b ")}});
  EXPECT_THAT(Make({"QRXSG_DesktopMonitor"}), HasSubstr("  Monitor 1:  a  b \n"));
}

TEST_F(TextReport, CountsCharactersNotBytes) {
  std::string name;
  for (int count = 0; count < 60; ++count) name += "\xC3\xA9";
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}, {"Name", TCIMValue(name)}});
  EXPECT_THAT(Make({"QRXSG_DesktopMonitor"}), HasSubstr("  Monitor 1: " + name + "\n"));
}

TEST_F(TextReport, ShowsAControllerWithItsHeads) {
  const auto commit = [&](const char* className, const char* id, const char* displayId, unsigned int number) {
    std::map<std::string, TCIMValue> properties = {{"DeviceID", TCIMValue(id)}, {"DisplayId", TCIMValue(displayId)}};
    if (number == 0) {
      properties["Name"] = TCIMValue("Board");
      properties["VideoRamSize"] = TCIMValue(1024U);
    } else {
      properties["HeadNumber"] = TCIMValue(static_cast<unsigned char>(number));
      properties["CurrentHorizontalResolution"] = TCIMValue(640U);
      properties["CurrentVerticalResolution"] = TCIMValue(480U);
      properties["CurrentBitsPerPixel"] = TCIMValue(24U);
    }
    Commit(className, properties);
  };
  commit("QRXSG_VideoController", "Card0", "PCI:1:0:0", 0);
  commit("QRXSG_VideoHead", "Card0", "PCI:1:0:0", 1);
  commit("QRXSG_VideoHead", "Card1", "PCI:2:0:0", 2);
  EXPECT_EQ(Make({"QRXSG_VideoController", "QRXSG_VideoHead"}),
            "Video controllers\n"
            "  Card0: Board\n"
            "    Display id        PCI:1:0:0\n"
            "    Video memory      1024 bytes\n"
            "    Head 1: Card0\n"
            "      Configured mode   640 x 480, 24 bits per pixel\n"
            "  Head 2: Card1\n"
            "    Configured mode   640 x 480, 24 bits per pixel\n");
}

TEST_F(TextReport, ShowsAControllerOnceHoweverOftenItWasMade) {
  const TValues card = {{"DeviceID", TCIMValue("Card0")}, {"DisplayId", TCIMValue("Card0")}};
  Commit("QRXSG_VideoController", card);
  Commit("QRXSG_VideoController", {{"DeviceID", TCIMValue("Card0")}, {"DisplayId", TCIMValue("PCI:1:0:0")}});
  Commit("QRXSG_VideoController",
         {{"DeviceID", TCIMValue("Card0")}, {"DisplayId", TCIMValue("Card0")}, {"DACType", TCIMValue("the last")}});
  Commit("QRXSG_VideoHead", card);
  Commit("QRXSG_VideoHead", card);
  EXPECT_EQ(Make({"QRXSG_VideoController", "QRXSG_VideoHead"}),
            "Video controllers\n"
            "  Card0\n"
            "    Display id        Card0\n"
            "    DAC               the last\n"
            "    Head : Card0\n"
            "    Head : Card0\n"
            "  Card0\n"
            "    Display id        PCI:1:0:0\n");
}

TEST_F(TextReport, ShowsMonitorsOfWhichOnlyTheModesWereAskedForInTheirOrder) {
  CommitMode("Monitor 2\\ Setting 1", 640, 480, 60);
  CommitMode("Monitor 10\\ Setting 1", 800, 600, 60);
  EXPECT_THAT(Make({"QRXSG_MonitorResolution"}), HasSubstr("  Monitor 2\n"
                                                           "    Modes             640x480@60Hz\n"
                                                           "  Monitor 10\n"
                                                           "    Modes             800x600@60Hz\n"));
}

TEST_F(TextReport, GivesEachMonitorItsModesAndMarksTheConfiguredOne) {
  Commit("QRXSG_VideoHead", {{"HeadNumber", TCIMValue(static_cast<unsigned char>(1))},
                             {"CurrentHorizontalResolution", TCIMValue(640U)},
                             {"CurrentVerticalResolution", TCIMValue(480U)}});
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}});
  CommitMode("Monitor 1\\ Setting 1", 800, 600, 60);
  CommitMode("Monitor 1\\ Setting 2", 640, 480, 60);
  CommitMode("Monitor 10\\ Setting 1", 800, 600, 60);
  EXPECT_EQ(Make({"QRXSG_DesktopMonitor", "QRXSG_MonitorResolution"}),
            "Monitors\n"
            "  Monitor 1\n"
            "    Power saving      none\n"
            "    Modes             800x600@60Hz, 640x480@60Hz*\n"
            "                      * the resolution that the configuration names\n"
            "  Monitor 10\n"
            "    Modes             800x600@60Hz\n");
}

TEST_F(TextReport, MarksTheModeOfTheHeadThatIsNamedAfterTheMonitorsConnector) {
  CommitHead("card0-DP-1", "Acme A190", 800, 600);
  CommitHead("card0-DP-2", "Acme A190", 640, 480);
  CommitMonitorWithTwoModes("Monitor 1", "Acme A190");
  CommitMonitorWithTwoModes("Monitor 2", "Acme A190");
  answer.outputs = {{0, "card0-DP-2", "Monitor 1", "", {}, {}}, {1, "card0-DP-1", "Monitor 2", "", {}, {}}};
  EXPECT_THAT(ListModes(), ElementsAre("800x600@60Hz, 640x480@60Hz*", "800x600@60Hz*, 640x480@60Hz"));
}

TEST_F(TextReport, MarksTheModeOfTheOnlyHeadWhoseScreenNamesTheMonitorsModel) {
  CommitHead("Left", "Acme A190", 800, 600);
  CommitHead("Right", "Globex Wide", 640, 480);
  CommitMonitorWithTwoModes("Monitor 1", "Globex Wide");
  CommitMonitorWithTwoModes("Monitor 2", "Acme A190");
  EXPECT_THAT(ListModes(), ElementsAre("800x600@60Hz, 640x480@60Hz*", "800x600@60Hz*, 640x480@60Hz"));
}

TEST_F(TextReport, MarksNoModeWhereItIsNotKnownAtWhichHeadTheMonitorHangs) {
  CommitHead("Left", "Acme A190", 800, 600);
  CommitHead("Right", "Acme A190", 640, 480);
  CommitMonitorWithTwoModes("Monitor 1", "Acme A190");
  CommitMonitorWithTwoModes("Monitor 2", "");
  EXPECT_THAT(ListModes(), ElementsAre("800x600@60Hz, 640x480@60Hz", "800x600@60Hz, 640x480@60Hz"));
}

TEST_F(TextReport, SortsModesBySizeAndRate) {
  CommitMode("Monitor 1\\ Setting 1", 640, 480, 75);
  CommitMode("Monitor 1\\ Setting 2", 1280, 800, 60);
  CommitMode("Monitor 1\\ Setting 3", 1152, 864, 75);
  CommitMode("Monitor 1\\ Setting 4", 1280, 1024, 60);
  CommitMode("Monitor 1\\ Setting 5", 1280, 1024, 75);
  EXPECT_EQ(Make({"QRXSG_MonitorResolution"}),
            "Monitors\n"
            "  Monitor 1\n"
            "    Modes             1280x1024@75Hz, 1280x1024@60Hz, 1280x800@60Hz,\n"
            "                      1152x864@75Hz, 640x480@75Hz\n");
}

TEST_F(TextReport, MarksThePreferredMode) {
  SetOutput(TEdidBuilder().DetailedTiming(0, false));
  Commit("QRXSG_VideoHead",
         {{"CurrentHorizontalResolution", TCIMValue(1280U)}, {"CurrentVerticalResolution", TCIMValue(1024U)}});
  CommitMode("Monitor 1\\ Setting 1", 1280, 1024, 60);
  CommitMode("Monitor 1\\ Setting 2", 1280, 1024, 75);
  CommitMode("Monitor 1\\ Setting 3", 1280, 960, 60);
  EXPECT_EQ(Make({"QRXSG_MonitorResolution"}),
            "Monitors\n"
            "  Monitor 1\n"
            "    Preferred mode    1280 x 1024 at 60.020 Hz\n"
            "    Modes             1280x1024@75Hz*=, 1280x1024@60.02Hz*+, 1280x960@60Hz=\n"
            "                      * the resolution that the configuration names\n"
            "                      + the mode that the monitor prefers\n"
            "                      = a mode that the plug-in lists\n");
}

TEST_F(TextReport, MarksNoOtherModeAsThePreferredOne) {
  SetOutput(TEdidBuilder().DetailedTiming(0, false));
  CommitMode("Monitor 1\\ Setting 1", 1280, 1024, 61);
  CommitMode("Monitor 1\\ Setting 2", 1024, 1280, 60);
  EXPECT_THAT(Make({"QRXSG_MonitorResolution"}),
              HasSubstr("    Modes             1280x1024@61Hz=, 1280x1024@60.02Hz+, 1024x1280@60Hz=\n"));
}

TEST_F(TextReport, SaysVideoMemoryInMebibytes) {
  EXPECT_THAT(ShowVideoMemory(64U * 1024 * 1024), HasSubstr("Video memory      64 MiB\n"));
  EXPECT_THAT(ShowVideoMemory(4095U * 1024 * 1024), HasSubstr("Video memory      4095 MiB\n"));
}

TEST_F(TextReport, SaysVideoMemoryInBytesWhereItIsNotWholeMebibytes) {
  EXPECT_THAT(ShowVideoMemory(64U * 1024 * 1024 + 1), HasSubstr("Video memory      67108865 bytes\n"));
  EXPECT_THAT(ShowVideoMemory(0), HasSubstr("Video memory      0 bytes\n"));
}

TEST_F(TextReport, NamesTheMakerAfterItsLetters) {
  TTemporaryFolder folder;
  folder.Write("pnp.ids", "ACM\tAcme Corporation\n");
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}, {"MonitorManufacturer", TCIMValue("ACM")}});
  EndRequest({"QRXSG_DesktopMonitor"});
  EXPECT_THAT(MakeTextReport(answer, TMakerNames(folder.GetPath() / "pnp.ids")),
              HasSubstr("    Manufacturer      ACM (Acme Corporation)\n"));
}

TEST_F(TextReport, SendsNoControlBytes) {
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}, {"Name", TCIMValue("\x1B[2J")}});
  EXPECT_THAT(Make({"QRXSG_DesktopMonitor"}), HasSubstr("Monitor 1: \\x1b[2J\n"));
}

TEST_F(TextReport, LetsNoNameTurnTheTextAroundIt) {
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}, {"Name", TCIMValue("\u202Eabc\u2066")}});
  EXPECT_THAT(Make({"QRXSG_DesktopMonitor"}), HasSubstr("Monitor 1: \\u202eabc\\u2066\n"));
}

TEST_F(TextReport, HeadsEachOfSeveralRequests) {
  Make({"QRXSG_DesktopMonitor"});
  EXPECT_EQ(Make({"QRXSG_DesktopMonitor", "QRXSG_MonitorSetting"}),
            "Request: QRXSG_DesktopMonitor\n"
            "Monitors\n"
            "  None: no EDID from unit 0 of the video BIOS.\n"
            "\n"
            "Request: QRXSG_DesktopMonitor, QRXSG_MonitorSetting\n"
            "Monitors\n"
            "  None: no EDID from unit 0 of the video BIOS.\n");
}

TEST_F(TextReport, TellsWhereTheEdidOfEachMonitorCameFrom) {
  answer.edidOrigin.describe = [](std::size_t unit) { return "output " + std::to_string(unit); };
  answer.outputs = {{0, "", "Monitor 2", "", {}, {}}, {1, "", "Monitor 1", "", {}, {}}};
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}});
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 2")}});
  EXPECT_EQ(Make({"QRXSG_DesktopMonitor"}),
            "Monitors\n"
            "  Monitor 1\n"
            "    Power saving      none\n"
            "    EDID read from    output 1\n"
            "  Monitor 2\n"
            "    Power saving      none\n"
            "    EDID read from    output 0\n");
}

TEST_F(TextReport, DoesNotObeyWhatAnOutputIsCalled) {
  answer.edidOrigin.describe = [](std::size_t) { return "\x1B[2J\u202E"; };
  answer.outputs = {{0, "", "Monitor 1", "", {}, {}}};
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}});
  EXPECT_THAT(Make({"QRXSG_DesktopMonitor"}), HasSubstr("EDID read from    \\x1b[2J\\u202e\n"));
}

TEST_F(TextReport, TellsWhyThereIsNoMonitorByWhereEdidsComeFrom) {
  answer.reasons.noMonitors = "nothing is connected";
  EXPECT_EQ(Make({"QRXSG_DesktopMonitor"}), "Monitors\n  None: nothing is connected.\n");
}

TEST_F(TextReport, ShowsWhatTheEdidOfAMonitorSays) {
  CommitMonitor(TEdidBuilder()
                    .Version(1, 4)
                    .Made(14, 2019)
                    .ImageSize(34, 27)
                    .DetailedTiming(0, false)
                    .Byte(edid::kProductCode, 7)
                    .Byte(edid::kSerialNumber, 9)
                    .Byte(edid::kVideoInput, 0xB5)
                    .Byte(edid::kChecksum, 0));
  EXPECT_EQ(Make({"QRXSG_DesktopMonitor"}),
            "Monitors\n"
            "  Monitor 1\n"
            "    Problem           Block 0 has a wrong checksum.\n"
            "    Largest mode      1280 x 1024 at 60.020 Hz\n"
            "    Highest rate      60 Hz (1280 x 1024)\n"
            "    Picture           340 x 270 mm, 17.1 inches\n"
            "    Connector         card0-DP-1\n"
            "    Serial number     9\n"
            "    Preferred mode    1280 x 1024 at 60.020 Hz\n"
            "    Input             digital: DisplayPort, 10 bits per colour\n"
            "    Product code      7 (0x0007)\n"
            "    Manufactured      week 14 of 2019\n"
            "    Power saving      none\n"
            "    Modes             1280x1024@60.02Hz+\n"
            "                      + the mode that the monitor prefers\n");
}

TEST_F(TextReport, ShowsBothSerialNumbers) {
  CommitMonitor(TEdidBuilder().Serial(0, "A190-1").Byte(edid::kSerialNumber, 9));
  const std::string text = Make({"QRXSG_DesktopMonitor"});
  EXPECT_THAT(text, HasSubstr("    Serial number     A190-1\n"));
  EXPECT_THAT(text, HasSubstr("    Serial in header  9\n"));
}

TEST_F(TextReport, ShowsTheOutputsThatAreNotListed) {
  const std::vector<std::uint8_t> edid = TEdidBuilder().Name(0, "Acme A190").Build();
  answer.outputs = {{1, "card0-DP-2", std::nullopt, "its EDID repeats that of unit 0", ReadEdidFacts(edid), edid}};
  EXPECT_THAT(Make({"QRXSG_DesktopMonitor"}), HasSubstr("  card0-DP-2 (unit 1): Acme A190\n"
                                                        "    Not listed        its EDID repeats that of unit 0\n"
                                                        "    Connector         card0-DP-2\n"));
}

TEST_F(TextReport, SaysWhereAMadeConfigurationComesFrom) {
  answer.xconfigOrigin = "made from what the kernel knows in /sys/class/drm";
  EXPECT_THAT(Make({"QRXSG_VideoController"}),
              HasSubstr("  X configuration made from what the kernel knows in /sys/class/drm\n"));
}
