// Captured machines in one file, good ones and hostile ones.
#include "command/machine/machine_archive.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "command/base/unusable.h"
#include "command/machine/captured_machine.h"
#include "command/machine/machine.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

class MachineArchive : public testing::Test {
 protected:
  MachineArchive() {
    fs::create_directory(temporary);
    setenv("TMPDIR", temporary.c_str(), 1);
  }
  ~MachineArchive() override { unsetenv("TMPDIR"); }

  /// Runs a line of shell in the folder.
  void Run(const std::string& line) const {
    const TProcessResult result = RunShell("set -e; cd " + folder.GetPath().string() + "\n" + line);
    ASSERT_EQ(result.status, 0) << result.errors;
  }

  std::string ReadSystemName() const { return ReadCapturedMachine(archive).host.systemName; }

  void ExpectRefused(const std::string& reason) const {
    try {
      ReadCapturedMachine(archive);
      FAIL() << "it was read";
    } catch (const TUnusable& error) {
      EXPECT_THAT(error.what(), StartsWith(archive.string()));
      EXPECT_THAT(error.what(), HasSubstr(reason));
    }
    ExpectNothingLeft();
  }

  void ExpectNothingLeft() const { EXPECT_TRUE(fs::is_empty(temporary)); }

  TTemporaryFolder folder;
  const fs::path temporary = folder.GetPath() / "temporary";
  const fs::path archive = folder.GetPath() / "ws-17.tar.gz";
};

}  // namespace

TEST_F(MachineArchive, IsKnownByItsName) {
  EXPECT_TRUE(IsMachineArchive("captured/ws-17.tar.gz"));
  EXPECT_TRUE(IsMachineArchive("ws-17.tgz"));
  for (const char* const name : {"ws-17", "ws-17.tar", "ws.tar.gz.old", ".tar.gz", "...tar.gz", "..tgz"}) {
    EXPECT_FALSE(IsMachineArchive(name)) << name;
  }
}

TEST_F(MachineArchive, HoldsItsMachineInAFolderOfItsOwnName) {
  folder.Write("ws-17/machine.json", "{\"systemName\": \"packed\"}");
  PackMachine(folder.GetPath() / "ws-17", archive);
  EXPECT_EQ(RunShell("tar tzf " + archive.string()).output, "ws-17/\nws-17/machine.json\n");
  EXPECT_EQ(ReadSystemName(), "packed");
}

TEST_F(MachineArchive, MayHoldItsMachineAtTheTop) {
  folder.Write("machine.json", "{\"systemName\": \"top\"}");
  Run("tar czf ws-17.tar.gz machine.json");
  EXPECT_EQ(ReadSystemName(), "top");
}

TEST_F(MachineArchive, MayHoldAMachineOfNothingButFiles) {
  folder.Write("root/etc/X11/xorg.conf", "x");
  Run("tar czf ws-17.tar.gz root");
  const TMachine machine = ReadCapturedMachine(archive);
  EXPECT_TRUE(fs::exists(machine.host.root / "etc/X11/xorg.conf"));
}

TEST_F(MachineArchive, IsUnpackedForAsLongAsItsMachineLives) {
  folder.Write("ws-17/machine.json", "{}");
  PackMachine(folder.GetPath() / "ws-17", archive);
  {
    const TMachine machine = ReadCapturedMachine(archive);
    EXPECT_FALSE(fs::is_empty(temporary));
  }
  ExpectNothingLeft();
}

TEST_F(MachineArchive, IsNotWrittenOverAFile) {
  folder.Write("ws-17/machine.json", "{}");
  folder.Write("ws-17.tar.gz", "precious");
  EXPECT_THROW(PackMachine(folder.GetPath() / "ws-17", archive), TUnusable);
  EXPECT_EQ(fs::file_size(archive), 8U);
}

TEST_F(MachineArchive, IsRefusedWhenItIsMissing) { ExpectRefused("cannot be read: No such file"); }

