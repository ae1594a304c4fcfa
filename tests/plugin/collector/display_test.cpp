#include "plugin/collector/display.h"

#include <gmock/gmock.h>

#include "host/exception.h"
#include "tests/support/mock_cim.h"
#include "tests/support/properties.h"
#include "tests/support/test_host.h"

using NQRXZELT20::ICIMClass;
using NQRXZELT20::ICIMInstance;
using NQRXZELT20::ILogger;
using NQRXZELT20::TCIMQueryContext;
using NQRXZELT20::TCIMReference;
using NQRXZELT20::TCIMValue;
using NQRXZELT20::TZELTException;
using testing::_;
using testing::IsEmpty;
using testing::Return;
using testing::ReturnRef;
using testing::StrictMock;

namespace {

/// A collector that notes which class it was asked for.
class TCollector : public TDisplay {
 public:
  using TDisplay::GetCIMInstances;
  using TDisplay::TDisplay;

  std::vector<ICIMInstance*> GetCIMInstances(std::string className) override {
    askedFor = className;
    return answer;
  }

  std::string askedFor;
  std::vector<ICIMInstance*> answer;
};

class Display : public testing::Test {
 protected:
  TTestHost host;
  boost::shared_ptr<ICIMClass> monitorClass = host.GetClass("QRXSG_DesktopMonitor");
  TCollector collector{monitorClass, TTestHost::Provider()};

  static const std::string kMonitor;
};

const std::string Display::kMonitor = "QRXSG_DesktopMonitor";

}  // namespace

TEST_F(Display, HasNeitherClassNorProviderByDefault) {
  TCollector empty;
  EXPECT_EQ(empty.GetCIMClass(), nullptr);
  EXPECT_EQ(empty.GetInfoHandle(), nullptr);
}

TEST_F(Display, HasNoProviderWhenMadeOfOnlyAClass) {
  TCollector silent(monitorClass);
  EXPECT_EQ(silent.GetCIMClass(), monitorClass.get());
  EXPECT_EQ(silent.GetInfoHandle(), nullptr);
}

TEST_F(Display, DoesNotKeepTheClassAlive) {
  auto cimClass = boost::make_shared<testing::NiceMock<TMockClass>>();
  const TCollector other(cimClass);
  EXPECT_EQ(cimClass.use_count(), 1);
}

TEST_F(Display, AsksForTheInstancesOfItsOwnClassAndReturnsThemUnchanged) {
  collector.answer = {nullptr, nullptr};
  EXPECT_EQ(static_cast<TDisplay&>(collector).GetCIMInstances(), collector.answer);
  EXPECT_EQ(collector.askedFor, kMonitor);
}

TEST_F(Display, CommitsAnInstanceWithEveryProperty) {
  const PropertyMap map = {{"DeviceID", TCIMValue("Monitor 1")}, {"Gamma", TCIMValue(2.2F)}};
  ICIMInstance* const instance = collector.GenerateCIMInstance(map, kMonitor);
  const auto commits = host.store->TakeCommits();
  ASSERT_EQ(commits.size(), 1U);
  EXPECT_EQ(commits[0].get(), instance);
  EXPECT_EQ(Describe(*commits[0]), Describe(map));
}

TEST_F(Display, CommitsAnInstanceWithoutProperties) {
  collector.GenerateCIMInstance(PropertyMap(), kMonitor);
  const auto commits = host.store->TakeCommits();
  ASSERT_EQ(commits.size(), 1U);
  EXPECT_THAT(commits[0]->GetProperties(), IsEmpty());
}

TEST_F(Display, DoesNotCommitAnInstanceOfAnotherClass) {
  EXPECT_NE(collector.GenerateCIMInstance(PropertyMap(), "QRXSG_VideoHead"), nullptr);
  EXPECT_THAT(host.store->TakeCommits(), IsEmpty());
}

TEST_F(Display, SetsThePropertiesInTheOrderOfTheirNamesNullOnesIncluded) {
  const std::string name = kMonitor;
  auto instance = boost::make_shared<StrictMock<TMockInstance>>();
  auto cimClass = boost::make_shared<StrictMock<TMockClass>>();
  EXPECT_CALL(*cimClass, CreateInstance(IsEmpty())).WillOnce(Return(instance));
  EXPECT_CALL(*cimClass, GetName(IsEmpty())).WillOnce(ReturnRef(name));
  testing::InSequence inOrder;
  EXPECT_CALL(*instance, SetProperty("A", _, IsEmpty()));
  EXPECT_CALL(*instance, SetProperty("B", _, IsEmpty()));
  EXPECT_CALL(*instance, SetProperty("a", _, IsEmpty()));
  EXPECT_CALL(*instance, Commit(IsEmpty()));

  PropertyMap map;
  for (const char* property : {"a", "B", "A"}) map[property] = TCIMValue();
  EXPECT_EQ(TCollector(cimClass).GenerateCIMInstance(map, kMonitor), instance.get());
}

