#include "command/machine/folder_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/exception.h"
#include "tests/support/temporary_folder.h"

namespace fs = std::filesystem;
using NQRXZELT20::TZELTException;

namespace {

const std::string kPath = "/etc/X11/xorg.conf";

class FolderFiles : public testing::Test {
 protected:
  fs::path Root() const { return folder.GetPath() / "root"; }

  TRootedFolder MakeRoot() const {
    fs::create_directories(Root() / "etc/X11");
    return TRootedFolder(Root());
  }

  void ExpectAbsent() const {
    EXPECT_FALSE(files.Exists(kPath));
    EXPECT_THROW(files.Read(kPath), TZELTException);
  }

  TTemporaryFolder folder;
  const TFolderFiles files{MakeRoot()};
};

}  // namespace

TEST_F(FolderFiles, AreReadWhole) {
  const std::string content("a\0b\r\n\xFF", 6);
  folder.Write("root" + kPath, content);
  EXPECT_TRUE(files.Exists(kPath));
  EXPECT_EQ(files.Read(kPath), content);
}

TEST_F(FolderFiles, AreReadBeyondOnePiece) {
  folder.Write("root" + kPath, std::string(200000, 'x'));
  EXPECT_EQ(files.Read(kPath).size(), 200000U);
}

TEST_F(FolderFiles, MayBeEmpty) {
  folder.Write("root" + kPath, "");
  EXPECT_TRUE(files.Exists(kPath));
  EXPECT_EQ(files.Read(kPath), "");
}

TEST_F(FolderFiles, DoNotExistWithoutTheFile) { ExpectAbsent(); }

TEST_F(FolderFiles, DoNotExistWithoutTheRoot) {
  EXPECT_FALSE(TFolderFiles(TRootedFolder(folder.GetPath() / "nowhere")).Exists(kPath));
}

TEST_F(FolderFiles, AreReachedThroughLinksThatStayInside) {
  folder.Write("root/etc/X11/real.conf", "inside");
  fs::create_symlink("real.conf", Root() / "etc/X11/xorg.conf");
  EXPECT_EQ(files.Read(kPath), "inside");
}

TEST_F(FolderFiles, AreNotReachedThroughALinkThatLeavesTheRoot) {
  folder.Write("outside.conf", "outside");
  fs::create_symlink("../../../outside.conf", Root() / "etc/X11/xorg.conf");
  ExpectAbsent();
}

TEST_F(FolderFiles, AreNotReachedThroughAnAbsoluteLinkThatLeavesTheRoot) {
  folder.Write("outside.conf", "outside");
  fs::create_symlink(folder.GetPath() / "outside.conf", Root() / "etc/X11/xorg.conf");
  ExpectAbsent();
}

TEST_F(FolderFiles, AreNotReachedThroughALinkedFolderThatLeavesTheRoot) {
  folder.Write("outside/xorg.conf", "outside");
  fs::remove(Root() / "etc/X11");
  fs::create_symlink("../../outside", Root() / "etc/X11");
  ExpectAbsent();
}

TEST_F(FolderFiles, AreNotReachedThroughAFolderWhoseNameOnlyBeginsLikeTheRoot) {
  folder.Write("root-and-more/xorg.conf", "outside");
  fs::create_symlink("../../../root-and-more/xorg.conf", Root() / "etc/X11/xorg.conf");
  ExpectAbsent();
}

TEST_F(FolderFiles, AreNotReachedByDotsThatLeaveTheRoot) {
  folder.Write("outside.conf", "outside");
  EXPECT_FALSE(files.Exists("/../outside.conf"));
  EXPECT_FALSE(files.Exists("/etc/../../outside.conf"));
}

TEST_F(FolderFiles, AreNoFolders) {
  fs::create_directories(Root() / "etc/X11/xorg.conf");
  ExpectAbsent();
}

TEST_F(FolderFiles, AreNoFifos) {
  ASSERT_EQ(mkfifo((Root() / "etc/X11/xorg.conf").c_str(), 0600), 0);
  ExpectAbsent();
}

TEST_F(FolderFiles, MayLinkInARing) {
  fs::create_symlink("xorg.conf", Root() / "etc/X11/xorg.conf");
  ExpectAbsent();
}

TEST_F(FolderFiles, AreRefusedBeyondTheLimit) {
  folder.Write("root" + kPath, "");
  fs::resize_file(Root() / "etc/X11/xorg.conf", kMaxMachineFileSize + 1);
  try {
    files.Read(kPath);
    FAIL() << "it was read";
  } catch (const TZELTException& failure) {
    EXPECT_EQ(failure.what(), kPath + ": is larger than 268435456 bytes, which no such file needs");
  }
  ASSERT_EQ(files.GetFailures().size(), 1U);
  EXPECT_FALSE(files.GetFailures()[0].isLookUp);
  EXPECT_EQ(files.GetFailures()[0].cure, "put the right file in its place");
}

TEST_F(FolderFiles, MayBeReadAfterTheirFolderWasMoved) {
  folder.Write("root" + kPath, "moved");
  ASSERT_TRUE(files.Exists(kPath));
  fs::rename(Root(), folder.GetPath() / "elsewhere");
  EXPECT_EQ(files.Read(kPath), "moved");
}

TEST_F(FolderFiles, AreNotReadFromOutsideWhenAFolderBecomesALinkMeanwhile) {
  folder.Write("root" + kPath, "inside");
  folder.Write("outside/X11/xorg.conf", "outside");
  ASSERT_TRUE(files.Exists(kPath));
  fs::rename(Root() / "etc", Root() / "was-etc");
  fs::create_symlink("../outside", Root() / "etc");
  ExpectAbsent();
}

TEST_F(FolderFiles, AreNotReadFromOutsideWhenTheRootBecomesALinkMeanwhile) {
  folder.Write("root" + kPath, "inside");
  folder.Write("outside" + kPath, "outside");
  ASSERT_TRUE(files.Exists(kPath));
  fs::rename(Root(), folder.GetPath() / "was-root");
  fs::create_symlink("outside", Root());
  EXPECT_EQ(files.Read(kPath), "inside");
}

TEST_F(FolderFiles, SayWhyTheyCannotBeRead) {
  folder.Write("root" + kPath, "secret");
  fs::permissions(Root() / "etc/X11/xorg.conf", fs::perms::none);
  constexpr uid_t nobody = 65534;
  const uid_t user = geteuid();
  ASSERT_EQ(user == 0 ? seteuid(nobody) : 0, 0);  // root may read everything
  EXPECT_TRUE(files.Exists(kPath));
  try {
    files.Read(kPath);
    ADD_FAILURE() << "it was read";
  } catch (const TZELTException& failure) {
    EXPECT_EQ(failure.what(), kPath + ": cannot be read: Permission denied");
  }
  ASSERT_EQ(seteuid(user), 0);
}
