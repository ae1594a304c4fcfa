#include "command/compare/difference_report.h"

#include <algorithm>
#include <iterator>

#include "command/base/base64.h"
#include "command/base/json.h"
#include "command/base/json_writer.h"
#include "command/base/text_encoding.h"
#include "command/edid/edid_facts.h"

namespace {

constexpr const char* kMachineStateNames[kMachineStates] = {"equal", "came", "gone", "changed", "unknown"};

const char* GetName(EMachineState state) { return kMachineStateNames[static_cast<std::size_t>(state)]; }

const char* GetName(EState state) {
  switch (state) {
    case EState::kCame:
      return "came";
    case EState::kGone:
    case EState::kLeft:
      return "gone";
    case EState::kMoved:
      return "moved";
    case EState::kChanged:
      break;
  }
  return "changed";
}

/// A value as text for people.
std::string GetText(const TPropertyValue& value) {
  if (value.is_null()) return "none";
  if (value.is_string()) return ToPrintable(value.get<std::string>());
  if (!value.is_array()) return WriteJson(value);
  std::string joined;
  for (const TPropertyValue& element : value) joined += (joined.empty() ? "" : ", ") + GetText(element);
  return joined.empty() ? "none" : joined;
}

std::string MakeLine(const std::string& name, const std::string& text) { return "    " + name + ": " + text + "\n"; }

std::string MakeText(const std::string& name, const TChanged<TPropertyValue>& property) {
  const std::string before = GetText(property.before);
  const std::string after = GetText(property.after);
  const char* const remark = before == after ? " (its bytes that are not UTF-8 differ)" : "";
  return MakeLine(ToPrintable(name), before + " -> " + after + remark);
}

std::string MakeText(const std::string& name, const TChanged<TEdid>& edid) {
  const auto& [before, after] = edid;
  if (before.size() != after.size()) {
    return MakeLine(name, std::to_string(before.size()) + " bytes -> " + std::to_string(after.size()) + " bytes");
  }
  std::size_t count = 0;
  for (std::size_t index = 0; index < before.size(); ++index) count += before[index] != after[index] ? 1 : 0;
  return MakeLine(name, std::to_string(count) + " of " + std::to_string(before.size()) + " bytes differ");
}

/// Only the modes that one of the two lists lacks, since most modes of a monitor stay.
std::string MakeText(const std::string& name, const TChanged<TModes>& modes) {
  const auto listMissing = [&](const char* what, const TModes& list, const TModes& others) {
    TModes missing;
    std::set_difference(list.begin(), list.end(), others.begin(), others.end(), std::back_inserter(missing));
    return missing.empty() ? "" : MakeLine(name + what, GetText(missing));
  };
  return listMissing(" came", modes.after, modes.before) + listMissing(" gone", modes.before, modes.after);
}

std::string MakeText(const TChange& change) {
  return std::visit([&](const auto& fact) { return MakeText(change.name, fact); }, change.fact);
}

void WriteValue(TJsonWriter& writer, const TPropertyValue& value) {
  if (value.is_array()) {
    writer.BeginArray();
    for (const TPropertyValue& element : value) WriteValue(writer, element);
    writer.EndArray();
  } else if (value.is_string()) {
    writer.String(value.get_ref<const std::string&>());
  } else {
    writer.Literal(WriteJson(value));
  }
}

void WriteValue(TJsonWriter& writer, const TEdid& edid) {
  writer.String(EncodeBase64(std::string(edid.begin(), edid.end())));
}

void WriteValue(TJsonWriter& writer, const TModes& modes) {
  writer.BeginArray();
  for (const std::string& mode : modes) writer.String(mode);
  writer.EndArray();
}

/// How a device is recognised, and where it is: a value for each key that has one.
typedef TProperties TDescription;

void AddText(TDescription& description, const char* key, const std::string& text) {
  if (!text.empty()) description[key] = text;
}

TDescription Describe(const TMonitor& monitor) {
  const TEdidFacts edid = ReadEdidFacts(monitor.output.edid);
  TDescription description;
  AddText(description, "manufacturer", edid.maker);
  if (edid.isVersion1) description["productCode"] = edid.productCode;
  if (edid.serialNumber) description["serialNumber"] = *edid.serialNumber;
  AddText(description, "name", edid.name);
  AddText(description, "serial", edid.serialText);
  AddText(description, "connector", monitor.output.connector);
  AddText(description, "deviceID", monitor.output.deviceId);
  return description;
}

TDescription Describe(const TController& controller) {
  TDescription description;
  AddText(description, "DisplayId", controller.identity);
  AddText(description, "DeviceID", controller.deviceId);
  const auto name = controller.properties.find("Name");
  if (name != controller.properties.end()) description["Name"] = name->second;
  return description;
}

std::string Show(const TDescription& description, const char* key) { return ToPrintable(FindText(description, key)); }

/// "Acme A190 (ACM, product 0, serial A190-004711, card0-DP-1)".
std::string GetName(const TMonitor& monitor) {
  const TDescription facts = Describe(monitor);
  std::string details = Show(facts, "manufacturer");
  const auto add = [&](const char* label, const char* key) {
    const std::string text = Show(facts, key);
    if (!text.empty()) details += (details.empty() ? "" : ", ") + (label + text);
  };
  add("product ", "productCode");
  add("serial ", facts.count("serial") != 0 ? "serial" : "serialNumber");
  add("", facts.count("connector") != 0 ? "connector" : "deviceID");
  const std::string name = facts.count("name") != 0 ? Show(facts, "name") : "without a name";
  return details.empty() ? name : name + " (" + details + ")";
}

/// "Example Graphics 2 (PCI:1:0:0)".
std::string GetName(const TController& controller) {
  const TDescription facts = Describe(controller);
  return Show(facts, facts.count("Name") != 0 ? "Name" : "DeviceID") + " (" + Show(facts, "DisplayId") + ")";
}

template <typename TDevice>
std::string MakeText(const char* kind, const TMachineReport& machine,
                     const std::vector<TDeviceDifference<TDevice>>& differences) {
  std::string text;
  for (const auto& difference : differences) {
    const std::string way = difference.state == EState::kMoved
                                ? " from " + ToPrintable(difference.origin) + " to " + ToPrintable(machine.name)
                                : std::string();
    text += "  " + std::string(kind) + " " + GetName(difference.state) + way + ": " + GetName(difference.device) + "\n";
    for (const TChange& change : difference.changes) text += MakeText(change);
  }
  return text;
}

std::string ExplainUnknown(const TMachineReport& machine) {
  std::string text;
  if (machine.before) text += "  OLD: " + ToMessage(*machine.before) + "\n";
  if (machine.after) text += "  NEW: " + ToMessage(*machine.after) + "\n";
  return text;
}

void WriteChange(TJsonWriter& writer, const TChange& change) {
  writer.BeginObject();
  writer.Member("property", change.name);
  std::visit(
      [&](const auto& fact) {
        writer.Key("old");
        WriteValue(writer, fact.before);
        writer.Key("new");
        WriteValue(writer, fact.after);
      },
      change.fact);
  writer.EndObject();
}

template <typename TDevice>
void WriteDescription(TJsonWriter& writer, const TDevice& device) {
  for (const auto& [key, value] : Describe(device)) {
    writer.Key(key);
    WriteValue(writer, value);
  }
}

template <typename TDevice>
void WriteDevices(TJsonWriter& writer, const char* name, const TMachineReport& machine,
                  const std::vector<TDeviceDifference<TDevice>>& differences) {
  writer.Key(name);
  writer.BeginArray();
  for (const auto& difference : differences) {
    writer.BeginObject();
    writer.Member("state", GetName(difference.state));
    if (difference.state == EState::kMoved) {
      writer.Member("from", difference.origin);
      writer.Member("to", machine.name);
    }
    WriteDescription(writer, difference.device);
    if (difference.state == EState::kChanged) {
      writer.Key("changes");
      writer.BeginArray();
      for (const TChange& change : difference.changes) WriteChange(writer, change);
      writer.EndArray();
    }
    writer.EndObject();
  }
  writer.EndArray();
}

void WriteDoubtful(TJsonWriter& writer, const TDoubtfulSerial& serial) {
  writer.BeginObject();
  WriteDescription(writer, serial.monitor);
  writer.Member("old", serial.before);
  writer.Member("new", serial.after);
  writer.EndObject();
}

void WriteMachine(TJsonWriter& writer, const TMachineReport& machine) {
  writer.BeginObject();
  writer.Member("machine", machine.name);
  writer.Member("state", GetName(machine.state));
  if (machine.state == EMachineState::kChanged || !machine.difference.IsEmpty()) {
    WriteDevices(writer, "monitors", machine, machine.difference.monitors);
    WriteDevices(writer, "controllers", machine, machine.difference.controllers);
  }
  if (machine.before) writer.Member("oldError", *machine.before);
  if (machine.after) writer.Member("newError", *machine.after);
  writer.EndObject();
}

}  // namespace

