#include "command/report/machine_summary.h"

#include <gmock/gmock.h>

#include "tests/support/answer_test.h"
#include "tests/support/edid_builder.h"

using NQRXZELT20::TCIMValue;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class MachineSummary : public TAnswerTest {
 protected:
  /// Adds an output that the plug-in reports, with that EDID.
  void AddMonitor(const std::vector<std::uint8_t>& edid) {
    const auto unit = static_cast<unsigned int>(answer.outputs.size());
    answer.outputs.push_back({unit, "", "Monitor " + std::to_string(unit + 1), "", ReadEdidFacts(edid), edid});
  }

  void CommitController(const std::string& id, const TValues& more = {}) {
    TValues values = {{"DeviceID", TCIMValue(id)}, {"DisplayId", TCIMValue(id)}};
    values.insert(more.begin(), more.end());
    Commit("QRXSG_VideoController", values);
  }

  TMachineSummary Make(const std::string& machine = "ws-17") const { return Summarize(machine, answer, TMakerNames()); }
};

}  // namespace

TEST_F(MachineSummary, TellsWhoseItIs) {
  answer.identity = {"ws-17.example.org", "2026-11-21T21:30:00Z", "1.0"};
  const TMachineSummary summary = Make("captures/ws-17");
  EXPECT_EQ(summary.machine, "captures/ws-17");
  EXPECT_EQ(summary.systemName, "ws-17.example.org");
  EXPECT_EQ(summary.collected, "2026-11-21T21:30:00Z");
  EXPECT_TRUE(summary.hasAnswered);
}

TEST_F(MachineSummary, NamesTheControllersByTheirNamesElseByTheirIds) {
  CommitController("Card1", {{"Name", TCIMValue("Example Graphics")}});
  CommitController("Card2");
  EndRequest({"QRXSG_VideoController"});
  EXPECT_THAT(Make().controllers, ElementsAre("Example Graphics", "Card2"));
}

TEST_F(MachineSummary, HasWhatIsKnownOfEachMonitor) {
  AddMonitor(TEdidBuilder().Manufacturer("ACM").Made(14, 2008).ImageSize(38, 30).Name(0, "Acme A190").Build());
  answer.outputs[0].connector = "card0-DP-1";
  const TMachineSummary summary = Make();
  ASSERT_THAT(summary.monitors, SizeIs(1));
  const TMonitorSummary& monitor = summary.monitors[0];
  EXPECT_EQ(monitor.id, "Monitor 1");
  EXPECT_EQ(monitor.connector, "card0-DP-1");
  EXPECT_EQ(monitor.facts.makerCode, "ACM");
  EXPECT_EQ(monitor.facts.model, "Acme A190");
  EXPECT_EQ(monitor.facts.inches, "19.1");
  EXPECT_EQ(monitor.year, 2008U);
  EXPECT_EQ(monitor.week, 14U);
  EXPECT_THAT(summary.problems, IsEmpty());
}

TEST_F(MachineSummary, HasWhatThePlugInTellsOfAMonitorWhereItsEdidTellsNothing) {
  AddMonitor(TEdidBuilder().Byte(edid::kManufacturer, 0x7F).Build());
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}, {"MonitorManufacturer", TCIMValue("__M")}});
  EndRequest({"QRXSG_DesktopMonitor"});
  EXPECT_EQ(Make().monitors.at(0).facts.makerCode, "__M");
}

TEST_F(MachineSummary, KnowsNoYearThatTheEdidDoesNotTell) {
  AddMonitor(TEdidBuilder().Build());
  EXPECT_EQ(Make().monitors.at(0).year, 0U);
}

TEST_F(MachineSummary, IdentifiesMonitorsThatHaveASerialNumberWhereverTheyHang) {
  AddMonitor(TEdidBuilder().Serial(0, "A").Build());
  AddMonitor(TEdidBuilder().Serial(0, "A").Build());
  AddMonitor(TEdidBuilder().Build());
  const std::vector<TMonitorSummary> monitors = Make().monitors;
  EXPECT_THAT(monitors[0].identity, EndsWith("-A"));
  EXPECT_EQ(monitors[1].identity, monitors[0].identity);
  EXPECT_EQ(monitors[2].identity, "");
}

TEST_F(MachineSummary, HasTheMonitorsThatStandForNoOutput) {
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 9")}, {"Name", TCIMValue("Other")}});
  EndRequest({"QRXSG_DesktopMonitor"});
  ASSERT_THAT(Make().monitors, SizeIs(1));
  EXPECT_EQ(Make().monitors[0].id, "Monitor 9");
  EXPECT_EQ(Make().monitors[0].facts.model, "Other");
}

