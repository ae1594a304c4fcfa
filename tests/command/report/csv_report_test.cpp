#include "command/report/csv_report.h"

#include <gtest/gtest.h>

namespace {

class CsvReport : public testing::Test {
 protected:
  static TMachineSummary MakeMachine(const std::string& name) {
    TMachineSummary machine;
    machine.machine = name;
    return machine;
  }

  static TMonitorSummary MakeMonitor(const std::string& id) {
    TMonitorSummary monitor;
    monitor.id = id;
    return monitor;
  }

  /// The cell of a machine of that name.
  static std::string MakeCell(const std::string& name) {
    const std::string rows = MakeCsvRows(MakeMachine(name));
    return rows.substr(0, rows.find(",,,,"));
  }
};

}  // namespace

TEST_F(CsvReport, BeginsWithTheNamesOfItsColumns) {
  EXPECT_EQ(MakeCsvHead(),
            "Machine,System,Collected,Controllers,Monitor,Connector,Not listed,Maker,Maker's name,Model,Product "
            "code,Serial number,Made,Year,Width mm,Height mm,Diagonal inches,Preferred width,Preferred height,"
            "Preferred refresh,Largest width,Largest height,Highest refresh,HDR,Variable refresh min,Variable refresh "
            "max,Input,Problems\r\n");
}

TEST_F(CsvReport, HasAllThatIsKnownOfAMonitorInItsRow) {
  TMachineSummary machine = MakeMachine("captures/ws-17");
  machine.systemName = "ws-17";
  machine.collected = "2026-11-21T21:30:00Z";
  machine.controllers = {"Card A", "Card B"};
  machine.problems = {"one", "two"};
  TMonitorSummary monitor = MakeMonitor("Monitor 1");
  monitor.connector = "card0-DP-1";
  monitor.facts.makerCode = "ACM";
  monitor.facts.makerName = "Acme Corporation";
  monitor.facts.model = "Acme A190";
  monitor.facts.productCode = "41199 (0xA0EF)";
  monitor.facts.serialNumber = "A190-1";
  monitor.facts.made = "week 14 of 2008";
  monitor.facts.year = "2008";
  monitor.facts.width = "380";
  monitor.facts.height = "300";
  monitor.facts.inches = "19.1";
  monitor.facts.preferredWidth = "1280";
  monitor.facts.preferredHeight = "1024";
  monitor.facts.preferredRefresh = "60.02";
  monitor.facts.largestWidth = "1600";
  monitor.facts.largestHeight = "1200";
  monitor.facts.highestRefresh = "75.025";
  monitor.facts.hasHdr = "no";
  monitor.facts.variableMin = "48";
  monitor.facts.variableMax = "75";
  monitor.facts.input = "analogue";
  machine.monitors = {monitor};
  EXPECT_EQ(
      MakeCsvRows(machine),
      "captures/ws-17,ws-17,2026-11-21T21:30:00Z,\"Card A; Card B\",Monitor 1,card0-DP-1,,ACM,Acme Corporation,"
      "Acme A190,41199 (0xA0EF),A190-1,week 14 of 2008,2008,380,300,19.1,1280,1024,60.02,1600,1200,75.025,no,48,75,"
      "analogue,\"one; two\"\r\n");
}

TEST_F(CsvReport, RepeatsTheMachineInTheRowOfEachMonitor) {
  TMachineSummary machine = MakeMachine("ws-17");
  machine.problems = {"a problem"};
  machine.monitors = {MakeMonitor("Monitor 1"), MakeMonitor("Monitor 2")};
  EXPECT_EQ(MakeCsvRows(machine),
            "ws-17,,,,Monitor 1,,,,,,,,,,,,,,,,,,,,,,,a problem\r\n"
            "ws-17,,,,Monitor 2,,,,,,,,,,,,,,,,,,,,,,,a problem\r\n");
}

