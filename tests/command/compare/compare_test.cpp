// Runs displayinfo compare as its users do.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "command/base/base64.h"
#include "tests/command/compare/compared_answer.h"
#include "tests/support/process.h"
#include "tests/support/reachable_build.h"
#include "tests/support/temporary_folder.h"

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const std::string kCommand = COMMAND_FILE;

/// The EDID of a monitor with these established timings.
std::vector<std::uint8_t> MakeFlat(unsigned int timings) {
  return TEdidBuilder().Manufacturer("ACM").Name(0, "Flat").Serial(1, "S3").Established(timings, 0).Build();
}

/// A configuration with one card whose screen has that many lines.
std::string MakeConfiguration(const std::string& board, const std::string& mode) {
  return "Section \"Device\"\n  Identifier \"Card0\"\n  BoardName \"" + board +
         "\"\n  BusID \"PCI:1:0:0\"\nEndSection\nSection \"Screen\"\n  Identifier \"Screen0\"\n  Device \"Card0\"\n"
         "  DefaultDepth 24\n  SubSection \"Display\"\n    Depth 24\n    Modes \"" +
         mode + "\"\n  EndSubSection\nEndSection\n";
}

class Comparison : public testing::Test {
 protected:
  Comparison() {
    MakeMachine("old", {{"edid/0.bin", MakeEdid("A190", "S1")}, {"edid/1.bin", MakeEdid("Wide", "S2")}});
    MakeMachine("new", {{"edid/0.bin", MakeEdid("Wide", "S2")}});
  }

  void MakeMachine(const std::string& name, const std::map<std::string, std::vector<std::uint8_t>>& edids,
                   const std::string& board = "Card") const {
    folder.Write(name + "/machine.json", R"({"systemName": ")" + name + "\"}");
    folder.Write(name + "/root/etc/X11/xorg.conf", MakeConfiguration(board, "800x600"));
    for (const auto& [file, bytes] : edids) folder.Write(name + "/" + file, std::string(bytes.begin(), bytes.end()));
  }

  TProcessResult RunIn(const std::string& line) const {
    return RunShell("cd " + folder.GetPath().string() + "\n" + line);
  }
  TProcessResult Run(const std::string& arguments) const { return RunIn(kCommand + " compare " + arguments); }

  void ExpectUnusable(const std::string& arguments, const std::string& message) const {
    const TProcessResult result = Run(arguments);
    EXPECT_EQ(result.status, 2) << arguments;
    EXPECT_EQ(result.errors, "displayinfo: " + message + "\n");
  }

  TTemporaryFolder folder;
};

const std::string kComparable = "; compare takes captured machines, and what --format json or --machines has written";

}  // namespace

TEST_F(Comparison, TellsPeopleWhatIsDifferent) {
  MakeMachine("old", {{"edid/2.bin", MakeFlat(0x21)}});
  MakeMachine(
      "new",
      {{"edid/0.bin", MakeEdid("Wide", "S2")}, {"edid/1.bin", MakeFlat(0x24)}, {"edid/2.bin", MakeEdid("Tube", "", 7)}},
      "Card 2");
  const TProcessResult result = Run("old new");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(result.output,
            "new\n"
            "  Monitor changed: Flat (ACM, product 0, serial S3, Monitor 2)\n"
            "    EDID: 2 of 128 bytes differ\n"
            "    Highest rate: 60 Hz (800 x 600) -> 75 Hz (640 x 480)\n"
            "    Largest mode: 800 x 600 at 60.317 Hz -> 640 x 480 at 75.000 Hz\n"
            "    Modes came: 640x480@75Hz\n"
            "    Modes gone: 800x600@60Hz\n"
            "    Modes of the EDID came: 640x480@75Hz\n"
            "    Modes of the EDID gone: 800x600@60.317Hz\n"
            "  Monitor came: Tube (ACM, product 0, serial 7, Monitor 3)\n"
            "  Monitor gone: A190 (ACM, product 0, serial S1, Monitor 1)\n"
            "  Controller changed: Card 2 (PCI:1:0:0)\n"
            "    Name: Card -> Card 2\n"
            "1 machine: 1 changed.\n");
}

