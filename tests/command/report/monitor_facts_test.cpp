#include "command/report/monitor_facts.h"

#include <gtest/gtest.h>

#include "tests/support/answer_test.h"
#include "tests/support/edid_builder.h"
#include "tests/support/temporary_folder.h"

using NQRXZELT20::TCIMDateTime;
using NQRXZELT20::TCIMValue;

namespace {

class MonitorFacts : public TAnswerTest {
 protected:
  static TMonitorFacts Describe(const TEdidBuilder& edid) {
    TOutput output = {0, "", "Monitor 1", "", ReadEdidFacts(edid.Build()), edid.Build()};
    return DescribeMonitor(&output, nullptr, TMakerNames());
  }

  TInstanceView CommitMonitor(const TValues& values) {
    Commit("QRXSG_DesktopMonitor", values);
    EndRequest({"QRXSG_DesktopMonitor"});
    return TInstanceView(*answer.requests.back().instances.back());
  }

  /// Every fact, to compare all at once.
  static std::vector<std::string> List(const TMonitorFacts& f) {
    return {f.makerCode, f.makerName, f.model, f.serialNumber, f.productCode, f.made,       f.year,
            f.size,      f.diagonal,  f.input, f.lineRate,     f.fieldRate,   f.pixelClock, f.preferredMode};
  }
};

constexpr unsigned int kInput = edid::kVideoInput;

}  // namespace

TEST_F(MonitorFacts, AreReadFromTheEdid) {
  const TEdidBuilder edid = TEdidBuilder()
                                .Manufacturer("ACM")
                                .Made(14, 2008)
                                .ImageSize(38, 30)
                                .Byte(edid::kProductCode, 0xEF)
                                .Byte(edid::kProductCode + 1, 0xA0)
                                .DetailedTiming(0, false)
                                .Name(1, "Acme A190")
                                .Serial(2, "A190-1")
                                .RangeLimits(3, 56, 76, 30, 83, 14);
  EXPECT_EQ(List(Describe(edid)),
            (std::vector<std::string>{"ACM", "", "Acme A190", "A190-1", "41199 (0xA0EF)", "week 14 of 2008", "2008",
                                      "380 x 300 mm", "19.1 inches", "analogue", "30 to 83 kHz", "56 to 76 Hz",
                                      "140 MHz at most", "1280 x 1024 at 60.020 Hz"}));
}

TEST_F(MonitorFacts, AreEmptyWhereTheEdidSaysNothing) {
  EXPECT_EQ(List(Describe(TEdidBuilder())),
            (std::vector<std::string>{"", "", "", "", "0 (0x0000)", "", "", "", "", "analogue", "", "", "", ""}));
}

TEST_F(MonitorFacts, AreThoseOfTheInstanceWhereThereIsNoEdid) {
  const TInstanceView monitor = CommitMonitor(MakeFullMonitor());
  const std::vector<std::string> facts = {"ACM",
                                          "",
                                          "Acme A190",
                                          "A190-1",
                                          "",
                                          "week of 2008-04-01",
                                          "2008",
                                          "38 x 30 cm",
                                          "",
                                          "",
                                          "30 to 83 kHz",
                                          "56 to 76 Hz",
                                          "140 MHz at most",
                                          ""};
  EXPECT_EQ(List(DescribeMonitor(nullptr, &monitor, TMakerNames())), facts);
  const TOutput other = {0, "", "Monitor 1", "", ReadEdidFacts(TEdidBuilder().Version(2, 0).Build()), {}};
  EXPECT_EQ(List(DescribeMonitor(&other, &monitor, TMakerNames())), facts);
}

TEST_F(MonitorFacts, AreThoseOfTheEdidFirst) {
  const TInstanceView monitor = CommitMonitor({{"Name", TCIMValue("B")}, {"SerialNumber", TCIMValue("B-1")}});
  const std::vector<std::uint8_t> edid = TEdidBuilder().Name(0, "A").Build();
  const TOutput output = {0, "", "Monitor 1", "", ReadEdidFacts(edid), edid};
  const TMonitorFacts facts = DescribeMonitor(&output, &monitor, TMakerNames());
  EXPECT_EQ(facts.model, "A");
  EXPECT_EQ(facts.serialNumber, "B-1");
}

