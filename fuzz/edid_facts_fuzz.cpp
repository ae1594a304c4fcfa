// Reads any bytes as an EDID. Each mode must come once, in order, with pixels and a rate, and bytes that are no EDID
// must say nothing. Replacing its serial numbers must keep its size and its checksums.
//
// Input: the EDID, filled up with zeros to whole blocks of 128 bytes.
#include "command/edid/edid_facts.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <tuple>

#include "command/edid/edid_serials.h"
#include "command/edid/identity.h"
#include "edid/layout.h"
#include "fuzz/require.h"

namespace {

auto GetOrder(const TListedMode& mode) {
  return std::tuple(std::uint64_t{mode.width} * mode.height, mode.width, !mode.isInterlaced, mode.refresh);
}

void RequireModes(const std::vector<TListedMode>& modes) {
  const auto isNotBefore = [](const TListedMode& left, const TListedMode& right) {
    return GetOrder(left) <= GetOrder(right);
  };
  Require(std::adjacent_find(modes.begin(), modes.end(), isNotBefore) == modes.end(),
          "each mode is there once, in order");
  for (const TListedMode& mode : modes) {
    Require(mode.width > 0 && mode.height > 0 && mode.refresh > 0, "a mode has pixels and a rate");
    Require(std::isfinite(mode.refresh), "a rate is a number");
  }
}

void RequireFillers(const std::vector<std::uint8_t>& edid, bool hasValidChecksums) {
  std::string filled(edid.begin(), edid.end());
  TSerialFillers().Replace(filled);
  Require(filled.size() == edid.size(), "fillers fit into the EDID");
  const TEdidFacts facts = ReadEdidFacts({filled.begin(), filled.end()});
  Require(facts.hasValidChecksums == hasValidChecksums, "fillers leave the checksums as they are");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t maxBlocks = 256;
  std::vector<std::uint8_t> edid(data, data + std::min(size, maxBlocks * edid::kBlockSize));
  edid.resize(std::max<std::size_t>(1, (edid.size() + edid::kBlockSize - 1) / edid::kBlockSize) * edid::kBlockSize);
  const TEdidFacts facts = ReadEdidFacts(edid);
  RequireModes(facts.modes);
  Require(facts.isVersion1 || (facts.modes.empty() && facts.name.empty()), "what is no EDID says nothing");
  Require(facts.imageSize.has_value() == facts.diagonalInches.has_value(), "a size has a diagonal");
  Require(!Identify({facts, edid}).text.empty(), "every monitor has an identity");
  RequireFillers(edid, facts.hasValidChecksums);
  return 0;
}
