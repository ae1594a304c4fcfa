#include "command/report/html/fleet_page.h"

#include <gmock/gmock.h>

#include <map>
#include <regex>
#include <set>

#include "command/base/version.h"
#include "command/report/html/fleet_style.h"
#include "command/report/html/html_style.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

const std::string kPageTime = "2026-11-21T21:30:00Z";

class FleetPage : public testing::Test {
 protected:
  static TMachineSummary MakeMachine(const std::string& name) {
    TMachineSummary machine;
    machine.machine = name;
    return machine;
  }

  static TMonitorSummary MakeMonitor(const std::string& maker, const std::string& model, unsigned int year = 0,
                                     unsigned int week = 0) {
    TMonitorSummary monitor;
    monitor.facts.makerCode = maker;
    monitor.facts.model = model;
    monitor.facts.made = year == 0 ? "" : std::to_string(week) + "/" + std::to_string(year);
    monitor.year = year;
    monitor.week = week;
    return monitor;
  }

  void Add(const TMachineSummary& machine) { page.Take(TFleetPage::MakeLine(machine)); }

  void Add(const std::string& name, const std::vector<TMonitorSummary>& monitors) {
    TMachineSummary machine = MakeMachine(name);
    machine.monitors = monitors;
    Add(machine);
  }

  std::string Make(bool isWhole = true) const {
    std::string text;
    page.Write(kPageTime, isWhole, [&](const std::string& piece) {
      text += piece;
      return true;
    });
    return text;
  }

  /// The part of the page under the heading with that id.
  std::string MakeSection(const std::string& id) const {
    const std::string text = Make();
    const std::size_t begin = text.find("<h2 id=\"" + id + "\">");
    return text.substr(begin, text.find("<h2", begin + 1) - begin);
  }

  static std::vector<std::string> FindAll(const std::string& text, const std::string& pattern) {
    const std::regex regex(pattern);
    return {std::sregex_token_iterator(text.begin(), text.end(), regex, 1), std::sregex_token_iterator()};
  }

  /// The texts of a row's cells, in each row that has cells.
  static std::vector<std::string> GetRows(const std::string& section) {
    std::vector<std::string> rows;
    for (const std::string& row : FindAll(section, "<tr[^>]*>((?:.|\n)*?)</tr>")) {
      if (row.find("<td") == std::string::npos) continue;
      std::string text = std::regex_replace(row, std::regex("</t[dh]>\n(?=<)"), "|");
      text = std::regex_replace(text, std::regex("</li>\n(?=<li)"), " + ");
      rows.push_back(std::regex_replace(text, std::regex("<[^>]*>|\n"), ""));
    }
    return rows;
  }

  /// How many, by what.
  static std::map<std::string, std::string> GetCounts(const std::string& text) {
    std::map<std::string, std::string> counts;
    const std::regex regex("<li>(?:<a href=\"#[a-z-]+\">)?<b>([0-9]+)</b>\n ([^<]*)(?:</a>\n)?</li>");
    for (std::sregex_iterator found(text.begin(), text.end(), regex), end; found != end; ++found) {
      counts[(*found)[2]] = (*found)[1];
    }
    return counts;
  }

  TFleetPage page;
};

}  // namespace

TEST_F(FleetPage, SaysWhenAndByWhatItWasMade) {
  Add(MakeMachine("a"));
  const std::string made = std::string("Made 2026-11-21 21:30:00 UTC, by displayinfo ") + kCommandVersion;
  EXPECT_THAT(Make(), HasSubstr("<title>1 machine \u2013 " + made + "</title>"));
  EXPECT_THAT(Make(), HasSubstr("<h1>1 machine</h1>\n<p class=\"soft\">" + made + ".</p>"));
}