TEST_F(Comparison, TellsProgramsAllModesThatThereWereAndAre) {
  MakeMachine("old", {{"edid/0.bin", MakeFlat(0x21)}});
  MakeMachine("new", {{"edid/0.bin", MakeFlat(0x24)}});
  const json changes = json::parse(Run("old new --format json").output)["machines"][0]["monitors"][0]["changes"];
  EXPECT_EQ(changes[2], json::parse(R"({"property": "Largest mode", "old": "800 x 600 at 60.317 Hz",
                                        "new": "640 x 480 at 75.000 Hz"})"));
  EXPECT_EQ(changes[3], json::parse(R"({"property": "Modes", "old": ["640x480@60Hz", "800x600@60Hz"],
                                        "new": ["640x480@60Hz", "640x480@75Hz"]})"));
  EXPECT_EQ(changes[4], json::parse(R"({"property": "Modes of the EDID", "old": ["640x480@59.94Hz", "800x600@60.317Hz"],
                                        "new": ["640x480@59.94Hz", "640x480@75Hz"]})"));
}

TEST_F(Comparison, TellsProgramsWhatIsDifferent) {
  const TProcessResult result = Run("--format json old new");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(json::parse(result.output), json::parse(R"({
      "machines": [{"machine": "new", "state": "changed", "controllers": [], "monitors": [
          {"state": "gone", "deviceID": "Monitor 1", "manufacturer": "ACM", "name": "A190", "productCode": 0,
           "serial": "S1"}]}],
      "counts": {"equal": 0, "came": 0, "gone": 0, "changed": 1, "unknown": 0}})"));
}

TEST_F(Comparison, TellsProgramsThatNothingIs) {
  const TProcessResult result = Run("--format json new new");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output,
            "{\n  \"machines\": [],\n"
            "  \"counts\": {\"equal\":1,\"came\":0,\"gone\":0,\"changed\":0,\"unknown\":0}\n}\n");
}

TEST_F(Comparison, FindsACaptureEqualToItsAnswersOfEachKind) {
  RunIn("printf 'old\\n' >list; " + kCommand + " --machine old --format json >answer.json; " + kCommand +
        " --machines list >lines; " + kCommand +
        " --machines list --no-log >small; sed 's/^{\"machine\":\"old\",/{/' " + "<small >one-line.json");
  for (const char* const left : {"old", "answer.json", "lines", "small", "one-line.json"}) {
    for (const char* const right : {"old", "answer.json", "lines", "small", "one-line.json"}) {
      const TProcessResult result = Run(std::string(left) + " " + right);
      EXPECT_EQ(result.status, 0) << left << ' ' << right << '\n' << result.output << result.errors;
      EXPECT_EQ(result.output, "1 machine: 1 equal.\n");
      EXPECT_EQ(result.errors, "");
    }
  }
}

TEST_F(Comparison, AsksACapturedMachineThatIsOneFile) {
  folder.Write("old.json", R"({"captured": 1, "edids": {"0": ")" + EncodeBase64([] {
                             const std::vector<std::uint8_t> edid = MakeEdid("Wide", "S2");
                             return std::string(edid.begin(), edid.end());
                           }()) +
                               "\"}}\n");
  EXPECT_EQ(Run("old.json old.json").status, 0);
  EXPECT_EQ(Run("old.json - <old.json").status, 0);
  EXPECT_THAT(Run("old.json new").output, HasSubstr("Controller came: Card (PCI:1:0:0)\n"));
}

