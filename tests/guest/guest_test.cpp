// Tests the plug-in and the LRMI calls on a real video BIOS, that of QEMU's standard VGA. Runs inside the guest, as
// root.
//
// The environment has what QEMU was told about the monitor: `width` and `height` in pixels.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "edid/layout.h"
#include "realmode/lrmi.h"
#include "tests/support/loaded_plugin.h"
#include "tests/support/process_resources.h"

using testing::SizeIs;

namespace {

constexpr std::size_t kPageSize = 4096;

typedef std::vector<std::uint8_t> TBytes;

/// The first `size` bytes of a memory region of a PCI device.
TBytes ReadRegion(const std::filesystem::path& region, std::size_t size) {
  const int file = open(region.c_str(), O_RDONLY);
  const void* const mapped = mmap(nullptr, kPageSize, PROT_READ, MAP_SHARED, file, 0);
  close(file);
  if (mapped == MAP_FAILED) throw std::runtime_error(region.string() + " cannot be mapped");
  const volatile std::uint8_t* const bytes = static_cast<const std::uint8_t*>(mapped);
  return TBytes(bytes, bytes + size);
}

/// The EDID that the standard VGA holds at the start of its third memory region, where its BIOS takes it from.
TBytes ReadDeviceEdid(std::size_t size) {
  for (const auto& device : std::filesystem::directory_iterator("/sys/bus/pci/devices")) {
    std::string vendor;
    std::ifstream(device.path() / "vendor") >> vendor;
    if (vendor == "0x1234") return ReadRegion(device.path() / "resource2", size);
  }
  throw std::runtime_error("this guest has no standard VGA");
}

/// One block of unit 0 by the LRMI calls; nothing if the BIOS does not have it.
std::optional<TBytes> ReadBlock(std::uint32_t block) {
  void* const buffer = LRMI_alloc_real(edid::kBlockSize);
  LRMI_regs registers = {};
  registers.eax = 0x4F15;  // VBE/DDC
  registers.ebx = 1;       // read EDID
  registers.edx = block;
  registers.es = static_cast<std::uint16_t>(reinterpret_cast<std::uintptr_t>(buffer) / 16);
  const bool hasReturned = LRMI_int(0x10, &registers) == 1;
  const std::uint8_t* const bytes = static_cast<std::uint8_t*>(buffer);
  std::optional<TBytes> content;
  if (hasReturned && (registers.eax & 0xFFFF) == 0x004F) content.emplace(bytes, bytes + edid::kBlockSize);
  LRMI_free_real(buffer);
  return content;
}

/// All blocks that the BIOS gives of unit 0.
TBytes ReadBiosEdid() {
  TBytes edid;
  if (LRMI_init() != 1) throw std::runtime_error("LRMI_init fails");
  std::uint32_t number = 0;
  for (std::optional<TBytes> block; (block = ReadBlock(number)); ++number) {
    edid.insert(edid.end(), block->begin(), block->end());
  }
  LRMI_deInit();
  return edid;
}

int GetTold(const char* name) {
  const char* const value = std::getenv(name);
  if (value == nullptr) throw std::runtime_error(std::string("the environment does not tell the ") + name);
  return std::atoi(value);
}

TBytes ReadPageZero() {
  TBytes page(kPageSize);
  const int memory = open("/dev/mem", O_RDONLY);
  const ssize_t count = pread(memory, page.data(), page.size(), 0);
  close(memory);
  if (count != static_cast<ssize_t>(page.size())) throw std::runtime_error("/dev/mem cannot be read");
  return page;
}

}  // namespace

TEST(VideoBiosOfTheGuest, GivesTheBlocksThatTheDeviceHoldsAndNoMore) {
  const TBytes edid = ReadBiosEdid();
  ASSERT_THAT(edid, SizeIs(2 * edid::kBlockSize));
  EXPECT_EQ(edid, ReadDeviceEdid(edid.size()));
}

TEST(VideoBiosOfTheGuest, GivesTheResolutionThatTheDeviceWasTold) {
  const TBytes edid = ReadBiosEdid();
  ASSERT_THAT(edid, SizeIs(2 * edid::kBlockSize));
  // The first detailed timing: eight low bits, then four high bits in the upper half of the byte shared with the blank.
  const std::uint8_t* const timing = &edid[54];
  EXPECT_EQ(timing[2] | (timing[4] & 0xF0) << 4, GetTold("width"));
  EXPECT_EQ(timing[5] | (timing[7] & 0xF0) << 4, GetTold("height"));
}

TEST(VideoBiosOfTheGuest, GivesTheSizeOfThatResolutionAtAHundredDotsPerInch) {
  const TBytes edid = ReadBiosEdid();
  ASSERT_THAT(edid, SizeIs(2 * edid::kBlockSize));
  EXPECT_EQ(edid[21], GetTold("width") * 254 / 10000);  // centimetres
  EXPECT_EQ(edid[22], GetTold("height") * 254 / 10000);
}

TEST(PluginInTheGuest, AnswersAThousandRequestsAlikeAndLeavesTheMachineAndTheProcessAsTheyWere) {
  TTestHost host;
  TLoadedPlugin plugin(host, PLUGIN_NAME);
  const std::vector<std::string> classes = {"QRXSG_DesktopMonitor", "QRXSG_MonitorResolution", "QRXSG_MonitorSetting"};
  const TBytes pageZero = ReadPageZero();
  ASSERT_NE(pageZero, TBytes(kPageSize)) << "page 0 shows as zeros";
  const std::vector<TDescribed> first = plugin.Ask(classes);
  ASSERT_FALSE(first.empty());
  const auto ask = [&] {
    ASSERT_EQ(plugin.Ask(classes), first);
    host.Forget();
  };
  ExpectNothingLeftBehind(ask, 100, 900);
  EXPECT_EQ(ReadPageZero(), pageZero);
}
