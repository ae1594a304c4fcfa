#include "embedded_host/schema.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

typedef NQRXZELT20::TCIMValue::TCIMType TType;

TEST(Schema, HasTheSixClassesInTheOrderOfACollection) {
  std::string names;
  for (const TClassDeclaration& declaration : GetSchema()) names += std::string(declaration.name) + " ";
  EXPECT_EQ(names,
            "QRXSG_VideoController QRXSG_VideoHead QRXSG_HeadOfVideoController QRXSG_DesktopMonitor "
            "QRXSG_MonitorResolution QRXSG_MonitorSetting ");
}

TEST(Schema, HasTheKeysOfEachClass) {
  const std::set<std::string> device = {"SystemCreationClassName", "SystemName", "CreationClassName", "DeviceID"};
  const std::set<std::string> expected[] = {device, device,        {"Antecedent", "Dependent"},
                                            device, {"SettingID"}, {"Element", "Setting"}};
  for (std::size_t index = 0; index < 6; ++index) {
    std::set<std::string> keys;
    for (const TPropertyDeclaration& property : GetSchema()[index].properties) {
      if (property.isKey) keys.insert(property.name);
    }
    EXPECT_EQ(keys, expected[index]) << GetSchema()[index].name;
  }
}

TEST(Schema, PutsTheKeysFirstInTheOrderOfAnObjectPath) {
  for (const TClassDeclaration& declaration : GetSchema()) {
    const auto& properties = declaration.properties;
    const auto isKey = [](const TPropertyDeclaration& property) { return property.isKey; };
    EXPECT_TRUE(std::is_partitioned(properties.begin(), properties.end(), isKey)) << declaration.name;
    EXPECT_TRUE(std::is_sorted(properties.begin(), std::partition_point(properties.begin(), properties.end(), isKey),
                               [](const auto& left, const auto& right) { return std::string(left.name) < right.name; }))
        << declaration.name;
  }
}

TEST(Schema, ExplainsEveryPropertyOnce) {
  for (const TClassDeclaration& declaration : GetSchema()) {
    std::set<std::string> names;
    for (const TPropertyDeclaration& property : declaration.properties) {
      EXPECT_TRUE(names.insert(property.name).second) << declaration.name << "." << property.name;
      EXPECT_EQ(std::string(property.meaning).back(), '.') << declaration.name << "." << property.name;
    }
  }
}

TEST(Schema, PutsThePropertiesInTheOrderInWhichPeopleReadThem) {
  const std::string keys = "CreationClassName DeviceID SystemCreationClassName SystemName ";
  const std::string video =
      keys +
      "Name DisplayId VideoProcessor DACType VideoRamSize CurrentBitsPerPixel CurrentHorizontalResolution "
      "CurrentVerticalResolution MonitorString ";
  const std::string monitor =
      keys +
      "Name Description MonitorManufacturer SerialNumber ManufacturingDate EDIDVersion HorizontalImageSize "
      "VerticalImageSize Gamma DPMSActiveOff DPMSSuspend DPMSStandby MinHorizFreq MaxHorizFreq MinVertFreq MaxVertFreq "
      "Bandwidth SupportedDigitalInterface OperationalStatus StatusDescriptions ";
  const std::string expected[] = {video + "OtherIdentifyingInfo ",
                                  video + "HeadNumber ",
                                  "Antecedent Dependent ",
                                  monitor,
                                  "SettingID HorizontalResolution VerticalResolution RefreshRate ScanMode ",
                                  "Element Setting "};
  for (std::size_t index = 0; index < 6; ++index) {
    std::string names;
    for (const TPropertyDeclaration& property : GetSchema()[index].properties)
      names += property.name + std::string(" ");
    EXPECT_EQ(names, expected[index]);
  }
}

