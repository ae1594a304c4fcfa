// Reads the kernel's graphics cards from a made-up folder that looks like /sys/class/drm.
#include "command/machine/drm_cards.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <tuple>

#include "command/base/unusable.h"
#include "edid/layout.h"
#include "tests/support/descriptor_limit.h"
#include "tests/support/edid_builder.h"
#include "tests/support/sanitizers.h"
#include "tests/support/temporary_folder.h"

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class DrmCards : public testing::Test {
 protected:
  /// A card on the PCI bus, or on another bus if the address is no PCI address.
  void AddCard(const std::string& name, const std::string& address) const {
    sys.Write("devices/" + address + "/vendor", "0x1af4\n");
    sys.Write("devices/" + address + "/device", "0x1050\n");
    sys.Write("drm/" + name + "/dev", "226:0\n");
    fs::create_directory_symlink(sys.GetPath() / "devices" / address, sys.GetPath() / "drm" / name / "device");
  }

  /// `power`: the content of the connector's files "enabled" and "dpms".
  void SetPower(const std::string& connector, const std::string& power) const {
    sys.Write("drm/" + connector + "/enabled", power.substr(0, power.find(' ')) + "\n");
    sys.Write("drm/" + connector + "/dpms", power.substr(power.find(' ') + 1) + "\n");
  }

  /// A device of the PCI bus.
  void AddPciDevice(const std::string& address, const std::string& deviceClass) const {
    sys.Write("devices/" + address + "/class", deviceClass + "\n");
    sys.Write("devices/" + address + "/vendor", "0x1013\n");
    sys.Write("devices/" + address + "/device", "0x00b8\n");
    fs::create_directories(sys.GetPath() / "pci");
    fs::create_directory_symlink(sys.GetPath() / "devices" / address, sys.GetPath() / "pci" / address);
  }

  void AddOutput(const std::string& connector, const std::string& status, const std::vector<std::uint8_t>& edid) const {
    sys.Write("drm/" + connector + "/status", status + "\n");
    sys.Write("drm/" + connector + "/edid", std::string(edid.begin(), edid.end()));
  }

  std::vector<TDrmCard> Read() const {
    return ReadDrmCards({sys.GetPath() / "drm", sys.GetPath() / "dri", sys.GetPath() / "pci"});
  }

  std::vector<std::string> GetNames() const {
    std::vector<std::string> names;
    for (const TDrmCard& card : Read()) names.push_back(card.name);
    return names;
  }

  std::vector<std::string> GetConnectors() const {
    std::vector<std::string> connectors;
    for (const TDrmCard& card : Read()) {
      for (const TDrmOutput& output : card.outputs) connectors.push_back(output.connector);
    }
    return connectors;
  }

  TTemporaryFolder sys;
  const std::vector<std::uint8_t> whole = TEdidBuilder().Name(0, "A").Build();
};

typedef std::vector<std::uint8_t> TBytes;

/// An EDID that says how many extension blocks follow, and has that many blocks.
TBytes MakeEdid(std::uint8_t extensions, std::size_t blocks, std::uint8_t filler = 0) {
  TBytes bytes(blocks * edid::kBlockSize, filler);
  bytes[edid::kExtensionCount] = extensions;
  return bytes;
}

/// A kernel file that gives a page per read, and other content each time it is read from its beginning, until the last,
/// which stays.
class TFile {
 public:
  explicit TFile(const TBytes& first, const std::vector<TBytes>& later = {}) : m_contents({first}) {
    m_contents.insert(m_contents.end(), later.begin(), later.end());
  }

  TDrmEdid Read() {
    return ReadDrmEdid([this](void* buffer, std::size_t size, off_t offset) { return ReadAt(buffer, size, offset); });
  }

  std::vector<off_t> offsets;  // that were read from

 private:
  ssize_t ReadAt(void* buffer, std::size_t size, off_t offset) {
    if (offset == 0 && !offsets.empty() && m_contents.size() > 1) m_contents.erase(m_contents.begin());
    offsets.push_back(offset);
    const TBytes& bytes = m_contents.front();
    const std::size_t begin = std::min(static_cast<std::size_t>(offset), bytes.size());
    const std::size_t count = std::min({size, bytes.size() - begin, std::size_t{4096}});
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(begin), count, static_cast<std::uint8_t*>(buffer));
    return static_cast<ssize_t>(count);
  }

  std::vector<TBytes> m_contents;
};

}  // namespace