TEST_F(FleetPage, CountsMachinesAndMonitors) {
  Add("a", {MakeMonitor("ACM", "A", 2008), MakeMonitor("ACM", "A")});
  Add("b", {MakeMonitor("GLX", "A", 2008)});
  TMachineSummary broken = MakeMachine("c");
  broken.problems = {"a problem"};
  Add(broken);
  Add(SummarizeFailure("d", "is not there"));
  EXPECT_EQ(GetCounts(Make()), (std::map<std::string, std::string>{{"machines asked", "4"},
                                                                   {"answered", "3"},
                                                                   {"could not be asked", "1"},
                                                                   {"with problems", "2"},
                                                                   {"without a monitor", "1"},
                                                                   {"monitors", "3"},
                                                                   {"models of monitors", "2"},
                                                                   {"monitors of unknown year", "1"},
                                                                   {"doubtful serial numbers", "0"}}));
}

TEST_F(FleetPage, SaysWhichSerialNumbersSeveralMachinesHave) {
  const auto makeMonitor = [](const std::string& identity, const std::string& serial) {
    TMonitorSummary monitor = MakeMonitor("ACM", "A", 2008);
    monitor.identity = identity;
    monitor.facts.serialNumber = serial;
    return monitor;
  };
  // Another model may have the same number, and a machine may have two monitors that differ only in their connectors.
  Add("a", {makeMonitor("ACM-1-S1", "S1"), makeMonitor("ACM-1-S1", "S1"), makeMonitor("", "")});
  Add("b", {makeMonitor("ACM-2-S1", "S1"), makeMonitor("ACM-2-S1", "S1"), makeMonitor("", "")});
  Add("c", {makeMonitor("ACM-1-S1", "S1"), makeMonitor("", "")});
  EXPECT_EQ(GetCounts(Make())["doubtful serial numbers"], "1");
  EXPECT_THAT(GetRows(MakeSection("doubtful")), ElementsAre("ACM-1-S1|S1|3|a (2), c"));
  EXPECT_THAT(GetRows(MakeSection("machines"))[2], HasSubstr("ACM A, doubtful serial S1, 2008"));
  EXPECT_THAT(GetRows(MakeSection("machines"))[1], HasSubstr("ACM A, serial S1, 2008"));
}

TEST_F(FleetPage, SaysWhenNoSerialNumberIsDoubtful) {
  Add("a", {MakeMonitor("ACM", "A")});
  EXPECT_THAT(MakeSection("doubtful"), HasSubstr("<p>None: no serial number is that of several machines.</p>"));
}

TEST_F(FleetPage, HasARowForEachMachineInTheOrderOfTheList) {
  TMachineSummary machine = MakeMachine("b");
  machine.systemName = "b.example.org";
  machine.collected = kPageTime;
  machine.controllers = {"Card A", "Card B"};
  machine.monitors = {MakeMonitor("ACM", "Acme A190", 2008, 14), MakeMonitor("", "")};
  machine.monitors[0].facts.serialNumber = "A190-1";
  machine.monitors[1].facts.productCode = "7 (0x0007)";
  machine.problems = {"one", "two"};
  Add(machine);
  Add(MakeMachine("a"));
  Add(SummarizeFailure("c", "is not there"));
  EXPECT_THAT(GetRows(MakeSection("machines")),
              ElementsAre("b b.example.org, 2026-11-21 2 problems|Card A + Card B|"
                          "ACM Acme A190, serial A190-1, 2008 + product code 7 (0x0007), no serial, year not known",
                          "a|none|none", "c 1 problem|not known|not known"));
}

TEST_F(FleetPage, CallsTheMakerByItsLettersInTheLineOfAMonitor) {
  TMonitorSummary monitor = MakeMonitor("ACM", "A", 2008);
  monitor.facts.makerName = "Acme Corporation";
  Add("a", {monitor});
  EXPECT_THAT(GetRows(MakeSection("machines")), ElementsAre("a|none|ACM A, no serial, 2008"));
  EXPECT_THAT(GetRows(MakeSection("models")), ElementsAre("ACM (Acme Corporation)|A|1|a"));
}

