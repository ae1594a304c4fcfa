#include "command/machine/outputs.h"

#include <algorithm>

#include "command/base/text_encoding.h"
#include "edid/layout.h"

namespace {

typedef TVirtualBiosConfiguration::TUnit TUnit;
typedef std::map<unsigned int, TDamagedEdid> TDamages;

bool HasSameBaseBlock(const TUnit& left, const TUnit& right) {
  return std::equal(left.edid.begin(), left.edid.begin() + edid::kBlockSize, right.edid.begin());
}

/// Whether the BIOS hands out the first block of the unit's EDID. Later ones do not decide about a monitor.
bool FailsAtOnce(const TUnit& unit) { return unit.failAtBlock == 0U || unit.errorAtBlock == 0U; }

/// Goes through the units as the plug-in does, which stops at the first that is no monitor.
class TUnitWalk {
 public:
  TUnitWalk(const TVirtualBiosConfiguration& bios, const TDamages& damages, int systemType)
      : m_bios(bios), m_damages(damages), m_end(ExplainNoMonitor(bios, systemType)) {}

  /// The units come in ascending order.
  void Enter(TOutput& output, const TUnit& unit) {
    if (m_end.empty() && output.unit != m_next) Stop(m_next, "is missing");
    const bool isAsked = m_end.empty();
    // Of a damaged EDID this is said wherever the walk ended, since it is what people can mend.
    const std::string fault = isAsked || IsDamaged(output) ? FindFault(output, unit) : std::string();
    if (isAsked && fault.empty()) {
      output.deviceId = "Monitor " + std::to_string(output.unit + 1);
    } else {
      output.reason = fault.empty() ? m_end : "its EDID " + fault;
      if (isAsked) Stop(output.unit, fault);
    }
    m_next = output.unit + 1;
    m_previous = &unit;
  }

 private:
  bool IsDamaged(const TOutput& output) const { return m_damages.count(output.unit) != 0; }

  /// What is wrong with the unit's EDID; empty when the plug-in takes it.
  std::string FindFault(const TOutput& output, const TUnit& unit) const {
    if (IsDamaged(output)) return m_damages.at(output.unit).fault;
    if (m_bios.ignoresUnit && output.unit > 0)
      return "is not asked for: the video BIOS answers as unit 0 for every unit";
    if (unit.edid.empty()) return "is missing";
    if (FailsAtOnce(unit)) return "cannot be read: the video BIOS fails at its first block";
    if (m_previous != nullptr && HasSameBaseBlock(unit, *m_previous)) {
      return "repeats that of unit " + std::to_string(output.unit - 1);
    }
    return output.facts->isVersion1 ? "" : "is not one of version 1";
  }

  void Stop(unsigned int unit, const std::string& fault) {
    m_end = "the plug-in stopped at unit " + std::to_string(unit) + ", whose EDID " + fault;
  }

  const TVirtualBiosConfiguration& m_bios;
  const TDamages& m_damages;
  std::string m_end;  // why no further unit is reported
  unsigned int m_next = 0;
  const TUnit* m_previous = nullptr;
};

}  // namespace

std::string ExplainNoMonitor(const TVirtualBiosConfiguration& bios, int systemType) {
  if (systemType != kNativeSystem) return "the plug-in calls the video BIOS of a system of type 2 only";
  if (!bios.present) return "there is no video BIOS";
  if (!bios.memory) return "the video BIOS has no memory for its answer";
  return std::string();
}

std::string ExplainUnlisted(const TOutput& output) { return GetName(output) + " is not listed: " + output.reason; }

std::string GetName(const TOutput& output) {
  const std::string unit = "unit " + std::to_string(output.unit);
  return output.connector.empty() ? unit : ToPrintable(output.connector) + " (" + unit + ")";
}

std::vector<TOutput> MakeOutputs(const TVirtualBiosConfiguration& bios,
                                 const std::map<unsigned int, std::string>& connectors, const TDamages& damagedEdids,
                                 int systemType) {
  std::map<unsigned int, TUnit> units = bios.units;
  for (const auto& [number, connector] : connectors) units[number];
  for (const auto& [number, damage] : damagedEdids) units[number];
  std::vector<TOutput> outputs;
  TUnitWalk walk(bios, damagedEdids, systemType);
  for (const auto& [number, unit] : units) {
    const auto connector = connectors.find(number);
    if (unit.edid.empty() && connector == connectors.end() && damagedEdids.count(number) == 0) continue;
    TOutput output = {number, connector == connectors.end() ? "" : connector->second, {}, "", {}, unit.edid};
    if (!unit.edid.empty()) output.facts = ReadEdidFacts(unit.edid);
    walk.Enter(output, unit);
    outputs.push_back(std::move(output));
  }
  return outputs;
}
