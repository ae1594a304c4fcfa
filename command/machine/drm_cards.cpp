#include "command/machine/drm_cards.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <utility>

#include "command/base/descriptor.h"
#include "command/base/unusable.h"
#include "edid/layout.h"

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kPage = 4096;      // bytes: the most that the kernel gives in one read
constexpr std::size_t kMaxBlocks = 256;  // a base block and as many extensions as its count byte can give
constexpr int kMaxAttempts = 5;

/// Throws if the error tells nothing about the cards: a failure of this system, or a missing permission, since
/// everybody may read what the kernel shows.
void RequireKnown(const fs::path& path, int error) {
  if (error == EACCES || (error != 0 && !DescribesFile(error))) FailToRead(path.string(), error);
}

/// The first word of a short file; empty if the kernel does not give it.
std::string ReadWord(const fs::path& file) {
  char text[256];
  const TDescriptor opened(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  const ssize_t size = opened.IsOpen() ? read(opened.Get(), text, sizeof text) : -1;
  if (size < 0) RequireKnown(file, errno);
  std::string word;
  std::istringstream(std::string(text, static_cast<std::size_t>(std::max<ssize_t>(size, 0)))) >> word;
  return word;
}

/// The path without links; empty if it does not exist.
fs::path GetRealPath(const fs::path& path) {
  std::error_code error;
  fs::path real = fs::canonical(path, error);
  RequireKnown(path, error.value());
  return real;
}

/// Nothing for a card on another bus.
std::optional<TPciDevice> ReadPciDevice(const fs::path& device) {
  const std::string address = GetRealPath(device).filename().string();
  TPciDevice pci = {};
  int end = 0;
  const int found =
      std::sscanf(address.c_str(), "%x:%x:%x.%x%n", &pci.domain, &pci.bus, &pci.device, &pci.function, &end);
  if (found != 4 || static_cast<std::size_t>(end) != address.size()) return std::nullopt;
  pci.vendorId = static_cast<std::uint16_t>(std::strtoul(ReadWord(device / "vendor").c_str(), nullptr, 16));
  pci.deviceId = static_cast<std::uint16_t>(std::strtoul(ReadWord(device / "device").c_str(), nullptr, 16));
  return pci;
}

/// In KiB. Only the driver amdgpu shows it.
std::optional<std::uint64_t> ReadVideoMemory(const fs::path& device) {
  const std::string bytes = ReadWord(device / "mem_info_vram_total");
  if (bytes.empty()) return std::nullopt;
  return std::strtoull(bytes.c_str(), nullptr, 10) / 1024;
}

bool ComesBefore(const std::string& left, const std::string& right) {
  return strverscmp(left.c_str(), right.c_str()) < 0;
}

bool IsCard(const std::string& name) {
  return name.compare(0, 4, "card") == 0 && name.size() > 4 &&
         std::all_of(name.begin() + 4, name.end(), [](char digit) { return digit >= '0' && digit <= '9'; });
}

/// The names in a folder, sorted.
std::vector<std::string> ListNames(const fs::path& folder) {
  std::vector<std::string> names;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error); entry != fs::directory_iterator(); entry.increment(error)) {
    names.push_back(entry->path().filename().string());
  }
  RequireKnown(folder, error.value());
  std::sort(names.begin(), names.end(), ComesBefore);
  return names;
}

/// True if the connector has a channel named "DPMST", as the kernel names that of a port behind a hub.
bool IsBehindHub(const fs::path& connector) {
  const std::string channel = "drm_dp_aux";
  const std::vector<std::string> names = ListNames(connector);
  return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
    return name.compare(0, channel.size(), channel) == 0 && ReadWord(connector / name / "name") == "DPMST";
  });
}

TDrmOutput ReadOutput(const fs::path& folder, const TDrmCard& card, const std::string& connector) {
  TDrmEdid edid = ReadDrmEdid(folder / connector / "edid");
  TDrmOutput output = {connector, std::move(edid.bytes), std::move(edid.fault)};
  output.isBehindHub = IsBehindHub(folder / connector);
  if (!output.isBehindHub) output.path = MakeOutputPath(card, connector.substr(card.name.size() + 1));
  return output;
}

