#include "command/capture/document_text.h"

#include <nlohmann/json.hpp>

#include "command/base/base64.h"
#include "command/base/text_encoding.h"
#include "command/base/unusable.h"

using nlohmann::ordered_json;

namespace {

constexpr int kIndentation = 2;  // a line for each value, so that two machines can be compared line by line

bool IsUtf8(const std::string& text) { return ToUtf8(text) == text; }

ordered_json MakeUnits(const TMachineDocument& machine) {
  ordered_json units = ordered_json::object();
  for (const auto& [number, connector] : machine.connectors) {
    units[std::to_string(number)]["connector"] = ToUtf8(connector);
  }
  for (const auto& [number, unit] : machine.bios.units) {
    const std::string name = std::to_string(number);
    if (unit.failAtBlock) units[name]["failAtBlock"] = *unit.failAtBlock;
    if (unit.errorAtBlock) units[name]["errorAtBlock"] = *unit.errorAtBlock;
  }
  return units;
}

ordered_json MakeBios(const TMachineDocument& machine) {
  ordered_json bios = {{"present", machine.bios.present}, {"memory", machine.bios.memory}};
  if (machine.bios.ignoresUnit) bios["ignoresUnit"] = true;
  bios["units"] = MakeUnits(machine);
  return bios;
}

void AddMachine(ordered_json& json, const TMachineDocument& machine) {
  json["systemName"] = ToUtf8(machine.host.systemName);
  if (!machine.collected.empty()) json["collected"] = machine.collected;
  json["systemCreationClassName"] = ToUtf8(machine.host.systemCreationClassName);
  json["systemType"] = machine.host.systemType;
  json["provider"] = machine.host.provider;
  json["bios"] = MakeBios(machine);
}

ordered_json MakeFiles(const TMachineDocument& machine) {
  ordered_json files = ordered_json::object();
  for (const auto& [path, content] : machine.files) {
    if (!IsUtf8(path)) throw TUnusable(path + ": has a name that is not UTF-8; capture to a folder");
    files[path] = IsUtf8(content) ? ordered_json{{"text", content}} : ordered_json{{"base64", EncodeBase64(content)}};
  }
  return files;
}

ordered_json MakeEdids(const TMachineDocument& machine) {
  ordered_json edids = ordered_json::object();
  for (const auto& [number, unit] : machine.bios.units) {
    const std::string bytes(unit.edid.begin(), unit.edid.end());
    if (!bytes.empty()) edids[std::to_string(number)] = EncodeBase64(bytes);
  }
  return edids;
}

}  // namespace

std::string MakeMachineJson(const TMachineDocument& machine) {
  ordered_json json = ordered_json::object();
  AddMachine(json, machine);
  return json.dump(kIndentation) + "\n";
}

std::string MakeDocumentText(const TMachineDocument& machine) {
  ordered_json json = {{"captured", kDocumentVersion}};
  AddMachine(json, machine);
  json["files"] = MakeFiles(machine);
  json["edids"] = MakeEdids(machine);
  return json.dump(kIndentation) + "\n";
}
