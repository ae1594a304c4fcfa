#include "command/report/html/html_report.h"

#include <gmock/gmock.h>

#include <cmath>
#include <map>
#include <regex>
#include <set>

#include "command/report/html/html_style.h"
#include "tests/support/answer_test.h"

using NQRXZELT20::ILogger;
using NQRXZELT20::TCIMReference;
using NQRXZELT20::TCIMValue;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

const TRequest kAllClasses = {"QRXSG_VideoController", "QRXSG_VideoHead",         "QRXSG_HeadOfVideoController",
                              "QRXSG_DesktopMonitor",  "QRXSG_MonitorResolution", "QRXSG_MonitorSetting"};

TCIMValue Byte(unsigned int value) { return TCIMValue(static_cast<unsigned char>(value)); }

class HtmlReport : public TAnswerTest {
 protected:
  std::string Make(const TRequest& classes = kAllClasses, const std::vector<TLogEntry>& log = {}) {
    EndRequest(classes, log);
    return MakeHtmlReport(answer);
  }

  void CommitController(const std::string& displayId) {
    Commit("QRXSG_VideoController", {{"DeviceID", TCIMValue("Card")}, {"DisplayId", TCIMValue(displayId)}});
  }

  void CommitHead(const std::string& displayId, unsigned int number = 1) {
    Commit("QRXSG_VideoHead", {{"DisplayId", TCIMValue(displayId)},
                               {"HeadNumber", Byte(number)},
                               {"CurrentHorizontalResolution", TCIMValue(640U)},
                               {"CurrentVerticalResolution", TCIMValue(480U)}});
  }

  void CommitMonitor(const std::string& id, unsigned int width, unsigned int height) {
    Commit("QRXSG_DesktopMonitor",
           {{"DeviceID", TCIMValue(id)}, {"HorizontalImageSize", Byte(width)}, {"VerticalImageSize", Byte(height)}});
  }

  void CommitSetting(const std::string& monitor) {
    TCIMReference element("QRXSG_DesktopMonitor.DeviceID=\"" + monitor + "\"");
    Commit("QRXSG_MonitorSetting", {{"Element", TCIMValue(element)}});
  }

  void CommitMode(unsigned int width, unsigned int height, unsigned int rate) {
    Commit("QRXSG_MonitorResolution", {{"SettingID", TCIMValue("Monitor 1\\ Setting 1")},
                                       {"HorizontalResolution", TCIMValue(width)},
                                       {"VerticalResolution", TCIMValue(height)},
                                       {"RefreshRate", TCIMValue(rate)}});
  }

  /// Gives the first monitor that output, whose EDID is broken.
  void AddOutput() {
    TEdidFacts facts;
    facts.isVersion1 = true;
    facts.contradictions = {"Block 0 has a wrong checksum."};
    facts.name = "Acme A190";
    facts.imageSize = {597, 336};
    facts.diagonalInches = 27.0;
    facts.limits = TRangeLimits{{30, 160}, {48, 75}, {}};
    facts.modes.push_back({{3840, 2160, 59.997}, EModeSource::Detailed, EYcbcr420::No});
    answer.outputs = {{0, "card0-DP-1", "Monitor 1", "", facts, {}}};
  }

  /// The text of the pattern's first group, or of these groups, for each match in the page.
  static std::vector<std::string> FindAll(const std::string& page, const std::string& pattern,
                                          const std::vector<int>& groups = {1}) {
    const std::regex regex(pattern);
    return {std::sregex_token_iterator(page.begin(), page.end(), regex, groups), std::sregex_token_iterator()};
  }
};

/// The relative luminance of a colour, "fff" or "d0d7de", as WCAG 2 defines it.
double GetLuminance(std::string digits) {
  if (digits.size() == 3) digits = {digits[0], digits[0], digits[1], digits[1], digits[2], digits[2]};
  constexpr double weights[] = {0.2126, 0.7152, 0.0722};
  double luminance = 0;
  for (std::size_t channel = 0; channel < 3; ++channel) {
    const double value = std::stoi(digits.substr(2 * channel, 2), nullptr, 16) / 255.0;
    luminance += weights[channel] * (value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4));
  }
  return luminance;
}

}  // namespace

