#include "command/report/html/html_report.h"

#include <gmock/gmock.h>

#include <regex>
#include <set>

#include "command/report/html/html_style.h"
#include "tests/support/answer_test.h"

using NQRXZELT20::ILogger;
using NQRXZELT20::TCIMValue;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

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

  void CommitHead(const std::string& displayId) {
    Commit("QRXSG_VideoHead", {{"DisplayId", TCIMValue(displayId)},
                               {"HeadNumber", Byte(1)},
                               {"CurrentHorizontalResolution", TCIMValue(640U)},
                               {"CurrentVerticalResolution", TCIMValue(480U)}});
  }

  void CommitMonitor(const std::string& id, unsigned int width, unsigned int height) {
    Commit("QRXSG_DesktopMonitor",
           {{"DeviceID", TCIMValue(id)}, {"HorizontalImageSize", Byte(width)}, {"VerticalImageSize", Byte(height)}});
  }

  void CommitMode(unsigned int width, unsigned int height, unsigned int rate) {
    Commit("QRXSG_MonitorResolution", {{"SettingID", TCIMValue("Monitor 1\\ Setting 1")},
                                       {"HorizontalResolution", TCIMValue(width)},
                                       {"VerticalResolution", TCIMValue(height)},
                                       {"RefreshRate", TCIMValue(rate)}});
  }

  struct TBox {
    int left, top, right, bottom;

    bool Overlaps(const TBox& other) const {
      return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }
  };

  /// Where the page has the screens of monitors and their labels.
  static std::vector<TBox> FindMonitorBoxes(const std::string& page) {
    const std::string picture = page.substr(page.find("The monitors, to the scale"));
    std::vector<std::string> numbers = FindAll(
        picture, "<(?:rect|svg) x=\"([0-9]+)\" y=\"([0-9]+)\" width=\"([0-9]+)\" height=\"([0-9]+)\"", {1, 2, 3, 4});
    std::vector<TBox> boxes;
    for (auto number = numbers.begin(); number != numbers.end(); number += 4) {
      const TBox corner = {std::stoi(number[0]), std::stoi(number[1]), std::stoi(number[2]), std::stoi(number[3])};
      boxes.push_back({corner.left, corner.top, corner.left + corner.right, corner.top + corner.bottom});
    }
    return boxes;
  }

  /// What the pattern's first group, or these groups, take, from each place of the page that it matches.
  static std::vector<std::string> FindAll(const std::string& page, const std::string& pattern,
                                          const std::vector<int>& groups = {1}) {
    const std::regex regex(pattern);
    return {std::sregex_token_iterator(page.begin(), page.end(), regex, groups), std::sregex_token_iterator()};
  }
};

}  // namespace

TEST_F(HtmlReport, MakesNothingButTextOfWhatTheMachineSays) {
  const std::string name = "\"><svg onload='x'>&<script>";
  const std::string id = name + "\\ Setting 1";
  Commit("QRXSG_VideoController", {{"DeviceID", TCIMValue(name)}, {"Name", TCIMValue(name + name)}});
  Commit("QRXSG_VideoHead", {{"DeviceID", TCIMValue(name)}, {"HeadNumber", Byte(1)}});
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue(name)}, {"Name", TCIMValue(name + name)}});
  Commit("QRXSG_MonitorResolution", {{"SettingID", TCIMValue(id)}, {"HorizontalResolution", TCIMValue(1U)}});
  answer.plugin.name = name;
  answer.log = {{ILogger::kError, name}};
  answer.edidOrigin.describe = [&](std::size_t) { return name; };
  const std::string page =
      Make(kAllClasses, {{ILogger::kDebug, "Received request for class QRXSG_VideoHead."}, {ILogger::kError, name}});
  EXPECT_THAT(page, Not(HasSubstr("<script")));
  EXPECT_THAT(page, Not(HasSubstr("<svg onload")));
  EXPECT_THAT(page, Not(HasSubstr("onload='")));
  EXPECT_THAT(page, HasSubstr("&quot;&gt;&lt;svg onload=&#39;x&#39;&gt;&amp;&lt;script&gt;"));
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
  CommitMode(640, 480, 60);
  CommitMode(800, 600, 60);
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
  for (const char* loader : {"src=", "href", "url(", "@import", "<script", "<link"}) {
    EXPECT_THAT(page, Not(HasSubstr(loader)));
  }
}

