#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>

#include "command/base/base64.h"
#include "command/base/unusable.h"
#include "command/machine/captured_machine.h"
#include "command/machine/host_name.h"
#include "command/machine/machine.h"
#include "realmode/choose_bios.h"
#include "realmode/lrmi.h"
#include "tests/support/captured_machine_builder.h"
#include "tests/support/edid_builder.h"

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Field;
using testing::Pair;
using testing::StartsWith;

namespace {

constexpr const char* kNoFile = "is not a regular file inside the machine's folder";

/// The result of `call` for a user without privileges, to whom permissions apply.
std::string AsNobody(const std::function<std::string()>& call) {
  constexpr uid_t nobody = 65534;
  const uid_t user = geteuid();
  if (user == 0 && seteuid(nobody) != 0) return "root cannot become nobody";
  const std::string result = call();
  return seteuid(user) == 0 ? result : "nobody cannot become root again";
}

class CapturedMachine : public testing::Test {
 protected:
  ~CapturedMachine() override { ChooseVideoBios(nullptr); }

  TMachine Read() const { return ReadCapturedMachine(machine.GetPath()); }

  /// The error without the machine's folder in it.
  std::string GetFailure() const {
    try {
      Read();
    } catch (const TUnusable& failure) {
      const std::string text = failure.what();
      const std::string folder = machine.GetPath().string() + "/";
      return text.compare(0, folder.size(), folder) == 0 ? text.substr(folder.size()) : text;
    }
    return "no failure";
  }

  /// A line for each damaged EDID, without the machine's folder.
  std::string DescribeDamages() const {
    std::string lines;
    for (const auto& [unit, damage] : Read().damagedEdids) {
      lines += Describe(damage).substr(machine.GetPath().string().size() + 1) + "\n";
    }
    return lines;
  }

  std::string GetJsonFailure(const std::string& json) const {
    machine.Json(json);
    return GetFailure();
  }

  /// What the machine's BIOS does: "-" for a call that fails, otherwise AX in hexadecimal.
  std::string CallBios(unsigned int unit, unsigned int block) const {
    ChooseVideoBios(Read().bios);
    if (LRMI_init() == 0) return "no BIOS";
    void* const buffer = LRMI_alloc_real(128);
    if (buffer == nullptr) return "no memory";
    LRMI_regs registers = {};
    registers.eax = 0x4F15;
    registers.ebx = 1;
    registers.ecx = unit;
    registers.edx = block;
    registers.es = static_cast<unsigned short>(reinterpret_cast<std::uintptr_t>(buffer) / 16);
    if (LRMI_int(0x10, &registers) == 0) return "-";
    char text[16];
    std::snprintf(text, sizeof text, "%04X", registers.eax & 0xFFFF);
    return text;
  }

  TCapturedMachineBuilder machine;
};

}  // namespace

TEST_F(CapturedMachine, MayHaveADescriptionThatSaysNothing) {
  const TMachine read = Read();
  EXPECT_EQ(read.host.systemName, GetHostName());
  EXPECT_EQ(read.host.systemCreationClassName, "CIM_UnitaryComputerSystem");
  EXPECT_EQ(read.host.systemType, 2);
  EXPECT_TRUE(read.host.provider);
  EXPECT_EQ(read.host.files, nullptr);
  EXPECT_EQ(read.getBiosFailure(), "");
  EXPECT_EQ(read.edidOrigin.describe(0), "");
  EXPECT_EQ(CallBios(0, 0), "014F");
}

TEST_F(CapturedMachine, IsAnyFolderWithOneOfItsThreeParts) {
  fs::remove(machine.GetPath() / "machine.json");
  EXPECT_EQ(GetFailure(), machine.GetPath().string() +
                              ": is not a captured machine: it has neither machine.json nor edid/ nor root/");
  fs::create_directory(machine.GetPath() / "root");
  EXPECT_EQ(GetFailure(), "no failure");
  fs::remove(machine.GetPath() / "root");
  fs::create_directory(machine.GetPath() / "edid");
  EXPECT_EQ(GetFailure(), "no failure");
}

TEST_F(CapturedMachine, HasItsOwnFiles) {
  machine.File("root/etc/X11/xorg.conf", "its own");
  const TMachine read = Read();
  EXPECT_EQ(read.host.files->Read("/etc/X11/xorg.conf"), "its own");
  EXPECT_FALSE(read.host.files->Exists("/etc/passwd"));
  EXPECT_FALSE(read.host.files->Exists("/../machine.json"));
}

