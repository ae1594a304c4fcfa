#include "embedded_host/cim_store.h"

#include <gmock/gmock.h>

#include "host/add_to_vector_callback.h"
#include "host/exception.h"
#include "tests/support/properties.h"

using NQRXZELT20::ICIMClass;
using NQRXZELT20::ICIMInstance;
using NQRXZELT20::TAddToVectorCallback;
using NQRXZELT20::TCIMQueryContext;
using NQRXZELT20::TCIMValue;
using NQRXZELT20::TZELTException;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const TCIMQueryContext kNone;

class CimStore : public testing::Test {
 protected:
  boost::shared_ptr<TCimStore> store = TCimStore::Create(GetSchema());
  boost::shared_ptr<ICIMClass> monitors = store->GetClass("QRXSG_DesktopMonitor", kNone);

  boost::shared_ptr<ICIMInstance> Commit(const std::string& deviceId, const std::string& name) {
    const auto instance = monitors->CreateInstance(kNone);
    instance->SetProperty("DeviceID", TCIMValue(deviceId), kNone);
    instance->SetProperty("Name", TCIMValue(name), kNone);
    instance->Commit(kNone);
    return instance;
  }

  std::vector<boost::shared_ptr<ICIMInstance>> Enumerate() {
    std::vector<boost::shared_ptr<ICIMInstance>> held;
    monitors->EnumerateInstances(TAddToVectorCallback<ICIMInstance>(&held), false, kNone);
    return held;
  }

  static std::string GetFailure(const std::function<void()>& action) {
    try {
      action();
    } catch (const TZELTException& exception) {
      return exception.what();
    }
    return "no failure";
  }
};

}  // namespace

TEST_F(CimStore, HoldsInstancesInTheOrderOfTheirFirstCommits) {
  const auto first = Commit("1", "A");
  const auto second = Commit("2", "B");
  EXPECT_THAT(Enumerate(), ElementsAre(first, second));
}

TEST_F(CimStore, PutsALaterCommitOfTheSamePathInThePlaceOfTheEarlier) {
  Commit("1", "A");
  const auto second = Commit("2", "B");
  const auto third = Commit("1", "C");
  EXPECT_THAT(Enumerate(), ElementsAre(third, second));
}

TEST_F(CimStore, ListsEveryCommitAlsoThoseReplaced) {
  Commit("1", "A");
  Commit("1", "B");
  EXPECT_THAT(store->TakeCommits(), SizeIs(2));
  EXPECT_THAT(store->TakeCommits(), IsEmpty());
}

TEST_F(CimStore, DoesNotHoldWhatWasNotCommitted) {
  monitors->CreateInstance(kNone);
  EXPECT_THAT(Enumerate(), IsEmpty());
}

TEST_F(CimStore, StopsAnEnumerationWhenTheCallbackSaysSo) {
  Commit("1", "A");
  Commit("2", "B");
  int calls = 0;
  monitors->EnumerateInstances([&](boost::shared_ptr<ICIMInstance>) { return ++calls < 1; }, false, kNone);
  EXPECT_EQ(calls, 1);
}

TEST_F(CimStore, NamesAnUnknownClass) {
  EXPECT_EQ(GetFailure([&] { store->GetClass("QRXSG_Nothing", kNone); }),
            "the namespace has no class \"QRXSG_Nothing\"");
}

TEST_F(CimStore, RefusesAnUndeclaredPropertyAndNamesIt) {
  const auto instance = monitors->CreateInstance(kNone);
  const char* const failure = "QRXSG_DesktopMonitor declares no property \"Colour\"";
  EXPECT_EQ(GetFailure([&] { instance->SetProperty("Colour", TCIMValue("red"), kNone); }), failure);
  EXPECT_EQ(GetFailure([&] { instance->GetProperty("Colour", kNone); }), failure);
}