TEST_F(Comparison, ReadsFilesInWhichOtherProgramsHaveWrittenEdidsDown) {
  const std::vector<std::uint8_t> edid = MakeEdid("Wide", "S2");
  const std::string bytes(edid.begin(), edid.end());
  folder.Write("old.edid", bytes);
  folder.Write("base64.json",
               R"({"action": "inventory", "content": {"monitors": [{"base64": ")" + EncodeBase64(bytes) + "\"}]}}\n");
  RunIn("od -An -v -tx1 old.edid | tr -d ' \\n' >bare.hex; od -An -v -tx1 old.edid >blanks.hex");
  for (const char* const same : {"old.edid", "base64.json", "bare.hex", "blanks.hex"}) {
    const TProcessResult result = Run("old.edid " + std::string(same));
    EXPECT_EQ(result.output, "1 machine: 1 equal.\n") << same << '\n' << result.errors;
    EXPECT_EQ(Run(std::string(same) + " - <old.edid").output, "1 machine: 1 equal.\n") << same;
  }
  const std::vector<std::uint8_t> other = MakeEdid("A190", "S1");
  folder.Write("new.edid", std::string(other.begin(), other.end()));
  EXPECT_EQ(Run("old.edid new.edid").output,
            "new.edid\n"
            "  Monitor came: A190 (ACM, product 0, serial S1, Monitor 1)\n"
            "  Monitor gone: Wide (ACM, product 0, serial S2, Monitor 1)\n"
            "1 machine: 1 changed.\n");
}

TEST_F(Comparison, ReadsEitherFromStandardInput) {
  RunIn(kCommand + " --machine old --format json >answer.json");
  EXPECT_THAT(Run("- new <answer.json").output, HasSubstr("Monitor gone: A190"));
  EXPECT_THAT(Run("new - <answer.json").output, HasSubstr("standard input\n  Monitor came: A190"));
  EXPECT_EQ(RunIn("cat answer.json | " + kCommand + " compare old -").status, 0);
}

TEST_F(Comparison, FindsMachinesOfFleetsByTheirNamesInAnyOrder) {
  MakeMachine("third", {});
  RunIn("printf '%s\\n' old new third | " + kCommand + " --machines - >before; printf '%s\\n' third old new | " +
        kCommand + " --machines - >after; printf '%s\\n' new fourth old | " + kCommand + " --machines - >later");
  const TProcessResult same = Run("before after");
  EXPECT_EQ(same.status, 0);
  EXPECT_EQ(same.output, "3 machines: 3 equal.\n");
  const TProcessResult result = Run("before later");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "fourth came\nthird gone\n4 machines: 2 equal, 1 came, 1 gone.\n");
}

TEST_F(Comparison, TellsOfMachinesOfTheSameNameInTheirOrder) {
  folder.Write("before", R"({"machine": "a", "requests": [{"classes": ["QRXSG_DesktopMonitor"]}], "outputs": []})"
                         "\n"
                         R"({"machine": "a", "error": "x"})"
                         "\n");
  folder.Write("after", R"({"machine": "a", "requests": [{"classes": ["QRXSG_DesktopMonitor"]}], "outputs": []})"
                        "\n");
  EXPECT_EQ(Run("before after").output, "a gone\n2 machines: 1 equal, 1 gone.\n");
}

TEST_F(Comparison, SaysThatAMachineCouldNotBeAskedAndNotThatItsMonitorsAreGone) {
  const std::string well = R"({"machine": "a", "requests": [], "outputs": []})"
                           "\n";
  folder.Write("well", well);
  folder.Write("broken", R"({"machine": "a", "error": "took longer"})"
                         "\n");
  const TProcessResult result = Run("well broken");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "a could not be asked\n  NEW: took longer\n1 machine: 1 could not be asked.\n");
  EXPECT_EQ(json::parse(Run("broken well --format json").output)["machines"],
            json::parse(R"([{"machine": "a", "state": "unknown", "oldError": "took longer"}])"));
}

TEST_F(Comparison, CallsNothingEqualWhereNoMachineCouldBeAskedThenOrNow) {
  const std::string broken = R"({"machine": "a", "error": "took longer"})"
                             "\n";
  folder.Write("broken", broken);
  const TProcessResult neither = Run("broken broken");
  EXPECT_EQ(neither.status, 2);
  EXPECT_EQ(neither.output,
            "a could not be asked\n  OLD: took longer\n  NEW: took longer\n1 machine: 1 could not be asked.\n");
  EXPECT_EQ(neither.errors, "displayinfo: there is nothing to compare, since no machine could be asked, then or now\n");
  folder.Write("mixed", broken +
                            R"({"machine": "b", "requests": [{"classes": ["QRXSG_DesktopMonitor"]}], "outputs": []})"
                            "\n");
  EXPECT_EQ(Run("mixed mixed").status, 0);
}

