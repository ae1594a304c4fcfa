#include "command/machine/forms/forms.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "command/base/unusable.h"
#include "command/machine/forms/readers.h"
#include "command/machine/forms/text_decoding.h"
#include "edid/layout.h"

namespace {

typedef std::optional<TFoundMachine> (*TReadForm)(std::string_view text);

// Forms with an unmistakable sign come first.
constexpr TReadForm kTextForms[] = {ReadRegistryExport, ReadXLog,    ReadXrandr,   ReadIoreg,
                                    ReadEdidDecode,     ReadHexDump, ReadHexBytes, ReadDecimalBytes};

constexpr const char* kExpected =
    ": is in no known form; --machine takes a folder or file that displayinfo capture wrote, an EDID as bytes or in "
    "hex "
    "(edid-decode, xxd, hexdump -C, i2cdump, a C array), what xrandr --props or ioreg -lw0 prints, an X server's log, "
    "a "
    "registry export, PowerShell's numbers, or an inventory of GLPI, FusionInventory or OCS";

/// The output whose EDID the kernel has in a file of that path, such as card0-DP-1/edid; empty for any other path.
std::string FindConnector(const std::filesystem::path& path) {
  for (const std::string& name : {path.stem().string(), path.parent_path().filename().string()}) {
    const std::size_t dash = name.find('-');
    const std::string digits = name.substr(std::min<std::size_t>(4, name.size()), dash - 4);
    if (!BeginsWith(name, "card") || dash == std::string::npos || dash <= 4) continue;
    if (std::all_of(digits.begin(), digits.end(), [](unsigned char digit) { return std::isdigit(digit) != 0; })) {
      return name;
    }
  }
  return std::string();
}

std::optional<TFoundMachine> FindForm(const std::string& content, const std::string& name) {
  // Every EDID has a zero byte, even one with a damaged header.
  if (!IsUtf16(content) && content.find('\0') != std::string::npos) return ReadEdidBytes(content);
  const std::string text = DecodeText(content);
  if (std::optional<TFoundMachine> machine = ReadJsonInventory(text, name)) return machine;
  if (std::optional<TFoundMachine> machine = ReadXmlInventory(text, name)) return machine;
  for (const TReadForm read : kTextForms) {
    if (std::optional<TFoundMachine> machine = read(text)) return machine;
  }
  return std::nullopt;
}

/// `content`: a copy of the kernel's file with the EDID of an output.
TFoundMachine ReadKernelFile(const std::string& content, const std::string& connector) {
  TFoundMachine machine;
  machine.Add({connector, content});
  return machine;
}

TFoundMachine Find(const std::string& content, const std::string& name) {
  const std::string connector = FindConnector(name);
  if (content.empty()) return ReadKernelFile(content, connector);
  std::optional<TFoundMachine> machine = FindForm(content, name);
  if (!machine) throw TUnusable(name + kExpected);
  if (machine->outputs.size() == 1 && machine->outputs.front().connector.empty()) {
    machine->outputs.front().connector = connector;
  }
  return std::move(*machine);
}

/// True for an EDID that the plug-in may accept.
bool HasWholeEdid(const TFoundOutput& output) {
  return output.fault.empty() && !output.edid.empty() && output.edid.size() % edid::kBlockSize == 0 &&
         output.edid.size() <= kMaxEdidSize;
}

void AddOutput(const TFoundOutput& output, unsigned int unit, const std::string& name, TMachineDocument& machine) {
  const std::string connector = output.connector.empty() ? std::to_string(unit) : output.connector;
  const std::string place = name + ": the EDID of output " + connector;
  AddUnit(machine.bios, unit, place);
  if (!output.connector.empty()) machine.connectors[unit] = output.connector;
  const bool isUnused = output.edid.empty() && output.fault.empty() && !output.connector.empty();
  if (isUnused) return;
  if (output.fault.empty()) AddEdid(machine, unit, output.edid, place);
  if (!output.fault.empty()) AddDamagedEdid(machine, unit, {place, output.fault});
  const auto damage = machine.damagedEdids.find(unit);
  if (damage != machine.damagedEdids.end()) damage->second.cure = "write the file again";
}

}  // namespace

void ReadForm(const std::string& content, const std::string& name, TMachineDocument& machine) {
  TFoundMachine found = Find(content, name);
  machine.host.systemName = found.name.empty() ? std::filesystem::path(name).stem().string() : found.name;
  std::stable_partition(found.outputs.begin(), found.outputs.end(), HasWholeEdid);
  unsigned int unit = 0;
  for (const TFoundOutput& output : found.outputs) AddOutput(output, unit++, name, machine);
}
