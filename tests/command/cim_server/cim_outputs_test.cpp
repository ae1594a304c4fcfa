#include "command/cim_server/cim_outputs.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

using nlohmann::json;

namespace {

std::string ListProperties(const TClassDeclaration& declaration) {
  std::ostringstream text;
  for (const TPropertyDeclaration& property : declaration.properties) {
    text << (property.isKey ? "key " : "") << GetTypeName(property.type, property.isArray) << ' ' << property.name
         << (*property.unit == '\0' ? "" : " in ") << property.unit << (*property.target == '\0' ? "" : " to ")
         << property.target << '\n';
  }
  return text.str();
}

}  // namespace

TEST(CimOutputs, AreAClassAndTheirLinkToMonitorsAnother) {
  const std::vector<TClassDeclaration> classes = MakeOutputClasses();
  ASSERT_EQ(classes.size(), 2U);
  EXPECT_STREQ(classes[0].name, "DI_Output");
  EXPECT_EQ(ListProperties(classes[0]),
            "key string SystemName\n"
            "key uint32 Unit\n"
            "string Connector\n"
            "string Path\n"
            "string Identity\n"
            "string Serial\n"
            "string Maker\n"
            "string Name\n"
            "uint32 LargestWidth in pixels\n"
            "uint32 LargestHeight in pixels\n"
            "real32 HighestRefresh in Hz\n"
            "string DeviceID\n"
            "string Reason\n");
  EXPECT_STREQ(classes[1].name, "DI_OutputMonitor");
  EXPECT_EQ(classes[1].kind, EKind::kAssociation);
  EXPECT_EQ(ListProperties(classes[1]),
            "key reference Antecedent to QRXSG_DesktopMonitor\n"
            "key reference Dependent to DI_Output\n");
}

TEST(CimOutputs, HaveTheMeaningsOfTheirKeys) {
  const TClassDeclaration output = MakeOutputClasses().front();
  EXPECT_STREQ(output.Find("Reason")->meaning, "Why there is no such instance.");
  for (const TPropertyDeclaration& property : output.properties) EXPECT_STRNE(property.meaning, "") << property.name;
}

TEST(CimOutputs, SayWhatIsKnownOfThem) {
  const json output = json::parse(R"({"unit": 1, "connector": "card0-DP-1", "path": "0000:01:00.0/DP-1",
    "deviceID": "Monitor 2", "identity": "ACM-1234-2008.14-7", "serial": "7", "serialNumber": 9, "maker": "ACM",
    "name": "A190", "modes": [{"width": 1280, "height": 1024, "refresh": 60.020},
                              {"width": 800, "height": 600, "refresh": 75.000},
                              {"width": 640, "height": 480, "refresh": 72.809}]})");
  EXPECT_EQ(ReadOutput(output, "ws-17"), json::parse(R"({"SystemName": "ws-17", "Unit": 1, "Connector": "card0-DP-1",
    "Path": "0000:01:00.0/DP-1", "Identity": "ACM-1234-2008.14-7", "Serial": "7", "Maker": "ACM", "Name": "A190",
    "LargestWidth": 1280, "LargestHeight": 1024, "HighestRefresh": 75.0, "DeviceID": "Monitor 2", "Reason": null})"));
}

TEST(CimOutputs, HaveNullForWhatIsNotKnown) {
  EXPECT_EQ(ReadOutput(json::parse(R"({"unit": 0, "deviceID": null, "reason": "its EDID is missing"})"), "ws-17"),
            json::parse(R"({"SystemName": "ws-17", "Unit": 0, "Connector": null, "Path": null, "Identity": null,
    "Serial": null, "Maker": null, "Name": null, "LargestWidth": null, "LargestHeight": null, "HighestRefresh": null,
    "DeviceID": null, "Reason": "its EDID is missing"})"));
}

TEST(CimOutputs, HaveNoLargestOfNoModes) {
  EXPECT_TRUE(ReadOutput(json::parse(R"({"unit": 0, "modes": []})"), "ws-17").at("LargestWidth").is_null());
}
