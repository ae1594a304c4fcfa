#include "command/report/empty_classes.h"

#include <gmock/gmock.h>

#include "tests/support/answer_test.h"

using NQRXZELT20::ILogger;
using NQRXZELT20::TCIMValue;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class EmptyClasses : public TAnswerTest {
 protected:
  EmptyClasses() { answer.reasons = {"no file", "no EDID", "no timing"}; }

  std::vector<std::string> Explain(const TRequest& classes, EPart part, const std::vector<TLogEntry>& log = {}) {
    EndRequest(classes, log);
    return ExplainGaps(answer, answer.requests.back(), part);
  }
};

}  // namespace

TEST_F(EmptyClasses, HaveTheReasonOfTheirPart) {
  EXPECT_THAT(Explain({"QRXSG_VideoController", "QRXSG_VideoHead"}, EPart::kVideo), ElementsAre("no file"));
  EXPECT_THAT(Explain({"QRXSG_DesktopMonitor"}, EPart::kMonitors), ElementsAre("no EDID"));
  EXPECT_THAT(Explain({"QRXSG_MonitorResolution"}, EPart::kMonitors), ElementsAre("no timing"));
}

TEST_F(EmptyClasses, OfThePartThatWasNotAskedForHaveNone) {
  EXPECT_THAT(Explain({"QRXSG_DesktopMonitor"}, EPart::kVideo), IsEmpty());
}

TEST_F(EmptyClasses, AreNamedWhereOthersOfTheirPartHaveInstances) {
  Commit("QRXSG_DesktopMonitor", {});
  EXPECT_THAT(Explain({"QRXSG_DesktopMonitor", "QRXSG_MonitorResolution", "QRXSG_MonitorSetting"}, EPart::kMonitors),
              ElementsAre("No QRXSG_MonitorResolution or QRXSG_MonitorSetting: no timing"));
}

TEST_F(EmptyClasses, OfOneCauseAreEachNamedOnce) {
  Commit("QRXSG_VideoHead", {});
  EXPECT_THAT(
      Explain({"QRXSG_VideoController", "QRXSG_VideoHead", "QRXSG_VideoController", "QRXSG_HeadOfVideoController"},
              EPart::kVideo),
      ElementsAre("No QRXSG_VideoController or QRXSG_HeadOfVideoController: no file"));
}

TEST_F(EmptyClasses, OfLinksMissWhatWasNotAskedForBeforeThem) {
  EXPECT_THAT(Explain({"QRXSG_MonitorSetting"}, EPart::kMonitors),
              ElementsAre("QRXSG_MonitorSetting links what was collected before it, and QRXSG_DesktopMonitor was not; "
                          "ask for QRXSG_DesktopMonitor and QRXSG_MonitorResolution first"));
  Commit("QRXSG_VideoHead", {});
  EXPECT_THAT(
      Explain({"QRXSG_VideoHead", "QRXSG_HeadOfVideoController", "QRXSG_VideoController"}, EPart::kVideo).front(),
      "No QRXSG_HeadOfVideoController: QRXSG_HeadOfVideoController links what was collected before it, and "
      "QRXSG_VideoController was not; ask for QRXSG_VideoController and QRXSG_VideoHead first");
}

TEST_F(EmptyClasses, OfLinksMissWhatEarlierRequestsDidNotFind) {
  Commit("QRXSG_DesktopMonitor", {});
  EndRequest({"QRXSG_DesktopMonitor", "QRXSG_MonitorResolution"});
  EXPECT_THAT(Explain({"QRXSG_MonitorSetting"}, EPart::kMonitors), ElementsAre("no timing"));
}

TEST_F(EmptyClasses, OfLinksMayLinkNothingOfWhatThereIs) {
  Commit("QRXSG_VideoController", {});
  Commit("QRXSG_VideoHead", {});
  EndRequest({"QRXSG_VideoController", "QRXSG_VideoHead"});
  EXPECT_THAT(Explain({"QRXSG_HeadOfVideoController"}, EPart::kVideo),
              ElementsAre("no head has the display id of a controller, or their BusID is empty"));
  Commit("QRXSG_DesktopMonitor", {});
  Commit("QRXSG_MonitorResolution", {});
  EndRequest({"QRXSG_DesktopMonitor", "QRXSG_MonitorResolution"});
  EXPECT_THAT(Explain({"QRXSG_MonitorSetting"}, EPart::kMonitors),
              ElementsAre("no mode of a monitor is found for it: the plug-in takes the mode at the monitor's own "
                          "position in the list of all"));
}

TEST_F(EmptyClasses, StandBesideValuesThatThePluginCouldNotUse) {
  Commit("QRXSG_VideoHead", {});
  const std::vector<TLogEntry> log = {
      {ILogger::kDebug, "Could not convert to integer horizontal resolution fromnvidia-auto-select"},
      {ILogger::kDebug, "Could not convert to integer horizontal resolution fromnvidia-auto-select"},
      {ILogger::kDebug, "Could not convert to integer vertical resolution from 1280"},
      {ILogger::kDebug, "Could not convert to integer color quality from24bit"},
      {ILogger::kDebug, "No such thing"}};
  EXPECT_THAT(Explain({"QRXSG_VideoHead"}, EPart::kVideo, log),
              ElementsAre("a head has no configured mode: \"nvidia-auto-select\" in its Screen section is no number of "
                          "pixels, nor a depth",
                          "a head has no configured height: what follows \"1280x\" in its Screen section is no number "
                          "of lines",
                          "a head has no colour depth: its Depth \"24bit\" is no number"));
}

TEST_F(EmptyClasses, StandBesideTheHeadsWithoutAValue) {
  Commit("QRXSG_VideoHead", {{"DeviceID", TCIMValue("Left")}, {"CurrentHorizontalResolution", TCIMValue(1280U)}});
  Commit("QRXSG_VideoHead", {{"DeviceID", TCIMValue("Right")}});
  Commit("QRXSG_VideoHead", {{"DeviceID", TCIMValue("Right")}});
  const std::vector<TLogEntry> log = {{ILogger::kDebug, "Could not convert to integer horizontal resolution fromauto"},
                                      {ILogger::kDebug, "Could not convert to integer vertical resolution from 1280"}};
  EXPECT_THAT(
      Explain({"QRXSG_VideoHead"}, EPart::kVideo, log),
      ElementsAre("head Right has no configured mode: \"auto\" in its Screen section is no number of pixels, nor "
                  "a depth",
                  "head Left or Right has no configured height: what follows \"1280x\" in its Screen section is "
                  "no number of lines"));
}

TEST_F(EmptyClasses, AreExplainedInPrintableText) {
  answer.reasons.noControllers = "\x1B[2J is empty";
  EXPECT_THAT(Explain({"QRXSG_VideoController"}, EPart::kVideo), ElementsAre("\\x1b[2J is empty"));
}