TEST_F(FleetPage, LeavesOutASystemNameThatTheMachineHas) {
  TMachineSummary machine = MakeMachine("ws-17");
  machine.systemName = "ws-17";
  Add(machine);
  machine.machine = "ws-17.json";
  Add(machine);
  machine.machine = "ws-170";
  Add(machine);
  EXPECT_THAT(GetRows(MakeSection("machines")),
              ElementsAre("ws-17|none|none", "ws-17.json|none|none", "ws-170 ws-17|none|none"));
}

TEST_F(FleetPage, ListsTheMachinesWithProblems) {
  TMachineSummary troubled = MakeMachine("c");
  troubled.problems = {"a problem"};
  Add(MakeMachine("a"));
  Add(troubled);
  Add(SummarizeFailure("b", "is not there"));
  const std::string section = MakeSection("problems");
  EXPECT_THAT(GetRows(section), ElementsAre("b|is not there", "c|a problem"));
  EXPECT_THAT(FindAll(section, "colspan=\"2\">([^<]*)<"),
              ElementsAre("Could not be asked: 1 machine", "Answered: 1 machine"));
}

TEST_F(FleetPage, ListsTheMachinesWithoutAMonitor) {
  Add(MakeMachine("a"));
  Add("b", {MakeMonitor("ACM", "A")});
  Add(MakeMachine("c"));
  Add(SummarizeFailure("d", "is not there"));
  EXPECT_THAT(FindAll(MakeSection("without"), "<a href=\"#machine-[0-9]\">([^<]*)<"), ElementsAre("a", "c"));
}

TEST_F(FleetPage, LinksEachCountToItsMachines) {
  Add("a", {MakeMonitor("ACM", "A")});
  Add("b", {});
  Add(SummarizeFailure("c", "is not there"));
  EXPECT_THAT(
      FindAll(Make(), "<li><a href=\"#([a-z-]+)\"><b>"),
      ElementsAre("machines", "machines", "unasked", "problems", "without", "all-monitors", "all-models", "undated"));
  EXPECT_THAT(Make(), HasSubstr("<tbody id=\"unasked\">"));
  EXPECT_THAT(Make(), HasSubstr("<tbody id=\"undated\">"));
  EXPECT_THAT(Make(), HasSubstr("<div id=\"all-monitors\"><table>"));
  EXPECT_THAT(Make(), HasSubstr("<div id=\"all-models\"><table>"));
}

TEST_F(FleetPage, LinksNoCountOfZero) {
  EXPECT_THAT(FindAll(Make(), "<li><a href=\"#([a-z-]+)\"><b>"), testing::IsEmpty());
}

TEST_F(FleetPage, ListsTheOldestMonitorsFirstAndUnknownYearsLast) {
  Add("a", {MakeMonitor("ACM", "New", 2020, 1), MakeMonitor("ACM", "Undated")});
  Add("b", {MakeMonitor("ACM", "Late", 2008, 40), MakeMonitor("ACM", "Early", 2008, 9)});
  Add("c", {MakeMonitor("ACM", "Old", 1998, 50), MakeMonitor("GLX", "Early", 2008, 9)});
  const std::string section = MakeSection("ages");
  EXPECT_THAT(FindAll(section, "colspan=\"5\">([^<]*)<"),
              ElementsAre("1998: 1 monitor", "2008: 3 monitors", "2020: 1 monitor", "Year not known: 1 monitor"));
  EXPECT_THAT(GetRows(section), ElementsAre("50/1998|ACM|Old||c", "9/2008|ACM|Early||b", "9/2008|GLX|Early||c",
                                            "40/2008|ACM|Late||b", "1/2020|ACM|New||a", "|ACM|Undated||a"));
}

