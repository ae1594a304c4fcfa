#include "command/edid/identity.h"

#include <map>

#include "command/edid/sha256.h"

namespace {

constexpr std::size_t kHashDigits = 16;  // in an identity without a serial number

std::string WriteHex(unsigned int code) {
  std::string text;
  for (const unsigned int shift : {12U, 8U, 4U, 0U}) text += "0123456789ABCDEF"[code >> shift & 0xFU];
  return text;
}

/// The year and the week; 0 where they are unknown.
std::string WriteDate(const std::optional<TMade>& made) {
  if (!made) return "0.0";
  return std::to_string(made->year) + "." + std::to_string(made->week.value_or(0));
}

}  // namespace

TIdentity Identify(const TIdentified& monitor) {
  const TEdidFacts& facts = monitor.facts;
  const std::string model = facts.maker + "-" + WriteHex(facts.productCode) + "-" + WriteDate(facts.made) + "-";
  if (!facts.serial) return {model + HashSha256(monitor.edid).substr(0, kHashDigits), "edid"};
  return {model + facts.serial->serial, facts.serial->source == ESerialSource::kNumber ? "number" : "serial"};
}

std::vector<TIdentity> IdentifyAll(const std::vector<TPlacedMonitor>& monitors) {
  std::map<std::vector<std::uint8_t>, unsigned int> copies;  // by EDID
  for (const TPlacedMonitor& placed : monitors) ++copies[placed.monitor.edid];
  std::vector<TIdentity> identities;
  for (const auto& [monitor, place] : monitors) {
    TIdentity identity = Identify(monitor);
    if (copies[monitor.edid] > 1) identity = {identity.text + "@" + place, "connector"};
    identities.push_back(std::move(identity));
  }
  return identities;
}