TEST_F(CapturedMachine, TellsWhichOutputAnEdidWasReadFrom) {
  machine.Json(R"({"bios": {"units": {"1": {"connector": "card0-DP-2"}}}})").Edid(1, TEdidBuilder().Build());
  const TMachine read = Read();
  EXPECT_EQ(read.connectors.at(1), "card0-DP-2");
  EXPECT_EQ(read.edidOrigin.describe(1), "card0-DP-2");
  EXPECT_EQ(read.edidOrigin.describe(0), "");
}

TEST_F(CapturedMachine, TellsTheHostWhatItIs) {
  machine.Json(R"({"systemName": "ws-17", "systemCreationClassName": "X", "systemType": -3, "provider": false})");
  const TMachine read = Read();
  EXPECT_EQ(read.host.systemName, "ws-17");
  EXPECT_EQ(read.host.systemCreationClassName, "X");
  EXPECT_EQ(read.host.systemType, -3);
  EXPECT_FALSE(read.host.provider);
}

TEST_F(CapturedMachine, AnswersWithItsEdids) {
  machine.Edid(0, TEdidBuilder().Extension({0x02}).Build()).Edid(12, TEdidBuilder().Build());
  EXPECT_EQ(CallBios(0, 0), "004F");
  EXPECT_EQ(CallBios(0, 1), "004F");
  EXPECT_EQ(CallBios(0, 2), "014F");
  EXPECT_EQ(CallBios(1, 0), "014F");
  EXPECT_EQ(CallBios(12, 0), "004F");
}

TEST_F(CapturedMachine, MayHaveNoBios) {
  machine.Json(R"({"bios": {"present": false}})");
  EXPECT_EQ(CallBios(0, 0), "no BIOS");
}

TEST_F(CapturedMachine, MayHaveNoRealModeMemory) {
  machine.Json(R"({"bios": {"memory": false}})");
  EXPECT_EQ(CallBios(0, 0), "no memory");
}

TEST_F(CapturedMachine, MayIgnoreTheUnit) {
  machine.Json(R"({"bios": {"ignoresUnit": true}})").Edid(0, TEdidBuilder().Build());
  EXPECT_EQ(CallBios(7, 0), "004F");
}

TEST_F(CapturedMachine, MayFailAtABlock) {
  machine.Json(R"({"bios": {"units": {"1": {"failAtBlock": 1}}}})").Edid(1, TEdidBuilder().Extension({0x02}).Build());
  EXPECT_EQ(CallBios(1, 0), "004F");
  EXPECT_EQ(CallBios(1, 1), "-");
}

TEST_F(CapturedMachine, MayAnswerAnErrorAtABlock) {
  machine.Json(R"({"bios": {"units": {"0": {"errorAtBlock": 0}}}})").Edid(0, TEdidBuilder().Build());
  EXPECT_EQ(CallBios(0, 0), "014F");
}

TEST_F(CapturedMachine, MustExist) {
  try {
    ReadCapturedMachine("/no/such/folder");
    FAIL();
  } catch (const TUnusable& failure) {
    EXPECT_STREQ(failure.what(),
                 "/no/such/folder: is not a captured machine: No such file or directory; --machine takes a folder or a "
                 "file that exists");
  }
}

TEST_F(CapturedMachine, SaysThatItsNameIsTooLong) {
  const std::string name(300, 'n');
  try {
    ReadCapturedMachine(name);
    FAIL();
  } catch (const TUnusable& failure) {
    EXPECT_EQ(failure.what(), name +
                                  ": is not a captured machine: File name too long; --machine takes a folder or a "
                                  "file that exists");
  }
}

TEST_F(CapturedMachine, HasAKeyOnce) {
  EXPECT_EQ(GetJsonFailure(R"({"provider": true, "provider": false})"), "machine.json: \"provider\" appears twice");
}

TEST_F(CapturedMachine, HasAMachineJsonOfAMegabyteAtMost) {
  EXPECT_EQ(GetJsonFailure("{}" + std::string(1024 * 1024 - 2, ' ')), "no failure");
  EXPECT_EQ(GetJsonFailure("{}" + std::string(1024 * 1024 - 1, ' ')),
            "machine.json: is larger than 1048576 bytes, which no such file needs");
}

TEST_F(CapturedMachine, HasTwoHundredAndFiftySixUnitsAtMost) {
  std::string units;
  for (unsigned int unit = 0; unit < 128; ++unit) {
    units += (units.empty() ? "\"" : ", \"") + std::to_string(unit) + "\": {}";
    machine.Edid(1000 + unit, {});  // a damaged one counts too
  }
  EXPECT_EQ(GetJsonFailure("{\"bios\": {\"units\": {" + units + "}}}"), "no failure");
  machine.Edid(1000 + 128, {});
  EXPECT_THAT(GetFailure(), EndsWith(".bin: is one unit too many; a captured machine has 256 at most"));
}