TEST_F(DrmCards, TellTheConnectedOutputsInTheOrderOfTheirNames) {
  AddCard("card1", "0000:02:00.0");
  AddCard("card0", "0000:01:00.0");
  for (const char* connector : {"card1-DP-1", "card0-DP-10", "card0-DP-2", "card0-HDMI-A-1"}) {
    AddOutput(connector, "connected", whole);
  }
  AddOutput("card0-DP-1", "disconnected", whole);
  AddOutput("card0-DP-3", "unknown", whole);
  sys.Write("drm/version", "drm 1.1.0 20060810");
  EXPECT_THAT(GetConnectors(), ElementsAre("card0-DP-2", "card0-DP-10", "card0-HDMI-A-1", "card1-DP-1"));
}

TEST_F(DrmCards, KeepTheOutputsOfCardsApartWhoseNamesBeginAlike) {
  AddCard("card1", "0000:01:00.0");
  AddCard("card10", "0000:02:00.0");
  AddOutput("card10-DP-1", "connected", whole);
  const std::vector<TDrmCard> cards = Read();
  ASSERT_EQ(cards.size(), 2U);
  EXPECT_THAT(cards[0].outputs, IsEmpty());
  EXPECT_EQ(cards[1].outputs.size(), 1U);
}

TEST_F(DrmCards, TellWholeBlocksOfAnEdid) {
  std::vector<std::uint8_t> cut = whole;
  cut.resize(200);
  AddCard("card0", "0000:01:00.0");
  AddOutput("card0-DP-1", "connected", cut);
  AddOutput("card0-DP-2", "connected", {});
  AddOutput("card0-DP-3", "connected", std::vector<std::uint8_t>(127));
  const std::vector<TDrmOutput> outputs = Read().at(0).outputs;
  EXPECT_EQ(outputs.at(0).edid, whole);
  EXPECT_THAT(outputs.at(1).edid, IsEmpty());
  EXPECT_THAT(outputs.at(2).edid, IsEmpty());
}

TEST_F(DrmCards, TellWhereOnThePciBusTheyAreAndWhatTheyAre) {
  AddCard("card0", "0001:1f:0a.3");
  const std::optional<TPciDevice> pci = Read().at(0).pci;
  ASSERT_TRUE(pci);
  EXPECT_EQ(pci->domain, 1U);
  EXPECT_EQ(pci->bus, 31U);
  EXPECT_EQ(pci->device, 10U);
  EXPECT_EQ(pci->function, 3U);
  EXPECT_EQ(pci->vendorId, 0x1AF4);
  EXPECT_EQ(pci->deviceId, 0x1050);
}

TEST_F(DrmCards, TellNoPciDeviceOfACardOnAnotherBus) {
  AddCard("card0", "simple-framebuffer.0");
  EXPECT_FALSE(Read().at(0).pci);
}

TEST_F(DrmCards, TellWhereTheirOutputsAre) {
  AddCard("card0", "0000:01:00.0");
  AddCard("card1", "simple-framebuffer.0");
  AddOutput("card0-HDMI-A-1", "connected", whole);
  AddOutput("card1-Unknown-1", "connected", whole);
  EXPECT_EQ(Read().at(0).outputs.at(0).path, "0000:01:00.0/HDMI-A-1");
  EXPECT_EQ(Read().at(1).outputs.at(0).path, "simple-framebuffer.0/Unknown-1");
}

TEST_F(DrmCards, DoNotTellWhereAnOutputBehindAHubIs) {
  AddCard("card0", "0000:01:00.0");
  AddOutput("card0-DP-1", "connected", whole);
  AddOutput("card0-DP-3", "connected", whole);
  sys.Write("drm/card0-DP-1/drm_dp_aux0/name", "AUX A/DDI A/PHY A\n");
  sys.Write("drm/card0-DP-3/drm_dp_aux4/name", "DPMST\n");
  const std::vector<TDrmOutput> outputs = Read().at(0).outputs;
  EXPECT_FALSE(outputs.at(0).isBehindHub);
  EXPECT_EQ(outputs.at(0).path, "0000:01:00.0/DP-1");
  EXPECT_TRUE(outputs.at(1).isBehindHub);
  EXPECT_EQ(outputs.at(1).path, "");
}

