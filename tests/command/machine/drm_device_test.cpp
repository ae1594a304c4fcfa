// What can be asked of a graphics card's device, as far as that needs no card.
#include "command/machine/drm_device.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include "command/base/unusable.h"
#include "tests/support/descriptor_limit.h"
#include "tests/support/sanitizers.h"
#include "tests/support/temporary_folder.h"

using testing::HasSubstr;
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

TEST(DrmDevice, IsAnErrorWhenFilesCannotBeOpened) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "the sanitizers need descriptors themselves";
  if (ReadDrmDevice("/dev/null").fault != "") GTEST_SKIP() << "this machine has no libdrm";
  const int lowest = dup(STDIN_FILENO);  // the first descriptor that is free
  close(lowest);
  const auto isAsked = [&](int count) {
    const TDescriptorLimit limit(static_cast<rlim_t>(lowest + count));
    try {
      EXPECT_EQ(ReadDrmDevice("/dev/null").fault, "");
      return true;
    } catch (const TUnusable& failure) {
      EXPECT_THAT(failure.what(), HasSubstr("Too many open files"));
      return false;
    }
  };
  EXPECT_FALSE(isAsked(0));
  EXPECT_TRUE(isAsked(8));
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
