#include "command/compare/difference_report.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>

#include "command/base/base64.h"
#include "command/base/text_encoding.h"
#include "command/report/json_writer.h"

using nlohmann::json;

namespace {

constexpr const char* kMachineStateNames[kMachineStates] = {"equal", "came", "gone", "changed", "unknown"};

const char* GetName(EMachineState state) { return kMachineStateNames[static_cast<std::size_t>(state)]; }

const char* GetName(EState state) {
  switch (state) {
    case EState::kCame:
      return "came";
    case EState::kGone:
      return "gone";
    case EState::kChanged:
      break;
  }
  return "changed";
}

/// A value as people read it.
std::string GetText(const json& value) {
  if (value.is_string()) return ToPrintable(value.get<std::string>());
  if (!value.is_array()) return value.dump();
  std::string joined;
  for (const json& element : value) joined += (joined.empty() ? "" : ", ") + GetText(element);
  return joined.empty() ? "none" : joined;
}

std::string GetText(const std::optional<std::string>& value) { return value ? GetText(json::parse(*value)) : "none"; }

std::string GetText(const TFacts& facts, const char* name) {
  const auto found = facts.find(name);
  return found == facts.end() ? std::string() : GetText(json::parse(found->second));
}

std::string CountChangedBytes(const TChange& change) {
  const std::string before = *DecodeBase64(json::parse(*change.before).get<std::string>());
  const std::string after = *DecodeBase64(json::parse(*change.after).get<std::string>());
  if (before.size() != after.size()) {
    return std::to_string(before.size()) + " bytes -> " + std::to_string(after.size()) + " bytes";
  }
  std::size_t count = 0;
  for (std::size_t index = 0; index < before.size(); ++index) count += before[index] != after[index] ? 1 : 0;
  return std::to_string(count) + " of " + std::to_string(before.size()) + " bytes differ";
}

std::string MakeLine(const std::string& name, const std::string& text) { return "    " + name + ": " + text + "\n"; }

/// The modes that only one of the two lists has: most of a monitor's modes stay when some change.
std::string MakeModesText(const TChange& change) {
  typedef std::vector<std::string> TModes;
  const auto read = [](const std::optional<std::string>& modes) {
    return json::parse(modes.value_or("[]")).get<TModes>();
  };
  const auto listMissing = [](const char* name, const TModes& modes, const TModes& others) {
    TModes missing;
    std::set_difference(modes.begin(), modes.end(), others.begin(), others.end(), std::back_inserter(missing));
    return missing.empty() ? "" : MakeLine(name, GetText(json(missing)));
  };
  const TModes before = read(change.before);
  const TModes after = read(change.after);
  return listMissing("Modes came", after, before) + listMissing("Modes gone", before, after);
}

std::string MakeChangeText(const TChange& change) {
  if (change.name == kModesFact) return MakeModesText(change);
  if (change.name == kEdidFact) return MakeLine(change.name, CountChangedBytes(change));
  return MakeLine(ToPrintable(change.name), GetText(change.before) + " -> " + GetText(change.after));
}

/// "Acme A190 (ACM, product 0, serial A190-004711, card0-DP-1)".
std::string DescribeMonitor(const TFacts& facts) {
  std::string details = GetText(facts, "manufacturer");
  const auto add = [&](const char* label, const char* name) {
    const std::string text = GetText(facts, name);
    if (!text.empty()) details += (details.empty() ? "" : ", ") + (label + text);
  };
  add("product ", "productCode");
  add("serial ", facts.count("serial") != 0 ? "serial" : "serialNumber");
  add("", facts.count("connector") != 0 ? "connector" : "deviceID");
  const std::string name = facts.count("name") != 0 ? GetText(facts, "name") : "without a name";
  return details.empty() ? name : name + " (" + details + ")";
}

/// "Example Graphics 2 (PCI:1:0:0)".
std::string DescribeController(const TFacts& facts) {
  return GetText(facts, facts.count("Name") != 0 ? "Name" : "DeviceID") + " (" + GetText(facts, "DisplayId") + ")";
}

typedef std::string (*TDescribe)(const TFacts& facts);

std::string MakeDevicesText(const char* kind, const std::vector<TDeviceDifference>& devices, TDescribe describe) {
  std::string text;
  for (const TDeviceDifference& device : devices) {
    text += "  " + std::string(kind) + " " + GetName(device.state) + ": " + describe(device.description) + "\n";
    for (const TChange& change : device.changes) text += MakeChangeText(change);
  }
  return text;
}

std::string ExplainUnknown(const TMachineReport& machine) {
  std::string text;
  if (machine.before) text += "  OLD: " + ToMessage(*machine.before) + "\n";
  if (machine.after) text += "  NEW: " + ToMessage(*machine.after) + "\n";
  return text;
}

void WriteMember(TJsonWriter& writer, const char* name, const std::string& text) {
  writer.Key(name);
  writer.String(text);
}

void WriteChange(TJsonWriter& writer, const TChange& change) {
  writer.BeginObject();
  WriteMember(writer, "property", change.name);
  writer.Key("old");
  writer.Literal(change.before.value_or("null"));
  writer.Key("new");
  writer.Literal(change.after.value_or("null"));
  writer.EndObject();
}

void WriteDevices(TJsonWriter& writer, const char* name, const std::vector<TDeviceDifference>& devices) {
  writer.Key(name);
  writer.BeginArray();
  for (const TDeviceDifference& device : devices) {
    writer.BeginObject();
    WriteMember(writer, "state", GetName(device.state));
    for (const auto& [key, value] : device.description) {
      writer.Key(key);
      writer.Literal(value);
    }
    if (device.state == EState::kChanged) {
      writer.Key("changes");
      writer.BeginArray();
      for (const TChange& change : device.changes) WriteChange(writer, change);
      writer.EndArray();
    }
    writer.EndObject();
  }
  writer.EndArray();
}

void WriteMachine(TJsonWriter& writer, const TMachineReport& machine) {
  writer.BeginObject();
  WriteMember(writer, "machine", machine.name);
  WriteMember(writer, "state", GetName(machine.state));
  if (machine.state == EMachineState::kChanged) {
    WriteDevices(writer, "monitors", machine.difference.monitors);
    WriteDevices(writer, "controllers", machine.difference.controllers);
  }
  if (machine.before) WriteMember(writer, "oldError", *machine.before);
  if (machine.after) WriteMember(writer, "newError", *machine.after);
  writer.EndObject();
}

}  // namespace

