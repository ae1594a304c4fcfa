#include "command/edid/identity.h"

#include <gtest/gtest.h>

#include "tests/support/edid_builder.h"

namespace {

TEdidBuilder Monitor() {
  return TEdidBuilder()
      .Manufacturer("DEL")
      .Made(14, 2021)
      .Byte(edid::kProductCode, 0xEF)
      .Byte(edid::kProductCode + 1, 0xA0);
}

TEdidFacts ReadMonitor(const TEdidBuilder& builder) { return ReadEdidFacts(builder.Build()); }

void ExpectIdentity(const TIdentity& identity, const std::string& text, const std::string& from) {
  EXPECT_EQ(identity.text, text);
  EXPECT_EQ(identity.from, from);
}

}  // namespace

TEST(Identity, IsMakerProductDateAndSerialText) {
  ExpectIdentity(Identify(ReadMonitor(Monitor().Serial(2, "CN0ABC"))), "DEL-A0EF-2021.14-CN0ABC", "serial");
}

TEST(Identity, HasTheNumberOfTheHeaderWhereThereIsNoText) {
  ExpectIdentity(Identify(ReadMonitor(Monitor().Byte(edid::kSerialNumber + 1, 1))), "DEL-A0EF-2021.14-256", "number");
}

TEST(Identity, HasTheBeginningOfTheHashWithoutASerialNumber) {
  const TEdidFacts facts = ReadMonitor(Monitor());
  ExpectIdentity(Identify(facts), "DEL-A0EF-2021.14-" + facts.sha256.substr(0, 16), "edid");
}

TEST(Identity, HasTheYearOfTheModelAndZerosForWhatIsNotKnown) {
  ExpectIdentity(Identify(ReadMonitor(Monitor().Made(edid::kModelYear, 2019).Serial(2, "A"))), "DEL-A0EF-2019.0-A",
                 "serial");
  ExpectIdentity(Identify(ReadMonitor(Monitor().Made(0, 1990).Serial(2, "A"))), "DEL-A0EF-0.0-A", "serial");
}

TEST(Identity, HasThePlaceWhereTwoEdidsAreEqual) {
  const TEdidFacts twin = ReadMonitor(Monitor().Serial(2, "A"));
  const TEdidFacts other = ReadMonitor(Monitor().Serial(2, "B"));
  const std::vector<TIdentity> identities = IdentifyAll({{&twin, "card0-DP-1"}, {&other, "card0-DP-2"}, {&twin, "2"}});
  ASSERT_EQ(identities.size(), 3U);
  ExpectIdentity(identities[0], "DEL-A0EF-2021.14-A@card0-DP-1", "connector");
  ExpectIdentity(identities[1], "DEL-A0EF-2021.14-B", "serial");
  ExpectIdentity(identities[2], "DEL-A0EF-2021.14-A@2", "connector");
  EXPECT_FALSE(SameMonitor(identities[0], identities[2]));
}

TEST(Identity, IsOneForAMonitorAtTwoInputs) {
  const TEdidFacts first = ReadMonitor(Monitor().Serial(2, "A"));
  const TEdidFacts second = ReadMonitor(Monitor().Serial(2, "A").Extension({0x02}));
  const std::vector<TIdentity> identities = IdentifyAll({{&first, "DP-1"}, {&second, "HDMI-1"}});
  EXPECT_TRUE(SameMonitor(identities[0], identities[1]));
}
