#include "command/machine/xconfig_files.h"

#include <gmock/gmock.h>

#include "command/machine/memory_files.h"
#include "host/exception.h"

namespace {

constexpr const char* kXorgConf = "/etc/X11/xorg.conf";

/// A machine's files, of which the kernel's configuration is "made".
TXconfigFiles Make(const std::map<std::string, std::string>& files, EXconfigSource source,
                   const std::string& made = "made") {
  return {std::make_shared<TMemoryFiles>(files), source, [made] { return made; }};
}

}  // namespace

TEST(XconfigFiles, AreTheMachinesWhenItHasAConfiguration) {
  for (const char* const file : {"/etc/X11/XF86Config-4", kXorgConf, "/etc/xorg.conf"}) {
    const TXconfigFiles files = Make({{file, "own"}}, EXconfigSource::kAuto);
    EXPECT_EQ(files.Read(file), "own");
    EXPECT_EQ(files.Exists(kXorgConf), std::string(file) == kXorgConf);
    EXPECT_FALSE(files.HasServedMade());
  }
}

TEST(XconfigFiles, AreTheKernelsWhenTheMachineHasNoConfiguration) {
  const TXconfigFiles files = Make({{"/etc/passwd", "own"}}, EXconfigSource::kAuto);
  EXPECT_FALSE(files.Exists("/etc/X11/XF86Config-4"));
  EXPECT_TRUE(files.Exists(kXorgConf));
  EXPECT_EQ(files.Read(kXorgConf), "made");
  EXPECT_TRUE(files.HasServedMade());
}

TEST(XconfigFiles, AreTheMachinesOnlyWhenToldTo) {
  const TXconfigFiles files = Make({}, EXconfigSource::kFile);
  EXPECT_FALSE(files.Exists(kXorgConf));
}

TEST(XconfigFiles, AreTheKernelsWhenToldToAlthoughTheMachineHasAConfiguration) {
  const TXconfigFiles files = Make({{"/etc/X11/XF86Config", "own"}, {kXorgConf, "own"}}, EXconfigSource::kKernel);
  EXPECT_FALSE(files.Exists("/etc/X11/XF86Config"));
  EXPECT_EQ(files.Read(kXorgConf), "made");
}

TEST(XconfigFiles, AreNoneOfAKernelThatKnowsNoCard) {
  for (const EXconfigSource source : {EXconfigSource::kAuto, EXconfigSource::kKernel}) {
    const TXconfigFiles files = Make({}, source, "");
    EXPECT_FALSE(files.Exists(kXorgConf));
    EXPECT_THROW(files.Read(kXorgConf), NQRXZELT20::TZELTException);
    EXPECT_FALSE(files.HasServedMade());
  }
}

TEST(XconfigFiles, AskTheKernelOnceAtMost) {
  int asked = 0;
  const TXconfigFiles files(std::make_shared<TMemoryFiles>(std::map<std::string, std::string>()), EXconfigSource::kAuto,
                            [&] { return std::to_string(++asked); });
  EXPECT_FALSE(files.HasServedMade());
  EXPECT_EQ(asked, 0);
  EXPECT_TRUE(files.Exists(kXorgConf));
  EXPECT_EQ(files.Read(kXorgConf), "1");
  EXPECT_EQ(files.Read(kXorgConf), "1");
}