TEST_F(HtmlReport, MakesNothingButTextOfWhatTheMachineSays) {
  const std::string name = "\"><svg onload='x'>&<script>";
  const std::string id = name + "\\ Setting 1";
  Commit("QRXSG_VideoController", {{"DeviceID", TCIMValue(name)}, {"Name", TCIMValue(name + name)}});
  Commit("QRXSG_VideoHead", {{"DeviceID", TCIMValue(name)}, {"HeadNumber", Byte(1)}});
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue(name)}, {"Name", TCIMValue(name + name)}});
  Commit("QRXSG_MonitorResolution", {{"SettingID", TCIMValue(id)}, {"HorizontalResolution", TCIMValue(1U)}});
  answer.plugin.name = name;
  answer.identity.systemName = name;
  answer.log = {{ILogger::kError, name}};
  answer.edidOrigin.describe = [&](std::size_t) { return name; };
  answer.outputs = {{0, name, name, "", {}, {}}};
  const std::string page =
      Make(kAllClasses, {{ILogger::kDebug, "Received request for class QRXSG_VideoHead."}, {ILogger::kError, name}});
  EXPECT_THAT(page, Not(HasSubstr("<script")));
  EXPECT_THAT(page, Not(HasSubstr("<svg onload")));
  EXPECT_THAT(page, Not(HasSubstr("onload='")));
  EXPECT_THAT(page, HasSubstr("&quot;&gt;&lt;svg onload=&#39;x&#39;&gt;&amp;&lt;script&gt;"));
}

TEST_F(HtmlReport, NamesThePlugInBelowTheMachine) {
  answer.identity.version = "1.4";
  answer.plugin.name = "Collector <1>";
  answer.plugin.version = "1.0";
  EXPECT_THAT(Make(), HasSubstr("<p class=\"soft\">Shown by displayinfo 1.4. Plug-in: Collector &lt;1&gt; 1.0.</p>"));
}

TEST_F(HtmlReport, BeginsWithTheMachineAndWhenItWasCollected) {
  answer.identity = {"ws-17<", "2026-11-21T21:30:00Z", "1.4"};
  const std::string page = Make();
  const std::string collection = "Collected 2026-11-21 21:30:00 UTC, shown by displayinfo 1.4";
  EXPECT_THAT(page, HasSubstr("<title>ws-17&lt; \u2013 " + collection + "</title>"));
  EXPECT_THAT(page, HasSubstr("<main><h1>ws-17&lt;</h1>\n<p class=\"soft\">" + collection + "."));
}

TEST_F(HtmlReport, CutsALongNameOfTheMachine) {
  answer.identity.systemName = std::string(100, 'x');
  const std::string cut = std::string(63, 'x') + "\u2026";
  const std::string page = Make();
  EXPECT_THAT(page, HasSubstr("<title>" + cut));
  EXPECT_THAT(page, HasSubstr("<h1><span title=\"" + answer.identity.systemName + "\">" + cut + "</span>"));
}

TEST_F(HtmlReport, SendsNoControlBytes) {
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}, {"Name", TCIMValue("\x1B[2J")}});
  EXPECT_THAT(Make(), HasSubstr("\\x1b[2J"));
}

TEST_F(HtmlReport, LetsNoNameTurnTheTextAroundIt) {
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}, {"Name", TCIMValue("\u202Eabc\u2066")}});
  EXPECT_THAT(Make(), HasSubstr("<td>\\u202eabc\\u2066</td>"));
}

TEST_F(HtmlReport, HasAStyleForEachOfItsClassesAndForNoOther) {
  CommitController("a");
  CommitHead("a");
  CommitMonitor("Monitor 1", 40, 30);
  CommitMonitor("Monitor 2", 0, 0);
  AddOutput();
  for (unsigned int width = 640; width < 700; ++width) CommitMode(width, 480, 60);
  for (int severity = ILogger::kError; severity <= ILogger::kVerbose; ++severity) {
    answer.log.push_back({static_cast<ILogger::EZELTLogSeverity>(severity), "said"});
  }
  std::set<std::string> used;
  for (const std::string& names : FindAll(Make(), " class=\"([^\"]+)\"")) {
    for (const std::string& name : FindAll(names, "([^ ]+)")) used.insert(name);
  }
  const std::vector<std::string> styled = FindAll(kHtmlStyle, "\\.([a-z]+)");
  EXPECT_EQ(used, std::set<std::string>(styled.begin(), styled.end()));
}