TEST_F(MachineArchive, IsRefusedWhenItIsNoArchive) {
  folder.Write("ws-17.tar.gz", "text");
  ExpectRefused("is damaged, or not packed by gzip");
  Run("echo text | gzip -c >ws-17.tar.gz");
  ExpectRefused("is damaged, or holds what must not be unpacked");
}

TEST_F(MachineArchive, IsRefusedWhenItIsCutOff) {
  folder.Write("ws-17/machine.json", "{}");
  PackMachine(folder.GetPath() / "ws-17", archive);
  fs::resize_file(archive, fs::file_size(archive) - 20);
  ExpectRefused("is damaged");
}

TEST_F(MachineArchive, IsRefusedWhenItUnpacksToTooMuch) {
  Run("head -c 300M /dev/zero | gzip -1 >ws-17.tar.gz");
  ExpectRefused("unpacks to more than 256 MiB");
}

TEST_F(MachineArchive, IsRefusedWithALink) {
  Run("mkdir -p ws-17/root/etc; ln -s /etc/hostname ws-17/root/etc/xorg.conf; tar czf ws-17.tar.gz ws-17");
  ExpectRefused("holds ws-17/root/etc/xorg.conf, which is neither file nor folder");
}

TEST_F(MachineArchive, IsRefusedWithAPipe) {
  Run("mkdir ws-17; mkfifo ws-17/machine.json; tar czf ws-17.tar.gz ws-17");
  ExpectRefused("holds ws-17/machine.json, which is neither file nor folder");
}

TEST_F(MachineArchive, WritesNothingOutsideItsFolder) {
  folder.Write("deep/in/victim", "old");
  Run("cd deep/in; echo new >x; tar -P -czf ../../ws-17.tar.gz --transform 's,x,../../../../victim,' x");
  ExpectRefused("is damaged, or holds what must not be unpacked");
  Run("cd deep/in; tar -P -czf ../../ws-17.tar.gz --transform \"s,x,$PWD/victim,\" x");
  ReadCapturedMachine(archive);
  Run("[ \"$(cat deep/in/victim)\" = old ]; [ ! -e victim ]; [ ! -e temporary/victim ]");
  ExpectNothingLeft();
}

TEST_F(MachineArchive, WritesNothingThroughALinkOfItsOwn) {
  Run("mkdir a b outside; ln -s ../../../../outside a/link; mkdir b/link; echo x >b/link/file\n"
      "tar cf ws-17.tar -C a link; tar rf ws-17.tar -C b link/file; gzip ws-17.tar");
  EXPECT_THROW(ReadCapturedMachine(archive), TUnusable);
  EXPECT_TRUE(fs::is_empty(folder.GetPath() / "outside"));
  ExpectNothingLeft();
}

TEST_F(MachineArchive, NamesItselfForWhatIsWrongInIt) {
  folder.Write("ws-17/machine.json", "{\"nonsense\": 1}");
  PackMachine(folder.GetPath() / "ws-17", archive);
  ExpectRefused("ws-17/machine.json: \"nonsense\" is not a known key");
}

TEST_F(MachineArchive, IgnoresWhatTheEnvironmentTellsTar) {
  folder.Write("ws-17/machine.json", "{\"systemName\": \"packed\"}");
  PackMachine(folder.GetPath() / "ws-17", archive);
  setenv("TAR_OPTIONS", "--exclude=machine.json", 1);
  EXPECT_EQ(ReadSystemName(), "packed");
  unsetenv("TAR_OPTIONS");
}

TEST_F(MachineArchive, NeedsTheSystemsPrograms) {
  folder.Write("ws-17/machine.json", "{}");
  const std::string path = getenv("PATH");
  setenv("PATH", "/nowhere", 1);
  EXPECT_THROW(PackMachine(folder.GetPath() / "ws-17", archive), TUnusable);
  setenv("PATH", path.c_str(), 1);
  EXPECT_FALSE(fs::exists(archive));
}
