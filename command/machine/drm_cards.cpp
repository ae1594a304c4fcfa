#include "command/machine/drm_cards.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>

#include "edid/layout.h"

namespace fs = std::filesystem;

namespace {

/// The first word of a file; empty when it cannot be read.
std::string ReadWord(const fs::path& file) {
  std::string word;
  std::ifstream(file) >> word;
  return word;
}

std::vector<std::uint8_t> ReadEdid(const fs::path& connector) {
  std::ifstream file(connector / "edid", std::ios::binary);
  std::vector<std::uint8_t> bytes(std::istreambuf_iterator<char>(file), {});
  bytes.resize(bytes.size() / edid::kBlockSize * edid::kBlockSize);
  return bytes;
}

/// Nothing for a card on another bus.
std::optional<TPciDevice> ReadPciDevice(const fs::path& device) {
  std::error_code error;
  const std::string address = fs::canonical(device, error).filename().string();
  TPciDevice pci = {};
  int end = 0;
  const int found =
      std::sscanf(address.c_str(), "%x:%x:%x.%x%n", &pci.domain, &pci.bus, &pci.device, &pci.function, &end);
  if (found != 4 || static_cast<std::size_t>(end) != address.size()) return std::nullopt;
  pci.vendorId = static_cast<std::uint16_t>(std::strtoul(ReadWord(device / "vendor").c_str(), nullptr, 16));
  pci.deviceId = static_cast<std::uint16_t>(std::strtoul(ReadWord(device / "device").c_str(), nullptr, 16));
  return pci;
}

/// Only amdgpu shows it.
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
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end(), ComesBefore);
  return names;
}

}  // namespace

std::vector<TDrmCard> ReadDrmCards(const fs::path& folder) {
  std::vector<TDrmCard> cards;
  const std::vector<std::string> names = ListNames(folder);
  for (const std::string& name : names) {
    if (!IsCard(name)) continue;
    TDrmCard card = {name, ReadPciDevice(folder / name / "device"), ReadVideoMemory(folder / name / "device"), {}};
    for (const std::string& connector : names) {
      if (connector.compare(0, name.size() + 1, name + "-") != 0) continue;
      if (ReadWord(folder / connector / "status") != "connected") continue;
      card.outputs.push_back({connector, ReadEdid(folder / connector)});
    }
    cards.push_back(std::move(card));
  }
  return cards;
}