TEST_F(HtmlReport, LoadsNothing) {
  CommitController("a");
  CommitMonitor("Monitor 1", 40, 30);
  const std::string page = Make();
  EXPECT_THAT(FindAll(page, "href=(.{2})"), Each("\"#"));
  for (const char* loader : {"src=", "url(", "@import", "<script", "<link"}) {
    EXPECT_THAT(page, Not(HasSubstr(loader)));
  }
}

TEST_F(HtmlReport, SaysANameOnceThatOnlyRepeatsTheId) {
  Commit("QRXSG_VideoController", {{"DeviceID", TCIMValue("Card")}, {"Name", TCIMValue("Card")}});
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}, {"Name", TCIMValue("Monitor 1")}});
  const std::string page = Make();
  EXPECT_THAT(FindAll(page, "<p[^>]*>(Card)</p>"), ElementsAre("Card"));
  EXPECT_THAT(FindAll(page, "<h3[^>]*>(Monitor[^<]*)</h3>"), ElementsAre("Monitor 1"));
}

TEST_F(HtmlReport, JoinsAControllerToItsHeadsOnly) {
  CommitController("a");
  CommitHead("a", 1);
  CommitHead("a", 2);
  CommitHead("b", 3);
  const std::string page = Make();
  const std::string card = page.substr(page.find("<div class=\"card\">"));
  const std::size_t end = card.find("</ul>\n</div>");
  EXPECT_THAT(FindAll(card.substr(0, end), "<p class=\"name\">([^<]+)<"), ElementsAre("Card", "Head 1", "Head 2"));
  EXPECT_THAT(FindAll(card.substr(end), "<p class=\"name\">([^<]+)<"), ElementsAre("Head 3"));
}

TEST_F(HtmlReport, DrawsMonitorsToScale) {
  CommitMonitor("Monitor 1", 40, 30);
  CommitMonitor("Monitor 2", 20, 10);
  EXPECT_THAT(FindAll(Make(), "width=\"([0-9]+\" height=\"[0-9]+)\" class=\"monitor\""),
              ElementsAre("150\" height=\"112", "75\" height=\"37"));
}

TEST_F(HtmlReport, DrawsAMonitorOfTheSizeThatItsEdidTells) {
  CommitMonitor("Monitor 1", 60, 60);
  AddOutput();
  const std::string page = Make();
  EXPECT_THAT(FindAll(page, "width=\"([0-9]+\" height=\"[0-9]+)\" class=\"monitor\""),
              ElementsAre("150\" height=\"84"));
  EXPECT_THAT(page, HasSubstr("class=\"middle\">27.0\u2033</text>"));
  EXPECT_THAT(page, HasSubstr("<p>597 x 336 mm</p>"));
}

TEST_F(HtmlReport, BeginsEachMonitorWithItsProblemsAndWhatPeopleLookFor) {
  CommitMonitor("Monitor 1", 60, 60);
  AddOutput();
  const std::string page = Make({"QRXSG_DesktopMonitor"});
  const std::string card = page.substr(page.find("<h3 id=\"request1-monitor-1\">"));
  EXPECT_THAT(card, StartsWith("<h3 id=\"request1-monitor-1\">Monitor 1: Acme A190</h3>\n"
                               "<p class=\"problem\"><b>Problem:</b>\n Block 0 has a wrong checksum.</p>\n"
                               "<ul class=\"top\"><li><span class=\"soft\">Largest mode</span>\n "
                               "<b>3840 x 2160 at 59.997 Hz</b>\n</li>\n"
                               "<li><span class=\"soft\">Picture</span>\n <b>597 x 336 mm, 27.0 inches</b>\n</li>\n"
                               "<li><span class=\"soft\">Connector</span>\n <b>card0-DP-1</b>\n</li>\n</ul>\n<table>"));
}

TEST_F(HtmlReport, FoldsTheLimitsOfAMonitorAway) {
  CommitMonitor("Monitor 1", 60, 60);
  AddOutput();
  const std::string page = Make({"QRXSG_DesktopMonitor"});
  const std::string folded = page.substr(page.find("<summary>Limits, power saving, versions</summary>"));
  EXPECT_THAT(folded.substr(0, folded.find("</details>")), HasSubstr("<td>48 to 75 Hz</td>"));
}