TEST_F(Display, DoesNotCommitAnInstanceWhosePropertyTheHostRefuses) {
  EXPECT_THROW(collector.GenerateCIMInstance({{"NoSuchProperty", TCIMValue(true)}}, kMonitor), TZELTException);
  EXPECT_THAT(host.store->TakeCommits(), IsEmpty());
}

TEST_F(Display, AnnouncesEachInstanceAtVerboseSeverity) {
  collector.GenerateCIMInstance(PropertyMap(), kMonitor);
  EXPECT_EQ(host.log.GetEntries(),
            (std::vector<TLogEntry>{
                {ILogger::kVerbose,
                 "TDisplay::generateCIMInstance - Generating CIM instance for class QRXSG_DesktopMonitor."}}));
}

TEST(DisplayDeathTest, StopsAtANullInstanceOfTheHost) {
  TTestHost host;
  testing::NiceMock<TMockClass> cimClass;
  TCollector collector(boost::shared_ptr<ICIMClass>(&cimClass, [](ICIMClass*) {}));
  const PropertyMap map = {{"A", TCIMValue(true)}};
  EXPECT_DEATH(collector.GenerateCIMInstance(map, "A"), "px != 0");
}

TEST_F(Display, FindsACommittedInstanceToBeADuplicate) {
  ICIMInstance* const instance = collector.GenerateCIMInstance({{"DeviceID", TCIMValue("Monitor 1")}}, kMonitor);
  EXPECT_TRUE(collector.IsDuplicateInstance(instance));
}

TEST_F(Display, FindsAnInstanceOfAnEqualPathToBeADuplicateWhateverItsOtherProperties) {
  collector.GenerateCIMInstance({{"DeviceID", TCIMValue("Monitor 1")}, {"Gamma", TCIMValue(1.0F)}}, kMonitor);
  const auto other = monitorClass->CreateInstance(TCIMQueryContext());
  other->SetProperty("DeviceID", TCIMValue("Monitor 1"), TCIMQueryContext());
  EXPECT_TRUE(collector.IsDuplicateInstance(other.get()));
}

TEST_F(Display, FindsNoDuplicateAmongOtherPathsOrInAnEmptyClass) {
  const auto instance = monitorClass->CreateInstance(TCIMQueryContext());
  instance->SetProperty("DeviceID", TCIMValue("Monitor 2"), TCIMQueryContext());
  EXPECT_FALSE(collector.IsDuplicateInstance(instance.get()));
  collector.GenerateCIMInstance({{"DeviceID", TCIMValue("Monitor 1")}}, kMonitor);
  EXPECT_FALSE(collector.IsDuplicateInstance(instance.get()));
}

TEST_F(Display, LooksForDuplicatesInTheInstancesOwnClass) {
  const auto head = host.GetClass("QRXSG_VideoHead")->CreateInstance(TCIMQueryContext());
  head->Commit(TCIMQueryContext());
  EXPECT_TRUE(collector.IsDuplicateInstance(head.get()));
}

TEST_F(Display, WritesAtEachSeverity) {
  collector.WriteError("e");
  collector.WriteWarning("w");
  collector.WriteStatus("s");
  collector.WriteDebug("d");
  collector.WriteVerbose("v");
  EXPECT_EQ(host.log.GetEntries(), (std::vector<TLogEntry>{{static_cast<ILogger::EZELTLogSeverity>(0), "e"},
                                                           {static_cast<ILogger::EZELTLogSeverity>(1), "w"},
                                                           {static_cast<ILogger::EZELTLogSeverity>(2), "s"},
                                                           {static_cast<ILogger::EZELTLogSeverity>(3), "d"},
                                                           {static_cast<ILogger::EZELTLogSeverity>(4), "v"}}));
}

TEST_F(Display, WritesAMessageUnchanged) {
  collector.WriteStatus(" a\tb\n");
  EXPECT_EQ(host.log.GetEntries(), (std::vector<TLogEntry>{{ILogger::kStatus, " a\tb\n"}}));
}

TEST_F(Display, WritesNoEmptyMessage) {
  collector.WriteStatus("");
  EXPECT_THAT(host.log.GetEntries(), IsEmpty());
}

TEST_F(Display, IsSilentWithoutAProvider) {
  TCollector(monitorClass, nullptr).WriteStatus("heard by nobody");
  EXPECT_THAT(host.log.GetEntries(), IsEmpty());
}