TEST_F(CapturedMachine, NamesAnUnknownKeyAndTheKnownOnes) {
  EXPECT_EQ(
      GetJsonFailure(R"({"sytemName": "x"})"),
      "machine.json: \"sytemName\" is not a known key; known here: bios, collected, provider, systemCreationClassName, "
      "systemName, systemType");
  EXPECT_EQ(GetJsonFailure(R"({"bios": {"absent": true}})"),
            "machine.json: \"bios.absent\" is not a known key; known here: ignoresUnit, memory, present, units");
  EXPECT_EQ(
      GetJsonFailure(R"({"bios": {"units": {"0": {"failAt": 1}}}})"),
      "machine.json: \"bios.units.0.failAt\" is not a known key; known here: connector, errorAtBlock, failAtBlock, "
      "path");
}

TEST_F(CapturedMachine, NamesAValueOfTheWrongType) {
  const std::pair<const char*, const char*> cases[] = {
      {R"([])", "the document must be an object"},
      {R"({"systemName": 1})", "\"systemName\" must be a string"},
      {R"({"systemCreationClassName": null})", "\"systemCreationClassName\" must be a string"},
      {R"({"systemType": "2"})", "\"systemType\" must be a whole number of 32 bits"},
      {R"({"systemType": 2.5})", "\"systemType\" must be a whole number of 32 bits"},
      {R"({"systemType": 2147483648})", "\"systemType\" must be a whole number of 32 bits"},
      {R"({"systemType": 18446744073709551615})", "\"systemType\" must be a whole number of 32 bits"},
      {R"({"provider": 1})", "\"provider\" must be true or false"},
      {R"({"bios": true})", "\"bios\" must be an object"},
      {R"({"bios": {"present": "yes"}})", "\"bios.present\" must be true or false"},
      {R"({"bios": {"units": []}})", "\"bios.units\" must be an object"},
      {R"({"bios": {"units": {"first": {}}}})",
       "\"bios.units.first\" is not a unit number; units are named 0, 1, 2, ..."},
      {R"({"bios": {"units": {"-1": {}}}})", "\"bios.units.-1\" is not a unit number; units are named 0, 1, 2, ..."},
      {R"({"bios": {"units": {"01": {}}}})", "\"bios.units.01\" is not a unit number; units are named 0, 1, 2, ..."},
      {R"({"bios": {"units": {"0": 1}}})", "\"bios.units.0\" must be an object"},
      {R"({"bios": {"units": {"0": {"connector": 1}}}})", "\"bios.units.0.connector\" must be a string"},
      {R"({"bios": {"units": {"0": {"failAtBlock": -1}}}})",
       "\"bios.units.0.failAtBlock\" must be a block number: 0, 1, 2, ..."},
      {R"({"bios": {"units": {"0": {"errorAtBlock": true}}}})",
       "\"bios.units.0.errorAtBlock\" must be a block number: 0, 1, 2, ..."},
  };
  for (const auto& [json, failure] : cases) {
    EXPECT_EQ(GetJsonFailure(json), std::string("machine.json: ") + failure) << json;
  }
}

TEST_F(CapturedMachine, SaysWhereTheJsonIsBroken) {
  const std::string failure = GetJsonFailure("{\"provider\": tru}");
  EXPECT_EQ(failure.find("machine.json: is not JSON: parse error at line 1, column "), 0U) << failure;
}

TEST_F(CapturedMachine, NamesTheFileOfANumberThatNoTypeHolds) {
  EXPECT_EQ(GetJsonFailure(R"({"systemType": 1e999})"), "machine.json: is not JSON: number overflow parsing '1e999'");
}

TEST_F(CapturedMachine, LosesOnlyTheUnitOfAnEdidThatIsNotWholeBlocks) {
  machine.Edid(0, std::vector<std::uint8_t>(129)).Edid(1, TEdidBuilder().Build());
  EXPECT_EQ(DescribeDamages(),
            "edid/0.bin: has 129 bytes, which is not a multiple of 128, so its unit counts as one without an EDID; "
            "capture the machine again\n");
  EXPECT_EQ(CallBios(0, 0), "014F");
  EXPECT_EQ(CallBios(1, 0), "004F");
}