TEST_F(HtmlReport, TellsTheFactsOfControllersHeadsAndMonitors) {
  Commit("QRXSG_VideoController", {{"VideoRamSize", TCIMValue(1U << 20U)}});
  CommitHead("a");
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}, {"MonitorManufacturer", TCIMValue("ACM")}});
  const std::string page = Make();
  EXPECT_THAT(page, HasSubstr("<p><span class=\"soft\">Video memory</span>\n <span>1 MiB</span>\n</p>"));
  EXPECT_THAT(page, HasSubstr("<p><span class=\"soft\">Configured mode</span>\n <span>640 x 480</span>\n</p>"));
  EXPECT_THAT(page, HasSubstr("<th scope=\"row\">Manufacturer</th>\n<td>ACM</td>"));
}

TEST_F(HtmlReport, DashesAMonitorOfUnknownSizeAndSaysHowItIsDrawn) {
  CommitMonitor("Monitor 1", 0, 30);
  const std::string page = Make();
  EXPECT_THAT(page, HasSubstr("class=\"monitor unknown\""));
  EXPECT_THAT(page, HasSubstr(">size not known, drawn as 400 x 300 mm<"));
  EXPECT_THAT(page, HasSubstr("class=\"middle\">?</text>"));
}

TEST_F(HtmlReport, TakesANullSizeForUnknown) {
  Commit("QRXSG_DesktopMonitor", {{"HorizontalImageSize", TCIMValue()}, {"VerticalImageSize", TCIMValue()}});
  EXPECT_THAT(Make(), HasSubstr("class=\"monitor unknown\""));
}

TEST_F(HtmlReport, StandsAllScreensOnOneFloor) {
  CommitMonitor("Monitor 1", 40, 30);
  CommitMonitor("Monitor 2", 30, 40);
  CommitMonitor("Monitor 3", 10, 10);
  const std::string page = Make();
  EXPECT_THAT(FindAll(page, "viewBox=\"0 0 ([0-9]+ [0-9]+)\""), Each("152 152"));
  EXPECT_THAT(FindAll(page, "<rect x=\"1\" y=\"([0-9]+\" width=\"[0-9]+\" height=\"[0-9]+)\""),
              ElementsAre("39\" width=\"150\" height=\"112", "1\" width=\"112\" height=\"150",
                          "114\" width=\"37\" height=\"37"));
}

TEST_F(HtmlReport, LinksThePictureOfEachMonitorToItsFacts) {
  CommitMonitor("Monitor 1", 40, 30);
  CommitMonitor("Monitor 2", 40, 30);
  const std::string page = Make();
  EXPECT_THAT(FindAll(page, "href=\"#([^\"]+)\">(Monitor 2)<", {1, 2}), ElementsAre("request1-monitor-2", "Monitor 2"));
  EXPECT_THAT(FindAll(page, "<h3 id=\"request1-monitor-2\">([^<]+)<"), ElementsAre("Monitor 2"));
}

TEST_F(HtmlReport, ListsTheRatesOfAResolutionTogether) {
  CommitMode(640, 480, 75);
  CommitMode(640, 480, 60);
  CommitMode(640, 480, 75);
  const std::string page = Make();
  EXPECT_THAT(page, HasSubstr("<li>640 x 480: 75, 60 Hz</li>"));
  EXPECT_EQ(FindAll(page, "(class=\"mode\")").size(), 1U);
}

TEST_F(HtmlReport, MarksThePreferredModeInWords) {
  CommitMode(640, 480, 60);
  CommitMode(640, 480, 75);
  TEdidFacts facts;
  facts.preferredMode = {640, 480, 59.94};
  answer.outputs = {{0, "", "Monitor 1", "", facts, {}}};
  EXPECT_THAT(Make(), HasSubstr("<li>640 x 480: 75, 60 Hz (preferred at 60 Hz)</li>"));
}

TEST_F(HtmlReport, ListsTheLargestModesFirst) {
  CommitMode(640, 480, 60);
  CommitMode(1280, 1024, 60);
  CommitMode(800, 480, 60);
  EXPECT_THAT(FindAll(Make(), "<li>([0-9]+ x [0-9]+):"), ElementsAre("1280 x 1024", "800 x 480", "640 x 480"));
}

TEST_F(HtmlReport, PlotsNothingForAMonitorWithoutModes) {
  CommitMonitor("Monitor 1", 40, 30);
  CommitMonitor("Monitor 2", 40, 30);
  EXPECT_THAT(Make(), Not(HasSubstr("class=\"plot\"")));
}