TEST(OutputPath, IsNotKnownWithoutTheAddressOfItsCard) {
  TDrmCard card;
  EXPECT_EQ(MakeOutputPath(card, "DP-1"), "");
  card.address = "0000:01:00.0";
  EXPECT_EQ(MakeOutputPath(card, "DP-1-1-8"), "0000:01:00.0/DP-1-1-8");
}

TEST_F(DrmCards, TellTheVideoMemoryInKilobytesWhereTheDriverDoes) {
  AddCard("card0", "0000:01:00.0");
  EXPECT_EQ(Read().at(0).videoMemory, std::nullopt);
  sys.Write("devices/0000:01:00.0/mem_info_vram_total", "8573157376\n");
  EXPECT_EQ(Read().at(0).videoMemory, 8372224U);
}

TEST_F(DrmCards, LoseOnlyTheOutputWhoseEdidCannotBeRead) {
  AddCard("card0", "0000:01:00.0");
  AddOutput("card0-DP-2", "connected", whole);
  sys.Write("drm/card0-DP-1/status", "connected\n");
  fs::create_directory(sys.GetPath() / "drm/card0-DP-1/edid");
  const std::vector<TDrmOutput> outputs = Read().at(0).outputs;
  ASSERT_EQ(outputs.size(), 2U);
  EXPECT_THAT(outputs[0].edid, IsEmpty());
  EXPECT_EQ(outputs[0].edidFault, "cannot be read: Is a directory");
  EXPECT_EQ(outputs[1].edid, whole);
  EXPECT_EQ(outputs[1].edidFault, "");
}

TEST_F(DrmCards, AreOnWhenAConnectorIsAndNoneThatIsSleeps) {
  AddCard("card0", "0000:01:00.0");
  const std::tuple<const char*, const char*, ECardPower> cases[] = {
      {"disabled On", "disabled Off", ECardPower::kOff},      {"disabled On", "enabled On", ECardPower::kOn},
      {"enabled On", "disabled Off", ECardPower::kOn},        {"enabled On", "enabled On", ECardPower::kOn},
      {"enabled Off", "disabled On", ECardPower::kAsleep},    {"enabled On", "enabled Standby", ECardPower::kAsleep},
      {"enabled Suspend", "enabled On", ECardPower::kAsleep},
  };
  for (const auto& [first, second, power] : cases) {
    SetPower("card0-DP-1", first);
    SetPower("card0-DP-2", second);
    EXPECT_EQ(Read().at(0).power, power) << first << ", " << second;
  }
}

TEST_F(DrmCards, AreFollowedByTheDisplayControllersWithoutADriver) {
  AddCard("card0", "0000:01:00.0");
  AddPciDevice("0000:01:00.0", "0x030000");
  AddPciDevice("0000:00:1f.0", "0x060100");
  AddPciDevice("0000:02:00.0", "0x038000");
  AddPciDevice("0000:00:02.0", "0x030000");
  EXPECT_THAT(GetNames(), ElementsAre("card0", "0000:00:02.0", "0000:02:00.0"));
  const TDrmCard card = Read().at(1);
  ASSERT_TRUE(card.pci);
  EXPECT_EQ(card.pci->device, 2U);
  EXPECT_EQ(card.pci->vendorId, 0x1013);
  EXPECT_EQ(card.pci->deviceId, 0x00B8);
  EXPECT_THAT(card.outputs, IsEmpty());
}

TEST_F(DrmCards, AreServedWhenTheirDriverSitsOnADeviceOfTheirs) {
  AddPciDevice("0000:00:02.0", "0x030000");
  AddCard("card0", "0000:00:02.0/virtio0");
  EXPECT_THAT(GetNames(), ElementsAre("card0"));
}

TEST_F(DrmCards, AreNoneWithoutTheFolders) { EXPECT_THAT(Read(), IsEmpty()); }