TEST_F(FleetPage, ListsTheMostFrequentModelsFirstWithTheirMachines) {
  Add("a", {MakeMonitor("ACM", "Rare")});
  Add("b", {MakeMonitor("GLX", "Wide"), MakeMonitor("GLX", "Wide")});
  Add("c", {MakeMonitor("GLX", "Wide"), MakeMonitor("ACM", "Wide")});
  EXPECT_THAT(GetRows(MakeSection("models")), ElementsAre("GLX|Wide|3|b (2), c", "ACM|Rare|1|a", "ACM|Wide|1|c"));
  EXPECT_THAT(MakeSection("models"), HasSubstr("b</a> (2), <a href="));
}

TEST_F(FleetPage, HasAPlaceForEachLink) {
  for (const char* const name : {"a", "b"}) Add(name, {MakeMonitor("ACM", "A", 2008)});
  Add(SummarizeFailure("c", "is not there"));
  const std::string text = Make();
  const std::vector<std::string> ids = FindAll(text, " id=\"([^\"]*)\"");
  const std::set<std::string> places(ids.begin(), ids.end());
  EXPECT_EQ(places.size(), ids.size());
  const std::vector<std::string> links = FindAll(text, " href=\"#([^\"]*)\"");
  EXPECT_EQ(links.size(), 6U + 6U + 1U + 1U + 2U + 2U + 2U);
  for (const std::string& link : links) EXPECT_EQ(places.count(link), 1U) << link;
  EXPECT_THAT(MakeSection("problems"), HasSubstr("<a href=\"#machine-3\">c</a>"));
  EXPECT_THAT(MakeSection("machines"), HasSubstr("<tr id=\"machine-3\"><th scope=\"row\">c"));
}

TEST_F(FleetPage, SaysOnceWhichFolderAllMachinesAreIn) {
  for (const char* const name : {"/captures/site-a/ws-1", "/captures/site-b/ws-2.json", "/captures/site-b/"}) {
    Add(MakeMachine(name));
  }
  EXPECT_THAT(Make(), HasSubstr("All of them are in /captures/<"));
  EXPECT_THAT(GetRows(MakeSection("machines")),
              ElementsAre("site-a/ws-1|none|none", "site-b/ws-2.json|none|none", "site-b/|none|none"));
}

TEST_F(FleetPage, NamesNoFolderThatTheMachinesDoNotHaveInCommon) {
  for (const char* const name : {"captures/ws-1", "ws-2"}) Add(MakeMachine(name));
  EXPECT_THAT(Make(), Not(HasSubstr("All of them")));
  EXPECT_THAT(GetRows(MakeSection("machines")), ElementsAre("captures/ws-1|none|none", "ws-2|none|none"));
}

TEST_F(FleetPage, ShortensLongNamesAndKeepsTheWholeAsATitle) {
  const std::string name(121, 'x');
  Add(name, {MakeMonitor("ACM", "A")});
  const std::string whole = "title=\"" + name + "\">";
  EXPECT_THAT(MakeSection("machines"), HasSubstr(whole + std::string(119, 'x') + "\u2026<"));
  EXPECT_THAT(MakeSection("models"), HasSubstr(whole + "\u2026" + std::string(39, 'x') + "<"));
}

TEST_F(FleetPage, KeepsTheEndsOfLongPathsInLinks) {
  const std::string folder = "captures/of/a/building/with/a/long/name/";
  Add(folder + "\u00E9-1", {MakeMonitor("ACM", "A")});
  Add("ws-2", {});
  EXPECT_THAT(MakeSection("models"), HasSubstr(">\u2026ures/of/a/building/with/a/long/name/\u00E9-1<"));
}

TEST_F(FleetPage, BreaksLongNamesOfMachinesWhereverTheyDoNotFit) {
  EXPECT_THAT(kFleetStyle, HasSubstr("tbody th{overflow-wrap:anywhere;min-width:7rem}"));
}

