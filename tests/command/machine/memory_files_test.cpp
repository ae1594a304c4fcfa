#include "command/machine/memory_files.h"

#include <gtest/gtest.h>

#include "host/exception.h"

TEST(MemoryFiles, AreTheGivenOnesAndNoOthers) {
  const TMemoryFiles files({{"/etc/a", std::string("a\0b", 3)}, {"/etc/empty", ""}});
  EXPECT_TRUE(files.Exists("/etc/a"));
  EXPECT_TRUE(files.Exists("/etc/empty"));
  EXPECT_EQ(files.Read("/etc/a"), std::string("a\0b", 3));
  EXPECT_EQ(files.Read("/etc/empty"), "");
  for (const char* const path : {"/etc", "/etc/", "/etc/b", "etc/a", "/etc/../etc/a", ""}) {
    EXPECT_FALSE(files.Exists(path)) << path;
  }
}

TEST(MemoryFiles, NameAFileThatIsNotThere) {
  try {
    TMemoryFiles({}).Read("/etc/b");
    FAIL() << "it was read";
  } catch (const NQRXZELT20::TZELTException& failure) {
    EXPECT_STREQ(failure.what(), "/etc/b: no such file");
  }
}