TEST_F(HtmlReport, PlotsToTheScaleOfTheLargestMode) {
  CommitMode(800, 600, 60);
  CommitMode(400, 300, 60);
  EXPECT_THAT(FindAll(Make(), "<circle (cx=\"[0-9]+\" cy=\"[0-9]+\")"),
              ElementsAre("cx=\"176\" cy=\"20\"", "cx=\"107\" cy=\"87\""));
}

TEST_F(HtmlReport, KeepsThePlotSmallAndAllModesInTheListHoweverManyThereAre) {
  for (unsigned int count = 0; count < 300; ++count) CommitMode(640 + count, 480, 60);
  const std::string page = Make();
  EXPECT_EQ(FindAll(page, "<li>([0-9]+ x 480: 60 Hz)</li>").size(), 300U);
  EXPECT_THAT(page, HasSubstr("viewBox=\"0 0 190 190\""));
}

TEST_F(HtmlReport, GivesTheWidthOfThePageOnlyToALongList) {
  for (unsigned int count = 0; count < 40; ++count) CommitMode(640 + count, 480, 60);
  EXPECT_THAT(Make(), HasSubstr("<ul class=\"modes\">"));
  for (unsigned int count = 0; count < 41; ++count) CommitMode(640 + count, 480, 60);
  EXPECT_THAT(Make(), HasSubstr("<ul class=\"modes many\">"));
}

TEST_F(HtmlReport, MarksTheConfiguredResolutionInThePlotAndInWords) {
  CommitHead("a");
  CommitMode(640, 480, 60);
  CommitMode(800, 600, 60);
  const std::string page = Make();
  EXPECT_EQ(FindAll(page, "(class=\"configured\")").size(), 1U);
  EXPECT_EQ(FindAll(page, "(class=\"mode\")").size(), 1U);
  EXPECT_THAT(page, HasSubstr(">640 x 480: 60 Hz (configured)<"));
}

TEST_F(HtmlReport, PlotsModesOfTheLargestNumbers) {
  CommitMode(4294967295U, 4294967295U, 1);
  EXPECT_THAT(Make(), HasSubstr(">4000000000<"));
}

TEST_F(HtmlReport, CutsALongNameInThePictureAndKeepsItWholeAsItsTitle) {
  const std::string name(100, 'x');
  Commit("QRXSG_VideoHead", {{"DeviceID", TCIMValue(name)}, {"HeadNumber", Byte(1)}});
  EXPECT_THAT(Make(), HasSubstr("<p><span title=\"" + name + "\">" + std::string(63, 'x') + "\u2026</span>"));
}

TEST_F(HtmlReport, TabulatesEveryPropertyWithItsKeyOrUnit) {
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}, {"Bandwidth", TCIMValue(140U)}});
  EXPECT_THAT(
      FindAll(Make(),
              "<th scope=\"row\" title=\"[^\"]+\">([^ ]+ <span class=\"unit\">[^<]+</span>\n</th>\n<td>[^<]*)</td>"),
      ElementsAre("Device<wbr/>ID <span class=\"unit\">key</span>\n</th>\n<td>Monitor 1",
                  "Bandwidth <span class=\"unit\">MHz</span>\n</th>\n<td>140"));
}

TEST_F(HtmlReport, TabulatesModesTogether) {
  CommitMode(640, 480, 60);
  CommitMode(800, 600, 75);
  EXPECT_THAT(FindAll(Make(), "<td>([0-9]+)</td>"), ElementsAre("640", "480", "60", "800", "600", "75"));
}

TEST_F(HtmlReport, LinksAReferenceToTheInstanceThatItNames) {
  CommitMonitor("Monitor 1", 40, 30);
  CommitMonitor("Monitor 2", 40, 30);
  CommitSetting("Monitor 2");
  const std::string page = Make();
  EXPECT_THAT(page, HasSubstr("<td><a href=\"#request1-QRXSG_DesktopMonitor-2\">QRXSG_DesktopMonitor Monitor 2</a>"));
  EXPECT_THAT(FindAll(page, "id=\"request1-QRXSG_DesktopMonitor-2\"><table><caption>([^<]+)<"),
              ElementsAre("Monitor 2"));
}

TEST_F(HtmlReport, ShowsTheWholeObjectPathOfAnInstanceThatTheAnswerLacks) {
  CommitSetting("Monitor 9");
  EXPECT_THAT(Make(), HasSubstr("<td>QRXSG_DesktopMonitor.DeviceID=&quot;Monitor 9&quot;</td>"));
}

