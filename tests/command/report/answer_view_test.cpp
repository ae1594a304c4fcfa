#include "command/report/answer_view.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// An EDID of model 7 of maker 1, without anything else.
TOutput MakeOutput(unsigned int unit, const std::string& connector) {
  TEdidFacts facts;
  facts.isVersion1 = true;
  facts.manufacturer = 1;
  facts.productCode = 7;
  facts.hasValidChecksums = true;
  return {unit, connector, "Monitor " + std::to_string(unit + 1), "", facts, {}};
}

}  // namespace

TEST(OutputView, DescribesNoProblemOfWhatIsNoEdid) {
  TOutput output = MakeOutput(0, "");
  output.facts->contradictions = {"Block 0 has a wrong checksum."};
  EXPECT_EQ(DescribeProblems(output).size(), 1U);
  output.facts->isVersion1 = false;
  EXPECT_THAT(DescribeProblems(output), IsEmpty());
  output.facts = std::nullopt;
  EXPECT_THAT(DescribeProblems(output), IsEmpty());
}

TEST(OutputView, FindsTheOutputWhoseModesAreKnown) {
  TAnswer answer;
  answer.outputs = {MakeOutput(0, "")};
  answer.outputs[0].deviceId = std::nullopt;
  EXPECT_EQ(FindOutput(answer, ""), nullptr);
  answer.outputs[0].modesId = "Monitor 1";
  EXPECT_EQ(FindOutput(answer, "Monitor 1"), &answer.outputs[0]);
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

TEST(AnswerIdentity, NamesTheSystem) {
  EXPECT_EQ(ShowSystemName({"ws-17", "", ""}), "ws-17");
  EXPECT_EQ(ShowSystemName({"ws\x1B", "", ""}), "ws\\x1b");
  EXPECT_EQ(ShowSystemName({"", "", ""}), "A system without a name");
}

TEST(AnswerIdentity, SaysWhenAndByWhichVersion) {
  EXPECT_EQ(DescribeCollection({"ws-17", "2026-11-21T21:30:00Z", "1.4.0"}),
            "Collected 2026-11-21 21:30:00 UTC, shown by displayinfo 1.4.0");
}

TEST(AnswerIdentity, SaysNoTimeThatIsNotKnown) {
  EXPECT_EQ(DescribeCollection({"ws-17", "", "1.4.0"}), "Shown by displayinfo 1.4.0");
}