TEST_F(Comparison, FindsAWeekOfManufactureEqualInEachTimeZone) {
  for (const unsigned int year : {1995U, 2011U, 2020U}) {
    for (const unsigned int week : {1U, 14U, 44U, 53U, 54U}) {
      const TEdid edid = TEdidBuilder().Manufacturer("ACM").Serial(0, std::to_string(week)).Made(week, year).Build();
      MakeMachine(std::to_string(year) + "-" + std::to_string(week), {{"edid/0.bin", edid}});
    }
  }
  RunIn("ls -d 1* 2* >list");
  const std::string zones[] = {"UTC", "Europe/Berlin", "America/St_Johns", "Asia/Kathmandu", "Pacific/Apia"};
  for (const std::string& zone : zones) {
    const std::string file = zone.substr(zone.find('/') + 1);
    RunIn("TZ=" + zone + " " + kCommand + " --machines list --no-log >" + file);
    EXPECT_EQ(Run("UTC " + file).output, "15 machines: 15 equal.\n") << zone;
  }
  EXPECT_EQ(RunIn("diff UTC Berlin >diff").status, 1);
}

TEST_F(Comparison, TellsNamesApartThatDifferOnlyInBytesThatAreNotUtf8) {
  MakeMachine("this", {}, "K\xE4rte");
  MakeMachine("other", {}, "K\xF6rte");
  RunIn(kCommand + " --machine this --format json >this.json");
  EXPECT_EQ(Run("this other").output,
            "other\n  Controller changed: K\uFFFDrte (PCI:1:0:0)\n"
            "    Name: K\uFFFDrte -> K\uFFFDrte (its bytes that are not UTF-8 differ)\n1 machine: 1 changed.\n");
  EXPECT_EQ(Run("this this").status, 0);
  EXPECT_EQ(Run("this this.json").status, 0);
  EXPECT_EQ(Run("this.json this").status, 0);
  EXPECT_EQ(json::parse(Run("--format json this other").output)["counts"]["changed"], 1);
}

TEST_F(Comparison, TellsOfEachOfTheHeadsThatHaveOneIdentifier) {
  const std::string section = "Section \"Device\"\n  Identifier \"Card0\"\n  BusID \"PCI:1:0:0\"\nEndSection\n";
  folder.Write("one/root/etc/X11/xorg.conf", section);
  folder.Write("two/root/etc/X11/xorg.conf", section + section);
  EXPECT_THAT(Run("one two").output, HasSubstr("    Heads: Card0 -> Card0, Card0\n"));
}

TEST_F(Comparison, TellsThatMonitorsMovedFromMachineToMachine) {
  const auto write = [&](const char* file, const std::map<std::string, std::vector<std::uint8_t>>& monitors) {
    for (const char* const name : {"a", "b", "c"}) {
      std::filesystem::remove_all(folder.GetPath() / name);
      const auto monitor = monitors.find(name);
      if (monitor == monitors.end()) continue;
      MakeMachine(name, {{"edid/0.bin", monitor->second}});
    }
    RunIn("ls -d [abc] | " + kCommand + " --machines - --no-log >" + file);
  };
  write("before", {{"a", MakeEdid("A190", "S1")}, {"b", MakeEdid("Wide", "S2")}});
  write("after", {{"b", MakeEdid("A190", "S1")}, {"c", MakeEdid("Wide", "S2")}});
  const TProcessResult result = Run("before after");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output,
            "b\n  Monitor moved from a to b: A190 (ACM, product 0, serial S1, Monitor 1)\n"
            "c came\n  Monitor moved from b to c: Wide (ACM, product 0, serial S2, Monitor 1)\n"
            "a gone\n3 machines: 1 came, 1 gone, 1 changed.\n");
  EXPECT_EQ(json::parse(Run("--format json before after").output)["machines"][1], json::parse(R"({
      "machine": "c", "state": "came", "controllers": [], "monitors": [
          {"state": "moved", "from": "b", "to": "c", "deviceID": "Monitor 1", "manufacturer": "ACM", "name": "Wide",
           "productCode": 0, "serial": "S2"}]})"));
}