TEST_F(HtmlReport, LinksToAnInstanceOfAnotherRequestWhenItsOwnHasNone) {
  CommitMonitor("Monitor 1", 40, 30);
  Make({"QRXSG_DesktopMonitor"});
  CommitSetting("Monitor 1");
  EXPECT_THAT(Make({"QRXSG_MonitorSetting"}), HasSubstr("href=\"#request1-QRXSG_DesktopMonitor-1\""));
}

TEST_F(HtmlReport, LinksToAnInstanceOfTheSameRequestWhenOthersHaveItToo) {
  CommitMonitor("Monitor 1", 40, 30);
  Make({"QRXSG_DesktopMonitor"});
  CommitMonitor("Monitor 1", 40, 30);
  CommitSetting("Monitor 1");
  const std::string page = Make({"QRXSG_DesktopMonitor", "QRXSG_MonitorSetting"});
  EXPECT_THAT(page, HasSubstr("href=\"#request2-QRXSG_DesktopMonitor-1\""));
  EXPECT_THAT(page, Not(HasSubstr("href=\"#request1-QRXSG_DesktopMonitor-1\"")));
}

TEST_F(HtmlReport, LinksToTheLastOfTheInstancesThatHaveOneObjectPath) {
  CommitMonitor("Monitor 1", 40, 30);
  CommitMonitor("Monitor 1", 50, 30);
  CommitSetting("Monitor 1");
  EXPECT_THAT(Make(), HasSubstr("href=\"#request1-QRXSG_DesktopMonitor-2\""));
}

TEST_F(HtmlReport, CutsALongNameInALink) {
  const std::string name(100, 'x');
  CommitMonitor(name, 40, 30);
  CommitSetting(name);
  EXPECT_THAT(Make(), HasSubstr(">QRXSG_DesktopMonitor " + std::string(26, 'x') + "\u2026</a>"));
}

TEST_F(HtmlReport, GivesEachIdOnce) {
  for (int request = 0; request < 2; ++request) {
    for (int twice = 0; twice < 2; ++twice) {
      CommitController("a");
      CommitHead("a");
      CommitMonitor("Monitor 1", 40, 30);
      CommitMode(640, 480, 60);
      CommitSetting("Monitor 1");
    }
    Make();
  }
  const std::vector<std::string> ids = FindAll(MakeHtmlReport(answer), " id=\"([^\"]+)\"");
  EXPECT_EQ(ids.size(), 24U);
  EXPECT_EQ(std::set<std::string>(ids.begin(), ids.end()).size(), ids.size());
}

TEST_F(HtmlReport, FoldsTheInstancesAwayAndSaysSoOnPaper) {
  CommitMonitor("Monitor 1", 40, 30);
  const std::string page = Make();
  EXPECT_THAT(page, HasSubstr("<h2>Instances</h2>\n<details><summary>1 instance as CIM has them</summary>"));
  EXPECT_THAT(FindAll(page, "</details>\n<p class=\"paper\">([^<]+)<"),
              Each("Folded: to have this part on paper, open it before printing."));
}

TEST_F(HtmlReport, SkipsNoLevelOfHeadings) {
  for (const int requests : {1, 2}) {
    CommitController("a");
    CommitMonitor("Monitor 1", 40, 30);
    const std::string page = Make();
    int before = 0;
    for (const std::string& level : FindAll(page, "<h([1-6])")) {
      EXPECT_LE(std::stoi(level), before + 1) << "with " << requests << " requests";
      before = std::stoi(level);
    }
    EXPECT_EQ(FindAll(page, "<(h1)").size(), 1U);
    EXPECT_EQ(FindAll(page, "<(h4)").empty(), requests == 1);
  }
}

TEST_F(HtmlReport, SaysOfEachNameInATableWhetherItNamesARowOrAColumn) {
  CommitMonitor("Monitor 1", 40, 30);
  CommitMode(640, 480, 60);
  answer.log = {{ILogger::kError, "broken"}};
  const std::string page = Make();
  EXPECT_EQ(FindAll(page, "(<th)[ >]").size(), FindAll(page, "(<th) scope=\"(?:row|col)\"").size());
  EXPECT_EQ(FindAll(page, "(<table>)").size(), 4U);  // one without a head: the facts of the monitor
  EXPECT_EQ(FindAll(page, "(<thead>)").size(), 3U);
}

