// Reads files of other programs, as texts in each form.
#include "command/machine/forms/forms.h"

#include <gmock/gmock.h>

#include "command/base/base64.h"
#include "command/base/unusable.h"
#include "tests/support/edid_builder.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::StartsWith;

namespace {

typedef std::vector<std::uint8_t> TBytes;

TBytes MakeEdid(const std::string& name, unsigned int extensions = 1) {
  TEdidBuilder builder;
  builder.Name(0, name);
  for (unsigned int extension = 0; extension < extensions; ++extension) builder.Extension({0x02, 0x03});
  return builder.Build();
}

const TBytes kEdid = MakeEdid("one");
const TBytes kOther = MakeEdid("two", 0);

/// Each byte as printf writes it, with something between them.
std::string Print(const TBytes& bytes, const char* format, const std::string& between) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    char number[8];
    std::snprintf(number, sizeof number, format, static_cast<unsigned int>(byte));
    text += (text.empty() ? "" : between) + number;
  }
  return text;
}

std::string Hex(const TBytes& bytes, const std::string& between = "") { return Print(bytes, "%02x", between); }

TBytes Cut(const TBytes& bytes, std::size_t begin, std::size_t size) {
  const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(begin);
  return {first, first + static_cast<std::ptrdiff_t>(size)};
}

/// Lines of 16 bytes, each after the offset as printf writes it.
std::string Dump(const TBytes& bytes, const char* offset, const std::string& between, const std::string& characters) {
  std::string text;
  for (std::size_t place = 0; place < bytes.size(); place += 16) {
    char number[64] = "";
    std::snprintf(number, sizeof number, offset, static_cast<unsigned int>(place));
    text += number + Hex(Cut(bytes, place, 16), between) + characters + "\n";
  }
  return text;
}

/// Lines of 16 bytes after something.
std::string Lines(const TBytes& bytes, const std::string& before) { return Dump(bytes, before.c_str(), "", ""); }

std::string Content(const TBytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

std::string ToUtf16(const std::string& text) {
  std::string wide = "\xFF\xFE";
  for (const char character : text) wide += std::string{character, '\0'};
  return wide;
}

TMachineDocument Read(const std::string& content, const std::string& name = "ws-17.txt") {
  TMachineDocument machine;
  ReadForm(content, name, machine);
  return machine;
}

/// The EDIDs of units 0, 1, ...
std::vector<TBytes> GetEdids(const TMachineDocument& machine) {
  std::vector<TBytes> edids;
  for (const auto& [number, unit] : machine.bios.units) {
    if (!unit.edid.empty()) edids.push_back(unit.edid);
  }
  return edids;
}

std::vector<TBytes> GetEdids(const std::string& content) { return GetEdids(Read(content)); }

std::string GetFailure(const std::string& content) {
  try {
    Read(content);
  } catch (const TUnusable& failure) {
    return failure.what();
  }
  return "no failure";
}

const std::string kRegistryKey =
    "[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Enum\\DISPLAY\\AUO139E\\4&302c6972&0&UID67568640\\"
    "Device Parameters";

std::string Registry(const std::string& keys) { return "Windows Registry Editor Version 5.00\r\n\r\n" + keys; }

}  // namespace

TEST(Forms, ReadAnEdidAsBytes) {
  EXPECT_THAT(GetEdids(Content(kEdid)), ElementsAre(kEdid));
  EXPECT_THAT(GetEdids(Content(kEdid) + Content(kOther)), ElementsAre(kEdid, kOther));
}

TEST(Forms, TakeACopyOfAnEdidForAPartOfIt) {
  const TBytes twice = Join(kEdid, kEdid);
  EXPECT_THAT(GetEdids(Content(twice)), ElementsAre(twice));
}

TEST(Forms, ReadAnEdidWhoseHeaderIsDamaged) {
  const TBytes damaged = TEdidBuilder().Byte(0, 7).Build();
  EXPECT_THAT(GetEdids(Content(damaged)), ElementsAre(damaged));
}

TEST(Forms, ReadWhatEdidDecodePrints) {
  EXPECT_THAT(GetEdids("edid-decode (hex):\n\n" + Dump(Cut(kEdid, 0, 128), "", " ", "") + "\n" +
                       Dump(Cut(kEdid, 128, 128), "", " ", "") +
                       "\n----------------\n\nBlock 0, Base EDID:\n\nedid-decode (hex):\n\n" +
                       Dump(kOther, "", " ", "") + "\n----------------\n"),
              ElementsAre(kEdid, kOther));
}

