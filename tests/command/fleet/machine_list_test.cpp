#include "command/fleet/machine_list.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "command/base/unusable.h"
#include "tests/support/pipe.h"
#include "tests/support/temporary_folder.h"

namespace {

typedef std::vector<std::string> TNames;

TNames TakeAll(TMachineList& list) {
  TNames names;
  while (!list.IsAtEnd()) {
    if (list.HasNext()) {
      names.push_back(list.TakeNext());
    } else {
      list.ReadMore();
    }
  }
  return names;
}

class MachineList : public testing::Test {
 protected:
  TMachineList Open(const std::string& content) const {
    folder.Write("list", content);
    return TMachineList::Open(folder.GetPath() / "list");
  }

  TNames Read(const std::string& content) const {
    TMachineList list = Open(content);
    return TakeAll(list);
  }

  TTemporaryFolder folder;
};

/// Makes a descriptor, which it then owns, the standard input while it lives; -1 closes standard input.
class TStandardInput {
 public:
  explicit TStandardInput(int descriptor) : m_before(dup(STDIN_FILENO)) {
    if (descriptor < 0) {
      close(STDIN_FILENO);
      return;
    }
    dup2(descriptor, STDIN_FILENO);
    close(descriptor);
  }
  ~TStandardInput() {
    dup2(m_before, STDIN_FILENO);
    close(m_before);
  }
  TStandardInput(const TStandardInput&) = delete;
  TStandardInput& operator=(const TStandardInput&) = delete;

 private:
  int m_before;
};

}  // namespace

TEST_F(MachineList, HasTheGivenNamesInTheirOrder) {
  TMachineList list(TNames{"b", "a", "b"});
  EXPECT_EQ(list.CountAll(), 3U);
  EXPECT_EQ(TakeAll(list), (TNames{"b", "a", "b"}));
}

TEST_F(MachineList, HasTheLinesOfItsFile) { EXPECT_EQ(Read("b\na c\n\xFF\n"), (TNames{"b", "a c", "\xFF"})); }

TEST_F(MachineList, TakesALastLineWithoutItsEnd) { EXPECT_EQ(Read("a\nb"), (TNames{"a", "b"})); }

TEST_F(MachineList, TakesEmptyLinesForNone) { EXPECT_EQ(Read("\na\n\n\nb\n\n"), (TNames{"a", "b"})); }

TEST_F(MachineList, TakesLinesThatEndAsThoseOfWindowsDo) {
  EXPECT_EQ(Read("a\r\n\r\nb c\r\nd\re"), (TNames{"a", "b c", "d\re"}));
}

TEST_F(MachineList, CountsLinesThatEndAsThoseOfWindowsDo) { EXPECT_EQ(Open("a\r\n\r\nb\r\n\r").CountAll(), 2U); }

TEST_F(MachineList, TakesLinesThatBeginWithAHashForComments) {
  const std::string list = "# all\na\n \t#b\nc # d\n#\r\n #";
  EXPECT_EQ(Read(list), (TNames{"a", "c # d"}));
  EXPECT_EQ(Open(list).CountAll(), 2U);
  EXPECT_EQ(Read(" \n#" + std::string(200000, 'x') + "\nb"), (TNames{" ", "b"}));
}

TEST_F(MachineList, IsEmptyWithAnEmptyFile) { EXPECT_EQ(Read(""), TNames()); }

TEST_F(MachineList, TakesNamesThatReachOverPiecesOfTheFile) {
  TNames names;
  std::string content;
  for (int number = 0; number < 30000; ++number) {
    names.push_back("machine-" + std::to_string(number));
    content += names.back() + "\n";
  }
  EXPECT_EQ(Read(content), names);
}

TEST_F(MachineList, CountsTheNamesOfAFile) {
  TMachineList list = Open("a\n\nb\nc");
  EXPECT_EQ(list.CountAll(), 3U);
  EXPECT_EQ(TakeAll(list).size(), 3U);
}

TEST_F(MachineList, TakesNamesFromStandardInputAsTheyCome) {
  TPipe names;
  const TStandardInput input(names.reading.Release());
  TMachineList list = TMachineList::Open("-");
  EXPECT_EQ(list.CountAll(), std::nullopt);
  ASSERT_EQ(write(names.writing.Get(), "a\nb", 3), 3);
  list.ReadMore();
  ASSERT_TRUE(list.HasNext());
  EXPECT_EQ(list.TakeNext(), "a");
  EXPECT_FALSE(list.HasNext());
  EXPECT_FALSE(list.IsAtEnd());
  ASSERT_EQ(write(names.writing.Get(), "c\n", 2), 2);
  list.ReadMore();
  ASSERT_TRUE(list.HasNext());
  EXPECT_EQ(list.TakeNext(), "bc");
}

TEST_F(MachineList, CutsANameThatIsLongerThanTheSystemTakes) {
  const std::string longest(4095, 'x');
  EXPECT_EQ(Read(longest + "\nb\n"), (TNames{longest, "b"}));
  EXPECT_EQ(Read(longest + "xy\nb\n"), (TNames{longest + "x", "b"}));
  EXPECT_EQ(Read(std::string(200000, 'x') + "\nb\n"), (TNames{longest + "x", "b"}));
  EXPECT_EQ(Read(std::string(200000, 'x')), (TNames{longest + "x"}));
  TMachineList list(TNames{longest + "xy", "b"});
  EXPECT_EQ(TakeAll(list), (TNames{longest + "x", "b"}));
}

TEST_F(MachineList, CountsWhatIsLeftOfAFileOnStandardInput) {
  folder.Write("list", "a\nb\nc\n");
  const TStandardInput input(open((folder.GetPath() / "list").c_str(), O_RDONLY));
  char first[2];
  ASSERT_EQ(read(STDIN_FILENO, first, sizeof first), 2);
  TMachineList list = TMachineList::Open("-");
  EXPECT_EQ(list.CountAll(), 2U);
  EXPECT_EQ(TakeAll(list), (TNames{"b", "c"}));
}

TEST_F(MachineList, IsRefusedWhenStandardInputIsClosed) {
  const TStandardInput input(-1);
  EXPECT_THROW(TMachineList::Open("-"), TUnusable);
}

TEST_F(MachineList, IsRefusedWithoutItsFile) {
  EXPECT_THROW(TMachineList::Open(folder.GetPath() / "nowhere"), TUnusable);
}

TEST_F(MachineList, IsRefusedWhenItIsAFolder) {
  TMachineList list = TMachineList::Open(folder.GetPath());
  EXPECT_THROW(list.ReadMore(), TUnusable);
}
