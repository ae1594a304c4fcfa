// Where the walk for monitors and the walk for resolutions end, and where they differ.
#include <gmock/gmock.h>

#include "plugin/monitor/monitor_info.h"
#include "tests/support/edid_builder.h"
#include "tests/support/lrmi_double.h"
#include "tests/support/test_host.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const char* const kNotAnEdid = "EDID structure for monitor is not valid or not supported";

std::vector<std::uint8_t> Valid(const std::string& name) {
  return TEdidBuilder().Name(0, name).Established(1, 0).Build();
}
std::vector<std::uint8_t> Invalid(const std::string& name) {
  return TEdidBuilder().Name(0, name).Established(1, 0).Version(2, 0).Build();
}

class UnitWalk : public testing::Test {
 protected:
  TTestHost host;
  TLrmiDouble lrmi;

  /// The identifiers of the instances that a walk gives.
  std::vector<std::string> Walk(const std::string& className, const char* key) {
    TMonitorInfo monitor(host.GetClass(className), TTestHost::Provider());
    monitor.GetCIMInstances(className);
    std::vector<std::string> ids;
    for (const auto& instance : host.store->TakeCommits()) ids.push_back(instance->GetProperties().at(key));
    return ids;
  }
  std::vector<std::string> WalkMonitors() { return Walk("QRXSG_DesktopMonitor", "DeviceID"); }
  std::vector<std::string> WalkResolutions() { return Walk("QRXSG_MonitorResolution", "SettingID"); }
};

}  // namespace

TEST_F(UnitWalk, GivesTheSameMonitorTheSameNumberInBoth) {
  lrmi.edids = {{0, Valid("A")}, {1, Valid("B")}};
  EXPECT_THAT(WalkMonitors(), ElementsAre("Monitor 1", "Monitor 2"));
  EXPECT_THAT(WalkResolutions(), ElementsAre("Monitor 1\\ Setting 1", "Monitor 2\\ Setting 1"));
}

TEST_F(UnitWalk, EndsBothAtARepeatedEdid) {
  lrmi.edids = {{0, Valid("A")}, {1, Valid("A")}, {2, Valid("B")}};
  EXPECT_THAT(WalkMonitors(), ElementsAre("Monitor 1"));
  EXPECT_THAT(WalkResolutions(), ElementsAre("Monitor 1\\ Setting 1"));
}

TEST_F(UnitWalk, EndsBothAtAUnitWithoutAnEdid) {
  lrmi.edids = {{0, Valid("A")}, {2, Valid("B")}};
  EXPECT_THAT(WalkMonitors(), ElementsAre("Monitor 1"));
  EXPECT_THAT(WalkResolutions(), ElementsAre("Monitor 1\\ Setting 1"));
}

TEST_F(UnitWalk, EndsForMonitorsAtAnEdidThatDoesNotDecodeAndGoesOnForResolutions) {
  lrmi.edids = {{0, Valid("A")}, {1, Invalid("B")}, {2, Valid("C")}};
  EXPECT_THAT(WalkMonitors(), ElementsAre("Monitor 1"));
  EXPECT_THAT(WalkResolutions(), ElementsAre("Monitor 1\\ Setting 1", "Monitor 3\\ Setting 1"));
  EXPECT_THAT(host.GetStatusMessages(), ElementsAre(kNotAnEdid, kNotAnEdid));
}

TEST_F(UnitWalk, RemembersForResolutionsEvenAnEdidThatDidNotDecode) {
  lrmi.edids = {{0, Invalid("A")}, {1, Invalid("A")}, {2, Valid("B")}};
  EXPECT_THAT(WalkResolutions(), IsEmpty());
  EXPECT_THAT(host.GetStatusMessages(), ElementsAre(kNotAnEdid));
}

TEST_F(UnitWalk, EndsForResolutionsAtTheSecondUnitWhenRealModeCannotBeSetUp) {
  lrmi.initWorks = false;
  EXPECT_THAT(WalkResolutions(), IsEmpty());
  EXPECT_THAT(host.GetStatusMessages(), ElementsAre("Lib not initialized. Cannot get monitor info.", kNotAnEdid,
                                                    "Lib not initialized. Cannot get monitor info."));
  EXPECT_THAT(lrmi.calls, ElementsAre("init", "init"));
}

TEST_F(UnitWalk, EndsForMonitorsAtTheFirstUnitWhenRealModeCannotBeSetUp) {
  lrmi.initWorks = false;
  EXPECT_THAT(WalkMonitors(), IsEmpty());
  EXPECT_THAT(lrmi.calls, ElementsAre("init"));
}
