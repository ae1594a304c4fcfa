// Makes captures while somebody else replaces folders and files around them.
#include "command/capture/new_target.h"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <csignal>
#include <fstream>
#include <iterator>

#include "command/base/unusable.h"
#include "tests/support/temporary_folder.h"

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

class NewTarget : public testing::Test {
 protected:
  static std::string Read(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
  }

  template <typename TAction>
  static void ExpectFailure(TAction action, const std::string& reason) {
    try {
      action();
      FAIL() << "it was made";
    } catch (const TUnusable& failure) {
      EXPECT_THAT(failure.what(), HasSubstr(reason));
    }
  }

  /// Replaces that folder by a link to somebody else's.
  void Exchange(const fs::path& path) const {
    fs::rename(path, path.string() + "-moved");
    fs::create_directory_symlink(victim, path);
  }

  TTemporaryFolder folder;
  const fs::path target = folder.GetPath() / "target";
  const fs::path victim = folder.GetPath() / "victim";
};

}  // namespace

TEST_F(NewTarget, IsKeptWithAllThatWasWritten) {
  for (const char* const name : {"target", "with-slash/"}) {
    TNewFolder made(folder.GetPath() / name);
    made.Write("top", "1");
    made.Write("a/b/file", "2");
    made.Write("a/b/other", std::string("\0", 1));
    made.Write("a/file", "");
    made.Keep();
  }
  EXPECT_EQ(Read(target / "top"), "1");
  EXPECT_EQ(Read(target / "a/b/file"), "2");
  EXPECT_EQ(Read(target / "a/b/other"), std::string("\0", 1));
  EXPECT_TRUE(fs::exists(target / "a/file"));
  EXPECT_TRUE(fs::exists(folder.GetPath() / "with-slash/top"));
}

TEST_F(NewTarget, IsMadeInTheWorkingFolderWhenOnlyItsNameIsGiven) {
  const fs::path before = fs::current_path();
  fs::current_path(folder.GetPath());
  TNewFile("file", "new").Keep();
  fs::current_path(before);
  EXPECT_EQ(Read(folder.GetPath() / "file"), "new");
}

TEST_F(NewTarget, LeavesNothingUnlessItIsKept) {
  {
    TNewFolder made(target);
    made.Write("a/b/file", "1");
    EXPECT_TRUE(fs::exists(target / "a/b/file"));
    const TNewFile file(folder.GetPath() / "file", "1");
    EXPECT_TRUE(fs::exists(folder.GetPath() / "file"));
  }
  EXPECT_TRUE(fs::is_empty(folder.GetPath()));
}

TEST_F(NewTarget, WritesIntoTheFolderThatItMadeWhateverTakesItsPlace) {
  folder.Write("victim/file", "old");
  {
    TNewFolder made(target);
    Exchange(target);
    made.Write("file", "new");
    made.Write("a/file", "new");
    made.Keep();
  }
  EXPECT_EQ(Read(victim / "file"), "old");
  EXPECT_FALSE(fs::exists(victim / "a"));
  EXPECT_EQ(Read(folder.GetPath() / "target-moved/file"), "new");
}

TEST_F(NewTarget, WritesIntoTheFoldersThatItMadeWithinWhateverTakesTheirPlace) {
  folder.Write("victim/file", "old");
  TNewFolder made(target);
  made.Write("a/one", "1");
  Exchange(target / "a");
  made.Write("a/file", "new");
  made.Write("a/b/file", "new");
  made.Keep();
  EXPECT_EQ(Read(victim / "file"), "old");
  EXPECT_FALSE(fs::exists(victim / "b"));
  EXPECT_EQ(Read(target / "a-moved/b/file"), "new");
}

TEST_F(NewTarget, FollowsNoLinkThatIsThereBeforeIt) {
  folder.Write("victim/file", "old");
  TNewFolder made(target);
  fs::create_directory_symlink(victim, target / "a");
  fs::create_symlink(victim / "file", target / "file");
  ExpectFailure([&] { made.Write("a/file", "new"); }, "target/a: already exists");
  ExpectFailure([&] { made.Write("file", "new"); }, "target/file: already exists");
  EXPECT_EQ(Read(victim / "file"), "old");
}

TEST_F(NewTarget, RemovesNothingOfSomebodyElse) {
  folder.Write("victim/file", "old");
  folder.Write("victim/a/file", "old");
  {
    TNewFolder made(target);
    made.Write("file", "new");
    made.Write("a/file", "new");
    Exchange(target / "a");
    Exchange(target);
  }
  EXPECT_EQ(Read(victim / "file"), "old");
  EXPECT_EQ(Read(victim / "a/file"), "old");
  EXPECT_FALSE(fs::exists(folder.GetPath() / "target-moved/file"));
}

TEST_F(NewTarget, RemovesAFileFromTheFolderThatItWentInto) {
  folder.Write("victim/file", "old");
  fs::create_directory(target);
  {
    const TNewFile made(target / "file", "new");
    Exchange(target);
  }
  EXPECT_EQ(Read(victim / "file"), "old");
  EXPECT_TRUE(fs::is_empty(folder.GetPath() / "target-moved"));
}

namespace {

/// Limits files to that many bytes, as a full disk does.
class TFileLimit {
 public:
  explicit TFileLimit(rlim_t size) {
    getrlimit(RLIMIT_FSIZE, &m_before);
    const rlimit limit = {size, m_before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~TFileLimit() {
    setrlimit(RLIMIT_FSIZE, &m_before);
    std::signal(SIGXFSZ, m_handler);
  }

 private:
  rlimit m_before = {};
  void (*m_handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

}  // namespace

TEST_F(NewTarget, LeavesNothingWhereThereIsNoRoom) {
  const TFileLimit limit(4);
  const std::string reason = "file: cannot be written: File too large; capture to where there is room";
  ExpectFailure([&] { TNewFile(folder.GetPath() / "file", "12345"); }, reason);
  ExpectFailure([&] { TNewFolder(target).Write("a/file", "12345"); }, reason);
  EXPECT_TRUE(fs::is_empty(folder.GetPath()));
}

TEST_F(NewTarget, SaysWhatCannotBeMade) {
  folder.Write("file", "old");
  ExpectFailure([&] { TNewFolder(folder.GetPath() / "file"); }, "/file: already exists; name a folder that does not");
  ExpectFailure([&] { TNewFolder(folder.GetPath() / "no/folder"); },
                "/no/folder: cannot be made: No such file or directory; name a folder where you may make one");
  ExpectFailure([&] { TNewFile(folder.GetPath() / "file", ""); }, "/file: already exists; name a file that does not");
  ExpectFailure([&] { TNewFile(folder.GetPath() / "file/x", ""); }, "/file/x: cannot be made: Not a directory");
  ExpectFailure([] { TNewFolder(""); }, ": cannot be made: No such file or directory");
  EXPECT_EQ(Read(folder.GetPath() / "file"), "old");
}