TEST_F(Comparison, SaysWhichSerialNumberIsDoubtful) {
  for (const char* const name : {"a", "b", "c"}) MakeMachine(name, {});
  MakeMachine("a", {{"edid/0.bin", MakeEdid("A190", "S1")}});
  MakeMachine("b", {{"edid/0.bin", MakeEdid("A190", "S1")}});
  RunIn("printf '%s\\n' a b c | " + kCommand + " --machines - --no-log >before");
  MakeMachine("c", {{"edid/0.bin", MakeEdid("A190", "S1")}});
  RunIn("rm a/edid/0.bin; printf '%s\\n' a b c | " + kCommand + " --machines - --no-log >after");
  EXPECT_EQ(
      Run("before after").output,
      "a\n  Monitor gone: A190 (ACM, product 0, serial S1, Monitor 1)\n"
      "c\n  Monitor came: A190 (ACM, product 0, serial S1, Monitor 1)\n"
      "Serial number doubtful: A190 (ACM, product 0, serial S1, Monitor 1): machines that have it: 2 of OLD, 2 of "
      "NEW\n3 machines: 1 equal, 2 changed.\n");
  const json report = json::parse(Run("--format json before after").output);
  EXPECT_EQ(report["doubtful"], json::parse(R"([{"deviceID": "Monitor 1", "manufacturer": "ACM", "name": "A190",
      "productCode": 0, "serial": "S1", "old": 2, "new": 2}])"));
}

TEST_F(Comparison, KnowsMachinesAgainByTheirSystemNamesWhereBothSidesHaveThem) {
  for (const char* const name : {"x/a", "x/b", "y/a", "y/b"}) {
    MakeMachine(name, {{"edid/0.bin", MakeEdid("A190", std::string("S") + name[2])}});
    folder.Write(std::string(name) + "/machine.json", std::string(R"({"systemName": "ws-)") + name[2] + "\"}");
  }
  RunIn("ls -d x/* | " + kCommand + " --machines - --no-log >before; ls -dr y/* | " + kCommand +
        " --machines - --no-log >after");
  EXPECT_EQ(Run("before after").output, "2 machines: 2 equal.\n");
  EXPECT_EQ(Run("before after --by name").output, "2 machines: 2 equal.\n");
  EXPECT_THAT(Run("before after --by path").output, HasSubstr("4 machines: 2 came, 2 gone.\n"));
}

TEST_F(Comparison, KnowsMachinesAgainByTheirPathsWhereTheirSystemNamesDoNotTellThemApart) {
  for (const char* const name : {"a", "b", "c"}) {
    MakeMachine(name, {{"edid/0.bin", MakeEdid("A190", name)}});
    folder.Write(std::string(name) + "/machine.json", R"({"systemName": "localhost"})");
  }
  RunIn("printf '%s\\n' a c | " + kCommand + " --machines - --no-log >before; printf '%s\\n' c b a | " + kCommand +
        " --machines - --no-log >after");
  EXPECT_EQ(Run("before after").output, "b came\n3 machines: 2 equal, 1 came.\n");
}

TEST_F(Comparison, TakesAMachineOfAnotherSystemNameForAnotherOne) {
  MakeMachine("a", {});
  RunIn("echo a | " + kCommand + " --machines - --no-log >before");
  folder.Write("a/machine.json", R"({"systemName": "renamed"})");
  RunIn("echo a | " + kCommand + " --machines - --no-log >after");
  EXPECT_EQ(Run("before after").output, "a came\na gone\n2 machines: 1 came, 1 gone.\n");
  EXPECT_EQ(Run("before after --by path").output, "1 machine: 1 equal.\n");
}