TEST_F(HtmlReport, SaysWhyNothingIsFound) {
  const std::string page = Make(kAllClasses, {{ILogger::kDebug, "Received request for class QRXSG_DesktopMonitor."},
                                              {ILogger::kStatus, "trouble"}});
  EXPECT_THAT(page, HasSubstr("<p>None: no X server configuration was asked for.</p>"));
  EXPECT_THAT(page, HasSubstr("<p>None: no EDID from unit 0 of the video BIOS.</p>"));
  EXPECT_THAT(page, HasSubstr("<p>The plug-in says:</p>\n<ul><li>trouble</li>\n</ul>"));
}

TEST_F(HtmlReport, BlamesNoPartForWhatWasLoggedBeforeTheFirstClass) {
  EXPECT_THAT(Make(kAllClasses, {{ILogger::kError, "trouble"}}), Not(HasSubstr("The plug-in says:")));
}

TEST_F(HtmlReport, LeavesOutWhatWasNotAskedFor) {
  const std::string page = Make({"QRXSG_VideoHead"});
  EXPECT_THAT(FindAll(page, "<h2>([^<]+)</h2>"), ElementsAre("Video controllers", "Log"));
}

TEST_F(HtmlReport, TellsWhereTheEdidOfEachMonitorCameFrom) {
  answer.edidOrigin.describe = [](std::size_t unit) { return "output " + std::to_string(unit); };
  answer.outputs = {{1, "", "Monitor 2", "", {}, {}}};
  CommitMonitor("Monitor 2", 40, 30);
  EXPECT_THAT(Make(), HasSubstr("<th scope=\"row\">EDID read from</th>\n<td>output 1</td>"));
}

TEST_F(HtmlReport, FoldsTheLogAtTheEnd) {
  answer.log = {{ILogger::kError, "broken"}};
  EXPECT_THAT(Make(), HasSubstr("<h2>Log</h2>\n<details><summary>1 message</summary>\n<table>"));
  EXPECT_THAT(Make(), HasSubstr("<tr class=\"error\"><td>error</td>\n<td>broken</td>\n</tr>\n</tbody>"));
}

TEST_F(HtmlReport, HeadsEachOfSeveralRequests) {
  Make({"QRXSG_VideoHead"});
  EXPECT_THAT(FindAll(Make({"QRXSG_DesktopMonitor", "QRXSG_MonitorSetting"}), "<section><h2>([^<]+)</h2>"),
              ElementsAre("Request: QRXSG_VideoHead", "Request: QRXSG_DesktopMonitor, QRXSG_MonitorSetting"));
}

TEST_F(HtmlReport, SaysWhatTheOutputsAreAndWhichAreNotListed) {
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}});
  TEdidFacts facts;
  facts.isVersion1 = true;
  facts.productCode = 7;
  facts.hasValidChecksums = true;
  answer.outputs = {{0, "a<b", "Monitor 1", "", facts, {}},
                    {1, "a<b", std::nullopt, "its EDID repeats that of unit 0", facts, {}}};
  const std::string page = Make({"QRXSG_DesktopMonitor"});
  EXPECT_THAT(page, HasSubstr("<span class=\"soft\">Connector</span>\n <b>a&lt;b</b>"));
  EXPECT_THAT(page, HasSubstr("<h3>a&lt;b (unit 1)</h3>"));
  EXPECT_THAT(page, HasSubstr("<p class=\"problem\"><b>Not listed:</b>\n its EDID repeats that of unit 0</p>"));
}

TEST(HtmlStyle, HasEnoughContrastInBothSchemes) {
  std::map<std::string, std::vector<double>> colours;  // the luminance of each, in the light and in the dark scheme
  const std::string style = kHtmlStyle;
  const std::regex pattern("--([a-z]+):#([0-9a-f]+)[;}]");
  for (std::sregex_iterator match(style.begin(), style.end(), pattern), end; match != end; ++match) {
    colours[(*match)[1]].push_back(GetLuminance((*match)[2]));
  }
  for (const std::size_t scheme : {0U, 1U}) {
    for (const char* text : {"ink", "soft", "accent", "alarm"}) {
      for (const char* ground : {"paper", "panel"}) {
        const double first = colours.at(text).at(scheme);
        const double second = colours.at(ground).at(scheme);
        // The contrast that WCAG 2 requires at level AA for text that is not large.
        EXPECT_GE((std::max(first, second) + 0.05) / (std::min(first, second) + 0.05), 4.5) << text << " on " << ground;
      }
    }
  }
}
