// Looks up files in a folder, with every rule for links.
#include "command/machine/rooted_folder.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <iterator>
#include <set>

#include "command/base/unusable.h"
#include "tests/support/descriptor_limit.h"
#include "tests/support/sanitizers.h"
#include "tests/support/temporary_folder.h"

namespace fs = std::filesystem;

namespace {

/// A tree of files, folders and links; inside/ is the folder that is looked up in.
class RootedFolder : public testing::Test {
 protected:
  RootedFolder() {
    folder.Write("inside/a/file", "in a");
    folder.Write("inside/b/file", "in b");
    folder.Write("outside/file", "outside");
    Link("inside/near", "a/file");
    Link("inside/a/up", "../b/file");
    Link("inside/folder", "a");
    Link("inside/ring", "ring");
    Link("inside/out", "../outside/file");
    Link("inside/out-folder", "../outside");
    Link("inside/out-and-back", "../inside/a/file");
    Link("inside/absolute", (Inside() / "a/file").string());
    Link("inside/nothing", "missing");
    Link("inside/magic", "/proc/self/cwd");
  }

  void Link(const char* name, const std::string& target) const { fs::create_symlink(target, folder.GetPath() / name); }

  fs::path Inside() const { return folder.GetPath() / "inside"; }

  /// The content of what is found, "-" for nothing.
  std::string Read(const std::string& path, ELinks links) const {
    const TDescriptor file = TRootedFolder(Inside(), links).OpenFile(path);
    return file.IsOpen() ? ReadContent(file, 100, path) : "-";
  }

  TTemporaryFolder folder;
};

/// Makes openat2 fail with `error` in this process from now on, as a sandbox may.
void ForbidOpenat2(int error) {
  sock_filter filter[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat2, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned int>(error)),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog program = {static_cast<unsigned short>(std::size(filter)), filter};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
    _exit(2);
  }
}

/// Why the look-up fails if this process may open no more files.
template <typename TLook>
std::string LookWithoutDescriptors(const TLook& look) {
  const TDescriptorLimit none(0);
  try {
    look();
  } catch (const TUnusable& failure) {
    return failure.what();
  }
  return "none";
}

constexpr ELinks kInsideOrNone[] = {ELinks::kInside, ELinks::kNone};

}  // namespace

TEST_F(RootedFolder, FindsFilesByAnyWayToWriteTheirPath) {
  for (const ELinks links : {ELinks::kAll, ELinks::kInside, ELinks::kNone}) {
    for (const char* const path : {"a/file", "/a/file", "//a//file", "a/./file", "./a/file"}) {
      EXPECT_EQ(Read(path, links), "in a") << path;
    }
    for (const char* const path : {"a", "a/", "/", "", ".", "missing", "a/missing", "missing/file", "a/file/x"}) {
      EXPECT_EQ(Read(path, links), "-") << path;
    }
  }
}

TEST_F(RootedFolder, FollowsLinksInside) {
  EXPECT_EQ(Read("near", ELinks::kInside), "in a");
  EXPECT_EQ(Read("a/up", ELinks::kInside), "in b");
  EXPECT_EQ(Read("folder/file", ELinks::kInside), "in a");
  EXPECT_EQ(Read("folder/up", ELinks::kInside), "in b");
  EXPECT_EQ(Read("a/../b/file", ELinks::kInside), "in b");
}

TEST_F(RootedFolder, FollowsNoLinksWhereTheKernelCannotKeepThemInside) {
  for (const char* const path : {"near", "a/up", "folder/file", "folder/up", "a/../b/file"}) {
    EXPECT_EQ(Read(path, ELinks::kNone), "-") << path;
  }
}

TEST_F(RootedFolder, FollowsNoLinksWhereOpenat2IsMissingOrForbidden) {
  for (const int error : {ENOSYS, EPERM}) {
    const auto look = [&] {
      ForbidOpenat2(error);
      const bool isRight = Read("a/file", ELinks::kInside) == "in a" && Read("near", ELinks::kInside) == "-" &&
                           Read("out", ELinks::kInside) == "-";
      _exit(isRight ? 0 : 1);
    };
    EXPECT_EXIT(look(), testing::ExitedWithCode(0), "") << error;
  }
}

TEST_F(RootedFolder, NeverLeavesTheFolder) {
  for (const ELinks links : kInsideOrNone) {
    for (const char* const path :
         {"ring", "out", "out-folder/file", "out-and-back", "absolute", "nothing", "..", "../outside/file",
          "a/../../outside/file", "/../outside/file", "../inside/a/file", "magic/passwd"}) {
      EXPECT_EQ(Read(path, links), "-") << path;
    }
  }
}