TEST(Forms, ReadDumpsInHex) {
  EXPECT_THAT(GetEdids(Dump(kEdid, "%08x: ", " ", "  ff.. aa  bb")), ElementsAre(kEdid));
  EXPECT_THAT(GetEdids(Dump(kEdid, "%08x  ", " ", "  |.ff aa|") + "00000100\n"), ElementsAre(kEdid));
  EXPECT_THAT(GetEdids("     0  1  2  3\n" + Dump(kEdid, "%02x: ", " ", "    ff aa")), ElementsAre(kEdid));
}

TEST(Forms, ReadADumpWhoseEqualRowsAreAStar) {
  const std::string zeros = Dump(TBytes(16), "", " ", "") + "*\n";
  TBytes edid = kEdid;  // its extension is zeros but for the first row and the checksum
  const std::string begin = Dump(Cut(edid, 0, 144), "%08x  ", " ", "") + "00000090  " + zeros;
  const std::string last = Hex(Cut(edid, 240, 16), " ");
  EXPECT_THAT(GetEdids(begin + "000000f0  " + last + "\n00000100\n"), ElementsAre(kEdid));
  std::fill(edid.begin() + 240, edid.end(), std::uint8_t{0});
  EXPECT_THAT(GetEdids(begin + "00000100\n"), ElementsAre(edid));
}

TEST(Forms, TakeOnlyTheEdidFromADumpOfAMemory) {
  TBytes memory = kOther;
  memory.resize(256, 0xFF);
  EXPECT_THAT(GetEdids(Dump(memory, "%02x: ", " ", "    ....")), ElementsAre(kOther));
}

TEST(Forms, ReadBareHex) {
  for (const char* const between : {"", " ", ":", ",", "\r\n"}) {
    EXPECT_THAT(GetEdids(Hex(kEdid, between) + "\n"), ElementsAre(kEdid)) << between;
  }
}

TEST(Forms, ReadArraysOfC) {
  const std::string list = Print(kEdid, "0x%02X", ",\n");
  EXPECT_THAT(GetEdids("{ " + list + " }"), ElementsAre(kEdid));
  EXPECT_THAT(GetEdids("/* { 00 } */ struct { char c; };\nunsigned char edid[] = { // 1 / 2\n" + list +
                       ",\n};\nunsigned int edid_len = 256;\nu8 b[128] = {" + Print(kOther, "0x%x", ", ") + "};"),
              ElementsAre(kEdid, kOther));
}

TEST(Forms, ReadDecimalNumbers) {
  EXPECT_THAT(GetEdids(Print(kEdid, "%u", " ")), ElementsAre(kEdid));
  EXPECT_THAT(GetEdids(ToUtf16(Print(kEdid, "%u", "\r\n"))), ElementsAre(kEdid));
  EXPECT_THAT(
      GetEdids("BlockContent : {" + Print(Cut(kEdid, 0, 128), "%u", ", ") + "}\nBlockType : 1\n\nBlockContent : {" +
               Print(Cut(kEdid, 128, 128), "%u", ", ") + "}\nBlockType : 255\n"),
      ElementsAre(kEdid));
}

TEST(Forms, ReadXrandrWithItsConnectors) {
  const TMachineDocument machine =
      Read("Screen 0: minimum 320 x 200\nDP-1 connected primary 2560x1440+0+0\n\tEDID: \n" + Lines(kEdid, "\t\t") +
           "DP-2 connected\n\tEDID_DATA:\n" + Lines(kOther, "\t\t") + "\tdithering: off\nDP-3 disconnected\n");
  EXPECT_THAT(GetEdids(machine), ElementsAre(kEdid, kOther));
  EXPECT_THAT(machine.connectors, ElementsAre(Pair(0, "DP-1"), Pair(1, "DP-2")));
}

TEST(Forms, ReadFromXrandrAnOutputWhoseConnectionIsUnknown) {
  EXPECT_THAT(Read("VGA-1 unknown connection\n\tEDID:\n" + Lines(kEdid, "\t\t")).connectors,
              ElementsAre(Pair(0, "VGA-1")));
}

