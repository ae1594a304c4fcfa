// The two JSON documents of captured machines, as texts.
#include "command/machine/machine_document.h"

#include <gmock/gmock.h>

#include "command/base/base64.h"
#include "command/base/unusable.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::StartsWith;

namespace {

typedef void (*TRead)(const std::string& text, const std::string& name, TMachineDocument& machine);

TMachineDocument ReadDocument(const std::string& text, TRead read = ReadMachineDocument) {
  TMachineDocument machine;
  read(text, "x.json", machine);
  return machine;
}

std::string GetDocumentFailure(const std::string& text, TRead read = ReadMachineDocument) {
  try {
    ReadDocument(text, read);
  } catch (const TUnusable& failure) {
    return failure.what();
  }
  return "no failure";
}

/// A machine in one file with these keys beside its version.
std::string Captured(const std::string& keys) { return R"({"captured": 1, )" + keys + "}"; }

/// The failure of such a machine, without the file's name.
std::string GetFailureOf(const std::string& keys) {
  const std::string failure = GetDocumentFailure(Captured(keys));
  return failure.substr(failure.find(": ") + 2);
}

std::string Edid(std::size_t bytes) { return EncodeBase64(std::string(bytes, '\x01')); }

/// {"0": VALUE, "1": VALUE, ...}
std::string MakeUnits(unsigned int first, unsigned int count, const std::string& value) {
  std::string units;
  for (unsigned int unit = first; unit < first + count; ++unit) {
    units += (units.empty() ? "\"" : ", \"") + std::to_string(unit) + "\": " + value;
  }
  return "{" + units + "}";
}

}  // namespace

TEST(MachineDocument, TellsWhenTheMachineWasCaptured) {
  EXPECT_EQ(ReadDocument(Captured(R"("collected": "2026-11-21T21:30:00Z")")).collected, "2026-11-21T21:30:00Z");
  EXPECT_EQ(ReadDocument(R"({"collected": "2026-11-21T21:30:00Z"})", ReadMachineJson).collected,
            "2026-11-21T21:30:00Z");
  EXPECT_EQ(ReadDocument(Captured(R"("systemName": "ws-17")")).collected, "");
}

TEST(MachineDocument, HasATimeInItsOneForm) {
  for (const char* const time : {R"("")", R"("yesterday")", R"("2026-11-21T22:30:00+01:00")"}) {
    EXPECT_EQ(GetFailureOf(std::string(R"("collected": )") + time),
              R"("collected" must be a time in UTC, such as 2026-11-21T21:30:00Z)");
  }
  EXPECT_EQ(GetFailureOf(R"("collected": 1795296600)"), R"("collected" must be a string)");
}

TEST(MachineDocument, TellsAllOfAMachine) {
  const TMachineDocument machine = ReadDocument(R"({
    "captured": 1,
    "systemName": "ws-17", "systemCreationClassName": "X", "systemType": -3, "provider": false,
    "bios": {"present": false, "memory": false, "ignoresUnit": true,
             "units": {"0": {"connector": "card0-DP-1", "path": "0000:01:00.0/DP-1", "failAtBlock": 1}, "7": {"errorAtBlock": 4294967295}}},
    "files": {"/etc/X11/xorg.conf": {"text": "\u00e9\u0000"}, "/etc/b": {"base64": "/wA="}, "/c": {"text": ""}},
    "edids": {"0": ")" + Edid(256) + R"(", "2": ""}})");
  EXPECT_EQ(machine.host.systemName, "ws-17");
  EXPECT_EQ(machine.host.systemCreationClassName, "X");
  EXPECT_EQ(machine.host.systemType, -3);
  EXPECT_FALSE(machine.host.provider);
  EXPECT_FALSE(machine.bios.present);
  EXPECT_FALSE(machine.bios.memory);
  EXPECT_TRUE(machine.bios.ignoresUnit);
  EXPECT_THAT(machine.connectors, ElementsAre(Pair(0, "card0-DP-1")));
  EXPECT_THAT(machine.paths, ElementsAre(Pair(0, "0000:01:00.0/DP-1")));
  ASSERT_THAT(machine.bios.units, SizeIs(3));
  EXPECT_EQ(machine.bios.units.at(0).failAtBlock, 1U);
  EXPECT_EQ(machine.bios.units.at(0).errorAtBlock, std::nullopt);
  EXPECT_EQ(machine.bios.units.at(0).edid, std::vector<std::uint8_t>(256, 1));
  EXPECT_EQ(machine.bios.units.at(7).errorAtBlock, 4294967295U);
  EXPECT_THAT(machine.bios.units.at(2).edid, IsEmpty());
  EXPECT_THAT(machine.files, ElementsAre(Pair("/c", ""), Pair("/etc/X11/xorg.conf", std::string("\xC3\xA9\0", 3)),
                                         Pair("/etc/b", std::string("\xFF\0", 2))));
}

