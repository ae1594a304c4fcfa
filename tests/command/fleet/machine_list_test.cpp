#include "command/fleet/machine_list.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "command/base/unusable.h"
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

/// Makes a pipe the standard input, for as long as it lives.
class TPipedInput {
 public:
  TPipedInput() {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    m_before = dup(STDIN_FILENO);
    dup2(ends[0], STDIN_FILENO);
    close(ends[0]);
    m_input = ends[1];
  }
  ~TPipedInput() {
    dup2(m_before, STDIN_FILENO);
    close(m_before);
    close(m_input);
  }

  void Write(const std::string& text) const {
    ASSERT_EQ(write(m_input, text.data(), text.size()), ssize_t(text.size()));
  }

 private:
  int m_before;
  int m_input;
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
  const TPipedInput input;
  TMachineList list = TMachineList::Open("-");
  EXPECT_EQ(list.CountAll(), std::nullopt);
  input.Write("a\nb");
  list.ReadMore();
  ASSERT_TRUE(list.HasNext());
  EXPECT_EQ(list.TakeNext(), "a");
  EXPECT_FALSE(list.HasNext());
  EXPECT_FALSE(list.IsAtEnd());
  input.Write("c\n");
  list.ReadMore();
  ASSERT_TRUE(list.HasNext());
  EXPECT_EQ(list.TakeNext(), "bc");
}

TEST_F(MachineList, IsRefusedWithALineThatIsNoName) {
  EXPECT_EQ(Read(std::string(65536, 'x') + "\n").front().size(), 65536U);
  EXPECT_THROW(Read(std::string(200000, 'x')), TUnusable);
}

TEST_F(MachineList, IsRefusedWithoutItsFile) {
  EXPECT_THROW(TMachineList::Open(folder.GetPath() / "nowhere"), TUnusable);
}

TEST_F(MachineList, IsRefusedWhenItIsAFolder) {
  TMachineList list = TMachineList::Open(folder.GetPath());
  EXPECT_THROW(list.ReadMore(), TUnusable);
}