TEST_F(DrmCards, AreReadWholeOrNotAtAllWhenFilesCannotBeOpened) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "the sanitizers need descriptors themselves";
  AddCard("card0", "0000:00:02.0");
  AddOutput("card0-HDMI-A-1", "connected", TEdidBuilder().Build());
  const int lowest = dup(STDIN_FILENO);  // the first descriptor that is free
  close(lowest);
  constexpr int enough = 8;
  for (int count = 0; count <= enough; ++count) {
    std::vector<std::string> connectors;
    try {
      const TDescriptorLimit limit(static_cast<rlim_t>(lowest + count));
      connectors = GetConnectors();
    } catch (const TUnusable&) {
      connectors = {"an error"};
    }
    EXPECT_THAT(connectors, AnyOf(ElementsAre("an error"), ElementsAre("card0-HDMI-A-1"))) << count;
    if (count == 0) {
      EXPECT_THAT(connectors, ElementsAre("an error"));
    }
    if (count == enough) {
      EXPECT_THAT(connectors, ElementsAre("card0-HDMI-A-1"));
    }
  }
}

// How an output's EDID is read: sizes, failures, and EDIDs that change meanwhile.

TEST(DrmEdid, IsReadAtOnceWhenItHasItsBlocks) {
  TFile file(MakeEdid(1, 2));
  EXPECT_EQ(file.Read().bytes, MakeEdid(1, 2));
  EXPECT_THAT(file.offsets, ElementsAre(0));
}

TEST(DrmEdid, MayBeNone) {
  TFile file((TBytes()));
  const TDrmEdid edid = file.Read();
  EXPECT_THAT(edid.bytes, IsEmpty());
  EXPECT_EQ(edid.fault, "");
  EXPECT_THAT(file.offsets, ElementsAre(0));
}

TEST(DrmEdid, IsReadAgainWhenItHasOtherBlocksThanItSays) {
  TFile file(MakeEdid(0, 2, 1), {MakeEdid(2, 2, 2), MakeEdid(1, 2, 3)});
  EXPECT_EQ(file.Read().bytes, MakeEdid(1, 2, 3));
  EXPECT_THAT(file.offsets, ElementsAre(0, 0, 0));
}

TEST(DrmEdid, IsTakenAsItIsWhenItNeverSaysItsBlocksRightly) {
  TFile file(MakeEdid(3, 2));
  EXPECT_EQ(file.Read().bytes, MakeEdid(3, 2));
  EXPECT_THAT(file.offsets, ElementsAre(0, 0, 0, 0, 0));
}

TEST(DrmEdid, HasWholeBlocks) {
  TBytes cut = MakeEdid(0, 2);
  cut.resize(200);
  EXPECT_EQ(TFile(cut).Read().bytes, MakeEdid(0, 1));
  EXPECT_THAT(TFile(TBytes(127)).Read().bytes, IsEmpty());
}

TEST(DrmEdid, MayBeLargerThanAPage) {
  TFile file(MakeEdid(255, 256));
  EXPECT_EQ(file.Read().bytes, MakeEdid(255, 256));
  EXPECT_THAT(file.offsets, ElementsAre(0, 4096, 8192, 12288, 16384, 20480, 24576, 28672));
}

TEST(DrmEdid, EndsWhereItsFileDoesEvenAtTheEndOfAPage) {
  TFile file(MakeEdid(31, 32));
  EXPECT_EQ(file.Read().bytes, MakeEdid(31, 32));
  EXPECT_THAT(file.offsets, ElementsAre(0, 4096));
}

TEST(DrmEdid, HasTwoHundredAndFiftySixBlocksAtMost) {
  EXPECT_EQ(TFile(MakeEdid(255, 300)).Read().bytes, MakeEdid(255, 256));
}

TEST(DrmEdid, SaysWhyItCannotBeRead) {
  const TDrmEdid edid = ReadDrmEdid([](void*, std::size_t, off_t) {
    errno = ENODEV;
    return ssize_t{-1};
  });
  EXPECT_THAT(edid.bytes, IsEmpty());
  EXPECT_EQ(edid.fault, "cannot be read: No such device");
}

TEST(DrmEdid, IsNoFolderAndNoFileThatIsGone) {
  const TTemporaryFolder folder;
  EXPECT_EQ(ReadDrmEdid(folder.GetPath()).fault, "cannot be read: Is a directory");
  EXPECT_EQ(ReadDrmEdid(folder.GetPath() / "gone").fault, "cannot be read: No such file or directory");
}
