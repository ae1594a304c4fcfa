#include "command/report/mode_order.h"

#include <gmock/gmock.h>

#include "tests/support/answer_test.h"

using NQRXZELT20::TCIMValue;
using testing::ElementsAre;

namespace {

class ModeOrder : public TAnswerTest {
 protected:
  /// The only mode of a request.
  TInstanceView MakeMode(unsigned int width, unsigned int height, unsigned int rate) {
    Commit("QRXSG_MonitorResolution", {{"HorizontalResolution", TCIMValue(width)},
                                       {"VerticalResolution", TCIMValue(height)},
                                       {"RefreshRate", TCIMValue(rate)}});
    EndRequest({"QRXSG_MonitorResolution"});
    return TInstanceView(*answer.requests.back().instances.front());
  }

  static TOutput MakeOutput(const TMode& preferred) {
    TEdidFacts facts;
    facts.isVersion1 = true;
    facts.preferredMode = preferred;
    return {0, "", "Monitor 1", "", facts, {}};
  }
};

std::vector<std::string> Write(const TInstances& modes) {
  std::vector<std::string> texts;
  for (const TInstanceView& mode : modes) {
    texts.push_back(mode.Size("HorizontalResolution", "VerticalResolution") + " @ " + mode.Text("RefreshRate"));
  }
  return texts;
}

}  // namespace

TEST_F(ModeOrder, HasTheLargestPictureFirst) {
  EXPECT_THAT(Write(SortModes({MakeMode(1600, 900, 60), MakeMode(1280, 1280, 60), MakeMode(640, 480, 60)})),
              ElementsAre("1280 x 1280 @ 60", "1600 x 900 @ 60", "640 x 480 @ 60"));
}

TEST_F(ModeOrder, KeepsTheModesOfAResolutionTogether) {
  EXPECT_THAT(Write(SortModes({MakeMode(400, 300, 60), MakeMode(300, 400, 90), MakeMode(400, 300, 75)})),
              ElementsAre("400 x 300 @ 75", "400 x 300 @ 60", "300 x 400 @ 90"));
}

TEST_F(ModeOrder, HasAModeOnceThatIsDeclaredTwice) {
  EXPECT_THAT(Write(SortModes({MakeMode(640, 480, 75), MakeMode(640, 480, 60), MakeMode(640, 480, 75)})),
              ElementsAre("640 x 480 @ 75", "640 x 480 @ 60"));
}

TEST_F(ModeOrder, KnowsThePreferredModeByItsRoundedRate) {
  const TOutput output = MakeOutput({640, 480, 59.94});
  EXPECT_TRUE(IsPreferred(MakeMode(640, 480, 60), &output));
  EXPECT_FALSE(IsPreferred(MakeMode(640, 480, 59), &output));
  EXPECT_FALSE(IsPreferred(MakeMode(641, 480, 60), &output));
  EXPECT_FALSE(IsPreferred(MakeMode(640, 481, 60), &output));
}

TEST_F(ModeOrder, KnowsNoPreferredModeWithoutAnEdidThatNamesOne) {
  TOutput output = MakeOutput({640, 480, 60});
  output.facts->preferredMode = std::nullopt;
  EXPECT_FALSE(IsPreferred(MakeMode(640, 480, 60), &output));
  output.facts = std::nullopt;
  EXPECT_FALSE(IsPreferred(MakeMode(640, 480, 60), &output));
  EXPECT_FALSE(IsPreferred(MakeMode(640, 480, 60), nullptr));
}
