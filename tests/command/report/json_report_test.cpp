#include "command/report/json_report.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <limits>
#include <nlohmann/json.hpp>

#include "command/base/unusable.h"
#include "embedded_host/schema.h"

using nlohmann::json;
using NQRXZELT20::ILogger;
using NQRXZELT20::TCIMDateTime;
using NQRXZELT20::TCIMValue;
using testing::StartsWith;

namespace {

const TPluginIdentity kPlugin = {"A plug-in", "1.2", "1.0", 0};

class JsonReport : public testing::Test {
 protected:
  boost::shared_ptr<TCimStore> store = TCimStore::Create(GetSchema());

  TAnswer AnswerWith(const std::map<std::string, TCIMValue>& properties) {
    const auto instance = store->GetClass("QRXSG_DesktopMonitor", {})->CreateInstance({});
    for (const auto& [name, value] : properties) instance->SetProperty(name, value, {});
    instance->Commit({});
    TAnswer answer;
    answer.plugin = kPlugin;
    answer.requests.push_back({{"QRXSG_DesktopMonitor"}, store->TakeCommits(), {}});
    return answer;
  }

  json GetProperties(const std::map<std::string, TCIMValue>& properties) {
    return json::parse(MakeJsonReport(AnswerWith(properties)))["requests"][0]["instances"][0]["properties"];
  }
};

/// An output with a value for everything.
TOutput MakeOutput(unsigned int unit) {
  TEdidFacts facts;
  facts.isVersion1 = true;
  facts.productCode = 0x1234;
  facts.serialNumber = 0x12345678;
  facts.serial = TSerial{"305419896", ESerialSource::kNumber, ""};
  facts.preferredMode = {3840, 2160, 59.9966};
  facts.diagonalInches = 27.16;
  facts.hasValidChecksums = true;
  return {unit, "card0-DP-1", std::nullopt, "", facts, {0x00, 0xFF}};
}

}  // namespace

TEST_F(JsonReport, LeavesOutWhatAnOutputHasNoValueFor) {
  TAnswer answer;
  answer.outputs = {{0, "", std::nullopt, "it is broken", TEdidFacts(), {0x00, 0xFF}},
                    {1, "card0-DP-2", std::nullopt, "its EDID is missing", std::nullopt, {}}};
  EXPECT_EQ(json::parse(MakeJsonReport(answer))["outputs"], json::parse(R"([
    {"unit": 0, "deviceID": null, "reason": "it is broken", "checksums": false, "extensions": 0,
     "sha256": "06eb7d6a69ee19e5fbdf749018d3d2abfa04bcbd1365db312eb86dc7169389b8", "edid": "AP8="},
    {"unit": 1, "connector": "card0-DP-2", "deviceID": null, "reason": "its EDID is missing"}])"));
}

TEST_F(JsonReport, WritesRatesWithThreeDecimalsAndInchesWithOne) {
  TAnswer answer;
  answer.outputs = {MakeOutput(0)};
  answer.outputs[0].facts->preferredMode->refresh = 60;
  answer.outputs[0].facts->diagonalInches = 27;
  const std::string text = MakeJsonReport(answer);
  EXPECT_THAT(text, testing::HasSubstr("\"refresh\": 60.000\n"));
  EXPECT_THAT(text, testing::HasSubstr("\"diagonalInches\": 27.0,\n"));
}

