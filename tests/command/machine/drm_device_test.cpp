// What can be asked of a graphics card's device, as far as that needs no card.
#include "command/machine/drm_device.h"

#include <gmock/gmock.h>

#include "tests/support/temporary_folder.h"

using testing::IsEmpty;
using testing::StartsWith;

namespace {

const std::map<std::uint32_t, std::string> kConnectors = {{85, "DP-1"}, {91, "DP-2"}};

}  // namespace

TEST(DrmDevice, SaysWhyItCannotBeAsked) {
  const TTemporaryFolder folder;
  const TDrmDevice device = ReadDrmDevice(folder.GetPath() / "card0");
  EXPECT_THAT(device.modes, IsEmpty());
  if (device.fault == "libdrm.so.2 is missing; install libdrm2") GTEST_SKIP() << device.fault;
  EXPECT_EQ(device.fault, folder.GetPath().string() + "/card0 cannot be opened: No such file or directory");
}

TEST(DrmDevice, ThatIsNoGraphicsCardHasNoModes) {
  const TDrmDevice device = ReadDrmDevice("/dev/null");
  EXPECT_THAT(device.modes, IsEmpty());
  EXPECT_THAT(device.ports, IsEmpty());
}

TEST(DrmDevice, NamesAPortByTheConnectorThatLeadsToIt) {
  EXPECT_EQ(MakePortName("mst:85-1", kConnectors), "DP-1-1");
  EXPECT_EQ(MakePortName("mst:91-1-8-2", kConnectors), "DP-2-1-8-2");
}

TEST(DrmDevice, NamesNoPortOfAConnectorThatIsUnknown) { EXPECT_EQ(MakePortName("mst:86-1", kConnectors), ""); }

TEST(DrmDevice, NamesNoPortForAnotherProperty) {
  for (const char* const property :
       {"", "mst", "mst:", "mst:-1", "mst:85", "mst:85:1", "85-1", "xmst:85-1", "mst: 85-1", "mst:99999999999-1"}) {
    EXPECT_EQ(MakePortName(property, kConnectors), "") << property;
  }
}
