#include "command/fleet/finished_machines.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "command/base/unusable.h"
#include "command/report/json_report.h"
#include "tests/support/temporary_folder.h"

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

class FinishedMachines : public testing::Test {
 protected:
  TFinishedMachines Read(const std::string& content) const {
    folder.Write("lines", content);
    return TFinishedMachines(folder.GetPath() / "lines");
  }

  void ExpectRefused(const std::string& content, const std::string& reason) const {
    try {
      Read(content);
      FAIL() << "it was read: " << content;
    } catch (const TUnusable& error) {
      EXPECT_THAT(error.what(), HasSubstr(reason));
    }
  }

  TTemporaryFolder folder;
};

}  // namespace

TEST_F(FinishedMachines, AreNoneWithoutAnEarlierRun) { EXPECT_FALSE(TFinishedMachines().Take("a")); }

TEST_F(FinishedMachines, AreThoseWithALine) {
  TFinishedMachines finished = Read(MakeMachineLine("a", TAnswer()) + MakeMachineLine("b c", TAnswer()));
  EXPECT_TRUE(finished.Take("a"));
  EXPECT_TRUE(finished.Take("b c"));
  EXPECT_FALSE(finished.Take("c"));
}

TEST_F(FinishedMachines, AreThoseThatFailedToo) { EXPECT_TRUE(Read(MakeErrorLine("a", "broken")).Take("a")); }

TEST_F(FinishedMachines, AreFinishedAsOftenAsTheyHaveALine) {
  TFinishedMachines finished = Read(MakeErrorLine("a", "broken") + MakeErrorLine("a", "broken"));
  EXPECT_TRUE(finished.Take("a"));
  EXPECT_TRUE(finished.Take("a"));
  EXPECT_FALSE(finished.Take("a"));
}

TEST_F(FinishedMachines, AreKnownByNamesThatAreNotText) {
  EXPECT_TRUE(Read(MakeErrorLine("a\xFF\"\\\n", "broken")).Take("a\xFF\"\\\n"));
}

TEST_F(FinishedMachines, AreNoneInAnEmptyFile) { EXPECT_FALSE(Read("").Take("a")); }

// Opening it would wait for a writer.
TEST_F(FinishedMachines, AreNoneInAFifo) {
  const fs::path fifo = folder.GetPath() / "fifo";
  ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
  try {
    const TFinishedMachines finished(fifo);
    FAIL() << "it was read";
  } catch (const TUnusable& error) {
    EXPECT_THAT(error.what(), HasSubstr("fifo: is not a regular file"));
  }
}

TEST_F(FinishedMachines, AreRefusedWithALineThatIsCutOff) {
  const std::string whole = MakeErrorLine("a", "broken");
  ExpectRefused(whole + whole.substr(0, whole.size() - 1), "lines, line 2: is cut off");
}

TEST_F(FinishedMachines, AreRefusedWithALineThatNamesNone) {
  for (const char* const line : {"", "text", "{}", "[\"a\"]", "{\"error\": \"machine\"}", "{\"machine\": 1}",
                                 "{\"machine\": {\"machine\": \"a\"}}", "\"machine\""}) {
    ExpectRefused(std::string(line) + "\n", "lines, line 1: names no machine");
  }
}

TEST_F(FinishedMachines, AreRefusedWithoutTheFile) {
  EXPECT_THROW(TFinishedMachines(folder.GetPath() / "nowhere"), TUnusable);
  EXPECT_THROW(TFinishedMachines(folder.GetPath()), TUnusable);
}

TEST_F(FinishedMachines, AreNotLookedForWhereNoLineEverEnds) {
  try {
    TFinishedMachines("/dev/zero");
    FAIL() << "it was read";
  } catch (const TUnusable& error) {
    EXPECT_STREQ(error.what(), "/dev/zero: is not a regular file; --resume takes what an earlier run has written");
  }
}

TEST_F(FinishedMachines, AreRefusedWhenTheFileCannotBeReadToItsEnd) {
  try {
    TFinishedMachines("/proc/self/mem");
    FAIL() << "it was read";
  } catch (const TUnusable& error) {
    EXPECT_STREQ(error.what(),
                 "/proc/self/mem: cannot be read: Input/output error; --resume takes what an earlier run has written");
  }
}

TEST_F(FinishedMachines, AreReadFromLinesThatReachOverPiecesOfTheFile) {
  std::string content;
  for (int number = 0; number < 3000; ++number) content += MakeErrorLine("m" + std::to_string(number), "reason");
  content += MakeErrorLine("long", std::string(300000, 'x')) + MakeErrorLine(std::string(4096, '\x01'), "reason");
  TFinishedMachines finished = Read(content);
  for (int number = 0; number < 3000; ++number) EXPECT_TRUE(finished.Take("m" + std::to_string(number)));
  EXPECT_TRUE(finished.Take("long"));
  EXPECT_TRUE(finished.Take(std::string(4096, '\x01')));
}
