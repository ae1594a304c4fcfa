#include <gmock/gmock.h>

#include <stdexcept>

#include "host/exception.h"
#include "host/services.h"
#include "plugin/monitor/monitor_info.h"
#include "tests/support/lrmi_double.h"
#include "tests/support/mock_association.h"
#include "tests/support/properties.h"
#include "tests/support/test_host.h"

using NQRXZELT20::ILogger;
using NQRXZELT20::TCIMReference;
using NQRXZELT20::TCIMValue;
using NQRXZELT20::TZELTException;
using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Return;
using testing::Throw;

namespace {

class MonitorSettings : public testing::Test {
 protected:
  TTestHost host;
  TMockAssociation association{"QRXSG_DesktopMonitor", "DeviceID", "QRXSG_MonitorResolution", "SettingID"};
  TMonitorInfo monitor{association.requested, TTestHost::Provider()};

  TMockInstance& Monitor(const std::string& number) { return association.AddFirst("Monitor " + number); }
  TMockInstance& Mode(const std::string& monitorNumber, const std::string& number) {
    return association.AddSecond("Monitor " + monitorNumber + "\\ Setting " + number);
  }

  /// "monitor -> mode" of each pair, by their paths.
  std::vector<std::string> Pair() {
    association.Hold();
    std::vector<std::string> pairs;
    for (const PropertyMap& map : monitor.MakeMonitorSettingAssociation()) {
      EXPECT_EQ(map.size(), 2U);
      pairs.push_back(static_cast<std::string>(map.at("Element")) + " -> " +
                      static_cast<std::string>(map.at("Setting")));
    }
    return pairs;
  }

  void ExpectFailure(const std::string& reason) {
    EXPECT_EQ(
        host.log.GetEntries(),
        (std::vector<TLogEntry>{{ILogger::kStatus,
                                 "Monitor association encountered an error\t\t\t\t\tenumerating CIM instances for "
                                 "QRXSG_DesktopMonitor OR QRXSG_MonitorResolution Error Code: " +
                                     reason}}));
  }
};

}  // namespace

TEST_F(MonitorSettings, AreNoneWithoutMonitorsAndSayNothing) {
  Mode("1", "1");
  EXPECT_THAT(Pair(), IsEmpty());
  EXPECT_THAT(host.log.GetEntries(), IsEmpty());
}

TEST_F(MonitorSettings, AreNoneWithoutModesAndSayNothing) {
  Monitor("1");
  EXPECT_THAT(Pair(), IsEmpty());
  EXPECT_THAT(host.log.GetEntries(), IsEmpty());
}

TEST_F(MonitorSettings, NameTheFirstModeForEveryModeOfAnOnlyMonitor) {
  Monitor("1");
  for (const char* number : {"1", "2", "3"}) Mode("1", number);
  EXPECT_THAT(Pair(), ElementsAre("Monitor 1 -> Monitor 1\\ Setting 1", "Monitor 1 -> Monitor 1\\ Setting 1",
                                  "Monitor 1 -> Monitor 1\\ Setting 1"));
}

TEST_F(MonitorSettings, NameTheModeAtTheMonitorsOwnPosition) {
  Monitor("1");
  Monitor("2");
  Mode("1", "1");
  Mode("1", "2");
  Mode("2", "1");
  EXPECT_THAT(Pair(), ElementsAre("Monitor 1 -> Monitor 1\\ Setting 1", "Monitor 1 -> Monitor 1\\ Setting 1",
                                  "Monitor 2 -> Monitor 1\\ Setting 2"));
}

TEST_F(MonitorSettings, SkipAMonitorBeyondTheModes) {
  Monitor("1");
  Monitor("2");
  Mode("2", "1");
  EXPECT_THAT(Pair(), IsEmpty());
}

TEST_F(MonitorSettings, CarryNothingFromASkippedPairToTheNext) {
  Monitor("2");
  Monitor("1");
  Monitor("1");
  Mode("1", "1");
  Mode("2", "1");
  EXPECT_THAT(Pair(), ElementsAre("Monitor 1 -> Monitor 2\\ Setting 1", "Monitor 2 -> Monitor 1\\ Setting 1"));
}

TEST_F(MonitorSettings, MatchASettingThatBeginsWithTheDeviceId) {
  Monitor("1");
  Mode("10", "1");
  EXPECT_THAT(Pair(), ElementsAre("Monitor 1 -> Monitor 10\\ Setting 1"));
}

TEST_F(MonitorSettings, DoNotMatchASettingThatIsShorterThanTheDeviceId) {
  Monitor("1\\ Setting 11");
  Mode("1", "1");
  EXPECT_THAT(Pair(), IsEmpty());
}

TEST_F(MonitorSettings, LogAFailureToFindTheNamespace) {
  EXPECT_CALL(*association.requested, GetNamespace(_)).WillOnce(Throw(TZELTException("no namespace")));
  EXPECT_THAT(Pair(), IsEmpty());
  ExpectFailure("no namespace");
}

TEST_F(MonitorSettings, LogAFailureToEnumerate) {
  Monitor("1");
  Mode("1", "1");
  association.Hold();
  EXPECT_CALL(*association.second, EnumerateInstances(_, _, _)).WillOnce(Throw(TZELTException("no modes")));
  EXPECT_THAT(monitor.MakeMonitorSettingAssociation(), IsEmpty());
  ExpectFailure("no modes");
}

TEST_F(MonitorSettings, KeepThePairsBeforeAFailure) {
  Monitor("1");
  Mode("1", "1");
  EXPECT_CALL(Mode("1", "2"), GetProperty(_, _)).WillOnce(Throw(TZELTException("unreadable")));
  Mode("1", "3");
  EXPECT_THAT(Pair(), ElementsAre("Monitor 1 -> Monitor 1\\ Setting 1"));
  ExpectFailure("unreadable");
}

TEST_F(MonitorSettings, LeaveOutThePairWhoseSecondPathFails) {
  Monitor("1");
  EXPECT_CALL(Mode("1", "1"), GetObjectPath(_)).WillOnce(Throw(TZELTException("pathless")));
  EXPECT_THAT(Pair(), IsEmpty());
  ExpectFailure("pathless");
}

TEST_F(MonitorSettings, LetOtherExceptionsThrough) {
  EXPECT_CALL(*association.requested, GetNamespace(_)).WillOnce(Throw(std::runtime_error("not the host's own kind")));
  EXPECT_THROW(Pair(), std::runtime_error);
}