TEST_F(CsvReport, HasARowForAMonitorThatThePlugInDoesNotList) {
  TMachineSummary machine = MakeMachine("ws-17");
  TMonitorSummary unlisted = MakeMonitor("");
  unlisted.connector = "card0-DP-2";
  unlisted.notListed = "its EDID repeats that of unit 0";
  machine.monitors = {MakeMonitor("Monitor 1"), unlisted};
  EXPECT_EQ(MakeCsvRows(machine),
            "ws-17,,,,Monitor 1,,,,,,,,,,,,,,,,,,,,,,,\r\n"
            "ws-17,,,,,card0-DP-2,its EDID repeats that of unit 0,,,,,,,,,,,,,,,,,,,,,\r\n");
}

TEST_F(CsvReport, SaysInTheOneRowOfAMachineWithoutMonitorsWhyItHasNone) {
  TMachineSummary machine = MakeMachine("ws-17");
  machine.noMonitors = "no EDID was found";
  EXPECT_EQ(MakeCsvRows(machine), "ws-17,,,,,,,,,,,,,,,,,,,,,,,,,,,no EDID was found\r\n");
}

TEST_F(CsvReport, HasOneRowForAMachineThatCouldNotBeAsked) {
  EXPECT_EQ(MakeCsvRows(SummarizeFailure("gone", "gone: is not there")),
            "gone,,,,,,,,,,,,,,,,,,,,,,,,,,,gone: is not there\r\n");
}

TEST_F(CsvReport, QuotesCellsWithCommasSemicolonsAndQuotes) {
  EXPECT_EQ(MakeCell("a b'c"), "a b'c");
  EXPECT_EQ(MakeCell("a,b"), "\"a,b\"");
  EXPECT_EQ(MakeCell("a;b"), "\"a;b\"");
  EXPECT_EQ(MakeCell("a\"b\""), "\"a\"\"b\"\"\"");
}

TEST_F(CsvReport, PutsAnApostropheBeforeWhatCouldBeginAFormula) {
  for (const std::string begin : {"=", "+", "-", "@", "\uFF1D", "\uFF0B", "\uFF0D", "\uFF20"}) {
    EXPECT_EQ(MakeCell(begin + "1"), "'" + begin + "1");
    EXPECT_EQ(MakeCell("  " + begin + "1"), "  '" + begin + "1");
    EXPECT_EQ(MakeCell("\"" + begin + "1"), "\"\"\"'" + begin + "1\"");
    EXPECT_EQ(MakeCell("b" + begin + "1"), "b" + begin + "1");
    EXPECT_EQ(MakeCell("a;" + begin + "1"), "\"a;'" + begin + "1\"");
    EXPECT_EQ(MakeCell("a;\"" + begin + "1"), "\"a;\"\"'" + begin + "1\"");
    EXPECT_EQ(MakeCell("a; " + begin + "1"), "\"a; " + begin + "1\"");
  }
}

TEST_F(CsvReport, PutsAnApostropheBeforeTextsThatASpreadsheetTakesForNumbersOrDates) {
  for (const std::string text : {"0012345", "00", "4711E10", "4711e+10", "1234567890123456", "12MAR20", "5-May-2020",
                                 "September 2020", "2021-01-05", "12:30", "10 am", "5%", "true", "1.50", "3/4", "1+"}) {
    EXPECT_EQ(MakeCell(text), "'" + text);
  }
  for (const std::string text :
       {"", "4711", "123456789012345", "15G309B150328", "CN0ABC", "E10A", "MARK", "12MARCHA"}) {
    EXPECT_EQ(MakeCell(text), text);
  }
}

TEST_F(CsvReport, LeavesNumbersInColumnsOfNumbers) {
  TMachineSummary machine = MakeMachine("ws-17");
  machine.monitors = {MakeMonitor("Monitor 1")};
  machine.monitors[0].facts.inches = "20.0";
  machine.monitors[0].facts.serialNumber = "20.0";
  EXPECT_EQ(MakeCsvRows(machine), "ws-17,,,,Monitor 1,,,,,,,'20.0,,,,,20.0,,,,,,,,,,,\r\n");
}

TEST_F(CsvReport, ShowsTabsAndLineEndsInsteadOfWritingThem) {
  EXPECT_EQ(MakeCell("\t=1"), "\\x09=1");
  EXPECT_EQ(MakeCell("\r=1\n"), "\\x0d=1\\x0a");
  EXPECT_EQ(MakeCell("a\xFF"), "a\uFFFD");
}
