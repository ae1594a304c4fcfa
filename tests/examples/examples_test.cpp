// Collects from the example machines.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tests/support/process.h"

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// Name and digital interface of each monitor of an example machine, and the messages at status or worse.
struct TExample {
  std::vector<std::string> monitors;
  std::vector<std::string> messages;
};

TExample Collect(const std::string& name) {
  const TProcessResult result =
      RunShell(COMMAND_FILE " --machine " EXAMPLES_FOLDER "/" + name + " --format json QRXSG_DesktopMonitor");
  EXPECT_EQ(result.status, 0) << result.errors;
  const json request = json::parse(result.output)["requests"][0];
  TExample example;
  for (const json& instance : request["instances"]) {
    const json& properties = instance["properties"];
    const std::string interface = properties.contains("SupportedDigitalInterface")
                                      ? " " + properties["SupportedDigitalInterface"]["value"].dump()
                                      : "";
    example.monitors.push_back(properties["Name"]["value"].get<std::string>() + interface);
  }
  for (const json& entry : request["log"]) {
    if (entry["severity"] != "debug" && entry["severity"] != "verbose") example.messages.push_back(entry["message"]);
  }
  return example;
}

}  // namespace

TEST(Examples, OfficeHasTwoMonitorsOneOfThemWithADigitalInterface) {
  const TExample example = Collect("office");
  EXPECT_THAT(example.monitors, ElementsAre("Acme A190", "Globex Wide 2"));
  EXPECT_THAT(example.messages, IsEmpty());
}

TEST(Examples, OldHasATube) { EXPECT_THAT(Collect("old").monitors, ElementsAre("Tube 17")); }

TEST(Examples, OneForAllUnitsHasItsMonitorOnce) {
  EXPECT_THAT(Collect("one-for-all-units").monitors, ElementsAre("Acme A190"));
}

TEST(Examples, FaultyBiosHasTheOneMonitorThatCanBeReadAndAMessageForTheOther) {
  const TExample example = Collect("faulty-bios");
  EXPECT_THAT(example.monitors, ElementsAre("Globex Wide 2"));
  EXPECT_THAT(example.messages, ElementsAre("EDID structure for monitor is not valid or not supported"));
}

TEST(Examples, NothingHasNoMonitorAndSaysSo) {
  const TExample example = Collect("nothing");
  EXPECT_THAT(example.monitors, IsEmpty());
  EXPECT_THAT(example.messages, ElementsAre("Lib call returned an error. Could not get Monitor info."));
}