TEST_F(RootedFolder, FollowsEveryLinkOfThisMachine) {
  EXPECT_EQ(Read("out", ELinks::kAll), "outside");
  EXPECT_EQ(Read("absolute", ELinks::kAll), "in a");
}

TEST_F(RootedFolder, ReachesNoDevice) {
  if (mknod((Inside() / "device").c_str(), S_IFCHR | 0600, makedev(1, 5)) != 0) GTEST_SKIP() << "only root makes one";
  for (const ELinks links : kInsideOrNone) EXPECT_EQ(Read("device", links), "-");
}

TEST_F(RootedFolder, DoesNotWaitForAFifo) {
  ASSERT_EQ(mkfifo((Inside() / "fifo").c_str(), 0600), 0);
  for (const ELinks links : kInsideOrNone) EXPECT_EQ(Read("fifo", links), "-");
}

TEST_F(RootedFolder, OpensFoldersUnderTheSameRules) {
  for (const ELinks links : kInsideOrNone) {
    const TRootedFolder inside(Inside(), links);
    EXPECT_TRUE(inside.OpenFolder("a").IsOpen());
    EXPECT_EQ(inside.OpenFolder("folder").IsOpen(), links == ELinks::kInside);
    for (const char* const path : {"a/file", "out-folder", "..", "missing", "ring"}) {
      EXPECT_FALSE(inside.OpenFolder(path).IsOpen()) << path;
    }
    EXPECT_FALSE(inside.OpenFolder("a").OpenFile("up").IsOpen()) << "it leads out of a";
  }
}

TEST_F(RootedFolder, SaysWhenNoMoreFilesCanBeOpened) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "the sanitizers need descriptors themselves";
  const TRootedFolder inside(Inside());
  const std::string path = Inside().string();
  const std::string reason = ": cannot be read: Too many open files; let the command open more files (ulimit -n)";
  EXPECT_EQ(LookWithoutDescriptors([&] { inside.Find("a/file"); }), path + "/a/file" + reason);
  EXPECT_EQ(LookWithoutDescriptors([&] { inside.OpenFile("a/file"); }), path + "/a/file" + reason);
  EXPECT_EQ(LookWithoutDescriptors([&] { inside.OpenFolder("a"); }), path + "/a" + reason);
  EXPECT_EQ(LookWithoutDescriptors([&] { inside.ForEachName([](const std::string&) {}); }), path + reason);
  EXPECT_EQ(LookWithoutDescriptors([&] { TRootedFolder{Inside()}; }), path + reason);
  EXPECT_EQ(LookWithoutDescriptors([&] { FindPath(Inside()); }), path + reason);
}

TEST_F(RootedFolder, NamesAllThatItHolds) {
  std::set<std::string> names;
  TRootedFolder(Inside()).OpenFolder("a").ForEachName([&](const std::string& name) { names.insert(name); });
  EXPECT_EQ(names, (std::set<std::string>{".", "..", "file", "up"}));
}

TEST_F(RootedFolder, HasLinksToNothingToo) {
  const TRootedFolder inside(Inside());
  EXPECT_TRUE(inside.Has("a"));
  EXPECT_TRUE(inside.Has("nothing"));
  EXPECT_FALSE(inside.Has("missing"));
}

TEST_F(RootedFolder, MayBeALinkItself) {
  Link("linked", "inside");
  EXPECT_TRUE(TRootedFolder(folder.GetPath() / "linked").OpenFile("a/file").IsOpen());
}

TEST_F(RootedFolder, HoldsNothingWhenItIsNotThere) {
  for (const char* const name : {"nowhere", "outside/file"}) {
    const TRootedFolder nowhere(folder.GetPath() / name);
    EXPECT_FALSE(nowhere.IsOpen());
  }
}

TEST_F(RootedFolder, ReadsNoMoreThanItMust) {
  folder.Write("inside/large", std::string(200000, 'x'));
  const TRootedFolder inside(Inside());
  const auto countRead = [&](std::size_t maxSize) {
    return ReadContent(inside.OpenFile("large"), maxSize, "large").size();
  };
  EXPECT_EQ(countRead(1000000), 200000U);
  EXPECT_EQ(countRead(200000), 200000U);
  EXPECT_EQ(countRead(100000), 100001U);
}