TEST_F(HtmlReport, JoinsAControllerToItsHeadsAlone) {
  CommitController("a");
  CommitHead("a");
  CommitHead("a");
  CommitHead("b");
  CommitMonitor("Monitor 1", 40, 30);
  const std::string page = Make();
  EXPECT_EQ(FindAll(page, "(class=\"controller\")").size(), 1U);
  EXPECT_EQ(FindAll(page, "(class=\"head\")").size(), 3U);
  EXPECT_EQ(FindAll(page, "(class=\"link\")").size(), 2U);
}

TEST_F(HtmlReport, DrawsMonitorsToScale) {
  CommitMonitor("Monitor 1", 40, 30);
  CommitMonitor("Monitor 2", 20, 10);
  EXPECT_THAT(FindAll(Make(), "width=\"([0-9]+\" height=\"[0-9]+)\" class=\"monitor\""),
              ElementsAre("150\" height=\"112", "75\" height=\"37"));
}

TEST_F(HtmlReport, DashesAMonitorOfUnknownSizeAndSaysHowItIsDrawn) {
  CommitMonitor("Monitor 1", 0, 30);
  const std::string page = Make();
  EXPECT_THAT(page, HasSubstr("class=\"monitor unknown\""));
  EXPECT_THAT(page, HasSubstr(">size not known, drawn as<"));
  EXPECT_THAT(page, HasSubstr(">40 x 30 cm<"));
}

TEST_F(HtmlReport, TakesANullSizeForUnknown) {
  Commit("QRXSG_DesktopMonitor", {{"HorizontalImageSize", TCIMValue()}, {"VerticalImageSize", TCIMValue()}});
  EXPECT_THAT(Make(), HasSubstr("class=\"monitor unknown\""));
}

TEST_F(HtmlReport, DrawsNoMonitorOverAnother) {
  CommitMonitor("Monitor 1", 40, 30);
  CommitMonitor("Monitor 2", 30, 40);
  CommitMonitor("Monitor 3", 40, 40);
  CommitMonitor("Monitor 4", 0, 0);
  CommitMonitor("Monitor 5", 40, 30);
  const std::vector<TBox> boxes = FindMonitorBoxes(Make());
  ASSERT_EQ(boxes.size(), 10U);  // each has its screen and its label
  for (std::size_t first = 0; first < boxes.size(); ++first) {
    EXPECT_LE(boxes[first].right, 360);
    for (std::size_t second = 0; second < first; ++second) {
      EXPECT_FALSE(boxes[first].Overlaps(boxes[second])) << first << " and " << second;
    }
  }
}

TEST_F(HtmlReport, PlotsTheRatesOfAResolutionAtOnePoint) {
  CommitMode(640, 480, 75);
  CommitMode(640, 480, 60);
  CommitMode(640, 480, 75);
  const std::string page = Make();
  EXPECT_THAT(page, HasSubstr(">640 x 480: 60, 75 Hz<"));
  EXPECT_EQ(FindAll(page, "(class=\"mode\")").size(), 1U);
}

TEST_F(HtmlReport, PlotsNothingForAMonitorWithoutModes) {
  CommitMonitor("Monitor 1", 40, 30);
  CommitMonitor("Monitor 2", 40, 30);
  EXPECT_THAT(Make(), Not(HasSubstr("<h2>Modes</h2>")));
  CommitMonitor("Monitor 1", 40, 30);
  CommitMonitor("Monitor 2", 40, 30);
  CommitMode(640, 480, 60);
  answer.requests.clear();
  EXPECT_THAT(FindAll(Make(), "<h3>Modes of ([^<]+)</h3>"), ElementsAre("Monitor 1"));
}

TEST_F(HtmlReport, PlotsToTheScaleOfTheLargestMode) {
  CommitMode(800, 600, 60);
  CommitMode(400, 300, 60);
  EXPECT_THAT(FindAll(Make(), "<circle (cx=\"[0-9]+\" cy=\"[0-9]+\")"),
              ElementsAre("cx=\"160\" cy=\"22\"", "cx=\"100\" cy=\"112\""));
}

