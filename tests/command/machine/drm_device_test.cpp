// Asks a graphics card's device, as far as that is possible without a card.
#include "command/machine/drm_device.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <cstring>

#include "command/base/unusable.h"
#include "realmode/shared_library.h"
#include "tests/support/descriptor_limit.h"
#include "tests/support/drm_double.h"
#include "tests/support/sanitizers.h"
#include "tests/support/temporary_folder.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::StartsWith;

namespace {

const std::map<std::uint32_t, std::string> kConnectors = {{85, "DP-1"}, {91, "DP-2"}};

/// The device of a card that has DP-1, connector 85, which shows 1920 x 1080 pixels of 24 bits.
class AskedDrmDevice : public testing::Test {
 protected:
  AskedDrmDevice() {
    drm = TDrmDouble();
    drm.listed = {85};
    drm.connectors[85] = MakeConnector(85, DRM_MODE_CONNECTOR_DisplayPort, 1);
    drm.connectors[85].encoder_id = 2;
    drm.encoders[2].crtc_id = 3;
    drm.crtcs[3].mode_valid = 1;
    drm.crtcs[3].mode.hdisplay = 1920;
    drm.crtcs[3].mode.vdisplay = 1080;
    drm.crtcs[3].buffer_id = 4;
    drm.framebuffers[4].depth = 24;
  }
  ~AskedDrmDevice() override {
    EXPECT_EQ(drm.heldCount, 0);
    EXPECT_FALSE(drm.isMaster);
  }

  static drmModeConnector MakeConnector(std::uint32_t id, std::uint32_t type, std::uint32_t number) {
    drmModeConnector connector = {};
    connector.connector_id = id;
    connector.connector_type = type;
    connector.connector_type_id = number;
    return connector;
  }

  /// Gives connector 91, DP-2, these properties.
  void AddPort(std::vector<std::uint32_t>& properties, std::vector<std::uint64_t>& values) {
    drm.listed.push_back(91);
    drm.connectors[91] = MakeConnector(91, DRM_MODE_CONNECTOR_DisplayPort, 2);
    drm.connectors[91].count_props = static_cast<int>(properties.size());
    drm.connectors[91].props = properties.data();
    drm.connectors[91].prop_values = values.data();
    std::strcpy(drm.properties[6].name, "EDID");
    std::strcpy(drm.properties[7].name, "PATH");
  }

  static std::vector<std::string> ReadModes() {
    std::vector<std::string> modes;
    for (const auto& [name, mode] : ReadDrmDevice("/dev/null").modes) {
      modes.push_back(name + ": " + std::to_string(mode.width) + " x " + std::to_string(mode.height) +
                      (mode.depth ? ", " + std::to_string(*mode.depth) + " bits" : ""));
    }
    return modes;
  }

  TSharedLibrary library{DRM_DOUBLE_FILE};
  TDrmDouble& drm = *library.Find<TDrmDouble>("gDrmDouble");
};

}  // namespace

TEST_F(AskedDrmDevice, HasTheModesThatAreSet) { EXPECT_THAT(ReadModes(), ElementsAre("DP-1: 1920 x 1080, 24 bits")); }

TEST_F(AskedDrmDevice, HasNoModeOfAConnectorThatIsOff) {
  drm.crtcs[3].mode_valid = 0;
  EXPECT_THAT(ReadModes(), IsEmpty());
  drm.crtcs.clear();
  EXPECT_THAT(ReadModes(), IsEmpty());
  drm.encoders.clear();
  EXPECT_THAT(ReadModes(), IsEmpty());
}

TEST_F(AskedDrmDevice, HasNoDepthWithoutAFramebufferThatTellsIt) {
  drm.framebuffers[4].depth = 0;
  EXPECT_THAT(ReadModes(), ElementsAre("DP-1: 1920 x 1080"));
  drm.framebuffers.clear();
  EXPECT_THAT(ReadModes(), ElementsAre("DP-1: 1920 x 1080"));
}

TEST_F(AskedDrmDevice, NamesAConnectorWhoseTypeIsNew) {
  drm.connectors[85].connector_type = 999;
  EXPECT_THAT(ReadModes(), ElementsAre("Unknown-1: 1920 x 1080, 24 bits"));
}

TEST_F(AskedDrmDevice, LosesOnlyAConnectorThatCannotBeRead) {
  drm.listed = {84, 85};
  EXPECT_THAT(ReadModes(), ElementsAre("DP-1: 1920 x 1080, 24 bits"));
}

TEST_F(AskedDrmDevice, HasNothingWithoutResources) {
  drm.hasResources = false;
  const TDrmDevice device = ReadDrmDevice("/dev/null");
  EXPECT_THAT(device.modes, IsEmpty());
  EXPECT_EQ(device.fault, "");
}

TEST_F(AskedDrmDevice, NamesThePortOfAConnectorByItsPath) {
  std::vector<std::uint32_t> properties = {5, 6, 7};  // 5 cannot be read
  std::vector<std::uint64_t> values = {1, 8, 9};
  AddPort(properties, values);
  char other[] = "mst:85-7";
  char path[] = {'m', 's', 't', ':', '8', '5', '-', '1', '2'};  // only its length ends it
  drm.blobs[8] = {8, sizeof other, other};
  drm.blobs[9] = {9, sizeof path - 1, path};
  EXPECT_THAT(ReadDrmDevice("/dev/null").ports, ElementsAre(Pair("DP-2", "DP-1-1")));
  char ended[] = "mst:85-2";
  drm.blobs[9] = {9, sizeof ended, ended};
  EXPECT_THAT(ReadDrmDevice("/dev/null").ports, ElementsAre(Pair("DP-2", "DP-1-2")));
}

TEST_F(AskedDrmDevice, NamesNoPortWithoutAPathThatCanBeRead) {
  std::vector<std::uint32_t> properties = {7};
  std::vector<std::uint64_t> values = {9};
  AddPort(properties, values);
  EXPECT_THAT(ReadDrmDevice("/dev/null").ports, IsEmpty());
}

TEST(DrmDevice, SaysThatLibdrmIsMissingWhereItIsAnotherVersion) {
  const TSharedLibrary library(DRM_OF_ANOTHER_VERSION_FILE);
  EXPECT_EQ(ReadDrmDevice("/dev/null").fault, "libdrm.so.2 is missing; install libdrm2");
}

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
