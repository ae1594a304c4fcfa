#include "command/collection/outputs.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <utility>

#include "command/base/text_encoding.h"
#include "command/collection/collection.h"
#include "command/collection/plugin_texts.h"
#include "edid/layout.h"
#include "embedded_host/schema.h"

namespace {

typedef TVirtualBiosConfiguration::TUnit TUnit;
typedef std::map<unsigned int, TDamagedEdid> TDamages;

// Joining with the answer.

std::string Trim(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(' ');
  return begin == std::string::npos ? std::string() : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

/// A property's text without the blanks around it; empty if the instance lacks the property.
std::string GetText(const TStoredInstance& instance, const char* name) {
  const auto found = instance.GetProperties().find(name);
  return found == instance.GetProperties().end() ? std::string() : Trim(found->second);
}

std::time_t GetDay(int year, int month, int day) {
  std::tm date = {};
  date.tm_year = year - 1900;
  date.tm_mon = month - 1;
  date.tm_mday = day;
  return timegm(&date);
}

/// `date`: a CIM datetime as text. The plug-in counts weeks of seven days from New Year in local time, so its date is a
/// day off where the clocks skipped a day.
bool IsMadeAt(const std::string& date, const std::optional<TMade>& made) {
  constexpr std::time_t day = 86400;  // seconds
  int numbers[3] = {};
  const bool isDate = std::sscanf(date.c_str(), "%4d%2d%2d", &numbers[0], &numbers[1], &numbers[2]) == 3;
  if (!isDate || !made || !made->week) return true;  // one of the two gives no date
  const std::time_t weeks = *made->week - 1;
  const std::time_t week = GetDay(static_cast<int>(made->year), 1, 1) + weeks * 7 * day;
  return std::abs(GetDay(numbers[0], numbers[1], numbers[2]) - week) <= day;
}

/// Whether an instance must have everything that the EDID says, or may leave out a part.
enum class EMatch { kWhole, kPart };

bool IsSame(const std::string& told, const std::string& known, EMatch match) {
  return told == Trim(known) || (match == EMatch::kPart && told.empty());
}

/// True if the instance of a monitor agrees with the EDID. A maker that is not three letters is not compared: the
/// plug-in shows it, and the facts have none.
bool IsMadeFrom(const TStoredInstance& monitor, const TEdidFacts& facts, EMatch match) {
  return (facts.maker.empty() || IsSame(GetText(monitor, "MonitorManufacturer"), facts.maker, match)) &&
         IsSame(GetText(monitor, "Name"), facts.name, match) &&
         IsSame(GetText(monitor, "SerialNumber"), facts.serialText, match) &&
         IsMadeAt(GetText(monitor, "ManufacturingDate"), facts.made);
}

bool AsksFor(const std::vector<TRequestAnswer>& requests, const std::string& className) {
  return std::any_of(requests.begin(), requests.end(), [&](const TRequestAnswer& request) {
    return std::find(request.classes.begin(), request.classes.end(), className) != request.classes.end();
  });
}

/// Calls `use` for each instance of the class, in commit order.
template <typename TUse>
void ForEach(const std::vector<TRequestAnswer>& requests, const std::string& className, TUse use) {
  for (const TRequestAnswer& request : requests) {
    for (const auto& instance : request.instances) {
      if (instance->GetDeclaration().name == className) use(*instance);
    }
  }
}

/// The monitors of the answer that no output has been given yet. If one was committed several times, the last commit
/// counts.
class TListedMonitors {
 public:
  explicit TListedMonitors(const std::vector<TRequestAnswer>& requests) {
    ForEach(requests, kDesktopMonitorClass, [&](const TStoredInstance& instance) {
      const auto known = std::find_if(m_monitors.begin(), m_monitors.end(), [&](const TStoredInstance* monitor) {
        return monitor->GetPathText() == instance.GetPathText();
      });
      *(known == m_monitors.end() ? m_monitors.insert(known, nullptr) : known) = &instance;
    });
  }

  std::optional<std::string> Take(const std::optional<TEdidFacts>& facts, EMatch match) {
    if (!facts || !facts->isVersion1) return std::nullopt;
    const auto found = std::find_if(m_monitors.begin(), m_monitors.end(), [&](const TStoredInstance* monitor) {
      return IsMadeFrom(*monitor, *facts, match);
    });
    if (found == m_monitors.end()) return std::nullopt;
    const TStoredInstance& monitor = **found;
    m_monitors.erase(found);
    const auto id = monitor.GetProperties().find("DeviceID");
    return id == monitor.GetProperties().end() ? std::string() : static_cast<std::string>(id->second);
  }

 private:
  std::vector<const TStoredInstance*> m_monitors;
};

/// In the order of the units, gives each output the first monitor that agrees with its EDID: first the monitors that
/// say everything that the EDID does, then those that say less.
void JoinMonitors(std::vector<TOutput>& outputs, const std::vector<TRequestAnswer>& requests) {
  TListedMonitors monitors(requests);
  for (const EMatch match : {EMatch::kWhole, EMatch::kPart}) {
    for (TOutput& output : outputs) {
      output.isAskedFor = AsksFor(requests, kDesktopMonitorClass);
      if (!output.deviceId) output.deviceId = monitors.Take(output.facts, match);
    }
  }
}

typedef std::map<std::string, std::set<TListedResolution>> TResolutions;  // by the monitor's id

unsigned int GetNumber(const TStoredInstance& instance, const char* name) {
  const auto found = instance.GetProperties().find(name);
  return found == instance.GetProperties().end() || found->second.IsNull() ? 0 : found->second.GetUnsigned();
}

/// `ids` receives the ids of the monitors, in commit order.
TResolutions CollectResolutions(const std::vector<TRequestAnswer>& requests, std::vector<std::string>& ids) {
  TResolutions resolutions;
  ForEach(requests, kMonitorResolutionClass, [&](const TStoredInstance& mode) {
    const std::string id = GetMonitorOfMode(GetText(mode, "SettingID"));
    if (resolutions.count(id) == 0) ids.push_back(id);
    resolutions[id].emplace(GetNumber(mode, "HorizontalResolution"), GetNumber(mode, "VerticalResolution"),
                            GetNumber(mode, "RefreshRate"));
  });
  return resolutions;
}

/// True if the EDID has a mode of every size in `resolutions`.
bool HasSizes(const TOutput& output, const std::set<TListedResolution>& resolutions) {
  return output.facts && std::all_of(resolutions.begin(), resolutions.end(), [&](const TListedResolution& resolution) {
           const auto& modes = output.facts->modes;
           return std::any_of(modes.begin(), modes.end(), [&](const TEdidMode& mode) {
             return mode.width == std::get<0>(resolution) && mode.height == std::get<1>(resolution);
           });
         });
}

/// Gives each output the modes of its monitor. If monitors were not asked for, each output without a fault gets, in the
/// order of the units, the first monitor's modes that all are in its EDID.
void JoinModes(std::vector<TOutput>& outputs, const std::vector<TRequestAnswer>& requests) {
  if (!AsksFor(requests, kMonitorResolutionClass)) return;
  std::vector<std::string> ids;
  const TResolutions resolutions = CollectResolutions(requests, ids);
  for (TOutput& output : outputs) {
    const bool isKnownByModes = !output.isAskedFor && output.reason.empty();
    const auto found = std::find_if(ids.begin(), ids.end(), [&](const std::string& id) {
      return output.deviceId == id || (isKnownByModes && HasSizes(output, resolutions.at(id)));
    });
    output.resolutions.emplace();
    if (found == ids.end()) continue;
    output.modesId = *found;
    output.resolutions = resolutions.at(*found);
    ids.erase(found);
  }
}

/// Gives each output the identity of its monitor.
void Identify(std::vector<TOutput>& outputs) {
  std::vector<TPlacedMonitor> monitors;
  std::vector<TOutput*> identified;
  for (TOutput& output : outputs) {
    if (!output.facts || !output.facts->isVersion1) continue;
    const std::string place = output.connector.empty() ? std::to_string(output.unit) : output.connector;
    monitors.push_back({{*output.facts, output.edid}, place});
    identified.push_back(&output);
  }
  const std::vector<TIdentity> identities = IdentifyAll(monitors);
  for (std::size_t index = 0; index < identities.size(); ++index) identified[index]->identity = identities[index];
}

// Finding out why an output is missing.

bool HasSameBaseBlock(const TUnit& left, const TUnit& right) {
  return std::equal(left.edid.begin(), left.edid.begin() + edid::kBlockSize, right.edid.begin());
}

/// True if the BIOS does not hand out the first block of the unit's EDID. Later blocks do not decide whether the
/// plug-in lists the monitor.
bool FailsAtOnce(const TUnit& unit) { return unit.failAtBlock == 0U || unit.errorAtBlock == 0U; }

/// Goes through the units and finds out what is wrong with those that are not listed. The plug-in stops at the first
/// fault.
class TFaultFinder {
 public:
  TFaultFinder(const TVirtualBiosConfiguration& bios, const TDamages& damages, int systemType)
      : m_bios(bios), m_damages(damages), m_end(ExplainNoMonitor(bios, systemType)) {}

  /// Why the answer lacks the output's monitor; empty if it is listed. Call it for all units in ascending order.
  std::string Explain(const TOutput& output, const TUnit& unit) {
    if (m_end.empty() && output.unit != m_next) Stop(m_next, "is missing");
    m_next = output.unit + 1;
    const TUnit* const previous = std::exchange(m_previous, &unit);
    if (output.deviceId) return std::string();
    const bool isReached = m_end.empty();
    // A damaged EDID is reported even if the plug-in stopped before it, since people can mend it.
    const bool isDamaged = m_damages.count(output.unit) != 0;
    const std::string fault = isReached || isDamaged ? FindFault(output, unit, previous) : std::string();
    if (fault.empty()) return isReached && output.isAskedFor ? "the answer has no monitor of such an EDID" : m_end;
    if (isReached) Stop(output.unit, fault);
    return "its EDID " + fault;
  }

 private:
  /// What is wrong with the unit's EDID; empty if the plug-in accepts it. `previous`: the unit before it.
  std::string FindFault(const TOutput& output, const TUnit& unit, const TUnit* previous) const {
    const auto damage = m_damages.find(output.unit);
    if (damage != m_damages.end()) return damage->second.fault;
    if (m_bios.ignoresUnit && output.unit > 0)
      return "is not asked for: the video BIOS answers as unit 0 for every unit";
    if (unit.edid.empty()) return "is missing";
    if (FailsAtOnce(unit)) return "cannot be read: the video BIOS fails at its first block";
    if (previous != nullptr && HasSameBaseBlock(unit, *previous)) {
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

/// What may give an EDID to an output without one.
std::string FindCure(const TDamages& damages, unsigned int unit) {
  const auto damage = damages.find(unit);
  if (damage != damages.end()) return damage->second.cure;
  return "connect the monitor without the switch, splitter or adapter between, which may keep its EDID back, or switch "
         "it on before the machine";
}

}  // namespace

std::string ExplainNoMonitor(const TVirtualBiosConfiguration& bios, int systemType) {
  if (systemType != kNativeSystem) return "the plug-in calls the video BIOS of a system of type 2 only";
  if (!bios.present) return "there is no video BIOS";
  if (!bios.memory) return "the video BIOS has no memory for its answer";
  return std::string();
}

bool IsInClasses(const TOutput& output, const TEdidMode& mode) {
  const auto rate = static_cast<unsigned int>(std::lround(mode.refresh));
  return output.resolutions && output.resolutions->count({mode.width, mode.height, rate}) != 0;
}

bool IsUnlisted(const TOutput& output) { return !output.deviceId && !output.reason.empty(); }

std::string GetReason(const TOutput& output) {
  return output.isAskedFor ? output.reason : "monitors were not asked for";
}

std::string ExplainUnlisted(const TOutput& output) { return GetName(output) + " is not listed: " + output.reason; }

std::string GetName(const TOutput& output) {
  const std::string unit = "unit " + std::to_string(output.unit);
  return output.connector.empty() ? unit : ToPrintable(output.connector) + " (" + unit + ")";
}

std::vector<TOutput> JoinOutputs(const TMachine& machine, const std::vector<TRequestAnswer>& requests) {
  const TVirtualBiosConfiguration bios = machine.getUnits();
  std::map<unsigned int, TUnit> units = bios.units;
  for (const auto& [number, connector] : machine.connectors) units[number];
  for (const auto& [number, damage] : machine.damagedEdids) units[number];
  std::vector<TOutput> outputs;
  for (const auto& [number, unit] : units) {
    const auto connector = machine.connectors.find(number);
    const bool hasConnector = connector != machine.connectors.end();
    if (unit.edid.empty() && !hasConnector && machine.damagedEdids.count(number) == 0) continue;
    TOutput output;
    output.unit = number;
    if (hasConnector) output.connector = connector->second;
    const auto path = machine.paths.find(number);
    if (path != machine.paths.end()) output.path = path->second;
    output.edid = unit.edid;
    if (!unit.edid.empty()) output.facts = ReadEdidFacts(unit.edid);
    outputs.push_back(std::move(output));
  }
  JoinMonitors(outputs, requests);
  TFaultFinder faults(bios, machine.damagedEdids, machine.host.systemType);
  for (TOutput& output : outputs) {
    output.reason = faults.Explain(output, units.at(output.unit));
    if (!output.deviceId && output.edid.empty()) output.cure = FindCure(machine.damagedEdids, output.unit);
  }
  JoinModes(outputs, requests);
  Identify(outputs);
  return outputs;
}