TEST_F(JsonReport, HoldsTheWholeAnswer) {
  TAnswer answer = AnswerWith({{"DeviceID", TCIMValue("Monitor 1")}});
  answer.requests[0].log = {{ILogger::kDebug, "asked"}};
  answer.log = {{ILogger::kStatus, "begun"}, {ILogger::kDebug, "asked"}};
  answer.outputs = {MakeOutput(0)};
  answer.outputs[0].deviceId = "Monitor 1";
  EXPECT_EQ(json::parse(MakeJsonReport(answer)), json::parse(R"({
    "plugin": {"name": "A plug-in", "version": "1.2", "interfaceVersion": "1.0", "type": 0},
    "requests": [{
      "classes": ["QRXSG_DesktopMonitor"],
      "instances": [{
        "class": "QRXSG_DesktopMonitor",
        "path": "QRXSG_DesktopMonitor.DeviceID=\"Monitor 1\"",
        "properties": {"DeviceID": {"type": "string", "value": "Monitor 1"}}}],
      "log": [{"severity": "debug", "message": "asked"}]}],
    "outputs": [{"unit": 0, "connector": "card0-DP-1", "deviceID": "Monitor 1", "productCode": 4660, "extensions": 0,
                 "digital": false,
                 "serialNumber": 305419896, "serial": "305419896", "serialFrom": "number",
                 "preferredMode": {"width": 3840, "height": 2160, "refresh": 59.997},
                 "sha256": "06eb7d6a69ee19e5fbdf749018d3d2abfa04bcbd1365db312eb86dc7169389b8", 
                 "diagonalInches": 27.2, "checksums": true, "edid": "AP8="}],
    "log": [{"severity": "status", "message": "begun"}, {"severity": "debug", "message": "asked"}]})"));
}

TEST_F(JsonReport, GivesEachTypeItsOwnForm) {
  TCIMDateTime date;
  date.Set(2010, 1, 1, 6, 0, 0, 0, 0);
  typedef TCIMValue::TCIMType TType;
  EXPECT_EQ(GetProperties({
                {"Name", TCIMValue("n")},
                {"DPMSStandby", TCIMValue(true)},
                {"MinVertFreq", TCIMValue(static_cast<unsigned char>(50))},
                {"Bandwidth", TCIMValue(4294967295U)},
                {"Gamma", TCIMValue(2.2F)},
                {"ManufacturingDate", TCIMValue(date)},
                {"OperationalStatus", TCIMValue(TType(TType::kUint16), 1, {TCIMValue(static_cast<unsigned short>(2))})},
                {"StatusDescriptions", TCIMValue(TType(TType::kString), 0, {})},
            }),
            json::parse(R"({
              "Name": {"type": "string", "value": "n"},
              "DPMSStandby": {"type": "boolean", "value": true},
              "MinVertFreq": {"type": "uint8", "value": 50},
              "Bandwidth": {"type": "uint32", "value": 4294967295},
              "Gamma": {"type": "real32", "value": 2.2},
              "ManufacturingDate": {"type": "datetime", "value": "20100101060000.000000+000"},
              "OperationalStatus": {"type": "uint16[]", "value": [2]},
              "StatusDescriptions": {"type": "string[]", "value": []}})"));
}

TEST_F(JsonReport, WritesARealAsTheShortestDecimalOfTheSameFloat) {
  for (int hundredths = 100; hundredths < 400; ++hundredths) {
    const float value = static_cast<float>(hundredths) / 100.0F;
    const std::string text = MakeJsonReport(AnswerWith({{"Gamma", TCIMValue(value)}}));
    std::string shortest = static_cast<std::string>(TCIMValue(value));
    if (shortest.find('.') == std::string::npos) shortest += ".0";
    EXPECT_NE(text.find("\"value\": " + shortest + "\n"), std::string::npos) << shortest;
    EXPECT_EQ(std::strtof(shortest.c_str(), nullptr), value);
  }
}

TEST_F(JsonReport, HasNoNumberForARealThatIsNone) {
  EXPECT_TRUE(
      GetProperties({{"Gamma", TCIMValue(std::numeric_limits<float>::infinity())}})["Gamma"]["value"].is_null());
}

TEST_F(JsonReport, WritesANullValueAsNull) {
  EXPECT_EQ(
      GetProperties({{"Name", TCIMValue()}, {"SerialNumber", TCIMValue("")}}),
      json::parse(R"({"Name": {"type": "null", "value": null}, "SerialNumber": {"type": "string", "value": ""}})"));
}

TEST_F(JsonReport, ReplacesBytesThatAreNotText) {
  EXPECT_EQ(GetProperties({{"Name", TCIMValue("\xE2\x82"
                                              "A\x1B")}})["Name"]["value"],
            "\uFFFD\uFFFDA\u001B");
}

