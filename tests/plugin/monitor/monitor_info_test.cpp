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
using NQRXZELT20::ILogger;
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

TEST_F(MonitorInfo, EndsRealModeAlsoWhenTheRequestEndsByAnException) {
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
  std::vector<std::string> status;
  for (const TLogEntry& entry : host.log.GetEntries()) {
    if (entry.severity == ILogger::kStatus) status.push_back(entry.message);
  }
  EXPECT_THAT(status,
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