std::string TTextDifferenceReport::Add(const TMachineReport& machine) {
  const std::string name = ToPrintable(machine.name);
  if (machine.state == EMachineState::kUnknown) return name + " could not be asked\n" + ExplainUnknown(machine);
  const std::string devices = MakeText("Monitor", machine, machine.difference.monitors) +
                              MakeText("Controller", machine, machine.difference.controllers);
  // If the only change is that monitors left, the machines where they are now report it.
  const bool hasState = machine.state != EMachineState::kChanged || devices.empty();
  return name + (hasState ? std::string(" ") + GetName(machine.state) : "") + "\n" + devices;
}

std::string TTextDifferenceReport::End(const TMachineCounts& counts, const std::vector<TDoubtfulSerial>& doubtful) {
  std::string remarks;
  for (const TDoubtfulSerial& serial : doubtful) {
    remarks += "Serial number doubtful: " + GetName(serial.monitor) +
               ": machines that have it: " + std::to_string(serial.before) + " of OLD, " +
               std::to_string(serial.after) + " of NEW\n";
  }
  std::string text;
  std::size_t all = 0;
  for (std::size_t state = 0; state < kMachineStates; ++state) {
    all += counts[state];
    if (counts[state] == 0) continue;
    const bool isUnknown = static_cast<EMachineState>(state) == EMachineState::kUnknown;
    text += (text.empty() ? "" : ", ") + std::to_string(counts[state]) + " " +
            (isUnknown ? "could not be asked" : kMachineStateNames[state]);
  }
  return remarks + (all == 1 ? "1 machine: " : std::to_string(all) + " machines: ") + text + ".\n";
}

std::string TJsonDifferenceReport::Begin() { return "{\n  \"machines\": ["; }

std::string TJsonDifferenceReport::Add(const TMachineReport& machine) {
  TJsonWriter writer(TJsonWriter::ELayout::kOneLine);
  WriteMachine(writer, machine);
  const std::string separator = m_isFirst ? "\n    " : ",\n    ";
  m_isFirst = false;
  return separator + writer.TakeText();
}

std::string TJsonDifferenceReport::End(const TMachineCounts& counts, const std::vector<TDoubtfulSerial>& doubtful) {
  std::string text = std::string(m_isFirst ? "" : "\n  ") + "],\n";
  TJsonWriter writer(TJsonWriter::ELayout::kOneLine);
  if (!doubtful.empty()) {
    writer.BeginArray();
    for (const TDoubtfulSerial& serial : doubtful) WriteDoubtful(writer, serial);
    writer.EndArray();
    text += "  \"doubtful\": " + writer.TakeText() + ",\n";
  }
  writer.BeginObject();
  for (std::size_t state = 0; state < kMachineStates; ++state) {
    writer.Member(kMachineStateNames[state], counts[state]);
  }
  writer.EndObject();
  return text + "  \"counts\": " + writer.TakeText() + "\n}\n";
}
