#include "command/base/private_folder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

#include "tests/support/temporary_folder.h"

namespace fs = std::filesystem;

namespace {

class PrivateFolder : public testing::Test {
 protected:
  PrivateFolder() { setenv("TMPDIR", parent.GetPath().c_str(), 1); }
  ~PrivateFolder() override { unsetenv("TMPDIR"); }

  TTemporaryFolder parent;
};

}  // namespace

TEST_F(PrivateFolder, IsNobodyElses) {
  const TPrivateFolder folder;
  EXPECT_EQ(folder.GetPath().parent_path(), parent.GetPath());
  EXPECT_EQ(fs::status(folder.GetPath()).permissions(), fs::perms::owner_all);
}

TEST_F(PrivateFolder, IsGoneAfterwardsWithAllThatItHolds) {
  {
    const TPrivateFolder folder;
    fs::create_directories(folder.GetPath() / "a/b");
  }
  EXPECT_TRUE(fs::is_empty(parent.GetPath()));
}

TEST_F(PrivateFolder, IsGoneWhenASignalEndsTheProcess) {
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) {
    const auto interrupt = [&] {
      std::signal(signal, SIG_DFL);  // a shell may have started this with another
      const TPrivateFolder folder;
      std::raise(signal);
    };
    EXPECT_EXIT(interrupt(), testing::KilledBySignal(signal), "");
    EXPECT_TRUE(fs::is_empty(parent.GetPath())) << signal;
  }
}
