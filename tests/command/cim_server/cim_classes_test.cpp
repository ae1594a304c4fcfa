#include "command/cim_server/cim_classes.h"

#include <gtest/gtest.h>

TEST(CimClasses, HaveTheSuperclassesThatGenericToolsAskFor) {
  const std::pair<const char*, const char*> expected[] = {
      {kVideoControllerClass, "CIM_VideoController"},     {kVideoHeadClass, "CIM_VideoHead"},
      {kHeadOfVideoControllerClass, "CIM_Dependency"},    {kDesktopMonitorClass, "CIM_DesktopMonitor"},
      {kMonitorResolutionClass, "CIM_MonitorResolution"}, {kMonitorSettingClass, "CIM_MonitorSetting"}};
  for (const auto& [name, superclass] : expected) {
    const TCimClass* const found = FindCimClass(name);
    ASSERT_NE(found, nullptr) << name;
    ASSERT_NE(found->superclass, nullptr) << name;
    EXPECT_STREQ(found->superclass->name, superclass);
    EXPECT_EQ(found->superclass, FindCimClass(superclass));
    EXPECT_EQ(found->superclass->superclass, nullptr);
    EXPECT_TRUE(found->IsA(*found->superclass));
    EXPECT_FALSE(found->superclass->IsA(*found));
  }
}

TEST(CimClasses, HaveTheirKeysFromTheirSuperclasses) {
  for (const TCimClass& one : GetCimClasses()) {
    for (const TPropertyDeclaration& property : one.properties) {
      const TCimClass& origin = one.GetOrigin(property);
      EXPECT_NE(origin.Find(property.name), nullptr);
      EXPECT_TRUE(!property.isKey || one.superclass == nullptr || &origin == one.superclass) << one.name;
    }
  }
  const TCimClass& monitor = *FindCimClass(kDesktopMonitorClass);
  EXPECT_EQ(&monitor.GetOrigin(*monitor.Find("Gamma")), &monitor);
}

TEST(CimClasses, AreFoundWithoutRegardToCase) {
  EXPECT_EQ(FindCimClass("cim_desktopmonitor"), FindCimClass("CIM_DesktopMonitor"));
  EXPECT_EQ(FindCimClass("CIM_Nope"), nullptr);
}

TEST(CimClasses, SayWhatValuesMean) {
  const TValueMap* const map = FindValueMap("ScanMode");
  ASSERT_NE(map, nullptr);
  EXPECT_STREQ(map->values.at(4), "5");
  EXPECT_STREQ(map->meanings.at(4), "Interlaced Operation");
  EXPECT_EQ(FindValueMap("Gamma"), nullptr);
  for (const TCimClass& one : GetCimClasses()) {
    for (const TPropertyDeclaration& property : one.properties) {
      const TValueMap* const its = FindValueMap(property.name);
      EXPECT_TRUE(its == nullptr || its->values.size() == its->meanings.size()) << property.name;
    }
  }
}