TEST_F(CapturedMachine, TellsOfEveryDamagedEdidWhatIsWrongWithIt) {
  machine.Edid(0, {}).Edid(1, std::vector<std::uint8_t>(257 * 128)).Edid(2, std::vector<std::uint8_t>(256 * 128));
  machine.Edid(3, TEdidBuilder().Build()).Edid(4, std::vector<std::uint8_t>(127));
  EXPECT_THAT(Read().damagedEdids,
              ElementsAre(Pair(0, Field(&TDamagedEdid::fault, "is empty")),
                          Pair(1, Field(&TDamagedEdid::fault, "has more than 32768 bytes, the most of an EDID")),
                          Pair(4, Field(&TDamagedEdid::fault, "has 127 bytes, which is not a multiple of 128"))));
}

TEST_F(CapturedMachine, LosesOnlyTheUnitOfAnEdidThatMayNotBeRead) {
  machine.Edid(0, TEdidBuilder().Build());
  fs::permissions(machine.GetPath(), fs::perms::all);
  fs::permissions(machine.GetPath() / "edid/0.bin", fs::perms::none);
  const std::string damages = AsNobody([&] { return DescribeDamages(); });
  EXPECT_EQ(damages,
            "edid/0.bin: cannot be read: Permission denied, so its unit counts as one without an EDID; check its "
            "permissions\n");
}

TEST_F(CapturedMachine, RefusesAnEdidThatIsNotNamedAfterAUnit) {
  machine.File("edid/left.bin", std::string(128, '\0'));
  EXPECT_EQ(GetFailure(), "edid/left.bin: is not named after a unit; call it 0.bin, 1.bin, ...");
}

TEST_F(CapturedMachine, RefusesASecondNameOfAUnit) {
  machine.File("edid/0.bin", std::string(128, '\0'));
  machine.File("edid/00.bin", std::string(128, '\xFF'));
  EXPECT_EQ(GetFailure(), "edid/00.bin: is not named after a unit; call it 0.bin, 1.bin, ...");
}

TEST_F(CapturedMachine, MayHaveNotesBesideTheEdids) {
  machine.File("edid/README", "where they came from");
  EXPECT_EQ(GetFailure(), "no failure");
}

TEST_F(CapturedMachine, TakesNothingButAFileForAnEdid) {
  fs::create_directories(machine.GetPath() / "edid/0.bin");
  ASSERT_EQ(mkfifo((machine.GetPath() / "edid/1.bin").c_str(), 0600), 0);
  fs::create_symlink("nothing", machine.GetPath() / "edid/2.bin");
  fs::create_symlink("3.bin", machine.GetPath() / "edid/3.bin");
  for (const auto& [unit, damage] : Read().damagedEdids) EXPECT_EQ(damage.fault, kNoFile);
  EXPECT_EQ(Read().damagedEdids.size(), 4U);
}

TEST_F(CapturedMachine, DoesNotWaitForAFifo) {
  fs::remove(machine.GetPath() / "machine.json");
  ASSERT_EQ(mkfifo((machine.GetPath() / "machine.json").c_str(), 0600), 0);
  EXPECT_EQ(GetFailure(), "machine.json: must be a regular file inside the machine's folder");
}

TEST_F(CapturedMachine, RefusesAnEdidFolderThatIsAFile) {
  machine.File("edid", "");
  EXPECT_EQ(GetFailure(), "edid: must be a folder inside the machine's folder");
}

TEST_F(CapturedMachine, MayLinkItsFilesToEachOther) {
  machine.Edid(1, TEdidBuilder().Build());
  fs::create_symlink("1.bin", machine.GetPath() / "edid/0.bin");
  EXPECT_EQ(CallBios(0, 0), "004F");
}

TEST_F(CapturedMachine, RefusesEveryLinkThatLeadsOutOfIt) {
  const TTemporaryFolder elsewhere;
  elsewhere.Write("0.bin", std::string(128, '\0'));
  const std::string file = elsewhere.GetPath() / "0.bin";
  const struct {
    const char* name;
    std::string target;
    const char* kind;
  } links[] = {
      {"machine.json", file, "regular file"},
      {"edid", elsewhere.GetPath().string(), "folder"},
      {"root", "/", "folder"},
      {"root", "..", "folder"},
  };
  fs::remove(machine.GetPath() / "machine.json");
  for (const auto& link : links) {
    fs::create_symlink(link.target, machine.GetPath() / link.name);
    EXPECT_EQ(GetFailure(), std::string(link.name) + ": must be a " + link.kind + " inside the machine's folder");
    fs::remove(machine.GetPath() / link.name);
  }
  fs::create_directory(machine.GetPath() / "edid");
  fs::create_symlink(file, machine.GetPath() / "edid/0.bin");
  EXPECT_THAT(Read().damagedEdids, ElementsAre(Pair(0, Field(&TDamagedEdid::fault, kNoFile))));
  EXPECT_EQ(CallBios(0, 0), "014F");
}

