#include "command/compare/line_file.h"

#include <gmock/gmock.h>

#include "command/base/unusable.h"
#include "tests/support/temporary_folder.h"

namespace {

class LineFile : public testing::Test {
 protected:
  TLineFile Open(const std::string& text) const {
    folder.Write("file", text);
    return TLineFile(folder.GetPath() / "file");
  }

  TTemporaryFolder folder;
};

}  // namespace

TEST_F(LineFile, GivesLinesWithTheirNumbersAndSkipsEmptyOnes) {
  TLineFile file = Open("one\n\n \r\ntwo\r\nthree");
  EXPECT_EQ(file.TakeLine(), "one");
  EXPECT_EQ(file.GetNumber(), 1U);
  EXPECT_EQ(file.TakeLine(), "two\r");
  EXPECT_EQ(file.GetNumber(), 4U);
  EXPECT_EQ(file.TakeLine(), "three");
  EXPECT_EQ(file.GetNumber(), 5U);
  EXPECT_EQ(file.TakeLine(), std::nullopt);
}

TEST_F(LineFile, GivesALineThatIsLongerThanAPiece) {
  const std::string line(200000, 'x');
  TLineFile file = Open(line + "\nend\n");
  EXPECT_EQ(file.TakeLine(), line);
  EXPECT_EQ(file.TakeLine(), "end");
  EXPECT_EQ(file.TakeLine(), std::nullopt);
}

TEST_F(LineFile, ShowsItsBeginningAndTakesNothing) {
  TLineFile file = Open("\none\n");
  EXPECT_EQ(file.GetBeginning(), "\none\n");
  EXPECT_EQ(file.GetBeginning(), "\none\n");
  EXPECT_EQ(file.TakeRest(), "\none\n");
  EXPECT_EQ(Open("").GetBeginning(), "");
}

TEST_F(LineFile, GivesTheRestAfterALine) {
  const std::string rest = std::string(200000, 'y') + "\n\n}\n";
  TLineFile file = Open("{\n" + rest);
  EXPECT_EQ(file.TakeLine(), "{");
  EXPECT_EQ(file.TakeRest(), rest);
  EXPECT_EQ(file.TakeLine(), std::nullopt);
}

TEST_F(LineFile, ReadsNoLineWithoutEnd) {
  TLineFile file("/dev/zero");
  EXPECT_THROW(file.TakeLine(), TUnusable);
  EXPECT_THROW(file.TakeRest(), TUnusable);
}

TEST_F(LineFile, NamesAFileThatDoesNotExist) {
  try {
    TLineFile file("no/such/file");
    FAIL();
  } catch (const TUnusable& error) {
    EXPECT_STREQ(error.what(),
                 "no/such/file: cannot be read: No such file or directory; compare takes captured machines, and what "
                 "--format json or --machines has written");
  }
}