TEST_F(MonitorFacts, NameTheMakerWhereItsNameIsKnown) {
  TTemporaryFolder folder;
  folder.Write("pnp.ids", "ACM\tAcme Corporation\n");
  const TMakerNames makers(folder.GetPath() / "pnp.ids");
  const TInstanceView monitor = CommitMonitor({{"MonitorManufacturer", TCIMValue("ACM")}});
  EXPECT_EQ(DescribeMonitor(nullptr, &monitor, makers).GetMaker(), "ACM (Acme Corporation)");
  EXPECT_EQ(DescribeMonitor(nullptr, &monitor, TMakerNames()).GetMaker(), "ACM");
}

TEST_F(MonitorFacts, TakeTheSerialNumberOfTheHeaderWhereThereIsNoText) {
  const TEdidBuilder edid = TEdidBuilder().Byte(edid::kSerialNumber, 5).Byte(edid::kSerialNumber + 1, 1);
  EXPECT_EQ(Describe(edid).serialNumber, "261");
}

TEST_F(MonitorFacts, HaveNoSerialNumberThatIsAFiller) {
  const TInstanceView monitor = CommitMonitor({{"SerialNumber", TCIMValue("0000000000000")}});
  EXPECT_EQ(DescribeMonitor(nullptr, &monitor, TMakerNames()).serialNumber, "");
}

TEST_F(MonitorFacts, HaveNoSizeOfWhichOneSideIsMissing) {
  const TInstanceView monitor = CommitMonitor({{"HorizontalImageSize", TCIMValue(static_cast<unsigned char>(79))}});
  EXPECT_EQ(DescribeMonitor(nullptr, &monitor, TMakerNames()).size, "");
}

namespace {

/// Facts of a modern monitor that reports show.
TEdidFacts MakeModernFacts() {
  TEdidFacts facts;
  facts.isVersion1 = true;
  facts.texts = {"LG Display", "LP156WF6-SPB1"};
  facts.imageSize = {597, 336};
  facts.preferredMode = {3840, 2160, 59.997};
  facts.modes.resize(2);
  facts.modes[0] = {{3840, 2160, 59.997}, EModeSource::Detailed, EYcbcr420::No};
  facts.modes[1] = {{1920, 1080, 143.981, true}, EModeSource::Vic, EYcbcr420::No};
  facts.refreshRange = {48, 144, "FreeSync"};
  facts.hdr = THdr();
  facts.hdr->transfers = {"SDR", "PQ", "HLG"};
  facts.hdr->hdr10Plus = "1";
  facts.hdr->maxLuminance = 465.5;
  facts.hdmi = THdmi();
  facts.hdmi->maxTmdsClock = 600;
  facts.hdmi->fixedRateLink = "4 lanes at 12 Gbps";
  facts.hdmi->hasCompression = true;
  facts.hdmi->deepColourBits = {10, 12};
  facts.audio = {{"Linear PCM", 2, {}, {}}, {"DTS", std::nullopt, {}, {}}};
  return facts;
}

}  // namespace

TEST_F(MonitorFacts, NameAMonitorByItsTextsOnlyIfItHasNoName) {
  TOutput output = {0, "", "Monitor 1", "", MakeModernFacts(), {}};
  output.facts->name = "Acme A190";
  EXPECT_EQ(DescribeMonitor(&output, nullptr, TMakerNames()).model, "Acme A190");
}

