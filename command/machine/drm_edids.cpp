#include "command/machine/drm_edids.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kBlockSize = 128;  // bytes

bool IsConnected(const fs::path& connector) {
  std::string status;
  std::ifstream(connector / "status") >> status;
  return status == "connected";
}

/// The whole blocks of the output's EDID; empty when it has none.
std::vector<std::uint8_t> ReadEdid(const fs::path& connector) {
  std::ifstream file(connector / "edid", std::ios::binary);
  std::vector<std::uint8_t> bytes(std::istreambuf_iterator<char>(file), {});
  bytes.resize(bytes.size() / kBlockSize * kBlockSize);
  return bytes;
}

bool ComesBefore(const TDrmEdid& left, const TDrmEdid& right) {
  return strverscmp(left.connector.c_str(), right.connector.c_str()) < 0;
}

}  // namespace

std::vector<TDrmEdid> ReadDrmEdids(const fs::path& folder) {
  std::vector<TDrmEdid> edids;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    if (!IsConnected(entry.path())) continue;
    TDrmEdid edid = {entry.path().filename().string(), ReadEdid(entry.path())};
    if (!edid.bytes.empty()) edids.push_back(std::move(edid));
  }
  std::sort(edids.begin(), edids.end(), ComesBefore);
  return edids;
}
