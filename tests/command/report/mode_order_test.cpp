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

  static TOutput MakeOutput(const TEdidMode& preferred, const std::vector<TListedMode>& modes = {}) {
    TEdidFacts facts;
    facts.isVersion1 = true;
    facts.preferredMode = preferred;
    facts.modes = modes;
    return {0, "", "Monitor 1", "", facts, {}};
  }

  static TListedMode MakeListed(const TEdidMode& mode) { return {mode, EModeSource::Detailed, EYcbcr420::No}; }
};

/// The modes as texts, with a "+" after the preferred one and a "=" after those of the answer.
std::vector<std::string> Write(const std::vector<TShownMode>& modes) {
  std::vector<std::string> texts;
  for (const TShownMode& mode : modes) {
    texts.push_back(std::to_string(mode.width) + " x " + std::to_string(mode.height) + " @ " + WriteRate(mode) +
                    (mode.isPreferred ? "+" : "") + (mode.isInClasses ? "=" : ""));
  }
  return texts;
}

}  // namespace

TEST_F(ModeOrder, HasTheLargestPictureFirst) {
  EXPECT_THAT(Write(ListModes({MakeMode(1600, 900, 60), MakeMode(1280, 1280, 60), MakeMode(640, 480, 60)}, nullptr)),
              ElementsAre("1280 x 1280 @ 60=", "1600 x 900 @ 60=", "640 x 480 @ 60="));
}

TEST_F(ModeOrder, KeepsTheModesOfAResolutionTogether) {
  EXPECT_THAT(Write(ListModes({MakeMode(400, 300, 60), MakeMode(300, 400, 90), MakeMode(400, 300, 75)}, nullptr)),
              ElementsAre("400 x 300 @ 75=", "400 x 300 @ 60=", "300 x 400 @ 90="));
}

TEST_F(ModeOrder, HasAModeOnceThatIsDeclaredTwice) {
  EXPECT_THAT(Write(ListModes({MakeMode(640, 480, 75), MakeMode(640, 480, 60), MakeMode(640, 480, 75)}, nullptr)),
              ElementsAre("640 x 480 @ 75=", "640 x 480 @ 60="));
}

TEST_F(ModeOrder, HasAllModesOfTheEdidAndThoseThatItLacks) {
  TOutput output =
      MakeOutput({1920, 1080, 59.94}, {MakeListed({1920, 1080, 60}), MakeListed({1920, 1080, 59.94}),
                                       MakeListed({1920, 1080, 50}), MakeListed({1920, 1080, 59.94, true})});
  output.resolutions = {{1920, 1080, 50}, {640, 480, 60}};
  const std::vector<TShownMode> modes = ListModes({MakeMode(1920, 1080, 50), MakeMode(640, 480, 60)}, &output);
  EXPECT_THAT(Write(modes), ElementsAre("1920 x 1080 @ 60", "1920 x 1080 @ 59.94+",
                                        "1920 x 1080 @ 50=", "1920 x 1080 @ 59.94i", "640 x 480 @ 60="));
  EXPECT_FALSE(AreAllInClasses(modes));
}

TEST_F(ModeOrder, KnowsThePreferredModeByItsRoundedRate) {
  const TOutput output = MakeOutput({640, 480, 59.55});
  EXPECT_THAT(Write(ListModes({MakeMode(640, 480, 60), MakeMode(640, 480, 59), MakeMode(641, 480, 60)}, &output)),
              ElementsAre("641 x 480 @ 60=", "640 x 480 @ 60+=", "640 x 480 @ 59="));
}

TEST_F(ModeOrder, KnowsNoPreferredModeWithoutAnEdidThatNamesOne) {
  TOutput output = MakeOutput({640, 480, 60});
  output.facts->preferredMode = std::nullopt;
  EXPECT_THAT(Write(ListModes({MakeMode(640, 480, 60)}, &output)), ElementsAre("640 x 480 @ 60="));
  output.facts = std::nullopt;
  EXPECT_THAT(Write(ListModes({MakeMode(640, 480, 60)}, &output)), ElementsAre("640 x 480 @ 60="));
}