TEST(MachineDocument, NeedsNothingButItsVersion) {
  const TMachineDocument machine = ReadDocument(R"({"captured": 1})");
  EXPECT_EQ(machine.host.systemCreationClassName, "CIM_UnitaryComputerSystem");
  EXPECT_TRUE(machine.host.provider);
  EXPECT_THAT(machine.bios.units, IsEmpty());
  EXPECT_THAT(machine.files, IsEmpty());
  EXPECT_THAT(machine.connectors, IsEmpty());
}

TEST(MachineDocument, IsKnownByItsVersion) {
  const std::string missing =
      "x.json: is not a captured machine: it has no \"captured\": 1; displayinfo capture FILE.json writes one";
  EXPECT_EQ(GetDocumentFailure("{}"), missing);
  EXPECT_EQ(GetDocumentFailure(R"({"plugin": {"captured": 1}, "requests": [{"captured": 1}]})"), missing);
  EXPECT_EQ(GetDocumentFailure(R"([{"captured": 1}])"), missing);
  EXPECT_EQ(GetDocumentFailure("5"), missing);
  for (const char* const version : {"\"1\"", "null", "true", "{}", "[1]"}) {
    EXPECT_EQ(GetDocumentFailure(R"({"captured": )" + std::string(version) + "}"), "x.json: \"captured\" must be 1");
  }
}

TEST(MachineDocument, OfAnotherVersionIsRefusedBeforeAnythingElseInIt) {
  const std::string reason = ", a format that this command does not read; it reads 1";
  EXPECT_EQ(GetDocumentFailure(R"({"captured": 2})"), "x.json: \"captured\" is 2" + reason);
  EXPECT_EQ(GetDocumentFailure(R"({"captured": 1.5})"), "x.json: \"captured\" is 1.5" + reason);
  EXPECT_EQ(GetDocumentFailure(R"({"captured": 0})"), "x.json: \"captured\" is 0" + reason);
  EXPECT_EQ(GetDocumentFailure(R"({"audio": [{"x": 1}], "bios": {"captured": 1}, "captured": 2})"),
            "x.json: \"captured\" is 2" + reason);
}

TEST(MachineDocument, HasNoKeyTwice) {
  EXPECT_EQ(GetFailureOf(R"("captured": 1)"), "\"captured\" appears twice");
  EXPECT_EQ(GetFailureOf(R"("systemType": 1, "provider": true, "systemType": 1)"), "\"systemType\" appears twice");
  EXPECT_EQ(GetFailureOf(R"("bios": {"units": {"0": {}, "1": {}, "0": {}}})"), "\"bios.units.0\" appears twice");
  EXPECT_EQ(GetFailureOf(R"("bios": {"units": {"0": {"failAtBlock": 1, "failAtBlock": 1}}})"),
            "\"bios.units.0.failAtBlock\" appears twice");
  EXPECT_EQ(GetFailureOf(R"("edids": {"0": "", "0": ""})"), "\"edids.0\" appears twice");
  EXPECT_EQ(GetFailureOf(R"("files": {"/a": {"text": ""}, "/\u0061": {"text": ""}})"), "\"files./a\" appears twice");
  EXPECT_EQ(GetFailureOf(R"("files": {"/a": {"text": "", "text": ""}})"), "\"files./a.text\" appears twice");
}

