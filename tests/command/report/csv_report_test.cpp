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
            "Machine,System,Collected,Controllers,Monitor,Connector,Maker,Maker's name,Model,Product code,Serial "
            "number,Made,Year,Size,Diagonal in inches,Preferred mode,Input,Problems\r\n");
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
  monitor.facts.size = "38 x 30 cm";
  monitor.facts.preferredMode = "1280 x 1024 at 60.020 Hz";
  monitor.facts.input = "analogue";
  monitor.diagonal = "19.1";
  machine.monitors = {monitor};
  EXPECT_EQ(MakeCsvRows(machine),
            "captures/ws-17,ws-17,2026-11-21T21:30:00Z,\"Card A; Card B\",Monitor 1,card0-DP-1,ACM,Acme Corporation,"
            "Acme A190,41199 (0xA0EF),A190-1,week 14 of 2008,2008,38 x 30 cm,19.1,1280 x 1024 at 60.020 Hz,analogue,"
            "\"one; two\"\r\n");
}

TEST_F(CsvReport, RepeatsTheMachineInTheRowOfEachMonitor) {
  TMachineSummary machine = MakeMachine("ws-17");
  machine.problems = {"a problem"};
  machine.monitors = {MakeMonitor("Monitor 1"), MakeMonitor("Monitor 2")};
  EXPECT_EQ(MakeCsvRows(machine),
            "ws-17,,,,Monitor 1,,,,,,,,,,,,,a problem\r\n"
            "ws-17,,,,Monitor 2,,,,,,,,,,,,,a problem\r\n");
}

TEST_F(CsvReport, SaysInTheOneRowOfAMachineWithoutMonitorsWhyItHasNone) {
  TMachineSummary machine = MakeMachine("ws-17");
  machine.noMonitors = "no EDID was found";
  EXPECT_EQ(MakeCsvRows(machine), "ws-17,,,,,,,,,,,,,,,,,no EDID was found\r\n");
}

TEST_F(CsvReport, HasOneRowForAMachineThatCouldNotBeAsked) {
  EXPECT_EQ(MakeCsvRows(SummarizeFailure("gone", "gone: is not there")), "gone,,,,,,,,,,,,,,,,,gone: is not there\r\n");
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
    EXPECT_EQ(MakeCell("1" + begin + "1"), "1" + begin + "1");
    EXPECT_EQ(MakeCell("a;" + begin + "1"), "\"a;'" + begin + "1\"");
    EXPECT_EQ(MakeCell("a;\"" + begin + "1"), "\"a;\"\"'" + begin + "1\"");
    EXPECT_EQ(MakeCell("a; " + begin + "1"), "\"a; " + begin + "1\"");
  }
}

TEST_F(CsvReport, ShowsTabsAndLineEndsInsteadOfWritingThem) {
  EXPECT_EQ(MakeCell("\t=1"), "\\x09=1");
  EXPECT_EQ(MakeCell("\r=1\n"), "\\x0d=1\\x0a");
  EXPECT_EQ(MakeCell("a\xFF"), "a\uFFFD");
}