TEST(Schema, GivesEachNumberAndArrayItsTypeAndUnit) {
  const std::map<std::string, std::string> expected = {
      {"VideoRamSize", "uint32 bytes"},
      {"CurrentBitsPerPixel", "uint32 bits"},
      {"CurrentHorizontalResolution", "uint32 pixels"},
      {"CurrentVerticalResolution", "uint32 lines"},
      {"MonitorString", "string[] "},
      {"OtherIdentifyingInfo", "string[] "},
      {"HeadNumber", "uint8 "},
      {"ManufacturingDate", "datetime "},
      {"EDIDVersion", "real32 "},
      {"HorizontalImageSize", "uint8 cm"},
      {"VerticalImageSize", "uint8 cm"},
      {"Gamma", "real32 "},
      {"DPMSActiveOff", "boolean "},
      {"DPMSSuspend", "boolean "},
      {"DPMSStandby", "boolean "},
      {"MinHorizFreq", "uint8 kHz"},
      {"MaxHorizFreq", "uint8 kHz"},
      {"MinVertFreq", "uint8 Hz"},
      {"MaxVertFreq", "uint8 Hz"},
      {"Bandwidth", "uint32 MHz"},
      {"SupportedDigitalInterface", "uint8 "},
      {"OperationalStatus", "uint16[] "},
      {"StatusDescriptions", "string[] "},
      {"HorizontalResolution", "uint32 pixels"},
      {"VerticalResolution", "uint32 lines"},
      {"RefreshRate", "uint32 Hz"},
      {"ScanMode", "uint16 "},
      {"Antecedent", "reference "},
      {"Dependent", "reference "},
      {"Element", "reference "},
      {"Setting", "reference "},
  };
  std::map<std::string, std::string> declared;
  for (const TClassDeclaration& declaration : GetSchema()) {
    for (const TPropertyDeclaration& property : declaration.properties) {
      const std::string type = GetTypeName(property.type, property.isArray);
      if (type != "string") declared[property.name] = type + " " + property.unit;
    }
  }
  EXPECT_EQ(declared, expected);
}

TEST(Schema, SaysWhichClassesAnAssociationLinks) {
  std::string links;
  for (const TClassDeclaration& declaration : GetSchema()) {
    for (const TPropertyDeclaration& property : declaration.properties) {
      if (property.type == TType::kReference) links += property.name + (" " + std::string(property.target)) + "\n";
    }
  }
  EXPECT_EQ(links,
            "Antecedent QRXSG_VideoController\n"
            "Dependent QRXSG_VideoHead\n"
            "Element QRXSG_DesktopMonitor\n"
            "Setting QRXSG_MonitorResolution\n");
}

TEST(Schema, KnowsWhichPartAClassBelongsTo) {
  for (const TClassDeclaration& declaration : GetSchema()) {
    const bool isVideo = std::string(declaration.name).find("Video") != std::string::npos;
    EXPECT_EQ(declaration.part, isVideo ? EPart::kVideo : EPart::kMonitors) << declaration.name;
  }
}

TEST(Schema, CallsAClassAnAssociationWhenItsKeysReferToDeclaredClasses) {
  for (const TClassDeclaration& declaration : GetSchema()) {
    for (const TPropertyDeclaration& property : declaration.properties) {
      EXPECT_EQ(property.type == TType::kReference, declaration.kind == EKind::kAssociation) << property.name;
      EXPECT_EQ(FindClass(property.target) != nullptr, declaration.kind == EKind::kAssociation) << property.name;
    }
  }
}

TEST(Schema, CallsAClassADeviceWhenItHasADeviceId) {
  for (const TClassDeclaration& declaration : GetSchema()) {
    EXPECT_EQ(declaration.Find("DeviceID") != nullptr, declaration.kind == EKind::kDevice) << declaration.name;
  }
}

TEST(Schema, FindsAClassByItsExactName) {
  ASSERT_NE(FindClass("QRXSG_MonitorSetting"), nullptr);
  EXPECT_STREQ(FindClass("QRXSG_MonitorSetting")->name, "QRXSG_MonitorSetting");
  EXPECT_EQ(FindClass("QRXSG_monitorSetting"), nullptr);
  EXPECT_EQ(FindClass(""), nullptr);
}

TEST(Schema, FindsAPropertyByItsExactName) {
  const TClassDeclaration& monitors = GetSchema()[3];
  ASSERT_NE(monitors.Find("Gamma"), nullptr);
  EXPECT_STREQ(monitors.Find("Gamma")->name, "Gamma");
  EXPECT_EQ(monitors.Find("gamma"), nullptr);
}

TEST(Schema, NamesTheTypesAsCimDoes) {
  EXPECT_EQ(GetTypeName(TType::kUint8, false), "uint8");
  EXPECT_EQ(GetTypeName(TType::kUint16, true), "uint16[]");
  EXPECT_EQ(GetTypeName(TType::kReal32, false), "real32");
  EXPECT_EQ(GetTypeName(TType::kReference, false), "reference");
}