TEST_F(MonitorFacts, TellWhatAModernMonitorCan) {
  const TOutput output = {0, "", "Monitor 1", "", MakeModernFacts(), {}};
  const TMonitorFacts facts = DescribeMonitor(&output, nullptr, TMakerNames());
  EXPECT_EQ((std::vector<std::string>{facts.model, facts.size, facts.largestMode, facts.highestRate, facts.hdr,
                                      facts.variableRate, facts.link, facts.sound}),
            (std::vector<std::string>{"LP156WF6-SPB1", "597 x 336 mm", "3840 x 2160 at 59.997 Hz",
                                      "144 Hz (1920 x 1080, interlaced)", "PQ, HLG, HDR10+ 1, up to 465.5 cd/m2",
                                      "48 to 144 Hz (FreeSync)",
                                      "HDMI: TMDS up to 600 MHz, FRL of 4 lanes at 12 Gbps, DSC, 10 or 12 bits per "
                                      "colour",
                                      "Linear PCM (2 channels), DTS"}));
}

TEST_F(MonitorFacts, TellNumbersForTables) {
  const TOutput output = {0, "", "Monitor 1", "", MakeModernFacts(), {}};
  const TMonitorFacts f = DescribeMonitor(&output, nullptr, TMakerNames());
  EXPECT_EQ((std::vector<std::string>{f.preferredWidth, f.preferredHeight, f.preferredRefresh, f.largestWidth,
                                      f.largestHeight, f.highestRefresh, f.hasHdr, f.variableMin, f.variableMax,
                                      f.width, f.height}),
            (std::vector<std::string>{"3840", "2160", "59.997", "3840", "2160", "143.981", "yes", "48", "144", "597",
                                      "336"}));
}

TEST_F(MonitorFacts, TellTheLargestSizeOfTheRateThatIsShown) {
  TEdidFacts modes = MakeModernFacts();
  modes.modes = {{{1920, 1080, 74.5}, EModeSource::Detailed, EYcbcr420::No},
                 {{1920, 1080, 60}, EModeSource::Detailed, EYcbcr420::No},
                 {{1024, 768, 75.029}, EModeSource::Established, EYcbcr420::No}};
  const TOutput output = {0, "", "Monitor 1", "", modes, {}};
  const TMonitorFacts facts = DescribeMonitor(&output, nullptr, TMakerNames());
  EXPECT_EQ(facts.highestRate, "75 Hz (1920 x 1080)");
  EXPECT_EQ(facts.highestRefresh, "75.029");
}

TEST_F(MonitorFacts, TakeTheRangeOfSdrForNoHdr) {
  TOutput output = {0, "", "Monitor 1", "", MakeModernFacts(), {}};
  output.facts->hdr = THdr();
  output.facts->hdr->transfers = {"SDR"};
  EXPECT_EQ(DescribeMonitor(&output, nullptr, TMakerNames()).hasHdr, "no");
  EXPECT_EQ(DescribeMonitor(&output, nullptr, TMakerNames()).hdr, "");
}

TEST_F(MonitorFacts, SayTheYearWithoutAWeekThatIsNone) {
  for (const unsigned int week : {0U, 54U, 254U}) EXPECT_EQ(Describe(TEdidBuilder().Made(week, 2008)).made, "2008");
  EXPECT_EQ(Describe(TEdidBuilder().Made(53, 2008)).made, "week 53 of 2008");
}

TEST_F(MonitorFacts, SayTheYearOfAModel) {
  EXPECT_EQ(Describe(TEdidBuilder().Made(edid::kModelYear, 2019)).made, "model of 2019");
  EXPECT_EQ(Describe(TEdidBuilder().Made(edid::kModelYear, 2019)).year, "2019");
}

TEST_F(MonitorFacts, SayNoYearThatIsAFiller) {
  for (const unsigned int year : {1990U, 1993U, 2245U}) EXPECT_EQ(Describe(TEdidBuilder().Made(1, year)).made, "");
  EXPECT_EQ(Describe(TEdidBuilder().Made(1, 1994)).made, "week 1 of 1994");
  EXPECT_EQ(Describe(TEdidBuilder().Made(1, 2244)).made, "week 1 of 2244");
}

