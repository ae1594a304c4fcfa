#include "command/report/text_report.h"

#include <gmock/gmock.h>

#include <sstream>

#include "tests/support/answer_test.h"

using NQRXZELT20::ILogger;
using NQRXZELT20::TCIMDateTime;
using NQRXZELT20::TCIMValue;
using testing::HasSubstr;
using testing::Not;

namespace {

class TextReport : public TAnswerTest {
 protected:
  std::string Make(const TRequest& classes, const std::vector<TLogEntry>& log = {}) {
    EndRequest(classes, log);
    return MakeTextReport(answer);
  }

  static std::size_t GetWidth(const std::string& text) {
    std::istringstream lines(text);
    std::size_t width = 0;
    for (std::string line; std::getline(lines, line);) width = std::max(width, line.size());
    return width;
  }
};

}  // namespace

TEST_F(TextReport, ShowsAMonitorWithAllItSays) {
  TCIMDateTime date;
  date.Set(2008, 4, 1, 6, 0, 0, 0, 0);
  const auto byte = [](unsigned int value) { return TCIMValue(static_cast<unsigned char>(value)); };
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")},
                                  {"Name", TCIMValue("Acme A190")},
                                  {"MonitorManufacturer", TCIMValue("ACM")},
                                  {"SerialNumber", TCIMValue("A190-1")},
                                  {"ManufacturingDate", TCIMValue(date)},
                                  {"HorizontalImageSize", byte(38)},
                                  {"VerticalImageSize", byte(30)},
                                  {"Gamma", TCIMValue(2.2F)},
                                  {"MinHorizFreq", byte(30)},
                                  {"MaxHorizFreq", byte(83)},
                                  {"MinVertFreq", byte(56)},
                                  {"MaxVertFreq", byte(76)},
                                  {"Bandwidth", TCIMValue(140U)},
                                  {"DPMSStandby", TCIMValue(true)},
                                  {"DPMSSuspend", TCIMValue(false)},
                                  {"DPMSActiveOff", TCIMValue(true)},
                                  {"SupportedDigitalInterface", byte(2)},
                                  {"EDIDVersion", TCIMValue(1.3F)}});
  EXPECT_EQ(Make({"QRXSG_DesktopMonitor"}),
            "Monitors\n"
            "  Monitor 1: Acme A190\n"
            "    Manufacturer      ACM\n"
            "    Serial number     A190-1\n"
            "    Manufactured      week of 2008-04-01\n"
            "    Picture           38 x 30 cm\n"
            "    Gamma             2.2\n"
            "    Line rate         30 to 83 kHz\n"
            "    Field rate        56 to 76 Hz\n"
            "    Pixel clock       140 MHz at most\n"
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

TEST_F(TextReport, SaysThatNoConfigurationFileIsThere) {
  answer.fileQueries = {{"/etc/X11/XF86Config", false}, {"/etc/X11/xorg.conf", false}};
  EXPECT_THAT(Make({"QRXSG_VideoController"}),
              HasSubstr("None: none of the 2 X server configuration files that were looked for is\n        there.\n"));
}

TEST_F(TextReport, NamesTheConfigurationFileThatYieldsNothing) {
  answer.fileQueries = {{"/etc/X11/XF86Config", false}, {"/etc/X11/xorg.conf", true}};
  EXPECT_THAT(Make({"QRXSG_VideoController"}), HasSubstr("None: /etc/X11/xorg.conf yields none.\n"));
}

TEST_F(TextReport, StaysWithinEightyColumns) {
  std::string words;
  for (int count = 0; count < 50; ++count) words += "word ";
  Commit("QRXSG_DesktopMonitor",
         {{"DeviceID", TCIMValue("Monitor 1")}, {"Name", TCIMValue(words)}, {"SerialNumber", TCIMValue(words)}});
  const std::string text = Make({"QRXSG_DesktopMonitor"});
  EXPECT_LE(GetWidth(text), 80U) << text;
  EXPECT_GT(GetWidth(text), 70U) << text;
}

TEST_F(TextReport, BreaksAWordThatIsLongerThanALine) {
  Commit("QRXSG_DesktopMonitor",
         {{"DeviceID", TCIMValue("Monitor 1")}, {"SerialNumber", TCIMValue(std::string(200, 'x'))}});
  EXPECT_EQ(GetWidth(Make({"QRXSG_DesktopMonitor"})), 80U);
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

TEST_F(TextReport, GivesEachMonitorItsModesAndMarksTheConfiguredOne) {
  const auto commitMode = [&](const char* settingId, unsigned int width, unsigned int height) {
    Commit("QRXSG_MonitorResolution", {{"SettingID", TCIMValue(settingId)},
                                       {"HorizontalResolution", TCIMValue(width)},
                                       {"VerticalResolution", TCIMValue(height)},
                                       {"RefreshRate", TCIMValue(60U)}});
  };
  Commit("QRXSG_VideoHead", {{"HeadNumber", TCIMValue(static_cast<unsigned char>(1))},
                             {"CurrentHorizontalResolution", TCIMValue(640U)},
                             {"CurrentVerticalResolution", TCIMValue(480U)}});
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}});
  commitMode("Monitor 1\\ Setting 1", 800, 600);
  commitMode("Monitor 1\\ Setting 2", 640, 480);
  commitMode("Monitor 10\\ Setting 1", 800, 600);
  EXPECT_EQ(Make({"QRXSG_DesktopMonitor", "QRXSG_MonitorResolution"}),
            "Monitors\n"
            "  Monitor 1\n"
            "    Power saving      none\n"
            "    Modes             800x600@60Hz, 640x480@60Hz*\n"
            "                      * the resolution that the configuration names\n"
            "  Monitor 10\n"
            "    Modes             800x600@60Hz\n");
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
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}});
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 2")}});
  EXPECT_EQ(Make({"QRXSG_DesktopMonitor"}),
            "Monitors\n"
            "  Monitor 1\n"
            "    Power saving      none\n"
            "    EDID read from    output 0\n"
            "  Monitor 2\n"
            "    Power saving      none\n"
            "    EDID read from    output 1\n");
}