TEST_F(Comparison, WritesValuesOfStrangersAsTheyAre) {
  const auto write = [&](const char* name, const char* value) {
    folder.Write(name, R"({"requests": [{"classes": ["QRXSG_VideoController"], "instances": [{"class":
        "QRXSG_VideoController", "properties": {"DisplayId": {"value": "a"}, "EDID": {"value": )" +
                           std::string(value) + R"(}}}]}], "outputs": []})");
  };
  write("older.json", R"("!\u0085\u202e")");
  write("newer.json", R"([1, -2, 2.5, true, null, "a"])");
  EXPECT_THAT(Run("older.json newer.json").output,
              HasSubstr("    EDID: !\\u0085\\u202e -> 1, -2, 2.5, true, none, a\n"));
  EXPECT_THAT(Run("--format json older.json newer.json").output,
              HasSubstr(R"({"property":"EDID","old":"!\u0085\u202e","new":[1,-2,2.5,true,null,"a"]})"));
}

TEST_F(Comparison, TellsNamesOfFilesApartOnlyWhereLinesHaveNames) {
  folder.Write("a", R"({"machine": "a", "requests": [{"classes": ["QRXSG_DesktopMonitor"]}], "outputs": []})"
                    "\n");
  folder.Write("b", R"({"machine": "b", "requests": [{"classes": ["QRXSG_DesktopMonitor"]}], "outputs": []})"
                    "\n");
  folder.Write("nameless", R"({"requests": [{"classes": ["QRXSG_DesktopMonitor"]}], "outputs": []})"
                           "\n");
  EXPECT_EQ(Run("a b").output, "b came\na gone\n2 machines: 1 came, 1 gone.\n");
  EXPECT_EQ(Run("a nameless").status, 0);
  EXPECT_EQ(Run("nameless b").status, 0);
}

TEST_F(Comparison, CannotCompareWhatItCannotRead) {
  folder.Write("empty", "\n\n");
  folder.Write("rows", R"({"machine": "a", "class": "output"})"
                       "\n");
  folder.Write("lines", R"({"machine": "a", "error": "x"})"
                        "\n{\"machine\": \"b\"\n");
  folder.Write("nameless", R"({"requests": [], "outputs": []})"
                           "\n"
                           R"({"requests": [], "outputs": []})"
                           "\n");
  folder.Write("packed.gz", "\x1F\x8B\x08");
  folder.Write("empty-folder/file", "");
  ExpectUnusable("nowhere old", "nowhere: cannot be read: No such file or directory" + kComparable);
  ExpectUnusable("old empty", "empty: is empty, so there is nothing to compare");
  ExpectUnusable("rows old", "rows, line 1: has no \"requests\", so it is no answer" + kComparable);
  folder.Write("words", "no EDID\n");
  EXPECT_THAT(Run("words old").errors, StartsWith("displayinfo: words: is in no known form; "));
  ExpectUnusable("lines old",
                 "lines, line 2: is not JSON: parse error at column 16: syntax error while parsing object - "
                 "unexpected end of input; expected '}'" +
                     kComparable);
  folder.Write("broken", "\n\n{\"requests\": [],\n]");
  EXPECT_THAT(Run("old broken").errors,
              StartsWith("displayinfo: broken: is not JSON: parse error at line 4, column 1: "));
  ExpectUnusable("old nameless", "nameless, line 1: names no \"machine\", which each of several lines does");
  ExpectUnusable("old packed.gz",
                 "packed.gz: is compressed, and compare reads plain files; give it - and the unpacked text, as in zcat "
                 "FILE | displayinfo compare OLD -");
  ExpectUnusable("old empty-folder",
                 "empty-folder: is not a captured machine: it has neither machine.json nor edid/ nor root/");
  ExpectUnusable("old new --plugin nowhere.so",
                 "nowhere.so: no such plug-in; build it, or name another with --plugin FILE");
  ExpectUnusable("old - <&-", "standard input is closed" + kComparable);
  ExpectUnusable("old new >/dev/full", "standard output cannot be written: No space left on device");
}

TEST_F(Comparison, SaysWhichEdidIsDamaged) {
  folder.Write("new/edid/1.bin", "cut off");
  EXPECT_EQ(Run("old new").errors,
            "displayinfo: new/edid/1.bin: has 7 bytes, which is not a multiple of 128, so its unit counts as one "
            "without an EDID; capture the machine again\n");
}

TEST_F(Comparison, DoesNotTakeAControllerForGoneWhoseConfigurationMayNotBeRead) {
  const std::filesystem::path root = folder.GetPath() / "new/root";
  std::filesystem::permissions(folder.GetPath(), std::filesystem::perms::all);
  std::filesystem::permissions(root, std::filesystem::perms::none);
  const std::string asNobody = geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
  const TProcessResult result = RunIn(asNobody + TReachableBuild().GetCommand() + " compare old new");
  std::filesystem::permissions(root, std::filesystem::perms::all);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors,
            "displayinfo: 10 of the 10 X server configuration files could not be looked for in "
            "new/root: Permission denied; make it readable, or run as a user who may read it\n");
}