TEST(MachineDocument, MayHaveOneKeyInSeveralPlaces) {
  EXPECT_EQ(GetDocumentFailure(Captured(R"("bios": {"units": {"0": {"failAtBlock": 1}, "1": {"failAtBlock": 1}}},
                                   "edids": {"0": "", "1": ""})")),
            "no failure");
}

TEST(MachineDocument, HasEachFileAsTextOrAsBase64) {
  const std::string either = "\"files./a\" must have either \"text\" or \"base64\"";
  EXPECT_EQ(GetFailureOf(R"("files": {"/a": {}})"), either);
  EXPECT_EQ(GetFailureOf(R"("files": {"/b": {"text": ""}, "/a": {}})"), either);
  EXPECT_EQ(GetFailureOf(R"("files": {"/a": {"text": "", "base64": ""}})"), either);
  EXPECT_EQ(GetFailureOf(R"("files": {"/a": "text"})"), "\"files./a\" must be an object");
  EXPECT_EQ(GetFailureOf(R"("files": {"/a": {"text": 1}})"), "\"files./a.text\" must be a string");
  EXPECT_EQ(GetFailureOf(R"("files": {"/a": {"hex": ""}})"),
            "\"files./a.hex\" is not a known key; known here: base64, text");
  EXPECT_EQ(GetFailureOf(R"("files": [])"), "\"files\" must be an object");
}

TEST(MachineDocument, RefusesFilesThatAreNotBase64) {
  for (const char* const value : {"1", "\"Zg\"", "\"Zg==\\n\"", "\"Zh==\"", "null"}) {
    EXPECT_EQ(GetFailureOf(R"("files": {"/a": {"base64": )" + std::string(value) + "}}"),
              "\"files./a.base64\" must be bytes in base64, padded and without line breaks");
  }
}

TEST(MachineDocument, RefusesEdidsThatAreNoStrings) {
  for (const char* const value : {"1", "null", "{}", "[]"}) {
    EXPECT_EQ(GetFailureOf(R"("edids": {"0": )" + std::string(value) + "}"), "\"edids.0\" must be a string");
  }
}

TEST(MachineDocument, LosesOnlyTheUnitOfAnEdidThatIsNotBase64) {
  for (const char* const value : {"Zg", "Zg==\\n", "Zh==", "no"}) {
    const TMachineDocument machine =
        ReadDocument(Captured(R"("edids": {"0": ")" + std::string(value) + R"(", "1": ")" + Edid(128) + R"("})"));
    ASSERT_THAT(machine.damagedEdids, ElementsAre(Pair(0, testing::_)));
    EXPECT_EQ(Describe(machine.damagedEdids.at(0)),
              "x.json: \"edids.0\" is not base64, padded and without line breaks, so its unit counts as one without "
              "an EDID; capture the machine again");
    EXPECT_THAT(machine.bios.units.at(0).edid, IsEmpty());
    EXPECT_THAT(machine.bios.units.at(1).edid, SizeIs(128));
  }
}

TEST(MachineDocument, HasAbsolutePathsInTheOneWayToWriteThem) {
  for (const char* const path :
       {"", "/", "a", "./a", "a/b", "//a", "/a/", "/a//b", "/./a", "/a/.", "/../a", "/a/..", "/a/../b", "/a\\u0000b"}) {
    const std::string failure = GetFailureOf(R"("files": {")" + std::string(path) + R"(": {"text": ""}})");
    EXPECT_THAT(failure, testing::EndsWith("\" is not a plain absolute path, such as /etc/X11/xorg.conf")) << path;
  }
  for (const char* const path : {"/a", "/...", "/.a/..b", "/etc/X11/xorg.conf", "/a\\\\b", "/ "}) {
    EXPECT_EQ(GetDocumentFailure(Captured(R"("files": {")" + std::string(path) + R"(": {"text": ""}})")), "no failure")
        << path;
  }
}

TEST(MachineDocument, HasEdidsOfWholeBlocks) {
  const auto getDamage = [](std::size_t bytes) {
    return ReadDocument(Captured(R"("edids": {"3": ")" + Edid(bytes) + R"("})")).damagedEdids.at(3).fault;
  };
  EXPECT_EQ(getDamage(0), "is empty");
  EXPECT_EQ(getDamage(127), "has 127 bytes, which is not a multiple of 128");
  EXPECT_EQ(getDamage(257 * 128), "has more than 32768 bytes, the most of an EDID");
  EXPECT_EQ(ReadDocument(Captured(R"("edids": {"3": ")" + Edid(256 * 128) + R"("})")).bios.units.at(3).edid.size(),
            32768U);
}

TEST(MachineDocument, NamesUnitsInTheOneWayToWriteTheirNumbers) {
  for (const char* const name : {"", "x", "-1", "+1", "01", " 1", "1.0", "4294967296", "0x1"}) {
    const std::string reason = " is not a unit number; units are named 0, 1, 2, ...";
    EXPECT_EQ(GetFailureOf(R"("edids": {")" + std::string(name) + R"(": ""})"),
              "\"edids." + std::string(name) + "\"" + reason);
    EXPECT_EQ(GetFailureOf(R"("bios": {"units": {")" + std::string(name) + R"(": {}}})"),
              "\"bios.units." + std::string(name) + "\"" + reason);
  }
  EXPECT_EQ(GetDocumentFailure(Captured(R"("edids": {"4294967295": ""})")), "no failure");
}

TEST(MachineDocument, HasTwoHundredAndFiftySixUnitsAtMostHoweverTheyAreNamed) {
  const std::string tooMany = " is one unit too many; a captured machine has 256 at most";
  EXPECT_EQ(GetFailureOf(R"("edids": )" + MakeUnits(0, 257, "\"\"")), "\"edids.256\"" + tooMany);
  EXPECT_EQ(GetFailureOf(R"("bios": {"units": )" + MakeUnits(0, 257, "{}") + "}"), "\"bios.units.256\"" + tooMany);
  EXPECT_EQ(GetFailureOf(R"("bios": {"units": )" + MakeUnits(0, 128, "{}") + R"(}, "edids": )" +
                         MakeUnits(1000, 129, "\"\"")),
            "\"edids.1128\"" + tooMany);
  EXPECT_EQ(GetDocumentFailure(Captured(R"("bios": {"units": )" + MakeUnits(0, 256, "{}") + R"(}, "edids": )" +
                                        MakeUnits(0, 256, "\"\""))),
            "no failure");
}

TEST(MachineDocument, IsNoDeeperThanAMachineIs) {
  const std::string reason = "x.json: is more than 16 values deep, which no captured machine is";
  for (const char* const bracket : {"[", "{\"a\":"}) {
    std::string text = "{\"a\": ";
    for (int depth = 0; depth < 1000000; ++depth) text += bracket;
    EXPECT_EQ(GetDocumentFailure(text), reason);
  }
  EXPECT_EQ(GetDocumentFailure(R"({"a": {"a": {"a": {"a": {"a": {"a": {"a": {"a": {"a": {"a": {"a": {"a": {"a": {"a": )"
                               R"({"a": {}}}}}}}}}}}}}}}, "captured": 2})"),
            "x.json: \"captured\" is 2, a format that this command does not read; it reads 1");
  EXPECT_EQ(GetFailureOf(R"("systemName": [[)"), "\"systemName\" must be a string");
  EXPECT_EQ(GetFailureOf(R"("systemName": {"a": {)"), "\"systemName\" must be a string");
}

TEST(MachineDocument, SaysWhereItIsBroken) {
  EXPECT_THAT(GetDocumentFailure(""), StartsWith("x.json: is not JSON: parse error at line 1, column 1: "));
  EXPECT_THAT(GetDocumentFailure("{\"captured\": 1,\n\"provider\": tru}"),
              StartsWith("x.json: is not JSON: parse error at line 2, column 16: "));
  EXPECT_THAT(GetDocumentFailure("{\"captured\": 1} {}"),
              StartsWith("x.json: is not JSON: parse error at line 1, column 17"));
  EXPECT_THAT(GetDocumentFailure("{\"captured\": 1, \"systemName\": \"\xFF\"}"), StartsWith("x.json: is not JSON: "));
  EXPECT_EQ(GetFailureOf(R"("systemType": 1e999)"), "is not JSON: number overflow parsing '1e999'");
}

TEST(MachineDocument, DoesNotEndAtAZeroByte) {
  const std::string zero(1, '\0');
  EXPECT_EQ(GetDocumentFailure("{\"captured\": 1}" + zero + "more"), "x.json: is not JSON: it has a zero byte");
  EXPECT_EQ(GetDocumentFailure("{}" + zero, ReadMachineJson), "x.json: is not JSON: it has a zero byte");
}

TEST(MachineDocument, IsRefusedInAShortMessageWhateverItSays) {
  const std::string large(5000000, 'a');
  for (const std::string& text :
       {Captured("\"" + large + "\": 1"), Captured(R"("files": {"/)" + large + R"(": 1})"), "{\"captured\": \"" + large,
        Captured("\"systemType\": 1" + std::string(5000000, '0') + "x"),
        "{\"captured\": " + std::string(5000000, '1') + "}", Captured(R"("edids": {")" + large + R"(": ""})")}) {
    const std::string failure = GetDocumentFailure(text);
    EXPECT_THAT(failure, StartsWith("x.json: "));
    EXPECT_LT(failure.size(), 500U);
  }
}

TEST(MachineDocument, OfMachineJsonHasNoFilesEdidsOrVersion) {
  for (const char* const key : {"captured", "files", "edids"}) {
    EXPECT_EQ(GetDocumentFailure("{\"" + std::string(key) + "\": 1}", ReadMachineJson),
              "x.json: \"" + std::string(key) +
                  "\" is not a known key; known here: bios, collected, provider, systemCreationClassName, systemName, "
                  "systemType");
  }
}

TEST(MachineDocument, OfMachineJsonHasNoKeyTwice) {
  EXPECT_EQ(GetDocumentFailure(R"({"systemName": "a", "systemName": "b"})", ReadMachineJson),
            "x.json: \"systemName\" appears twice");
  EXPECT_EQ(GetDocumentFailure(R"({"bios": {}, "bios": {}})", ReadMachineJson), "x.json: \"bios\" appears twice");
}