TEST_F(CimStore, RefusesAWrongTypeAndNamesBoth) {
  const auto instance = monitors->CreateInstance(kNone);
  EXPECT_EQ(GetFailure([&] { instance->SetProperty("Gamma", TCIMValue("2.2"), kNone); }),
            "QRXSG_DesktopMonitor.Gamma is a real32 and was given a string");
  EXPECT_EQ(GetFailure([&] { instance->SetProperty("StatusDescriptions", TCIMValue("OK"), kNone); }),
            "QRXSG_DesktopMonitor.StatusDescriptions is a string[] and was given a string");
}

TEST_F(CimStore, GivesANullValueForAPropertyThatWasNotSet) {
  EXPECT_TRUE(monitors->CreateInstance(kNone)->GetProperty("Name", kNone)->GetValue(kNone).IsNull());
}

TEST_F(CimStore, GivesAPropertyAsItWasSet) {
  EXPECT_EQ(Describe(Commit("1", "A")->GetProperty("Name", kNone)->GetValue(kNone)), "string A");
}

TEST_F(CimStore, GivesAPropertyAsItIsNowAndLeavesTheEarlierAsItWas) {
  const auto monitor = Commit("1", "A");
  const auto earlier = monitor->GetProperty("Name", kNone);
  EXPECT_EQ(monitor->GetProperty("Name", kNone), earlier);
  EXPECT_EQ(Describe(monitor->GetProperty("DeviceID", kNone)->GetValue(kNone)), "string 1");
  monitor->SetProperty("DeviceID", TCIMValue("2"), kNone);
  monitor->SetProperty("Name", TCIMValue("B"), kNone);
  EXPECT_EQ(Describe(monitor->GetProperty("Name", kNone)->GetValue(kNone)), "string B");
  EXPECT_EQ(Describe(earlier->GetValue(kNone)), "string A");
}

TEST_F(CimStore, MakesAPathOfTheKeysInAscendingOrder) {
  const auto instance = monitors->CreateInstance(kNone);
  for (const char* key : {"SystemName", "DeviceID", "SystemCreationClassName", "CreationClassName", "Name"}) {
    instance->SetProperty(key, TCIMValue(std::string("the ") + key), kNone);
  }
  EXPECT_EQ(instance->GetObjectPath(kNone).GetText(),
            "QRXSG_DesktopMonitor.CreationClassName=\"the CreationClassName\",DeviceID=\"the DeviceID\","
            "SystemCreationClassName=\"the SystemCreationClassName\",SystemName=\"the SystemName\"");
}

TEST_F(CimStore, GivesThePathOfTheKeysAsTheyAreNow) {
  const auto mode = store->GetClass("QRXSG_MonitorResolution", kNone)->CreateInstance(kNone);
  mode->SetProperty("SettingID", TCIMValue("a"), kNone);
  EXPECT_EQ(mode->GetObjectPath(kNone).GetText(), "QRXSG_MonitorResolution.SettingID=\"a\"");
  mode->SetProperty("SettingID", TCIMValue("b"), kNone);
  EXPECT_EQ(mode->GetObjectPath(kNone).GetText(), "QRXSG_MonitorResolution.SettingID=\"b\"");
}

TEST_F(CimStore, EscapesBackslashesAndQuotesInAPathAlsoWhereTheValueIsAPath) {
  const auto mode = store->GetClass("QRXSG_MonitorResolution", kNone)->CreateInstance(kNone);
  mode->SetProperty("SettingID", TCIMValue("a\\\"b"), kNone);
  EXPECT_EQ(mode->GetObjectPath(kNone).GetText(), R"(QRXSG_MonitorResolution.SettingID="a\\\"b")");

  auto path = mode->GetObjectPath(kNone);
  const auto setting = store->GetClass("QRXSG_MonitorSetting", kNone)->CreateInstance(kNone);
  setting->SetProperty("Setting", TCIMValue(path), kNone);
  EXPECT_EQ(setting->GetObjectPath(kNone).GetText(),
            R"(QRXSG_MonitorSetting.Setting="QRXSG_MonitorResolution.SettingID=\"a\\\\\\\"b\"")");
}

TEST_F(CimStore, GoesAwayWithItsInstances) {
  const boost::weak_ptr<ICIMInstance> instance = Commit("1", "A");
  monitors.reset();
  store.reset();
  EXPECT_TRUE(instance.expired());
}