TEST_F(MonitorFacts, SayNoDateThatThePlugInMakesOfAFiller) {
  const auto describe = [this](unsigned short year) {
    TCIMDateTime date;
    date.Set(year, 1, 1, 6, 0, 0, 0, 0);
    const TInstanceView monitor = CommitMonitor({{"ManufacturingDate", TCIMValue(date)}});
    const TMonitorFacts facts = DescribeMonitor(nullptr, &monitor, TMakerNames());
    return facts.made + ", " + facts.year;
  };
  EXPECT_EQ(describe(2244), "week of 2244-01-01, 2244");
  EXPECT_EQ(describe(2245), ", ");
  EXPECT_EQ(describe(2246), ", ");  // week 54
}

TEST_F(MonitorFacts, SayTheInputInWords) {
  const auto input = [](unsigned int revision, unsigned int byte) {
    return Describe(TEdidBuilder().Version(1, revision).Byte(kInput, byte)).input;
  };
  EXPECT_EQ(input(3, 0x68), "analogue");
  EXPECT_EQ(input(4, 0x05), "analogue");
  EXPECT_EQ(input(3, 0x81), "digital");
  EXPECT_EQ(input(4, 0x80), "digital");
  EXPECT_EQ(input(4, 0x81), "digital: DVI");
  EXPECT_EQ(input(4, 0xA3), "digital: HDMI-b, 8 bits per colour");
  EXPECT_EQ(input(4, 0xB5), "digital: DisplayPort, 10 bits per colour");
  EXPECT_EQ(input(4, 0xF6), "digital");
  EXPECT_EQ(input(4, 0xEF), "digital: 16 bits per colour");
}

TEST_F(MonitorFacts, SayRatesBeyond255SinceVersion14) {
  const auto edid = [](unsigned int revision, unsigned int offsets) {
    return TEdidBuilder()
        .Version(1, revision)
        .RangeLimits(0, 1, 105, 2, 85, 60)
        .Byte(edid::kDescriptors[0] + edid::kRateOffsets, offsets);
  };
  EXPECT_EQ(Describe(edid(4, 0x0A)).fieldRate, "1 to 360 Hz");
  EXPECT_EQ(Describe(edid(4, 0x0A)).lineRate, "2 to 340 kHz");
  EXPECT_EQ(Describe(edid(4, 0x0F)).fieldRate, "256 to 360 Hz");
  EXPECT_EQ(Describe(edid(4, 0x0F)).lineRate, "257 to 340 kHz");
  EXPECT_EQ(Describe(edid(3, 0x0F)).fieldRate, "1 to 105 Hz");
}

TEST_F(MonitorFacts, SayNoRatesOfZero) {
  const std::vector<std::uint8_t> edid = TEdidBuilder().RangeLimits(0, 48, 60, 0, 0, 33).Build();
  const TOutput output = {0, "", "Monitor 1", "", ReadEdidFacts(edid), edid};
  const TCIMValue zero(static_cast<unsigned char>(0));
  const TInstanceView monitor = CommitMonitor({{"MinHorizFreq", zero}, {"MaxHorizFreq", zero}});
  EXPECT_EQ(DescribeMonitor(&output, &monitor, TMakerNames()).lineRate, "");
  EXPECT_EQ(DescribeMonitor(&output, &monitor, TMakerNames()).fieldRate, "48 to 60 Hz");
}

TEST_F(MonitorFacts, SayNoPixelClockThatIsNotGiven) {
  for (const unsigned int clock : {0U, 0xFFU}) {
    EXPECT_EQ(Describe(TEdidBuilder().RangeLimits(0, 56, 76, 30, 83, clock)).pixelClock, "");
  }
}

TEST_F(MonitorFacts, ArePrintable) {
  const TMonitorFacts facts = Describe(TEdidBuilder()
                                           .Name(0, "A\x1B[2J")
                                           .Serial(1,
                                                   "A\xFF"
                                                   "B"));
  EXPECT_EQ(facts.model, "A\\x1b[2J");
  EXPECT_EQ(facts.serialNumber,
            "A\xEF\xBF\xBD"
            "B");
}
