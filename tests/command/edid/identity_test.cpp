#include "command/edid/identity.h"

#include <gtest/gtest.h>

#include "command/edid/sha256.h"
#include "tests/support/edid_builder.h"

namespace {

TEdidBuilder Monitor() {
  return TEdidBuilder()
      .Manufacturer("DEL")
      .Made(14, 2021)
      .Byte(edid::kProductCode, 0xEF)
      .Byte(edid::kProductCode + 1, 0xA0);
}

/// A monitor with its EDID.
struct TMonitor {
  explicit TMonitor(const TEdidBuilder& builder) : edid(builder.Build()), facts(ReadEdidFacts(edid)) {}

  TIdentified Get() const { return {facts, edid}; }

  std::vector<std::uint8_t> edid;
  TEdidFacts facts;
};

TIdentity IdentifyMonitor(const TEdidBuilder& builder) { return Identify(TMonitor(builder).Get()); }

void ExpectIdentity(const TIdentity& identity, const std::string& text, const std::string& from) {
  EXPECT_EQ(identity.text, text);
  EXPECT_EQ(identity.from, from);
}

}  // namespace

TEST(Identity, IsMakerProductDateAndSerialText) {
  ExpectIdentity(IdentifyMonitor(Monitor().Serial(2, "CN0ABC")), "DEL-A0EF-2021.14-CN0ABC", "serial");
}

TEST(Identity, HasTheNumberOfTheHeaderWhereThereIsNoText) {
  ExpectIdentity(IdentifyMonitor(Monitor().Byte(edid::kSerialNumber + 1, 1)), "DEL-A0EF-2021.14-256", "number");
}

TEST(Identity, HasTheBeginningOfTheHashWithoutASerialNumber) {
  const TMonitor monitor(Monitor());
  ExpectIdentity(Identify(monitor.Get()), "DEL-A0EF-2021.14-" + HashSha256(monitor.edid).substr(0, 16), "edid");
}

TEST(Identity, HasTheYearOfTheModelAndZerosForWhatIsNotKnown) {
  ExpectIdentity(IdentifyMonitor(Monitor().Made(edid::kModelYear, 2019).Serial(2, "A")), "DEL-A0EF-2019.0-A", "serial");
  ExpectIdentity(IdentifyMonitor(Monitor().Made(0, 1990).Serial(2, "A")), "DEL-A0EF-0.0-A", "serial");
}

TEST(Identity, HasThePlaceWhereTwoEdidsAreEqual) {
  const TMonitor twin(Monitor().Serial(2, "A"));
  const TMonitor other(Monitor().Serial(2, "B"));
  const std::vector<TIdentity> identities =
      IdentifyAll({{twin.Get(), "card0-DP-1"}, {other.Get(), "card0-DP-2"}, {twin.Get(), "2"}});
  ASSERT_EQ(identities.size(), 3U);
  ExpectIdentity(identities[0], "DEL-A0EF-2021.14-A@card0-DP-1", "connector");
  ExpectIdentity(identities[1], "DEL-A0EF-2021.14-B", "serial");
  ExpectIdentity(identities[2], "DEL-A0EF-2021.14-A@2", "connector");
  EXPECT_FALSE(SameMonitor(identities[0], identities[2]));
}

TEST(Identity, IsOneForAMonitorAtTwoInputs) {
  const TMonitor first(Monitor().Serial(2, "A"));
  const TMonitor second(Monitor().Serial(2, "A").Extension({0x02}));
  const std::vector<TIdentity> identities = IdentifyAll({{first.Get(), "DP-1"}, {second.Get(), "HDMI-1"}});
  EXPECT_TRUE(SameMonitor(identities[0], identities[1]));
}
