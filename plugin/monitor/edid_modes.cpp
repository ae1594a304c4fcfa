#include "plugin/monitor/edid_modes.h"

#include "edid/layout.h"

namespace {

// By byte, then by bit from the lowest: the order in which an EDID declares them.
constexpr TMode kEstablished[edid::kEstablishedTimingsSize][8] = {
    {{800, 600, 60},
     {800, 600, 56},
     {640, 480, 75},
     {640, 480, 72},
     {640, 480, 67},
     {640, 480, 60},
     {720, 400, 88},
     {720, 400, 70}},
    {{1280, 1024, 75},
     {1024, 768, 75},
     {1024, 768, 70},
     {1024, 768, 60},
     {1024, 768, 87},
     {832, 624, 75},
     {800, 600, 75},
     {800, 600, 72}},
};

constexpr unsigned short kScanUnknown = 2;
constexpr unsigned short kScanProgressive = 4;
constexpr unsigned short kScanInterlaced = 5;

void AddEstablished(const unsigned char* edid, std::vector<TMode>& modes) {
  for (std::size_t byte = 0; byte < edid::kEstablishedTimingsSize; ++byte) {
    for (unsigned int bit = 0; bit < 8; ++bit) {
      const bool isSet = (edid[edid::kEstablishedTimings + byte] >> bit & 1U) != 0;
      if (isSet) modes.push_back(kEstablished[byte][bit]);
    }
  }
}

void AddStandard(const unsigned char* edid, std::vector<TMode>& modes) {
  for (std::size_t index = 0; index < edid::kStandardTimingCount; ++index) {
    const unsigned char* const entry = edid + edid::kStandardTimings + edid::kStandardTimingSize * index;
    if (!edid::IsStandardTiming(entry[0])) continue;
    const unsigned int width = edid::GetStandardWidth(entry[0]);
    modes.push_back({width, edid::GetStandardHeight(width, entry[1]), edid::GetStandardRefresh(entry[1])});
  }
}

}  // namespace

std::vector<TMode> DecodeModes(const unsigned char* edid) {
  std::vector<TMode> modes;
  AddEstablished(edid, modes);
  AddStandard(edid, modes);
  return modes;
}

unsigned short DecodeScanMode(const unsigned char* detailedTiming) {
  if (detailedTiming == nullptr) return kScanUnknown;
  return (detailedTiming[edid::kTimingFlags] & edid::kInterlaced) != 0 ? kScanInterlaced : kScanProgressive;
}