TEST_F(TextReport, DoesNotObeyWhatAnOutputIsCalled) {
  answer.edidOrigin.describe = [](std::size_t) { return "\x1B[2J\u202E"; };
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}});
  EXPECT_THAT(Make({"QRXSG_DesktopMonitor"}), HasSubstr("EDID read from    \\x1b[2J\\u202e\n"));
}

TEST_F(TextReport, TellsWhyThereIsNoMonitorByWhereEdidsComeFrom) {
  answer.edidOrigin.none = "nothing is connected.";
  EXPECT_EQ(Make({"QRXSG_DesktopMonitor"}), "Monitors\n  None: nothing is connected.\n");
}

TEST_F(TextReport, ShowsWhatTheOutputOfAMonitorSaysUnderIt) {
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}});
  TEdidFacts facts;
  facts.isVersion1 = true;
  facts.productCode = 7;
  facts.hasValidChecksums = true;
  facts.preferredMode = {3840, 2160, 59.9966};
  answer.outputs = {{0, "card0-DP-1", "Monitor 1", "", facts, {}}};
  EXPECT_THAT(Make({"QRXSG_DesktopMonitor"}), HasSubstr("    Preferred mode    3840 x 2160 at 59.997 Hz\n"
                                                        "    Product code      7\n"));
}

TEST_F(TextReport, NamesTheOutputsThatAreNotListed) {
  answer.outputs = {{1, "card0-DP-2", std::nullopt, "its EDID repeats that of unit 0", std::nullopt, {}}};
  EXPECT_THAT(Make({"QRXSG_DesktopMonitor"}),
              HasSubstr("  card0-DP-2 (unit 1) is not listed: its EDID repeats that of unit 0.\n"));
}

TEST_F(TextReport, SaysWhereAMadeConfigurationComesFrom) {
  answer.xconfigOrigin = "made from what the kernel knows in /sys/class/drm";
  EXPECT_THAT(Make({"QRXSG_VideoController"}),
              HasSubstr("  X configuration made from what the kernel knows in /sys/class/drm\n"));
}
