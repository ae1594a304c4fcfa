#include "command/machine/machine_document.h"

#include <set>

#include "command/base/base64.h"
#include "command/base/json_writer.h"
#include "command/base/text_encoding.h"
#include "command/base/unusable.h"

namespace {

bool IsUtf8(const std::string& text) { return ToUtf8(text) == text; }

/// Writes a machine as JSON with a line for each value, so that two machines can be compared line by line.
class TMachineWriter {
 public:
  explicit TMachineWriter(const TMachineDocument& machine) : m_machine(machine) {}

  std::string MakeMachineJson() {
    m_json.BeginObject();
    WriteMachine();
    return End();
  }

  std::string MakeDocument() {
    m_json.BeginObject();
    m_json.Member("captured", kDocumentVersion);
    WriteMachine();
    WriteFiles();
    WriteEdids();
    return End();
  }

 private:
  void BeginObject(const std::string& key) {
    m_json.Key(key);
    m_json.BeginObject();
  }

  void WriteMachine() {
    m_json.Member("systemName", m_machine.host.systemName);
    if (!m_machine.collected.empty()) m_json.Member("collected", m_machine.collected);
    m_json.Member("systemCreationClassName", m_machine.host.systemCreationClassName);
    m_json.Member("systemType", m_machine.host.systemType);
    m_json.Member("provider", m_machine.host.provider);
    BeginObject("bios");
    m_json.Member("present", m_machine.bios.present);
    m_json.Member("memory", m_machine.bios.memory);
    if (m_machine.bios.ignoresUnit) m_json.Member("ignoresUnit", true);
    WriteUnits();
    m_json.EndObject();
  }

  void WriteUnits() {
    std::set<unsigned int> numbers;
    for (const auto& [number, connector] : m_machine.connectors) numbers.insert(number);
    for (const auto& [number, path] : m_machine.paths) numbers.insert(number);
    for (const auto& [number, unit] : m_machine.bios.units) {
      if (unit.failAtBlock || unit.errorAtBlock) numbers.insert(number);
    }
    BeginObject("units");
    for (const unsigned int number : numbers) WriteUnit(number);
    m_json.EndObject();
  }

  void WriteUnit(unsigned int number) {
    BeginObject(std::to_string(number));
    const auto connector = m_machine.connectors.find(number);
    if (connector != m_machine.connectors.end()) m_json.Member("connector", connector->second);
    const auto path = m_machine.paths.find(number);
    if (path != m_machine.paths.end()) m_json.Member("path", path->second);
    const auto unit = m_machine.bios.units.find(number);
    if (unit != m_machine.bios.units.end()) {
      if (unit->second.failAtBlock) m_json.Member("failAtBlock", *unit->second.failAtBlock);
      if (unit->second.errorAtBlock) m_json.Member("errorAtBlock", *unit->second.errorAtBlock);
    }
    m_json.EndObject();
  }

  void WriteFiles() {
    BeginObject("files");
    for (const auto& [path, content] : m_machine.files) {
      if (!IsUtf8(path)) throw TUnusable(path + ": has a name that is not UTF-8; capture to a folder");
      BeginObject(path);
      const bool isText = IsUtf8(content);
      m_json.Member(isText ? "text" : "base64", isText ? content : EncodeBase64(content));
      m_json.EndObject();
    }
    m_json.EndObject();
  }

  void WriteEdids() {
    BeginObject("edids");
    for (const auto& [number, unit] : m_machine.bios.units) {
      const std::string bytes(unit.edid.begin(), unit.edid.end());
      if (!bytes.empty()) m_json.Member(std::to_string(number), EncodeBase64(bytes));
    }
    m_json.EndObject();
  }

  std::string End() {
    m_json.EndObject();
    m_json.EndLine();
    return m_json.TakeText();
  }

  const TMachineDocument& m_machine;
  TJsonWriter m_json{TJsonWriter::ELayout::kIndented};
};

}  // namespace

std::string MakeMachineJson(const TMachineDocument& machine) { return TMachineWriter(machine).MakeMachineJson(); }

std::string MakeDocumentText(const TMachineDocument& machine) { return TMachineWriter(machine).MakeDocument(); }
