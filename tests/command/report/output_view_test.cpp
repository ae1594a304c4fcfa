#include "command/report/output_view.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Of the model 7 of the maker 1, without anything else.
TOutput MakeOutput(unsigned int unit, const std::string& connector) {
  TEdidFacts facts;
  facts.isVersion1 = true;
  facts.manufacturer = 1;
  facts.productCode = 7;
  facts.hasValidChecksums = true;
  return {unit, connector, "Monitor " + std::to_string(unit + 1), "", facts, {}};
}

/// Label and text of each row.
std::vector<std::string> Describe(const TAnswer& answer, std::size_t index) {
  std::vector<std::string> rows;
  for (const TOutputRow& row : DescribeHeader(answer, answer.outputs[index])) {
    rows.push_back(row.label + (": " + row.text));
  }
  return rows;
}

}  // namespace

TEST(OutputView, DescribesTheHeader) {
  TAnswer answer;
  answer.outputs = {MakeOutput(0, "")};
  answer.outputs[0].facts->serialNumber = 4711;
  answer.outputs[0].facts->hasValidChecksums = false;
  EXPECT_THAT(Describe(answer, 0), ElementsAre("Serial in header: 4711", "EDID checksums: wrong: a byte is damaged"));
}

TEST(OutputView, LeavesOutWhatTheHeaderDoesNotSay) {
  TAnswer answer;
  answer.outputs = {MakeOutput(0, "")};
  EXPECT_THAT(Describe(answer, 0), IsEmpty());
}

TEST(OutputView, DescribesNothingOfWhatIsNoEdid) {
  TAnswer answer;
  answer.outputs = {MakeOutput(0, ""), MakeOutput(1, "")};
  answer.outputs[0].facts->isVersion1 = false;
  answer.outputs[1].facts = std::nullopt;
  EXPECT_THAT(Describe(answer, 0), IsEmpty());
  EXPECT_THAT(Describe(answer, 1), IsEmpty());
}

TEST(OutputView, SaysWhichMonitorsCannotBeToldApartByTheirHeaders) {
  TAnswer answer;
  answer.outputs = {MakeOutput(0, "card0-DP-1"), MakeOutput(1, "card0-DP-2"), MakeOutput(2, ""), MakeOutput(3, "")};
  answer.outputs[2].facts->productCode = 8;
  answer.outputs[3].facts->serialNumber = 9;
  EXPECT_THAT(Describe(answer, 0),
              ElementsAre("Serial in header: none; card0-DP-2 (unit 1) is of the same model and has none either"));
  EXPECT_THAT(Describe(answer, 2), IsEmpty());
}

TEST(OutputView, FindsTheOutputOfAMonitor) {
  TAnswer answer;
  answer.outputs = {MakeOutput(0, ""), MakeOutput(1, "")};
  EXPECT_EQ(FindOutput(answer, "Monitor 2"), &answer.outputs[1]);
  EXPECT_EQ(FindOutput(answer, "Monitor 3"), nullptr);
}

TEST(OutputView, ExplainsEachOutputThatIsNotListed) {
  TAnswer answer;
  answer.outputs = {MakeOutput(0, ""), MakeOutput(1, "card0-\x1B"), MakeOutput(2, "")};
  for (const std::size_t index : {1, 2}) {
    answer.outputs[index].deviceId = std::nullopt;
    answer.outputs[index].reason = "its EDID is missing";
  }
  EXPECT_THAT(ExplainUnlisted(answer), ElementsAre("card0-\\x1b (unit 1) is not listed: its EDID is missing",
                                                   "unit 2 is not listed: its EDID is missing"));
}