TEST_F(Comparison, CallsNothingEqualThatWasNotAskedForTheSame) {
  const std::string ask = kCommand + " --format json --machine old ";
  RunIn(ask + "QRXSG_DesktopMonitor >monitors 2>/dev/null; " + ask + "QRXSG_VideoHead >heads 2>/dev/null");
  const std::string message =
      ": there is nothing to compare, since OLD and NEW were not both asked for QRXSG_DesktopMonitor or "
      "QRXSG_VideoController; ask both for all classes";
  ExpectUnusable("monitors heads", "heads" + message);
  ExpectUnusable("heads heads", "heads" + message);
  EXPECT_EQ(Run("old monitors").status, 0);
}

TEST_F(Comparison, GivesUpAMachineThatTakesTooLong) {
  folder.Write("late/root/never-returns", "");
  ExpectUnusable("old late --timeout 1 --plugin " TROUBLE_PLUGIN_FILE,
                 "late: took longer than 1 s; --timeout SECONDS gives it longer");
}

TEST_F(Comparison, CannotCompareWithAPluginThatThrows) {
  folder.Write("late/root/throws", "");
  const TProcessResult result = Run("old late --plugin " TROUBLE_PLUGIN_FILE);
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.errors, HasSubstr("the plug-in failed while it was loaded"));
}

TEST_F(Comparison, EndsQuietlyWhenItsReaderHasGoneAndStillTellsByItsStatus) {
  const TProcessResult result = RunIn("{ " + kCommand + " compare old new; echo $? >&2; } | true");
  EXPECT_EQ(result.errors, "1\n");
}

TEST_F(Comparison, ObeysNothingThatAMonitorOrAMachineIsCalled) {
  MakeMachine("new", {{"edid/0.bin", MakeEdid("\x1B[31mred", "S9")}});
  folder.Write("named", R"({"machine": "\u001b[2J", "error": "\u001b[3J"})"
                        "\n");
  EXPECT_THAT(Run("old new").output, HasSubstr("Monitor came: \\x1b[31mred (ACM"));
  EXPECT_THAT(Run("named named").output, StartsWith("\\x1b[2J could not be asked\n  OLD: \\x1b[3J\n"));
}

TEST_F(Comparison, TakesTwoAndNotStandardInputTwice) {
  const auto expectWrongUsage = [&](const std::string& arguments, const std::string& message) {
    const TProcessResult result = Run(arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, StartsWith("displayinfo: " + message));
  };
  expectWrongUsage("old", "NEW is required");
  expectWrongUsage("", "OLD is required");
  expectWrongUsage("old new more", "The following argument was not expected: more");
  expectWrongUsage("- -", "OLD and NEW cannot both be standard input; name a file for one of them");
  expectWrongUsage("old new --format rows", "--format: rows not in {text,json}");
}