ECardPower ReadPower(const fs::path& connector) {
  if (ReadWord(connector / "enabled") != "enabled") return ECardPower::kOff;
  return ReadWord(connector / "dpms") == "On" ? ECardPower::kOn : ECardPower::kAsleep;
}

/// The state of a card with two connectors.
ECardPower Combine(ECardPower left, ECardPower right) {
  if (left == ECardPower::kOff) return right;
  return right == ECardPower::kOff ? left : std::min(left, right);
}

/// `names`: all names in the folder.
TDrmCard ReadCard(const fs::path& folder, const std::string& name, const std::vector<std::string>& names) {
  const fs::path device = folder / name / "device";
  TDrmCard card = {name, ReadPciDevice(device), ReadVideoMemory(device), {}};
  card.address = GetRealPath(device).filename().string();
  for (const std::string& connector : names) {
    if (connector.compare(0, name.size() + 1, name + "-") != 0) continue;
    card.power = Combine(card.power, ReadPower(folder / connector));
    if (ReadWord(folder / connector / "status") == "connected")
      card.outputs.push_back(ReadOutput(folder, card, connector));
  }
  return card;
}

bool IsDisplayController(const fs::path& device) {
  constexpr unsigned long baseClass = 3;
  return std::strtoul(ReadWord(device / "class").c_str(), nullptr, 16) >> 16 == baseClass;
}

/// Adds the PCI bus's display controllers without a graphics driver. `served`: the paths of the devices that have one.
void AddCardsWithoutDriver(const fs::path& folder, const std::vector<fs::path>& served, std::vector<TDrmCard>& cards) {
  for (const std::string& address : ListNames(folder)) {
    const bool isServed = std::any_of(served.begin(), served.end(), [&](const fs::path& device) {
      return std::find(device.begin(), device.end(), address) != device.end();
    });
    if (!isServed && IsDisplayController(folder / address)) {
      cards.push_back({address, ReadPciDevice(folder / address), std::nullopt, {}});
    }
  }
}

TDrmEdid MakeEdidFault() { return {{}, std::string("cannot be read: ") + std::strerror(errno)}; }

TDrmEdid ReadOnce(const TReadAt& readAt) {
  TDrmEdid edid;
  edid.bytes.resize(kMaxBlocks * edid::kBlockSize);
  std::size_t size = 0;
  while (size < edid.bytes.size()) {
    const ssize_t count = readAt(&edid.bytes[size], edid.bytes.size() - size, static_cast<off_t>(size));
    if (count < 0) return MakeEdidFault();
    size += static_cast<std::size_t>(count);
    if (count == 0 || size % kPage != 0) break;
  }
  edid.bytes.resize(size / edid::kBlockSize * edid::kBlockSize);
  return edid;
}

bool HasItsBlocks(const std::vector<std::uint8_t>& bytes) {
  return bytes.empty() || bytes.size() == (1U + bytes[edid::kExtensionCount]) * edid::kBlockSize;
}

}  // namespace

std::string MakeOutputPath(const TDrmCard& card, const std::string& connector) {
  return card.address.empty() || connector.empty() ? std::string() : card.address + "/" + connector;
}

std::vector<TDrmCard> ReadDrmCards(const TKernelFolders& folders) {
  std::vector<TDrmCard> cards;
  std::vector<fs::path> served;
  const std::vector<std::string> names = ListNames(folders.cards);
  for (const std::string& name : names) {
    if (!IsCard(name)) continue;
    cards.push_back(ReadCard(folders.cards, name, names));
    served.push_back(GetRealPath(folders.cards / name / "device"));
  }
  AddCardsWithoutDriver(folders.pci, served, cards);
  return cards;
}

TDrmEdid ReadDrmEdid(const TReadAt& readAt) {
  TDrmEdid edid = ReadOnce(readAt);
  for (int attempt = 1; attempt < kMaxAttempts && !HasItsBlocks(edid.bytes); ++attempt) edid = ReadOnce(readAt);
  return edid;
}

TDrmEdid ReadDrmEdid(const std::filesystem::path& file) {
  const TDescriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!descriptor.IsOpen() && !DescribesFile(errno)) FailToRead(file.string(), errno);
  if (!descriptor.IsOpen()) return MakeEdidFault();
  return ReadDrmEdid(
      [&](void* buffer, std::size_t size, off_t offset) { return pread(descriptor.Get(), buffer, size, offset); });
}