TEST_F(HtmlReport, MarksTheConfiguredResolutionAndExplainsTheMark) {
  CommitHead("a");
  CommitMode(640, 480, 60);
  CommitMode(800, 600, 60);
  const std::string page = Make();
  EXPECT_EQ(FindAll(page, "class=\"configured\"></rect>\n(<text x=\"180\")").size(), 1U);
  EXPECT_EQ(FindAll(page, "(class=\"mode\")").size(), 1U);
  EXPECT_THAT(page, HasSubstr(">the resolution that the configuration names<"));
}

TEST_F(HtmlReport, ExplainsNoMarkThatItDoesNotMake) {
  CommitMode(640, 480, 60);
  EXPECT_THAT(Make(), Not(HasSubstr("the resolution that the configuration names")));
}

TEST_F(HtmlReport, KeepsTheLabelsOfCrowdedModesApart) {
  for (unsigned int count = 0; count < 30; ++count) CommitMode(640, 480 + count, 60);
  CommitMode(640, 4000, 60);
  const std::vector<std::string> places = FindAll(Make(), "<text x=\"180\" y=\"([0-9]+)\"");
  ASSERT_EQ(places.size(), 31U);
  for (std::size_t index = 1; index < places.size(); ++index) {
    EXPECT_GE(std::stoi(places[index]) - std::stoi(places[index - 1]), 16);
  }
  EXPECT_LE(std::stoi(places.back()), 22 + 31 * 16);
}

TEST_F(HtmlReport, PlotsModesOfTheLargestNumbers) {
  CommitMode(4294967295U, 4294967295U, 1);
  EXPECT_THAT(Make(), HasSubstr(">4000000000<"));
}

TEST_F(HtmlReport, CutsALongNameInThePictureAndKeepsItWholeAsItsTitle) {
  const std::string name(40, 'x');
  Commit("QRXSG_VideoHead", {{"DeviceID", TCIMValue(name)}, {"HeadNumber", Byte(1)}});
  EXPECT_THAT(Make(), HasSubstr("<title>" + name + "</title>\n" + std::string(19, 'x') + "\u2026</text>"));
}

TEST_F(HtmlReport, TabulatesEveryPropertyWithItsKeyOrUnit) {
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}, {"Bandwidth", TCIMValue(140U)}});
  EXPECT_THAT(FindAll(Make(), "<th title=\"[^\"]+\">([^<]+<span class=\"unit\">[^<]+</span>\n</th>\n<td>[^<]*)</td>"),
              ElementsAre("DeviceID <span class=\"unit\">key</span>\n</th>\n<td>Monitor 1",
                          "Bandwidth <span class=\"unit\">MHz</span>\n</th>\n<td>140"));
}

TEST_F(HtmlReport, TabulatesModesTogether) {
  CommitMode(640, 480, 60);
  CommitMode(800, 600, 75);
  EXPECT_THAT(FindAll(Make(), "<td>([0-9]+)</td>"), ElementsAre("640", "480", "60", "800", "600", "75"));
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
  EXPECT_THAT(FindAll(page, "<h3>([^<]+)</h3>"), ElementsAre("Video controllers"));
}

TEST_F(HtmlReport, TellsWhereTheEdidOfEachMonitorCameFrom) {
  answer.edidOrigin.describe = [](std::size_t unit) { return "output " + std::to_string(unit); };
  CommitMonitor("Monitor 2", 40, 30);
  EXPECT_THAT(Make(), HasSubstr(">Monitor 2: EDID read from output 1</p>"));
}

TEST_F(HtmlReport, FoldsTheLogAtTheEnd) {
  answer.log = {{ILogger::kError, "broken"}};
  EXPECT_THAT(Make(), HasSubstr("<details><summary>Log (1)</summary>\n<table><tbody><tr class=\"error\">"
                                "<td>error</td>\n<td>broken</td>\n</tr>\n</tbody>\n</table>\n</details>\n</body>"));
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
  EXPECT_THAT(page, HasSubstr(">Monitor 1: Product code: 7, Serial in header: none; a&lt;b (unit 1) is of the same"));
  EXPECT_THAT(page, HasSubstr("<p>a&lt;b (unit 1) is not listed: its EDID repeats that of unit 0.</p>"));
}
