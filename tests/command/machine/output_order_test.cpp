#include "command/machine/output_order.h"

#include <gmock/gmock.h>

#include <numeric>

#include "tests/support/edid_builder.h"

using testing::IsEmpty;

namespace {

/// One card with an output for each letter, an EDID named after it; '-' is an output without an EDID, '!' one whose
/// EDID is not of version 1.
std::vector<TDrmCard> MakeCards(const std::string& letters) {
  TDrmCard card;
  for (const char letter : letters) {
    TEdidBuilder builder;
    builder.Name(0, std::string(1, letter)).Version(letter == '!' ? 2 : 1, 3);
    card.outputs.push_back({std::string(1, letter), letter == '-' ? std::vector<std::uint8_t>() : builder.Build()});
  }
  return {card};
}

std::string Order(const std::string& letters) {
  std::string ordered;
  for (const TDrmOutput& output : OrderOutputs(MakeCards(letters))) ordered += output.connector;
  return ordered;
}

/// How many of them the plug-in lists: all before the first that repeats the one before it.
std::size_t CountListed(const std::string& ordered) {
  for (std::size_t index = 1; index < ordered.size(); ++index) {
    if (ordered[index] == ordered[index - 1]) return index;
  }
  return ordered.size();
}

}  // namespace

TEST(OutputOrder, StaysWhenNoNeighboursAreEqual) {
  for (const char* const letters : {"", "A", "AB", "ABA", "ABCB", "CBA", "ABAB"}) EXPECT_EQ(Order(letters), letters);
}

TEST(OutputOrder, KeepsEqualOnesApart) {
  EXPECT_EQ(Order("AAB"), "ABA");
  EXPECT_EQ(Order("BAA"), "ABA");
  EXPECT_EQ(Order("AABB"), "ABAB");
  EXPECT_EQ(Order("ABBC"), "ABCB");
}

TEST(OutputOrder, PutsThoseLastThatCannotBeKeptApart) {
  EXPECT_EQ(Order("AAA"), "AAA");
  EXPECT_EQ(Order("AAAB"), "ABAA");
}

TEST(OutputOrder, PutsEdidsLastThatThePlugInDoesNotRead) {
  EXPECT_EQ(Order("!AB"), "AB!");
  EXPECT_EQ(Order("A!A"), "AA!");
}

TEST(OutputOrder, LeavesOutOutputsWithoutAnEdid) { EXPECT_EQ(Order("-A-"), "A"); }

// n equal EDIDs need n - 1 others between them.
TEST(OutputOrder, ListsAsManyAsCanBeForEveryRowOfUpToSevenOutputs) {
  for (std::size_t size = 1; size <= 7; ++size) {
    const auto rows = static_cast<std::size_t>(std::pow(3, size));
    for (std::size_t row = 0; row < rows; ++row) {
      std::string letters;
      for (std::size_t rest = row; letters.size() < size; rest /= 3) letters += static_cast<char>('A' + rest % 3);
      std::size_t most = 0;
      for (const char letter : {'A', 'B', 'C'}) {
        most = std::max(most, static_cast<std::size_t>(std::count(letters.begin(), letters.end(), letter)));
      }
      EXPECT_EQ(CountListed(Order(letters)), std::min(size, 2 * (size - most) + 1)) << letters;
    }
  }
}

TEST(OutputOrder, ComparesBaseBlocksAsThePlugInDoes) {
  TDrmCard card;
  const TEdidBuilder same = TEdidBuilder().Name(0, "A");
  card.outputs.push_back({"1", TEdidBuilder(same).Extension({1}).Build()});
  card.outputs.push_back({"2", TEdidBuilder(same).Extension({2}).Build()});
  card.outputs.push_back({"3", TEdidBuilder().Name(0, "B").Build()});
  EXPECT_EQ(OrderOutputs({card})[1].connector, "3");
}