TEST(Forms, ReadTheLogOfAnXServerWithItsConnectors) {
  const std::string source = "[    30.503] (II) modeset(0): ";
  const TMachineDocument machine =
      Read(source + "EDID for output DP-1\n" + source + "Manufacturer: X\n" + source + "EDID (in hex):\n" +
           Lines(Cut(kEdid, 0, 128), source + "\t") + "[ 30.6] (II) event4: 00ff\n" +
           Lines(Cut(kEdid, 128, 128), source + "\t") + source + "Printing\n" + source + "EDID for output DP-2\n");
  EXPECT_THAT(GetEdids(machine), ElementsAre(kEdid));
  EXPECT_THAT(machine.connectors, ElementsAre(Pair(0, "DP-1")));
}

TEST(Forms, TakeTheLastThatALogSaysOfAnOutput) {
  const std::string source = "(II) RADEON(0): ";
  const std::string first = source + "EDID for output DVI-0\n" + source + "EDID (in hex):\n" + Lines(kEdid, source);
  EXPECT_THAT(GetEdids(first + first), ElementsAre(kEdid));
  EXPECT_THAT(Read(first + source + "EDID for output DVI-0\n").bios.units, IsEmpty());
  EXPECT_THAT(
      GetEdids(first + source + "EDID for output DVI-0\n" + source + "EDID (in hex):\n" + Lines(kOther, source)),
      ElementsAre(kOther));
}

TEST(Forms, TakeEachEdidOnceFromALogThatNamesNoOutputs) {
  const std::string source = "(II) RADEON(0): ";
  const std::string first = source + "EDID (in hex):\n" + Lines(kEdid, source);
  EXPECT_THAT(GetEdids(first + source + "EDID (in hex):\n" + Lines(kOther, source) + first),
              ElementsAre(kEdid, kOther));
}

TEST(Forms, ReadAnExportOfTheRegistry) {
  const std::string text = Registry(kRegistryKey + "]\r\n\"EDID\"=hex:" + Hex(Cut(kEdid, 0, 100), ",") + ",\\\r\n  " +
                                    Hex(Cut(kEdid, 100, 156), ",") + "\r\n\"Other\"=dword:00000001\r\n");
  for (const std::string& content : {text, ToUtf16(text)}) {
    const TMachineDocument machine = Read(content);
    EXPECT_THAT(GetEdids(machine), ElementsAre(kEdid));
    EXPECT_THAT(machine.connectors, ElementsAre(Pair(0, "UID67568640")));
  }
}

TEST(Forms, TakeTheBlocksThatAreMissingInTheRegistryFromEdidOverride) {
  const std::string edid = kRegistryKey + "]\n\"EDID\"=hex:" + Hex(Cut(kEdid, 0, 128), ",") + "\n";
  const std::string block = kRegistryKey + "\\EDID_OVERRIDE]\n\"1\"=hex:" + Hex(Cut(kEdid, 128, 128), ",") + "\n";
  EXPECT_THAT(GetEdids(Registry(edid + block)), ElementsAre(kEdid));
  EXPECT_THAT(GetEdids(Registry(block + edid)), ElementsAre(kEdid));
  EXPECT_THAT(GetEdids(Registry(edid)), ElementsAre(Cut(kEdid, 0, 128)));
}

TEST(Forms, TakeNoBlockOfAnotherSizeFromEdidOverride) {
  EXPECT_THAT(GetEdids(Registry(kRegistryKey + "]\n\"EDID\"=hex:" + Hex(Cut(kEdid, 0, 128), ",") + "\n" + kRegistryKey +
                                "\\EDID_OVERRIDE]\n\"1\"=hex:" + Hex(Cut(kEdid, 128, 100), ",") + "\n")),
              ElementsAre(Cut(kEdid, 0, 128)));
}

TEST(Forms, SayThatAnEdidOfTheRegistryIsNoValueInHex) {
  EXPECT_EQ(Read(Registry(kRegistryKey + "]\n\"EDID\"=dword:00000001\n")).damagedEdids.at(0).fault,
            "is not a value of type hex");
}

TEST(Forms, TakeAMonitorOfTheRegistryOnceFromAllControlSets) {
  const std::string edid = "]\n\"EDID\"=hex:" + Hex(kEdid, ",") + "\n";
  std::string older = kRegistryKey;
  older.replace(older.find("CurrentControlSet"), 17, "ControlSet001");
  EXPECT_THAT(GetEdids(Registry(older + edid + kRegistryKey + edid)), ElementsAre(kEdid));
}

