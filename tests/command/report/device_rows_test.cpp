#include "command/report/device_rows.h"

#include <gmock/gmock.h>

#include "tests/support/answer_test.h"

using NQRXZELT20::TCIMValue;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class DeviceRows : public TAnswerTest {
 protected:
  /// The only instance of a request.
  TInstanceView Make(const std::string& className, const TValues& values) {
    Commit(className, values);
    EndRequest({className});
    return TInstanceView(*answer.requests.back().instances.front());
  }

  /// An output of "Monitor 1".
  TEdidFacts& AddOutput() {
    TEdidFacts facts;
    facts.isVersion1 = true;
    facts.hasValidChecksums = true;
    answer.outputs = {{0, "", "Monitor 1", "", facts, {}}};
    return *answer.outputs[0].facts;
  }
};

/// Label and text of each row.
std::vector<std::string> Write(const std::vector<TOutputRow>& rows) {
  std::vector<std::string> texts;
  for (const TOutputRow& row : rows) texts.push_back(row.label + (": " + row.text));
  return texts;
}

std::vector<std::string> WriteController(const TInstanceView& controller) {
  return Write(DescribeController(controller));
}

}  // namespace

TEST_F(DeviceRows, HaveNoneOfWhatIsNotKnown) {
  EXPECT_THAT(WriteController(Make("QRXSG_VideoController", {})), IsEmpty());
}

TEST_F(DeviceRows, TellVideoMemoryInMebibytesWhereTheyAreWhole) {
  EXPECT_THAT(WriteController(Make("QRXSG_VideoController", {{"VideoRamSize", TCIMValue(3U << 20U)}})),
              ElementsAre("Video memory: 3 MiB"));
  EXPECT_THAT(WriteController(Make("QRXSG_VideoController", {{"VideoRamSize", TCIMValue(1000U)}})),
              ElementsAre("Video memory: 1000 bytes"));
}

TEST_F(DeviceRows, TellTheModeOfAHeadAsFarAsItIsKnown) {
  EXPECT_THAT(Write(DescribeHead(Make("QRXSG_VideoHead", {{"CurrentHorizontalResolution", TCIMValue(640U)},
                                                          {"CurrentBitsPerPixel", TCIMValue(24U)}}))),
              ElementsAre("Configured mode: 640 x ?, 24 bits per pixel"));
}

TEST_F(DeviceRows, TellTheSerialNumberOfTheHeaderOnlyWhereItIsAnother) {
  const TInstanceView monitor = Make("QRXSG_DesktopMonitor", {});
  TEdidFacts& facts = AddOutput();
  facts.serialNumber = 4711;
  facts.serial = TSerial{"4711", ESerialSource::kNumber, ""};
  EXPECT_THAT(Write(DescribeMonitor(answer, {"Monitor 1", monitor, {}}, TMakerNames())),
              ElementsAre("Serial number: 4711", "Input: analogue", "Product code: 0 (0x0000)", "Power saving: none"));
  facts.serialText = "A-1";
  facts.serial = TSerial{"A-1", ESerialSource::kText, ""};
  EXPECT_THAT(Write(DescribeMonitor(answer, {"Monitor 1", monitor, {}}, TMakerNames())),
              ElementsAre("Serial number: A-1", "Input: analogue", "Product code: 0 (0x0000)", "Power saving: none",
                          "Serial in header: 4711"));
}

TEST_F(DeviceRows, TellOnlyThePreferredModeOfAMonitorThatWasNotAskedFor) {
  AddOutput().preferredMode = {640, 480, 60};
  EXPECT_THAT(Write(DescribeMonitor(answer, {"Monitor 1", std::nullopt, {}}, TMakerNames())),
              ElementsAre("Preferred mode: 640 x 480 at 60.000 Hz"));
}

TEST_F(DeviceRows, BeginWithWhatIsWrong) {
  const TInstanceView monitor = Make("QRXSG_DesktopMonitor", {});
  AddOutput().contradictions = {"Block 0 has a wrong checksum.", "the picture is an aspect ratio"};
  EXPECT_THAT(Write(DescribeMonitor(answer, {"Monitor 1", monitor, {}}, TMakerNames())),
              ElementsAre("Problem: Block 0 has a wrong checksum.", "Problem: the picture is an aspect ratio",
                          "Input: analogue", "Product code: 0 (0x0000)", "Power saving: none"));
}

TEST_F(DeviceRows, TellOfAnOutputWithoutAnEdidWhatMayHelp) {
  AddOutput();
  answer.outputs = {{0, "card0-DP-1", std::nullopt, "its EDID is missing", std::nullopt, {}}};
  answer.outputs[0].cure = "switch it on";
  EXPECT_THAT(Write(DescribeUnlisted(answer, answer.outputs[0], TMakerNames())),
              ElementsAre("Not listed: its EDID is missing", "What helps: switch it on", "Connector: card0-DP-1"));
}

TEST_F(DeviceRows, TellOfAnUnlistedOutputWhyAndWhatItsEdidSays) {
  AddOutput().serial = TSerial{"A-1", ESerialSource::kText, ""};
  answer.outputs[0].deviceId = std::nullopt;
  answer.outputs[0].reason = "its EDID repeats that of unit 0";
  answer.outputs[0].connector = "card0-DP-2";
  answer.outputs[0].path = "0000:01:00.0/DP-2";
  EXPECT_THAT(Write(DescribeUnlisted(answer, answer.outputs[0], TMakerNames())),
              ElementsAre("Not listed: its EDID repeats that of unit 0", "Connector: card0-DP-2, 0000:01:00.0/DP-2",
                          "Serial number: A-1", "Input: analogue", "Product code: 0 (0x0000)"));
}
