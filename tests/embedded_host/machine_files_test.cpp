#include "embedded_host/machine_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <fstream>
#include <thread>

#include "host/exception.h"
#include "tests/support/temporary_folder.h"

namespace fs = std::filesystem;
using NQRXZELT20::TZELTException;

namespace {

const std::string kPath = "/etc/X11/xorg.conf";

class MachineFiles : public testing::Test {
 protected:
  MachineFiles() { fs::create_directories(Root() / "etc/X11"); }

  fs::path Root() const { return folder.GetPath() / "root"; }

  void ExpectAbsent() const {
    EXPECT_FALSE(files.Exists(kPath));
    EXPECT_THROW(files.Read(kPath), TZELTException);
  }

  TTemporaryFolder folder;
  TMachineFiles files{Root()};
};

}  // namespace

TEST_F(MachineFiles, AreReadWhole) {
  const std::string content("a\0b\r\n\xFF", 6);
  folder.Write("root" + kPath, content);
  EXPECT_TRUE(files.Exists(kPath));
  EXPECT_EQ(files.Read(kPath), content);
}

TEST_F(MachineFiles, AreReadBeyondOnePiece) {
  folder.Write("root" + kPath, std::string(200000, 'x'));
  EXPECT_EQ(files.Read(kPath).size(), 200000U);
}

TEST_F(MachineFiles, MayBeEmpty) {
  folder.Write("root" + kPath, "");
  EXPECT_TRUE(files.Exists(kPath));
  EXPECT_EQ(files.Read(kPath), "");
}

TEST_F(MachineFiles, DoNotExistWithoutTheFile) { ExpectAbsent(); }

TEST_F(MachineFiles, DoNotExistWithoutTheRoot) {
  EXPECT_FALSE(TMachineFiles(folder.GetPath() / "nowhere").Exists(kPath));
}

TEST_F(MachineFiles, AreReachedThroughLinksThatStayInside) {
  folder.Write("root/etc/X11/real.conf", "inside");
  fs::create_symlink("real.conf", Root() / "etc/X11/xorg.conf");
  EXPECT_EQ(files.Read(kPath), "inside");
}

TEST_F(MachineFiles, AreNotReachedThroughALinkThatLeavesTheRoot) {
  folder.Write("outside.conf", "outside");
  fs::create_symlink("../../../outside.conf", Root() / "etc/X11/xorg.conf");
  ExpectAbsent();
}

TEST_F(MachineFiles, AreNotReachedThroughAnAbsoluteLinkThatLeavesTheRoot) {
  folder.Write("outside.conf", "outside");
  fs::create_symlink(folder.GetPath() / "outside.conf", Root() / "etc/X11/xorg.conf");
  ExpectAbsent();
}

TEST_F(MachineFiles, AreNotReachedThroughALinkedFolderThatLeavesTheRoot) {
  folder.Write("outside/xorg.conf", "outside");
  fs::remove(Root() / "etc/X11");
  fs::create_symlink("../../outside", Root() / "etc/X11");
  ExpectAbsent();
}

TEST_F(MachineFiles, AreNotReachedThroughAFolderWhoseNameOnlyBeginsLikeTheRoot) {
  folder.Write("root-and-more/xorg.conf", "outside");
  fs::create_symlink("../../../root-and-more/xorg.conf", Root() / "etc/X11/xorg.conf");
  ExpectAbsent();
}

TEST_F(MachineFiles, AreNotReachedByDotsThatLeaveTheRoot) {
  folder.Write("outside.conf", "outside");
  EXPECT_FALSE(files.Exists("/../outside.conf"));
  EXPECT_FALSE(files.Exists("/etc/../../outside.conf"));
}

TEST_F(MachineFiles, AreNoFolders) {
  fs::create_directories(Root() / "etc/X11/xorg.conf");
  ExpectAbsent();
}

TEST_F(MachineFiles, AreNoFifos) {
  ASSERT_EQ(mkfifo((Root() / "etc/X11/xorg.conf").c_str(), 0600), 0);
  ExpectAbsent();
}

TEST_F(MachineFiles, MayLinkInARing) {
  fs::create_symlink("xorg.conf", Root() / "etc/X11/xorg.conf");
  ExpectAbsent();
}

TEST_F(MachineFiles, AreRefusedBeyondTheLimit) {
  folder.Write("root" + kPath, std::string(100001, 'x'));
  EXPECT_EQ(files.Read(kPath, 100001).size(), 100001U);
  try {
    files.Read(kPath, 100000);
    FAIL() << "it was read";
  } catch (const TZELTException& failure) {
    EXPECT_EQ(failure.what(), kPath + ": is larger than 100000 bytes, which no such file needs");
  }
}

TEST_F(MachineFiles, AreReadToTheLimitAtMostWhileTheyGrow) {
  folder.Write("root" + kPath, std::string(100000, 'x'));
  std::atomic<bool> isRead = false;
  std::thread writer([&] {
    std::ofstream file(Root() / "etc/X11/xorg.conf", std::ios::app);
    while (!isRead) file << std::string(100000, 'x') << std::flush;
  });
  std::string content;
  try {
    content = files.Read(kPath, 10'000'000);
  } catch (const TZELTException&) {
    // It grew faster than it was read.
  }
  isRead = true;
  writer.join();
  EXPECT_LE(content.size(), 10'000'000U);
}

TEST_F(MachineFiles, HaveFoldersInsideTheRootAlone) {
  fs::create_symlink("/tmp", Root() / "etc/outside");
  fs::create_symlink("X11", Root() / "etc/inside");
  EXPECT_TRUE(files.HasFolder("/etc/X11"));
  EXPECT_TRUE(files.HasFolder("/etc/inside"));
  EXPECT_FALSE(files.HasFolder("/etc/outside"));
  EXPECT_FALSE(files.HasFolder("/etc/X11/none"));
}
