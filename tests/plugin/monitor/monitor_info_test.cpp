#include "plugin/monitor/monitor_info.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "host/exception.h"
#include "tests/support/edid_builder.h"
#include "tests/support/lrmi_double.h"
#include "tests/support/mock_cim.h"
#include "tests/support/properties.h"
#include "tests/support/test_host.h"

using NQRXZELT20::ICIMClass;
using NQRXZELT20::ICIMInstance;
using NQRXZELT20::TCIMQueryContext;
using NQRXZELT20::TZELTException;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::NiceMock;
using testing::Return;
using testing::ReturnRef;
using testing::Throw;

namespace {

const std::string kMonitor = "QRXSG_DesktopMonitor";

class MonitorInfo : public testing::Test {
 protected:
  TTestHost host;
  TLrmiDouble lrmi;
  TMonitorInfo monitor{host.GetClass(kMonitor), TTestHost::Provider()};

  std::ptrdiff_t CountCalls(const std::string& call) const {
    return std::count(lrmi.calls.begin(), lrmi.calls.end(), call);
  }
};

/// The walk for monitors, and the properties that are added to what an EDID gives.
class DesktopMonitors : public MonitorInfo {
 protected:
  void Collect() { monitor.GetCIMInstances(kMonitor); }

  /// Device id and name of each committed monitor.
  std::vector<std::string> CollectNames() {
    Collect();
    std::vector<std::string> names;
    for (const auto& instance : host.store->TakeCommits()) {
      TDescribed described = Describe(*instance);
      names.push_back(described["DeviceID"].substr(7) + " " + described["Name"]);
    }
    return names;
  }
};

TEdidBuilder Named(const std::string& name) { return TEdidBuilder().Name(0, name); }

const char* const kNotAnEdid = "EDID structure for monitor is not valid or not supported";

std::vector<std::uint8_t> Valid(const std::string& name) {
  return TEdidBuilder().Name(0, name).Established(1, 0).Build();
}
std::vector<std::uint8_t> Invalid(const std::string& name) {
  return TEdidBuilder().Name(0, name).Established(1, 0).Version(2, 0).Build();
}

/// Tests where the walks for monitors and for resolutions end, and where they differ.
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

TEST_F(MonitorInfo, BeginsWithoutADeviceIdOrProperties) {
  EXPECT_EQ(monitor.GetDeviceId(), "");
  EXPECT_THAT(monitor.GetProperties(), IsEmpty());
}

TEST_F(MonitorInfo, RemembersTheDeviceId) {
  monitor.SetDeviceId("Monitor 3");
  EXPECT_EQ(monitor.GetDeviceId(), "Monitor 3");
}

TEST_F(MonitorInfo, MakesArraysOfStringsAndWords) {
  EXPECT_EQ(Describe(monitor.GetStrCimValue({"a", "b"})), "string[] a,b");
  EXPECT_EQ(Describe(monitor.GetStrCimValue({})), "string[] ");
  EXPECT_EQ(Describe(monitor.GetWordCimValue({1, 65535})), "uint16[] 1,65535");
  EXPECT_EQ(Describe(monitor.GetWordCimValue({})), "uint16[] ");
}

TEST_F(MonitorInfo, ReturnsTheCommittedInstances) {
  lrmi.edids = {{0, TEdidBuilder().Name(0, "A").Build()}, {1, TEdidBuilder().Name(0, "B").Build()}};
  const std::vector<ICIMInstance*> instances = static_cast<TDisplay&>(monitor).GetCIMInstances();
  const auto commits = host.store->TakeCommits();
  ASSERT_EQ(commits.size(), 2U);
  EXPECT_THAT(instances, ElementsAre(commits[0].get(), commits[1].get()));
}

TEST_F(MonitorInfo, MakesNoBiosCallForAnUnknownClass) {
  EXPECT_THAT(monitor.GetCIMInstances("qrxsg_desktopmonitor"), IsEmpty());
  EXPECT_THAT(lrmi.calls, IsEmpty());
  EXPECT_THAT(host.log.GetEntries(), IsEmpty());
}

TEST_F(MonitorInfo, EndsRealModeOnceWhenItWasSetUp) {
  monitor.GetCIMInstances(kMonitor);
  EXPECT_EQ(lrmi.calls.back(), "deInit");
  EXPECT_EQ(CountCalls("deInit"), 1);
}

TEST_F(MonitorInfo, DoesNotEndRealModeThatWasNotSetUp) {
  lrmi.initWorks = false;
  monitor.GetCIMInstances(kMonitor);
  EXPECT_EQ(CountCalls("init"), 1);
  EXPECT_EQ(CountCalls("deInit"), 0);
}

TEST_F(MonitorInfo, DoesNotEndRealModeOnASystemWhoseBiosIsNotCalled) {
  host.runningType = 1;
  monitor.GetCIMInstances(kMonitor);
  EXPECT_THAT(lrmi.calls, IsEmpty());
}

TEST_F(MonitorInfo, SetsRealModeUpAnewForEachRequest) {
  monitor.GetCIMInstances(kMonitor);
  monitor.GetCIMInstances(kMonitor);
  for (const char* call : {"init", "ioperm 0 1024 1", "iopl 3", "deInit"}) EXPECT_EQ(CountCalls(call), 2) << call;
}

TEST_F(MonitorInfo, EndsRealModeEvenWhenTheRequestEndsInAnException) {
  lrmi.edids[0] = TEdidBuilder().Build();
  host.onCall = [](const std::string& call) {
    if (call == "GetSystemName") throw std::runtime_error("not the host's own kind");
  };
  EXPECT_THROW(monitor.GetCIMInstances(kMonitor), std::runtime_error);
  EXPECT_EQ(CountCalls("deInit"), 1);
}

TEST_F(MonitorInfo, LogsAHostFailureForOneInstanceAndGoesOnWithTheNext) {
  lrmi.edids = {{0, TEdidBuilder().Name(0, "A").Build()}, {1, TEdidBuilder().Name(0, "B").Build()}};
  auto instance = boost::make_shared<NiceMock<TMockInstance>>();
  auto cimClass = boost::make_shared<NiceMock<TMockClass>>();
  ON_CALL(*cimClass, GetName(_)).WillByDefault(ReturnRef(kMonitor));
  EXPECT_CALL(*cimClass, CreateInstance(_)).WillOnce(Throw(TZELTException("no room"))).WillOnce(Return(instance));
  EXPECT_CALL(*instance, Commit(_));

  TMonitorInfo other(cimClass, TTestHost::Provider());
  EXPECT_THAT(other.GetCIMInstances(kMonitor), ElementsAre(instance.get()));
  EXPECT_THAT(host.GetStatusMessages(),
              ElementsAre("Monitor encountered an error\t\t\t\t\t\tgenerating CIM instances. Error Code: no room"));
}

TEST_F(MonitorInfo, LetsOtherExceptionsOfAnInstanceThrough) {
  lrmi.edids[0] = TEdidBuilder().Build();
  auto cimClass = boost::make_shared<NiceMock<TMockClass>>();
  EXPECT_CALL(*cimClass, CreateInstance(_)).WillOnce(Throw(std::runtime_error("not the host's own kind")));
  TMonitorInfo other(cimClass, TTestHost::Provider());
  EXPECT_THROW(other.GetCIMInstances(kMonitor), std::runtime_error);
}

TEST_F(MonitorInfo, IsSilentWithoutAProvider) {
  TMonitorInfo silent(host.GetClass(kMonitor), nullptr);
  silent.GetCIMInstances(kMonitor);
  EXPECT_THAT(host.log.GetEntries(), IsEmpty());
}

TEST_F(DesktopMonitors, GiveOneInstanceForOneUnit) {
  lrmi.edids[0] = Named("A").Build();
  Collect();
  const auto commits = host.store->TakeCommits();
  ASSERT_EQ(commits.size(), 1U);
  EXPECT_EQ(Describe(*commits[0]), (TDescribed{
                                       {"CreationClassName", "string QRXSG_DesktopMonitor"},
                                       {"DPMSActiveOff", "boolean false"},
                                       {"DPMSStandby", "boolean false"},
                                       {"DPMSSuspend", "boolean false"},
                                       {"Description", "string A"},
                                       {"DeviceID", "string Monitor 1"},
                                       {"EDIDVersion", "real32 1.3"},
                                       {"Name", "string A"},
                                       {"OperationalStatus", "uint16[] 2"},
                                       {"StatusDescriptions", "string[] OK"},
                                       {"SystemCreationClassName", "string CIM_UnitaryComputerSystem"},
                                       {"SystemName", "string test-system"},
                                   }));
}

TEST_F(DesktopMonitors, AreNumberedInUnitOrder) {
  lrmi.edids = {{0, Named("A").Build()}, {1, Named("B").Build()}, {2, Named("C").Build()}};
  EXPECT_THAT(CollectNames(), ElementsAre("Monitor 1 string A", "Monitor 2 string B", "Monitor 3 string C"));
}

TEST_F(DesktopMonitors, EndAtTheFirstUnitWithoutAnEdid) {
  lrmi.edids = {{0, Named("A").Build()}, {2, Named("C").Build()}};
  EXPECT_THAT(CollectNames(), ElementsAre("Monitor 1 string A"));
  EXPECT_THAT(host.GetStatusMessages(), IsEmpty());
}

TEST_F(DesktopMonitors, EndWhenTheBiosIgnoresTheUnit) {
  lrmi.edids = {{0, Named("A").Build()}, {1, Named("A").Build()}, {2, Named("C").Build()}};
  EXPECT_THAT(CollectNames(), ElementsAre("Monitor 1 string A"));
}

TEST_F(DesktopMonitors, AreComparedWithTheOneBeforeOnly) {
  lrmi.edids = {{0, Named("A").Build()}, {1, Named("B").Build()}, {2, Named("A").Build()}};
  EXPECT_EQ(CollectNames().size(), 3U);
}

TEST_F(DesktopMonitors, AreComparedOnlyByTheBaseBlock) {
  lrmi.edids = {{0, Named("A").Extension({0x02}).Build()}, {1, Named("A").Extension({0x03}).Build()}};
  EXPECT_EQ(CollectNames().size(), 1U);
}

TEST_F(DesktopMonitors, EndAtAnEdidThatDoesNotDecodeAndKeepTheEarlierOnes) {
  lrmi.edids = {{0, Named("A").Build()}, {1, Named("B").Version(2, 0).Build()}, {2, Named("C").Build()}};
  EXPECT_THAT(CollectNames(), ElementsAre("Monitor 1 string A"));
  EXPECT_THAT(host.GetStatusMessages(), ElementsAre("EDID structure for monitor is not valid or not supported"));
}

TEST_F(DesktopMonitors, CarryNothingFromOneMonitorToTheNext) {
  lrmi.edids = {{0, Named("A").Build()}, {1, TEdidBuilder().Serial(0, "S").Build()}};
  Collect();
  const auto commits = host.store->TakeCommits();
  ASSERT_EQ(commits.size(), 2U);
  EXPECT_EQ(Describe(*commits[1]).count("Name"), 0U);
}

TEST_F(DesktopMonitors, ReadEachUnitIntoAZeroedBuffer) {
  // Unit 0 has block 1; unit 1 promises one but has none. Its digital interface must not be unit 0's.
  lrmi.edids = {{0, Named("A").Extension({0x40, 0x01, 0x05}).Extension({0x40, 0x01, 0x05}).Build()},
                {1, Named("B").Extension({0x02}).Byte(126, 2).Build()}};
  Collect();
  const auto commits = host.store->TakeCommits();
  ASSERT_EQ(commits.size(), 2U);
  EXPECT_EQ(Describe(*commits[1]).count("SupportedDigitalInterface"), 0U);
}

TEST_F(DesktopMonitors, AreRejectedByTheirHeaderWhenRealModeCannotBeSetUp) {
  lrmi.initWorks = false;
  EXPECT_THAT(CollectNames(), IsEmpty());
  EXPECT_THAT(host.GetStatusMessages(), ElementsAre("Lib not initialized. Cannot get monitor info.",
                                                    "EDID structure for monitor is not valid or not supported"));
}

TEST_F(DesktopMonitors, GetEmptyKeysFromAHostWithoutNames) {
  host.systemName = "";
  host.systemCreationClassName = "";
  EXPECT_EQ(monitor.GetDeviceKeyProperties(), 0);
  EXPECT_EQ(Describe(monitor.GetProperties()), (TDescribed{{"CreationClassName", "string QRXSG_DesktopMonitor"},
                                                           {"SystemCreationClassName", "string "},
                                                           {"SystemName", "string "}}));
}

TEST_F(DesktopMonitors, KeepTheKeyThatWasThereBeforeTheHostFailed) {
  host.onCall = [](const std::string& call) {
    if (call == "GetSystemName") throw TZELTException("no name");
  };
  EXPECT_EQ(monitor.GetDeviceKeyProperties(), 0);
  EXPECT_EQ(Describe(monitor.GetProperties()),
            (TDescribed{{"CreationClassName", "string QRXSG_DesktopMonitor"},
                        {"SystemCreationClassName", "string CIM_UnitaryComputerSystem"},
                        {"SystemName", "string "}}));
}

TEST_F(DesktopMonitors, GetEmptyKeysWhenTheHostHasNoNamespace) {
  auto cimClass = boost::make_shared<NiceMock<TMockClass>>();
  EXPECT_CALL(*cimClass, GetNamespace(IsEmpty())).WillOnce(Throw(TZELTException("no namespace")));
  TMonitorInfo other(cimClass);
  EXPECT_EQ(other.GetDeviceKeyProperties(), 0);
  EXPECT_EQ(Describe(other.GetProperties()), (TDescribed{{"CreationClassName", "string QRXSG_DesktopMonitor"},
                                                         {"SystemCreationClassName", "string "},
                                                         {"SystemName", "string "}}));
}

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