TEST_F(MachineSummary, HasAsAProblemAnOutputThatIsNotReported) {
  answer.outputs.push_back({0, "card0-DP-1", std::nullopt, "its EDID is missing", std::nullopt, {}});
  ASSERT_THAT(Make().monitors, SizeIs(1));
  EXPECT_EQ(Make().monitors[0].id, "");
  EXPECT_EQ(Make().monitors[0].connector, "card0-DP-1");
  EXPECT_EQ(Make().monitors[0].notListed, "its EDID is missing");
  EXPECT_THAT(Make().problems, ElementsAre("card0-DP-1 (unit 0) is not listed: its EDID is missing"));
}

TEST_F(MachineSummary, SaysWhyThereIsNoMonitorWhereNoProblemDoes) {
  answer.reasons.noMonitors = "no EDID\n";
  EXPECT_EQ(Make().noMonitors, "no EDID\\x0a");
  EXPECT_THAT(Make().problems, IsEmpty());
  answer.outputs.push_back({0, "", std::nullopt, "its EDID is missing", std::nullopt, {}});
  EXPECT_EQ(Make().noMonitors, "");
  answer.outputs.clear();
  AddMonitor(TEdidBuilder().Build());
  EXPECT_EQ(Make().noMonitors, "");
}

TEST_F(MachineSummary, HasAsAProblemAWrongChecksum) {
  std::vector<std::uint8_t> edid = TEdidBuilder().Build();
  ++edid.back();
  AddMonitor(edid);
  EXPECT_THAT(Make().problems, ElementsAre("Monitor 1: Block 0 has a wrong checksum"));
}

TEST_F(MachineSummary, HasAsAProblemMonitorsThatOnlyTheirConnectorsTellApart) {
  AddMonitor(TEdidBuilder().Serial(0, "A").Build());
  AddMonitor(TEdidBuilder().Build());
  AddMonitor(TEdidBuilder().Serial(0, "A").Build());
  AddMonitor(TEdidBuilder().Serial(0, "A").Extension({0x02}).Build());
  answer.outputs[2].connector = "card0-DP-2";
  EXPECT_THAT(Make().problems, ElementsAre("unit 0 and card0-DP-2 (unit 2) have equal EDIDs: only the connectors tell "
                                           "the monitors apart"));
}

TEST_F(MachineSummary, SaysHowManyTextsItLeavesOut) {
  for (int count = 1; count <= 20; ++count) CommitController("Card" + std::to_string(count));
  EndRequest({"QRXSG_VideoController"});
  const std::vector<std::string> controllers = Make().controllers;
  ASSERT_THAT(controllers, SizeIs(16));
  EXPECT_EQ(controllers[14], "Card15");
  EXPECT_EQ(controllers[15], "and 5 more");
}

TEST_F(MachineSummary, LeavesSixteenTextsAsTheyAre) {
  for (int count = 1; count <= 16; ++count) CommitController("Card" + std::to_string(count));
  EndRequest({"QRXSG_VideoController"});
  EXPECT_EQ(Make().controllers.back(), "Card16");
}

TEST_F(MachineSummary, CutsTextsOffAfterTwoHundredCharacters) {
  answer.identity.systemName = std::string(201, 's');
  AddMonitor(TEdidBuilder().Build());
  answer.outputs[0].connector = std::string(201, 'o');
  CommitController(std::string(200, 'c'));
  EndRequest({"QRXSG_VideoController"});
  EXPECT_EQ(Make().systemName, std::string(199, 's') + "\u2026");
  EXPECT_EQ(Make().monitors.at(0).connector, std::string(199, 'o') + "\u2026");
  EXPECT_THAT(Make().controllers, ElementsAre(std::string(200, 'c')));
}

TEST_F(MachineSummary, IsPrintable) {
  answer.identity.systemName = "a\x1B[2J";
  CommitController("b\n");
  EndRequest({"QRXSG_VideoController"});
  const TMachineSummary summary = Make("c\xFF");
  EXPECT_EQ(summary.systemName, "a\\x1b[2J");
  EXPECT_THAT(summary.controllers, ElementsAre("b\\x0a"));
  EXPECT_EQ(summary.machine, "c\uFFFD");
  const TMachineSummary failure = SummarizeFailure("c\n", "d\n");
  EXPECT_EQ(failure.machine, "c\\x0a");
  EXPECT_THAT(failure.problems, ElementsAre("d\\x0a"));
}

TEST_F(MachineSummary, SaysWhyAMachineCouldNotBeAsked) {
  const TMachineSummary summary = SummarizeFailure("gone", "gone: is not there");
  EXPECT_EQ(summary.machine, "gone");
  EXPECT_FALSE(summary.hasAnswered);
  EXPECT_THAT(summary.problems, ElementsAre("gone: is not there"));
}