TEST_F(CapturedMachine, RefusesALinkToNothing) {
  fs::remove(machine.GetPath() / "machine.json");
  fs::create_symlink("nothing", machine.GetPath() / "machine.json");
  EXPECT_EQ(GetFailure(), "machine.json: must be a regular file inside the machine's folder");
}

namespace {

/// Machines that are no folders.
class MachineInOneFile : public testing::Test {
 protected:
  fs::path Path(const std::string& name = "ws-17.json") const { return folder.GetPath() / name; }

  /// The error without the path, which it begins with.
  std::string GetFailure(const std::string& name = "ws-17.json") const {
    try {
      ReadCapturedMachine(Path(name));
    } catch (const TUnusable& failure) {
      EXPECT_THAT(failure.what(), StartsWith(Path(name).string() + ": "));
      return std::string(failure.what()).substr(Path(name).string().size() + 2);
    }
    return "no failure";
  }

  TTemporaryFolder folder;
};

}  // namespace

TEST_F(MachineInOneFile, IsServedFromMemory) {
  folder.Write("ws-17.json", R"({"captured": 1, "systemName": "packed", "files": {"/etc/a": {"text": "A"}}})");
  const TMachine machine = ReadCapturedMachine(Path());
  fs::remove(Path());
  EXPECT_EQ(machine.host.systemName, "packed");
  EXPECT_EQ(machine.host.files->Read("/etc/a"), "A");
  EXPECT_FALSE(machine.host.files->Exists("/etc/passwd"));
}

TEST_F(MachineInOneFile, HasTheHostsNameUnlessItSaysAnother) {
  folder.Write("ws-17.json", R"({"captured": 1})");
  EXPECT_EQ(ReadCapturedMachine(Path()).host.systemName, GetHostName());
}

TEST_F(MachineInOneFile, MayHaveAnyName) {
  for (const char* const name : {"ws-17", "ws-17.txt", "machine.json", ".json", "ws-17.tar"}) {
    folder.Write(name, R"({"captured": 1})");
    EXPECT_EQ(GetFailure(name), "no failure");
  }
}

TEST_F(MachineInOneFile, NamesItselfForWhatIsWrongInIt) {
  folder.Write("ws-17.json", R"({"captured": 1, "nonsense": 1})");
  EXPECT_THAT(GetFailure(),
              StartsWith("\"nonsense\" is not a known key; known here: bios, captured, collected, edids, files, "));
}

TEST_F(MachineInOneFile, HasSixtyFourMebibytesAtMost) {
  folder.Write("ws-17.json", R"({"captured": 1)");
  fs::resize_file(Path(), 64 * 1024 * 1024 + 1);
  EXPECT_EQ(GetFailure(), "is larger than 67108864 bytes, which no such file needs");
}

TEST_F(MachineInOneFile, IsNotPacked) {
  for (const char* const name : {"ws-17.tar.gz", "ws-17.tgz"}) {
    folder.Write(name, R"({"captured": 1})");
    EXPECT_EQ(GetFailure(name),
              "is a packed folder, which is not read; unpack it (tar -xzf FILE) and name the folder: --machine DIR");
  }
  fs::create_directories(Path("folder.tgz") / "root");
  EXPECT_EQ(GetFailure("folder.tgz"), "no failure");
}

TEST_F(MachineInOneFile, IsARegularFile) {
  ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
  EXPECT_EQ(GetFailure("fifo"), "is not a captured machine: it is neither a folder nor a regular file");
  fs::create_symlink("/dev/zero", Path("device"));
  EXPECT_EQ(GetFailure("device"), "is not a captured machine: it is neither a folder nor a regular file");
}

TEST_F(CapturedMachine, CannotBeReadWithoutThePermissionToSearchItsFolder) {
  std::filesystem::permissions(machine.GetPath(), std::filesystem::perms::owner_read);
  const std::string folder = AsNobody([&] { return GetFailure(); });
  const std::string file = AsNobody([&]() -> std::string {
    try {
      ReadCapturedMachine(machine.GetPath() / "inner");
    } catch (const TUnusable& failure) {
      return failure.what();
    }
    return "no failure";
  });
  std::filesystem::permissions(machine.GetPath(), std::filesystem::perms::owner_all);
  EXPECT_EQ(folder, machine.GetPath().string() + ": cannot be read: Permission denied; check its permissions");
  EXPECT_EQ(file,
            (machine.GetPath() / "inner").string() + ": cannot be read: Permission denied; check its permissions");
}