TEST(Forms, ReadIoregAndTakeWhatTheDisplayItselfSaid) {
  const std::string node = "+-o AppleDisplay  <class AppleDisplay>\n";
  const std::string edid = "  | |   \"IODisplayEDID\" = <" + Hex(kOther) + ">\n";
  const std::string original = "  | | \"IODisplayEDIDOriginal\" = <" + Hex(kEdid) + ">\n";
  EXPECT_THAT(GetEdids(node + edid), ElementsAre(kOther));
  EXPECT_THAT(GetEdids(node + edid + original + node + edid), ElementsAre(kEdid, kOther));
  EXPECT_THAT(GetEdids(edid + edid), ElementsAre(kOther, kOther));
  EXPECT_THAT(GetEdids(original + original), ElementsAre(kEdid, kEdid));
}

TEST(Forms, ReadTheInventoryOfGlpi) {
  const std::string base64 = EncodeBase64(Content(kEdid));
  const TMachineDocument machine = Read(
      R"({"action": "inventory", "deviceid": "ws-17-2026", "content": {"bios": {"x": [1, null, {"port": "no"}]},
          "hardware": {"name": "ws-17"}, "monitors": [{"port": "DP-1", "serial": "1", "base64": ")" +
      base64.substr(0, 76) + "\\n" + base64.substr(76) + R"(\n"}, {"base64": ")" + EncodeBase64(Content(kOther)) +
      R"("}]}})");
  EXPECT_EQ(machine.host.systemName, "ws-17");
  EXPECT_THAT(GetEdids(machine), ElementsAre(kEdid, kOther));
  EXPECT_THAT(machine.connectors, ElementsAre(Pair(0, "DP-1")));
}

TEST(Forms, ReadTheInventoryOfFusionInventory) {
  const TMachineDocument machine = Read(
      "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<REQUEST><CONTENT><HARDWARE><NAME>ws-17</NAME></HARDWARE>"
      "<MONITORS><BASE64>" +
      EncodeBase64(Content(kEdid)) + "\n</BASE64><PORT>DP-1</PORT></MONITORS></CONTENT>" +
      "<DEVICEID>ws-17-2026</DEVICEID></REQUEST>");
  EXPECT_EQ(machine.host.systemName, "ws-17");
  EXPECT_THAT(GetEdids(machine), ElementsAre(kEdid));
  EXPECT_THAT(machine.connectors, ElementsAre(Pair(0, "DP-1")));
}

TEST(Forms, NameAMachineAfterItsFileWhereTheContentDoesNot) {
  EXPECT_EQ(Read(Content(kEdid), "/a/ws-17.bin").host.systemName, "ws-17");
  EXPECT_EQ(Read(R"({"deviceid": "ws-17-2026", "content": {}})").host.systemName, "ws-17-2026");
  EXPECT_EQ(Read("<REQUEST><CONTENT/><DEVICEID>ws-17-2026</DEVICEID></REQUEST>").host.systemName, "ws-17-2026");
}

TEST(Forms, KnowTheConnectorOfAKernelsFileByItsPath) {
  EXPECT_THAT(Read(Content(kEdid), "/sys/class/drm/card0-HDMI-A-1/edid").connectors,
              ElementsAre(Pair(0, "card0-HDMI-A-1")));
  EXPECT_THAT(Read(Content(kEdid), "card1-DP-1.bin").connectors, ElementsAre(Pair(0, "card1-DP-1")));
  EXPECT_THAT(Read(Content(kEdid), "cards-1/cardboard-2").connectors, IsEmpty());
  EXPECT_THAT(Read(Content(kEdid), "card-DP-1.bin").connectors, IsEmpty());
}

TEST(Forms, TakeAnEmptyKernelsFileForAConnectorWithoutAnEdid) {
  const TMachineDocument machine = Read("", "card0-DP-1/edid");
  EXPECT_THAT(machine.connectors, ElementsAre(Pair(0, "card0-DP-1")));
  EXPECT_THAT(machine.damagedEdids, IsEmpty());
  EXPECT_EQ(Read("", "x.bin").damagedEdids.at(0).fault, "is empty");
}

