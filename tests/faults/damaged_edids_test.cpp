// Reads damaged EDIDs: whatever the bytes, the three monitor classes agree with plain rules, nothing is without a
// value, and only the messages of the rules are logged.
#include <gmock/gmock.h>

#include "plugin/monitor/monitor_info.h"
#include "tests/support/edid_builder.h"
#include "tests/support/lrmi_double.h"
#include "tests/support/plain_monitors.h"
#include "tests/support/properties.h"
#include "tests/support/test_host.h"

using testing::AnyOf;
using testing::SizeIs;

namespace {

typedef std::vector<std::uint8_t> TEdid;

/// Ten different EDIDs: as little as possible, everything, old and new revisions, extensions of several kinds.
std::vector<TEdid> MakeEdids() {
  const TEdidBuilder full = TEdidBuilder()
                                .Manufacturer("ABC")
                                .Made(10, 2005)
                                .ImageSize(38, 30)
                                .Gamma(120)
                                .Features(0xE0)
                                .DetailedTiming(0, false)
                                .RangeLimits(1, 56, 76, 30, 83, 14)
                                .Name(2, "Full")
                                .Serial(3, "S-1")
                                .Established(0xA5, 0x5A)
                                .Standard(0, 0x81, 0x80)
                                .Standard(1, 0x81, 0x40);
  return {
      TEdidBuilder().Build(),
      TEdidBuilder(full).Build(),
      TEdidBuilder(full).Version(1, 1).Build(),
      TEdidBuilder(full).Version(1, 4).Build(),
      TEdidBuilder().Established(0xFF, 0xFF).Build(),
      TEdidBuilder().Standard(0, 0xD1, 0xC0).Standard(7, 0x61, 0x4C).Build(),
      TEdidBuilder().DetailedTiming(0, true).DetailedTiming(1, false).Name(3, "Thirteen bytes").Build(),
      TEdidBuilder(full).Extension({0x40, 0x01, 0x02}).Build(),
      TEdidBuilder().Extension({0x02, 0x03}).Extension({0x40, 0x01, 0x05}).Build(),
      TEdidBuilder(full).Extension({0xF0}).Extension({0x02, 0x03, 0x04}).Extension({0x40, 0x01, 0x03}).Build(),
  };
}

class DamagedEdids : public testing::Test {
 protected:
  /// Asks for the three classes, with that EDID on unit 0.
  void ExpectPlain(const TEdid& edid) {
    TTestHost host;
    TLrmiDouble lrmi;
    lrmi.edids[0] = edid;
    const TPlainMonitors plain(lrmi.edids);
    EXPECT_EQ(Collect(host, "QRXSG_DesktopMonitor", "DeviceID"), plain.GetDeviceIds());
    EXPECT_EQ(Collect(host, "QRXSG_MonitorResolution", "SettingID"), plain.GetSettingIds());
    // One for each mode, since all belong to the single monitor.
    EXPECT_THAT(Collect(host, "QRXSG_MonitorSetting", "Element"),
                SizeIs(plain.GetDeviceIds().empty() ? 0 : plain.GetSettingIds().size()));
    for (const TLogEntry& entry : host.log.GetEntries()) {
      if (entry.severity <= NQRXZELT20::ILogger::kStatus) {
        EXPECT_THAT(entry.message, AnyOf("EDID structure for monitor is not valid or not supported",
                                         "Lib call returned an error. Could not get Monitor info."));
      }
    }
  }

 private:
  /// Asks for a class, and returns that property of each committed instance.
  static std::vector<std::string> Collect(TTestHost& host, const char* className, const char* property) {
    TMonitorInfo(host.GetClass(className), TTestHost::Provider()).GetCIMInstances();
    std::vector<std::string> texts;
    for (const auto& instance : host.store->TakeCommits()) {
      for (const auto& [name, value] : instance->GetProperties()) EXPECT_FALSE(value.IsNull()) << name;
      texts.push_back(static_cast<std::string>(instance->GetProperties().at(property)));
    }
    return texts;
  }
};

}  // namespace

TEST_F(DamagedEdids, AgreeWithThePlainRulesWithAnySingleBitFlipped) {
  for (const TEdid& whole : MakeEdids()) {
    for (std::size_t bit = 0; bit < whole.size() * 8; ++bit) {
      TEdid edid = whole;
      edid[bit / 8] = static_cast<std::uint8_t>(edid[bit / 8] ^ 1U << bit % 8);
      SCOPED_TRACE("bit " + std::to_string(bit));
      ASSERT_NO_FATAL_FAILURE(ExpectPlain(edid));
      if (HasFailure()) return;
    }
  }
}

TEST_F(DamagedEdids, AgreeWithThePlainRulesWhenTheyEndEarly) {
  for (const TEdid& whole : MakeEdids()) {
    for (std::size_t size = 0; size <= whole.size(); size += 128) {
      SCOPED_TRACE(std::to_string(size) + " bytes");
      ExpectPlain(TEdid(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    }
  }
}

TEST_F(DamagedEdids, AgreeWithThePlainRulesWithAnyCountOfExtensions) {
  for (const TEdid& whole : MakeEdids()) {
    for (unsigned int count = 0; count < 256; ++count) {
      TEdid edid = whole;
      edid[126] = static_cast<std::uint8_t>(count);
      SCOPED_TRACE(std::to_string(count) + " extensions");
      ExpectPlain(edid);
    }
  }
}

TEST_F(DamagedEdids, AgreeWithThePlainRulesWhenAnyBlockIsAllOnesOrAllZeros) {
  for (const TEdid& whole : MakeEdids()) {
    for (std::size_t begin = 0; begin < whole.size(); begin += 128) {
      for (const std::uint8_t byte : {std::uint8_t{0x00}, std::uint8_t{0xFF}}) {
        TEdid edid = whole;
        std::fill_n(edid.begin() + static_cast<std::ptrdiff_t>(begin), 128, byte);
        SCOPED_TRACE("block at " + std::to_string(begin));
        ExpectPlain(edid);
      }
    }
  }
}