std::string TTextDifferenceReport::Add(const TMachineReport& machine) {
  const std::string name = ToPrintable(machine.name);
  switch (machine.state) {
    case EMachineState::kChanged:
      return name + "\n" + MakeDevicesText("Monitor", machine.difference.monitors, DescribeMonitor) +
             MakeDevicesText("Controller", machine.difference.controllers, DescribeController);
    case EMachineState::kUnknown:
      return name + " could not be asked\n" + ExplainUnknown(machine);
    case EMachineState::kCame:
    case EMachineState::kGone:
    case EMachineState::kEqual:
      break;
  }
  return name + " " + GetName(machine.state) + "\n";
}

std::string TTextDifferenceReport::End(const TMachineCounts& counts) {
  std::string text;
  std::size_t all = 0;
  for (std::size_t state = 0; state < kMachineStates; ++state) {
    all += counts[state];
    if (counts[state] == 0) continue;
    const bool isUnknown = static_cast<EMachineState>(state) == EMachineState::kUnknown;
    text += (text.empty() ? "" : ", ") + std::to_string(counts[state]) + " " +
            (isUnknown ? "could not be asked" : kMachineStateNames[state]);
  }
  return (all == 1 ? "1 machine: " : std::to_string(all) + " machines: ") + text + ".\n";
}

std::string TJsonDifferenceReport::Begin() { return "{\n  \"machines\": ["; }

std::string TJsonDifferenceReport::Add(const TMachineReport& machine) {
  TJsonWriter writer(TJsonWriter::ELayout::kOneLine);
  WriteMachine(writer, machine);
  const std::string separator = m_isFirst ? "\n    " : ",\n    ";
  m_isFirst = false;
  return separator + writer.TakeText();
}

std::string TJsonDifferenceReport::End(const TMachineCounts& counts) {
  TJsonWriter writer(TJsonWriter::ELayout::kOneLine);
  writer.BeginObject();
  for (std::size_t state = 0; state < kMachineStates; ++state) {
    writer.Key(kMachineStateNames[state]);
    writer.Literal(std::to_string(counts[state]));
  }
  writer.EndObject();
  return std::string(m_isFirst ? "" : "\n  ") + "],\n  \"counts\": " + writer.TakeText() + "\n}\n";
}
