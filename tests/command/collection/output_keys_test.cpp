#include "command/collection/output_keys.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <variant>
#include <vector>

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

namespace {

/// An output whose facts all differ.
TOutput MakeFullOutput() {
  TOutput output;
  output.unit = 1;
  output.connector = "card0-DP-1";
  output.path = "0000:01:00.0/DP-1";
  output.deviceId = "Monitor 2";
  output.identity = {"ACM-0003-2008.14-S", "serial"};
  output.edid = {0x00, 0xFF};
  output.resolutions = {{800, 600, 60}};
  TEdidFacts facts;
  facts.isVersion1 = true;
  facts.hasValidChecksums = true;
  facts.extensions = 2;
  facts.version = "1.4";
  facts.name = "A190";
  facts.serialText = "T";
  facts.texts = {"panel", "part"};
  facts.maker = "ACM";
  facts.productCode = 3;
  facts.serialNumber = 4;
  facts.serial = TSerial{"S", ESerialSource::kRule, "R"};
  facts.made = {14, 2008, false};
  facts.input = {true, "HDMI-a", 10};
  facts.imageSize = {380, 300};
  facts.aspectRatio = 1.27;
  facts.diagonalInches = 19;
  facts.preferredMode = {1920, 1080, 59.94, true};
  facts.modes = {{{1920, 1080, 59.94, true}, EModeSource::Detailed, EYcbcr420::Only},
                 {{1600, 1200, 60}, EModeSource::Vic, EYcbcr420::Also},
                 {{800, 600, 60.317}, EModeSource::Established, EYcbcr420::No}};
  facts.limits = {{30, 83}, {56, 76}, 140};
  facts.refreshRange = {48, 144, "FreeSync"};
  facts.hdr = {{"PQ", "HLG"}, 1000.5, 400, 0.05, "1", "V2"};
  facts.colorimetry = {"BT2020RGB"};
  facts.audio = {{"Linear PCM", 2, {44.1, 48}, {16, 24}}, {"AC-3", 6, {32}, {}}};
  facts.speakers = {"FL/FR"};
  facts.hdmi = {600, "4 lanes at 12 Gbps", true, {10, 12}};
  facts.tile = {5, 6, 7, 8, 2560, 2880};
  facts.contradictions = {"It contradicts itself."};
  output.facts = facts;
  return output;
}

std::string Write(std::monostate) { return "none"; }
std::string Write(bool value) { return value ? "true" : "false"; }
std::string Write(const TNumber& number) { return number.text; }
std::string Write(const std::string& text) { return '"' + text + '"'; }

template <typename T>
std::string Write(const std::vector<T>& values) {
  std::string text = "[";
  for (const T& value : values) text += (text == "[" ? "" : ", ") + Write(value);
  return text + "]";
}

/// Its keys that have a value, a line for each.
std::string Write(const TOutput& output) {
  std::string text;
  for (const TKeyGroup& group : GetKeyGroups()) {
    const std::size_t count = group.count == nullptr ? 1 : group.count(output);
    for (std::size_t element = 0; element < count; ++element) {
      for (const TOutputKey* const key : group.keys) {
        const TKeyValue value = key->get(output, element);
        if (value.index() == 0) continue;
        const std::string place = group.count == nullptr ? "" : "[" + std::to_string(element) + "]";
        text += group.name + place + (*group.name == '\0' ? "" : ".") + key->name + ": " +
                std::visit([](const auto& known) { return Write(known); }, value) + '\n';
      }
    }
  }
  return text;
}

}  // namespace

TEST(OutputKeys, AreExplainedInTheDocumentation) {
  std::ifstream file(DOCS_FOLDER "/json.md");
  const std::string text(std::istreambuf_iterator<char>(file), {});
  EXPECT_THAT(text, HasSubstr("\n\n" + MakeKeyTable() + "\n"));
}

TEST(OutputKeys, HaveANameOfTheirOwnAndASentence) {
  std::set<std::string> names;
  for (const TKeyGroup& group : GetKeyGroups()) {
    for (const TOutputKey* const key : group.keys) {
      EXPECT_TRUE(names.insert(std::string(group.name) + "." + key->name).second) << key->name;
      EXPECT_THAT(key->meaning, EndsWith(".")) << key->name;
    }
  }
}

TEST(OutputKeys, OfOneObjectAreTogether) {
  std::set<std::string> names;
  for (const TKeyGroup& group : GetKeyGroups()) {
    const bool isNew = *group.name == '\0' || names.insert(group.name).second;
    EXPECT_TRUE(isNew) << group.name;
  }
}

TEST(OutputKeys, OfAnEmptyOutputAreTheUnitAndTheDeviceId) {
  std::vector<std::string> names;
  for (const TKeyGroup& group : GetKeyGroups()) {
    for (const TOutputKey* const key : group.keys) {
      const bool hasValue = group.count == nullptr && key->get(TOutput(), 0).index() != 0;
      if (hasValue || IsAlwaysThere(*key)) names.emplace_back(key->name);
    }
  }
  EXPECT_THAT(names, ElementsAre("unit", "deviceID"));
}