TEST_F(JsonReport, LeavesTheLogOutWhenToldTo) {
  TAnswer answer = AnswerWith({{"DeviceID", TCIMValue("Monitor 1")}});
  answer.requests[0].log = {{ILogger::kDebug, "asked"}};
  answer.log = answer.requests[0].log;
  json whole = json::parse(MakeJsonReport(answer));
  whole.erase("log");
  whole["requests"][0].erase("log");
  EXPECT_EQ(json::parse(MakeJsonReport(answer, ELogPart::kLeftOut)), whole);
  whole["machine"] = "m";
  EXPECT_EQ(json::parse(MakeMachineLine("m", answer, ELogPart::kLeftOut)), whole);
}

TEST_F(JsonReport, WritesARowForEachInstanceAndEachOutput) {
  typedef TCIMValue::TCIMType TType;
  TAnswer answer = AnswerWith(
      {{"DeviceID", TCIMValue("Monitor 1")},
       {"Gamma", TCIMValue(2.2F)},
       {"OperationalStatus", TCIMValue(TType(TType::kUint16), 1, {TCIMValue(static_cast<unsigned short>(2))})}});
  answer.outputs = {MakeOutput(0)};
  answer.identity = {"seventeen", "2026-11-21T21:30:00Z", "1.4.0"};
  const std::string rows = MakeRows("ws-17", answer);
  const std::size_t end = rows.find('\n');
  EXPECT_EQ(json::parse(rows.substr(0, end)), json::parse(R"({
    "machine": "ws-17", "collected": "2026-11-21T21:30:00Z", "version": "1.4.0", "class": "QRXSG_DesktopMonitor", "path": "QRXSG_DesktopMonitor.DeviceID=\"Monitor 1\"",
    "DeviceID": "Monitor 1", "Gamma": 2.2, "OperationalStatus": [2]})"));
  EXPECT_EQ(json::parse(rows.substr(end + 1)), json::parse(R"({
    "machine": "ws-17", "collected": "2026-11-21T21:30:00Z", "version": "1.4.0", "class": "output", "unit": 0, "connector": "card0-DP-1", "deviceID": null,
    "productCode": 4660, "extensions": 0, "digital": false, "serialNumber": 305419896, "serial": "305419896", "serialFrom": "number",
                 "preferredMode": {"width": 3840, "height": 2160, "refresh": 59.997},
    "sha256": "06eb7d6a69ee19e5fbdf749018d3d2abfa04bcbd1365db312eb86dc7169389b8", 
    "diagonalInches": 27.2, "checksums": true, "edid": "AP8="})"));
  EXPECT_EQ(MakeMachineRows("ws-17", answer), rows);
}

TEST_F(JsonReport, BeginsRowsWithWhoseTheyAre) {
  TAnswer answer = AnswerWith({{"DeviceID", TCIMValue("Monitor 1")}});
  answer.identity = {"seventeen", "2026-11-21T21:30:00Z", "1.4.0"};
  EXPECT_THAT(MakeRows("ws-17", answer),
              StartsWith(R"({"machine":"ws-17","collected":"2026-11-21T21:30:00Z","version":"1.4.0","class":)"));
  answer.identity.collected.clear();
  EXPECT_THAT(MakeRows("ws-17", answer), StartsWith(R"({"machine":"ws-17","version":"1.4.0","class":)"));
}

TEST_F(JsonReport, HasNoAnswerOfAMachineOfManyThatIsLargerThan64MiB) {
  const TAnswer answer = AnswerWith({{"Name", TCIMValue(std::string(std::size_t{64} * 1024 * 1024, 'x'))}});
  for (const auto& make : std::vector<std::function<void()>>{[&] { MakeMachineLine("m", answer, ELogPart::kKept); },
                                                             [&] { MakeMachineRows("m", answer); }}) {
    try {
      make();
      FAIL() << "it was made";
    } catch (const TUnusable& failure) {
      EXPECT_STREQ(failure.what(), "its answer is larger than 64 MiB");
    }
  }
  EXPECT_GT(MakeRows("m", answer).size(), std::size_t{64} * 1024 * 1024);
}

TEST_F(JsonReport, WritesNoRowsOfAnEmptyAnswer) { EXPECT_EQ(MakeRows("ws-17", TAnswer()), ""); }
