// Reads any text as a captured machine in one file. It must have exactly what a plain reading of the document finds, or
// be refused with one short line that names the file.
//
// Input: the text of the document.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "command/base/base64.h"
#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/machine/machine_document.h"
#include "fuzz/input.h"
#include "fuzz/require.h"

using nlohmann::json;

namespace {

const std::string kName = "ws-17.json";

json GetObject(const json& document, const char* key) { return document.value(key, json::object()); }

void RequireFiles(const TMachineDocument& machine, const json& files) {
  Require(machine.files.size() == files.size(), "there are as many files as the document has");
  for (const auto& [path, content] : machine.files) {
    Require(path.front() == '/' && (path + "/").find("/../") == std::string::npos, "a file lies inside the machine");
    const json& file = files.at(path);
    Require(file.size() == 1, "a file has one content");
    const std::string given = file.begin()->get<std::string>();
    Require(file.contains("text") ? content == given : EncodeBase64(content) == given, "a file has the given content");
  }
}

/// As the command shows it.
void RequireMessage(const std::string& message) {
  Require(message.find(kName + ": ") == 0, "a message begins with the file");
  Require(message.size() > kName.size() + 2, "a message says what is wrong");
  Require(message.size() < 5000, "a message is short");
  Require(message.find('\n') == std::string::npos, "a message is one line");
}

void RequireUnits(const TMachineDocument& machine, const json& units, const json& edids) {
  Require(machine.bios.units.size() <= 256, "there are 256 units at most");
  for (const auto& [number, unit] : machine.bios.units) {
    const std::string name = std::to_string(number);
    Require(units.contains(name) || edids.contains(name), "a unit is one of the document");
    Require(unit.edid.size() % 128 == 0 && unit.edid.size() <= 256 * 128, "an EDID is whole blocks, 256 at most");
    const bool isDamaged = machine.damagedEdids.count(number) != 0;
    Require(isDamaged == (edids.contains(name) && unit.edid.empty()), "an EDID is either used or damaged");
    Require(isDamaged || EncodeBase64(std::string(unit.edid.begin(), unit.edid.end())) == edids.value(name, ""),
            "an EDID has the given bytes");
  }
  for (const auto& [number, damage] : machine.damagedEdids) RequireMessage(ToPrintable(Describe(damage)));
  for (const auto& [number, connector] : machine.connectors) {
    Require(units.at(std::to_string(number)).at("connector") == connector, "a connector is the given one");
  }
  for (const auto& [number, path] : machine.paths) {
    Require(units.at(std::to_string(number)).at("path") == path, "a path is the given one");
  }
}

void RequireRead(const TMachineDocument& machine, const std::string& text) {
  const json document = json::parse(text);
  Require(document.at("captured") == 1, "a document of version 1 is read, and no other");
  const THostConfiguration defaults;
  Require(machine.host.systemName == document.value("systemName", ""), "the system's name is the given one");
  Require(machine.host.systemType == document.value("systemType", defaults.systemType), "so is its type");
  RequireFiles(machine, GetObject(document, "files"));
  RequireUnits(machine, GetObject(GetObject(document, "bios"), "units"), GetObject(document, "edids"));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = TInput(data, size).TakeRest();
  TMachineDocument machine;
  try {
    ReadMachineDocument(text, kName, machine);
  } catch (const TUnusable& failure) {
    RequireMessage(ToPrintable(failure.what()));
    return 0;
  }
  RequireRead(machine, text);
  return 0;
}