TEST(OutputKeys, HaveTheValuesOfTheirFacts) {
  EXPECT_EQ(Write(MakeFullOutput()), R"(unit: 1
connector: "card0-DP-1"
path: "0000:01:00.0/DP-1"
deviceID: "Monitor 2"
identity: "ACM-0003-2008.14-S"
identityFrom: "serial"
serial: "S"
serialFrom: "rule"
alternativeSerial: "R"
maker: "ACM"
productCode: 3
serialNumber: 4
serialText: "T"
name: "A190"
texts: ["panel", "part"]
version: "1.4"
made.week: 14
made.year: 2008
sha256: "06eb7d6a69ee19e5fbdf749018d3d2abfa04bcbd1365db312eb86dc7169389b8"
checksums: true
extensions: 2
interface: "HDMI-a"
digital: true
bitsPerColour: 10
imageMillimetres.width: 380
imageMillimetres.height: 300
aspectRatio: 1.27
diagonalInches: 19.0
preferredMode.width: 1920
preferredMode.height: 1080
preferredMode.refresh: 59.940
preferredMode.interlaced: true
modes[0].width: 1920
modes[0].height: 1080
modes[0].refresh: 59.940
modes[0].interlaced: true
modes[0].ycbcr420: "only"
modes[0].from: "detailed"
modes[0].inClasses: false
modes[1].width: 1600
modes[1].height: 1200
modes[1].refresh: 60.000
modes[1].ycbcr420: "also"
modes[1].from: "vic"
modes[1].inClasses: false
modes[2].width: 800
modes[2].height: 600
modes[2].refresh: 60.317
modes[2].from: "established"
modes[2].inClasses: true
limits.minHz: 56
limits.maxHz: 76
limits.minKHz: 30
limits.maxKHz: 83
limits.maxClockMHz: 140
refreshRange.min: 48
refreshRange.max: 144
refreshRange.from: "FreeSync"
hdr.transfers: ["PQ", "HLG"]
hdr.maxLuminance: 1000.5
hdr.maxFrameAverageLuminance: 400
hdr.minLuminance: 0.05
hdr.hdr10Plus: "1"
hdr.dolbyVision: "V2"
colorimetry: ["BT2020RGB"]
audio[0].format: "Linear PCM"
audio[0].channels: 2
audio[0].ratesKHz: [44.1, 48]
audio[0].bits: [16, 24]
audio[1].format: "AC-3"
audio[1].channels: 6
audio[1].ratesKHz: [32]
speakers: ["FL/FR"]
hdmi.maxTmdsMHz: 600
hdmi.frl: "4 lanes at 12 Gbps"
hdmi.dsc: true
hdmi.deepColourBits: [10, 12]
tile.columns: 5
tile.rows: 6
tile.column: 7
tile.row: 8
tile.width: 2560
tile.height: 2880
contradictions: ["It contradicts itself."]
edid: "AP8="
)");
}

TEST(OutputKeys, OfAModelYearHaveNoYearOfManufacture) {
  TOutput output;
  output.facts.emplace();
  output.facts->isVersion1 = true;
  output.facts->made = {{}, 2008, true};
  EXPECT_THAT(Write(output), HasSubstr("\nmade.modelYear: 2008\n"));
  EXPECT_THAT(Write(output), testing::Not(HasSubstr("made.year")));
}

TEST(OutputKeys, OfAnHdmiSinkWithoutCompressionDoNotMentionIt) {
  TOutput output = MakeFullOutput();
  output.facts->hdmi->hasCompression = false;
  EXPECT_THAT(Write(output), testing::Not(HasSubstr("hdmi.dsc")));
}

TEST(OutputKeys, OfAnotherVersionAreThoseOfAnyEdid) {
  TOutput output = MakeFullOutput();
  output.deviceId.reset();
  output.reason = "its EDID is not one of version 1";
  output.facts->isVersion1 = false;
  output.identity = {};
  EXPECT_EQ(Write(output),
            "unit: 1\nconnector: \"card0-DP-1\"\npath: \"0000:01:00.0/DP-1\"\n"
            "reason: \"its EDID is not one of version 1\"\n"
            "sha256: \"06eb7d6a69ee19e5fbdf749018d3d2abfa04bcbd1365db312eb86dc7169389b8\"\n"
            "checksums: true\nextensions: 2\nedid: \"AP8=\"\n");
}

TEST(OutputKeys, ThatComeFromASerialNumberAreMarked) {
  std::vector<std::string> names;
  for (const TKeyGroup& group : GetKeyGroups()) {
    for (const TOutputKey* const key : group.keys) {
      if (key->hasSerial) names.emplace_back(key->name);
    }
  }
  EXPECT_THAT(names, ElementsAre("identity", "identityFrom", "serial", "serialFrom", "alternativeSerial",
                                 "serialNumber", "serialText", "sha256", "edid"));
}
