#include "command/cim_server/object_name.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

const std::string kSetting =
    R"(QRXSG_MonitorSetting.Element="QRXSG_DesktopMonitor.DeviceID=\"a \\\"b\\\" \\\\ c\"",Setting="QRXSG_MonitorResolution.SettingID=\"d\"")";

}  // namespace

TEST(ObjectName, IsReadFromAPath) {
  const TObjectName name = ParseObjectPath(R"(QRXSG_MonitorResolution.SettingID="Monitor 1\\ \"Setting\", 1=\"")");
  EXPECT_EQ(name.className, "QRXSG_MonitorResolution");
  ASSERT_EQ(name.keys.size(), 1U);
  EXPECT_EQ(name.keys[0].name, "SettingID");
  EXPECT_EQ(name.keys[0].value, R"(Monitor 1\ "Setting", 1=")");
}

TEST(ObjectName, HoldsTheNamesThatItsKeysReferTo) {
  const TObjectName name = ParseObjectPath(kSetting);
  ASSERT_EQ(name.keys.size(), 2U);
  ASSERT_NE(name.keys[0].reference, nullptr);
  EXPECT_EQ(name.keys[0].reference->className, "QRXSG_DesktopMonitor");
  EXPECT_EQ(name.keys[0].reference->keys.at(0).value, R"(a "b" \ c)");
  EXPECT_EQ(name.keys[1].reference->keys.at(0).value, "d");
}

TEST(ObjectName, IsReadFromAPathWithoutKeys) { EXPECT_TRUE(ParseObjectPath("QRXSG_VideoHead").keys.empty()); }

TEST(ObjectName, IsNotReadFromAnotherText) {
  for (const char* const path :
       {"A.", "A.b", "A.b=", "A.b=\"", "A.b=\"c", "A.b=\"c\\", "A.b=\"c\"d", "A.b=\"c\".e=\"f\""}) {
    EXPECT_THROW(ParseObjectPath(path), std::invalid_argument) << path;
  }
}

TEST(ObjectName, IsTheSameWhateverTheOrderAndTheCaseOfItsNames) {
  const TObjectName name = {"QRXSG_VideoHead", {{"DeviceID", "a"}, {"SystemName", "b"}}};
  EXPECT_EQ(MakeIdentity(name), MakeIdentity({"qrxsg_videohead", {{"SYSTEMNAME", "b"}, {"deviceid", "a"}}}));
  EXPECT_NE(MakeIdentity(name), MakeIdentity({"QRXSG_VideoHead", {{"DeviceID", "A"}, {"SystemName", "b"}}}));
  EXPECT_NE(MakeIdentity(name), MakeIdentity({"QRXSG_VideoHead", {{"DeviceID", "b"}, {"SystemName", "a"}}}));
  EXPECT_NE(MakeIdentity(name), MakeIdentity({"QRXSG_VideoHead", {{"DeviceID", "a"}}}));
  EXPECT_NE(MakeIdentity(name), MakeIdentity({"QRXSG_VideoController", name.keys}));
}

TEST(ObjectName, MayLeaveOutTheNameOfItsOneKey) {
  EXPECT_EQ(MakeIdentity({"QRXSG_MonitorResolution", {{"", "a"}}}),
            MakeIdentity({"QRXSG_MonitorResolution", {{"SettingID", "a"}}}));
}

TEST(ObjectName, TellsAReferenceFromAText) {
  const TObjectName target = {"QRXSG_VideoHead", {{"DeviceID", "a"}}};
  const TObjectName reference = {"QRXSG_MonitorSetting",
                                 {{"Element", "", std::make_shared<const TObjectName>(target)}}};
  const TObjectName text = {"QRXSG_MonitorSetting", {{"Element", MakeIdentity(target)}}};
  EXPECT_NE(MakeIdentity(reference), MakeIdentity(text));
}

TEST(ObjectName, LosesItsEscapesAtEveryDepth) {
  const TObjectName target = {"A", {{"b", R"(c\\d\")"}}};
  const TObjectName plain = UndoEscapes({"E", {{"f", "", std::make_shared<const TObjectName>(target)}, {"g", "h\\"}}});
  EXPECT_EQ(plain.keys[0].reference->keys[0].value, R"(c\d")");
  EXPECT_EQ(plain.keys[1].value, "h\\");
}
