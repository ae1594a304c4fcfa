#include <gmock/gmock.h>

#include "host/exception.h"
#include "plugin/monitor/monitor_info.h"
#include "tests/support/edid_builder.h"
#include "tests/support/lrmi_double.h"
#include "tests/support/mock_cim.h"
#include "tests/support/properties.h"
#include "tests/support/test_host.h"

using NQRXZELT20::ICIMNamespace;
using NQRXZELT20::ILogger;
using NQRXZELT20::TCIMQueryContext;
using NQRXZELT20::TZELTException;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::NiceMock;
using testing::Return;
using testing::Throw;

namespace {

TEdidBuilder Named(const std::string& name) { return TEdidBuilder().Name(0, name); }

class DesktopMonitors : public testing::Test {
 protected:
  TTestHost host;
  TLrmiDouble lrmi;
  TMonitorInfo monitor{host.GetClass("QRXSG_DesktopMonitor"), TTestHost::Provider()};

  void Collect() { monitor.GetCIMInstances("QRXSG_DesktopMonitor"); }

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

  std::vector<std::string> GetStatusMessages() const {
    std::vector<std::string> messages;
    for (const TLogEntry& entry : host.log.GetEntries()) {
      if (entry.severity == ILogger::kStatus) messages.push_back(entry.message);
    }
    return messages;
  }
};

}  // namespace

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
  EXPECT_THAT(GetStatusMessages(), IsEmpty());
}

TEST_F(DesktopMonitors, EndWhenTheBiosIgnoresTheUnit) {
  lrmi.edids = {{0, Named("A").Build()}, {1, Named("A").Build()}, {2, Named("C").Build()}};
  EXPECT_THAT(CollectNames(), ElementsAre("Monitor 1 string A"));
}

TEST_F(DesktopMonitors, AreComparedWithTheOneBeforeOnly) {
  lrmi.edids = {{0, Named("A").Build()}, {1, Named("B").Build()}, {2, Named("A").Build()}};
  EXPECT_EQ(CollectNames().size(), 3U);
}

TEST_F(DesktopMonitors, AreComparedByTheBaseBlockAlone) {
  lrmi.edids = {{0, Named("A").Extension({0x02}).Build()}, {1, Named("A").Extension({0x03}).Build()}};
  EXPECT_EQ(CollectNames().size(), 1U);
}

TEST_F(DesktopMonitors, EndAtAnEdidThatDoesNotDecodeAndKeepTheEarlierOnes) {
  lrmi.edids = {{0, Named("A").Build()}, {1, Named("B").Version(2, 0).Build()}, {2, Named("C").Build()}};
  EXPECT_THAT(CollectNames(), ElementsAre("Monitor 1 string A"));
  EXPECT_THAT(GetStatusMessages(), ElementsAre("EDID structure for monitor is not valid or not supported"));
}

TEST_F(DesktopMonitors, CarryNothingFromOneMonitorToTheNext) {
  lrmi.edids = {{0, Named("A").Build()}, {1, TEdidBuilder().Serial(0, "S").Build()}};
  Collect();
  const auto commits = host.store->TakeCommits();
  ASSERT_EQ(commits.size(), 2U);
  EXPECT_EQ(Describe(*commits[1]).count("Name"), 0U);
}

TEST_F(DesktopMonitors, ReadEachUnitIntoAZeroedBuffer) {
  // Unit 0 fills block 1, which unit 1 promises and does not have: its digital interface must not be unit 0's.
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
  EXPECT_THAT(GetStatusMessages(), ElementsAre("Lib not initialized. Cannot get monitor info.",
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