TEST_F(FleetPage, HasAStyleForEachOfItsClassesAndNoStyleForAnother) {
  TMachineSummary machine = MakeMachine("a");
  machine.problems = {"one", "two"};
  machine.monitors = {MakeMonitor("ACM", "A")};
  Add(machine);
  std::set<std::string> used;
  for (const std::string& name : FindAll(Make(false), " class=\"([^\"]+)\"")) used.insert(name);
  const std::vector<std::string> styled = FindAll(kFleetStyle, "\\.([a-z]+)");
  const std::vector<std::string> common = FindAll(kHtmlStyle, "\\.([a-z]+)");
  std::set<std::string> unstyled = used;
  for (const std::string& name : styled) {
    EXPECT_EQ(used.count(name), 1U) << name;
    unstyled.erase(name);
  }
  for (const std::string& name : common) unstyled.erase(name);
  EXPECT_THAT(unstyled, testing::IsEmpty());
}

TEST_F(FleetPage, EscapesMarkup) {
  TMachineSummary machine = MakeMachine("<script>");
  machine.controllers = {"<b>", "\"&'"};
  machine.problems = {"</td>"};
  machine.monitors = {MakeMonitor("<i>", "</tr>")};
  Add(machine);
  EXPECT_THAT(
      GetRows(MakeSection("machines")),
      ElementsAre("&lt;script&gt; 1 problem|&lt;b&gt; + &quot;&amp;&#39;|&lt;i&gt; &lt;/tr&gt;, no serial, year not "
                  "known"));
  EXPECT_THAT(GetRows(MakeSection("models")), ElementsAre("&lt;i&gt;|&lt;/tr&gt;|1|&lt;script&gt;"));
}

TEST_F(FleetPage, SaysWhatIsEmpty) {
  EXPECT_THAT(Make(), HasSubstr("<h1>0 machines</h1>"));
  EXPECT_THAT(MakeSection("problems"), HasSubstr("<p>None.</p>"));
  EXPECT_THAT(MakeSection("machines"), HasSubstr("<p>None: the list names no machine.</p>"));
  EXPECT_THAT(MakeSection("ages"), HasSubstr("<p>None: no machine has a monitor.</p>"));
  EXPECT_THAT(MakeSection("models"), HasSubstr("<p>None: no machine has a monitor.</p>"));
}

TEST_F(FleetPage, SaysThatMachinesAreMissingAfterARunThatWasStopped) {
  const std::string stopped = "The run was stopped";
  EXPECT_THAT(Make(false), HasSubstr(stopped));
  EXPECT_THAT(Make(true), Not(HasSubstr(stopped)));
}

TEST_F(FleetPage, TakesSeveralLinesAtOnce) {
  page.Take(TFleetPage::MakeLine(MakeMachine("a")) + TFleetPage::MakeLine(MakeMachine("b")));
  page.Take("");
  EXPECT_THAT(GetRows(MakeSection("machines")), ElementsAre("a|none|none", "b|none|none"));
}

TEST_F(FleetPage, IsWrittenInPiecesUntilNobodyReadsOn) {
  for (int count = 0; count < 2000; ++count) Add(MakeMachine("machine"));
  std::size_t largest = 0;
  std::size_t pieces = 0;
  page.Write(kPageTime, true, [&](const std::string& piece) {
    largest = std::max(largest, piece.size());
    return ++pieces < 3;
  });
  EXPECT_EQ(pieces, 3U);
  EXPECT_LT(largest, 100000U);
}

TEST_F(FleetPage, NamesItsColumnsForReadersOfEveryKind) {
  TMachineSummary machine = MakeMachine("a");
  machine.problems = {"a problem"};
  machine.monitors = {MakeMonitor("ACM", "A")};
  Add(machine);
  const std::string text = Make();
  EXPECT_EQ(FindAll(text, "(<table>)").size(), 5U);
  EXPECT_EQ(FindAll(text, "<table><caption>([^<]+)</caption>\n<thead><tr><th scope=\"col\">").size(), 5U);
  EXPECT_THAT(FindAll(text, "<h([0-9])"), ElementsAre("1", "2", "2", "2", "2", "2", "2"));
}
