#include "command/base/line_reader.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include "command/base/unusable.h"
#include "tests/support/pipe.h"
#include "tests/support/temporary_folder.h"

namespace {

class LineReader : public testing::Test {
 protected:
  TLineReader Open(const std::string& text, std::size_t longest = 1000000, ELongLine longLine = ELongLine::kCut) const {
    folder.Write("file", text);
    return TLineReader::Open(folder.GetPath() / "file", longest, longLine, "write it anew");
  }

  /// A text, and what is special about it.
  static std::string Describe(const std::optional<TLine>& line) {
    return !line ? "nothing" : line->text + (line->hasEnd ? "" : " (without end)");
  }

  TTemporaryFolder folder;
};

}  // namespace

TEST_F(LineReader, GivesLinesWithTheirNumbers) {
  TLineReader file = Open("one\n\ntwo\r\nthree");
  EXPECT_EQ(Describe(file.TakeNext()), "one");
  EXPECT_EQ(file.GetNumber(), 1U);
  EXPECT_EQ(Describe(file.TakeNext()), "");
  EXPECT_EQ(Describe(file.TakeNext()), "two\r");
  EXPECT_EQ(file.GetNumber(), 3U);
  EXPECT_EQ(Describe(file.TakeNext()), "three (without end)");
  EXPECT_EQ(file.GetNumber(), 4U);
  EXPECT_EQ(Describe(file.TakeNext()), "nothing");
}

TEST_F(LineReader, GivesALineThatIsLongerThanAPiece) {
  const std::string line(200000, 'x');
  TLineReader file = Open(line + "\nend\n");
  EXPECT_EQ(Describe(file.TakeNext()), line);
  EXPECT_EQ(Describe(file.TakeNext()), "end");
  EXPECT_EQ(Describe(file.TakeNext()), "nothing");
}

TEST_F(LineReader, PassesOverWhatALineHasTooMuch) {
  TLineReader file = Open("12345\n1234\n" + std::string(200000, 'x'), 4);
  EXPECT_EQ(Describe(file.TakeNext()), "1234");
  EXPECT_EQ(Describe(file.TakeNext()), "1234");
  EXPECT_EQ(Describe(file.TakeNext()), "xxxx (without end)");
  EXPECT_EQ(Describe(file.TakeNext()), "nothing");
}

TEST_F(LineReader, RefusesALineThatIsTooLongBeforeItsEnd) {
  TLineReader file = Open("1234\n12345", 4, ELongLine::kRefused);
  EXPECT_EQ(Describe(file.TakeNext()), "1234");
  try {
    file.TakeNext();
    FAIL();
  } catch (const TUnusable& error) {
    EXPECT_STREQ(error.what(), (folder.GetPath() / "file, line 2: is longer than 4 bytes; write it anew").c_str());
  }
  EXPECT_THROW(TLineReader::Open("/dev/zero", 1000000, ELongLine::kRefused, "").TakeNext(), TUnusable);
}

TEST_F(LineReader, ShowsItsBeginningAndTakesNothing) {
  TLineReader file = Open("\none\n");
  EXPECT_EQ(file.GetBeginning(), "\none\n");
  EXPECT_EQ(file.GetBeginning(), "\none\n");
  EXPECT_EQ(file.TakeRest(100), "\none\n");
  EXPECT_EQ(Open("").GetBeginning(), "");
}

TEST_F(LineReader, GivesTheRestAfterALine) {
  const std::string rest = std::string(200000, 'y') + "\n\n}\n";
  TLineReader file = Open("{\n" + rest);
  EXPECT_EQ(Describe(file.TakeNext()), "{");
  EXPECT_EQ(file.TakeRest(1000000), rest);
  EXPECT_EQ(Describe(file.TakeNext()), "nothing");
}

TEST_F(LineReader, ReadsOnlyALittlePastTheLargestRest) {
  TLineReader file = TLineReader::Open("/dev/zero", 1, ELongLine::kCut, "");
  const std::size_t size = file.TakeRest(1000000).size();
  EXPECT_GT(size, 1000000U);
  EXPECT_LT(size, 1100000U);
}

TEST_F(LineReader, ReadsPastTheLargestRestEvenWhereAPieceEndsWithIt) {
  const std::size_t piece = 65536;
  EXPECT_GT(Open(std::string(piece + 1, 'x')).TakeRest(piece).size(), piece);
  EXPECT_EQ(Open(std::string(piece, 'x')).TakeRest(piece).size(), piece);
}

TEST_F(LineReader, GivesNothingAgainThatWasInARest) {
  TLineReader begun = Open("{\nrest\n");
  EXPECT_EQ(Describe(begun.TakeNext()), "{");
  EXPECT_EQ(begun.TakeRest(1), "rest\n");
  EXPECT_EQ(Describe(begun.TakeNext()), "nothing");
  const std::string line(70000, 'x');
  TLineReader cut = Open(line);
  const std::string rest = cut.TakeRest(1);
  EXPECT_EQ(rest + Describe(cut.TakeNext()), line + " (without end)");
}

TEST_F(LineReader, PassesItsFileToNoProgram) {
  const TLineReader file = Open("");
  const TLineReader input = TLineReader::Open("-", 1, ELongLine::kCut, "");
  EXPECT_EQ(fcntl(file.GetDescriptor(), F_GETFD), FD_CLOEXEC);
  EXPECT_EQ(fcntl(input.GetDescriptor(), F_GETFD), FD_CLOEXEC);
}

TEST_F(LineReader, GivesWhatHasComeWithoutWaiting) {
  TPipe lines(O_NONBLOCK);
  TLineReader file("pipe", std::move(lines.reading), 100, ELongLine::kCut, "");
  file.ReadMore();
  EXPECT_EQ(Describe(file.TakeRead()), "nothing");
  ASSERT_EQ(write(lines.writing.Get(), "one\ntw", 6), 6);
  file.ReadMore();
  EXPECT_EQ(Describe(file.TakeRead()), "one");
  EXPECT_EQ(Describe(file.TakeRead()), "nothing");
  EXPECT_FALSE(file.IsAtEnd());
  lines.writing.Close();
  file.ReadMore();
  EXPECT_TRUE(file.IsAtEnd());
  EXPECT_EQ(Describe(file.TakeRead()), "tw (without end)");
}

TEST_F(LineReader, NamesAFileThatCannotBeRead) {
  const auto getFailure = [](const char* path) -> std::string {
    try {
      TLineReader::Open(path, 1, ELongLine::kCut, "write it anew").TakeNext();
      return "no failure";
    } catch (const TUnusable& error) {
      return error.what();
    }
  };
  EXPECT_EQ(getFailure("no/such/file"), "no/such/file: cannot be read: No such file or directory; write it anew");
  EXPECT_EQ(getFailure("/"), "/: cannot be read: Is a directory; write it anew");
}