TEST(Forms, LoseOnlyTheUnitOfADamagedEdidAndPutItLast) {
  const TMachineDocument machine = Read("A connected\n\tEDID:\n" + Lines(Cut(kEdid, 0, 64), "\t\t") +
                                        "B connected\n\tEDID:\n" + Lines(kEdid, "\t\t"));
  EXPECT_THAT(machine.connectors, ElementsAre(Pair(0, "B"), Pair(1, "A")));
  EXPECT_EQ(machine.bios.units.at(0).edid, kEdid);
  EXPECT_EQ(Describe(machine.damagedEdids.at(1)),
            "ws-17.txt: the EDID of output A has 64 bytes, which is not a multiple of 128, so its unit counts as one "
            "without an EDID; write the file again");
}

TEST(Forms, KeepTheOrderOfWholeEdidsHoweverLarge) {
  const TMachineDocument machine = Read("A connected\n\tEDID:\n" + Lines(MakeEdid("one", 255), "\t\t") +
                                        "B connected\n\tEDID:\n" + Lines(kOther, "\t\t"));
  EXPECT_THAT(machine.connectors, ElementsAre(Pair(0, "A"), Pair(1, "B")));
}

TEST(Forms, SayWhatIsWrongWithTheEdidOfAnInventory) {
  const TMachineDocument machine =
      Read(R"({"content": {"monitors": [{"port": "A"}, {"base64": "?"}, {"base64": "", "port": null}]}})");
  EXPECT_EQ(machine.damagedEdids.at(0).fault, "is not in the inventory");
  EXPECT_EQ(machine.damagedEdids.at(1).fault, "is not base64");
  EXPECT_EQ(machine.damagedEdids.at(2).fault, "is not in the inventory");
}

TEST(Forms, SayWhereADumpHasAHole) {
  std::string dump = Dump(kEdid, "%08x: ", " ", "  ....");
  dump.erase(dump.find("00000020"), dump.find("00000030") - dump.find("00000020"));
  EXPECT_EQ(Read(dump).damagedEdids.at(0).fault, "lacks the row at offset 32");
}

TEST(Forms, RefuseWhatTheyDoNotKnowAndSayWhatTheyExpect) {
  for (const std::string& content :
       {std::string("hello"), std::string(" \n"), std::string("{}"), std::string("[1]"), std::string(128, 'x'),
        std::string("\0\1\2", 3), std::string("<html/>"), std::string("{ 0x00 }"), Print(TBytes(128, 7), "%u", " ")}) {
    EXPECT_THAT(GetFailure(content), StartsWith("ws-17.txt: is in no known form; --machine takes a folder or file that "
                                                "displayinfo capture wrote, an EDID as bytes"))
        << content;
  }
  EXPECT_THAT(GetFailure("<REQUEST>"), StartsWith("ws-17.txt: is not XML: "));
  EXPECT_THAT(GetFailure("{\"a\""), StartsWith("ws-17.txt: is not JSON: "));
}

TEST(Forms, RefuseMoreOutputsThanAMachineCanHave) {
  std::string text;
  std::string inventory;
  for (unsigned int output = 0; output < 300; ++output) {
    text += "DP-" + std::to_string(output) + " connected\n\tEDID:\n" + Lines(kOther, "\t\t");
    inventory += std::string(output == 0 ? "" : ",") + "{}";
  }
  EXPECT_THAT(GetFailure(text), HasSubstr("DP-256 is one unit too many; a captured machine has 256 at most"));
  EXPECT_THAT(GetFailure(R"({"content": {"monitors": [)" + inventory + "]}}"), HasSubstr("is one unit too many"));
}

TEST(Forms, RefuseAnInventoryThatIsTooDeepOrSaysAThingTwice) {
  EXPECT_EQ(GetFailure("{\"a\": " + std::string(100, '[')),
            "ws-17.txt: is more than 16 values deep, which no inventory is");
  EXPECT_EQ(GetFailure(R"({"content": {"monitors": [{"port": "A", "port": "B"}]}})"),
            "ws-17.txt: \"content.monitors.port\" appears twice");
}

TEST(Forms, TakeAnEdidThatEndsBeforeItsCountOfExtensionsForADamagedOne) {
  EXPECT_EQ(Read(Content(Cut(kEdid, 0, 126))).damagedEdids.at(0).fault,
            "has 126 bytes, which is not a multiple of 128");
}

TEST(Forms, TakeAnEdidOfTooManyBlocksForADamagedOne) {
  EXPECT_EQ(Read(Content(kEdid) + std::string(257 * 128, '\1')).damagedEdids.at(0).fault,
            "has more than 32768 bytes, the most of an EDID");
}
