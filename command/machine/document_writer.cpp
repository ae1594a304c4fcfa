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
    WriteNumber("captured", kDocumentVersion);
    WriteMachine();
    WriteFiles();
    WriteEdids();
    return End();
  }

 private:
  void WriteText(const char* key, const std::string& text) {
    m_json.Key(key);
    m_json.String(text);
  }

  void WriteBoolean(const char* key, bool value) {
    m_json.Key(key);
    m_json.Literal(value ? "true" : "false");
  }

  template <typename T>
  void WriteNumber(const char* key, T value) {
    m_json.Key(key);
    m_json.Literal(std::to_string(value));
  }

  void BeginObject(const std::string& key) {
    m_json.Key(key);
    m_json.BeginObject();
  }

  void WriteMachine() {
    WriteText("systemName", m_machine.host.systemName);
    if (!m_machine.collected.empty()) WriteText("collected", m_machine.collected);
    WriteText("systemCreationClassName", m_machine.host.systemCreationClassName);
    WriteNumber("systemType", m_machine.host.systemType);
    WriteBoolean("provider", m_machine.host.provider);
    BeginObject("bios");
    WriteBoolean("present", m_machine.bios.present);
    WriteBoolean("memory", m_machine.bios.memory);
    if (m_machine.bios.ignoresUnit) WriteBoolean("ignoresUnit", true);
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
    if (connector != m_machine.connectors.end()) WriteText("connector", connector->second);
    const auto path = m_machine.paths.find(number);
    if (path != m_machine.paths.end()) WriteText("path", path->second);
    const auto unit = m_machine.bios.units.find(number);
    if (unit != m_machine.bios.units.end()) {
      if (unit->second.failAtBlock) WriteNumber("failAtBlock", *unit->second.failAtBlock);
      if (unit->second.errorAtBlock) WriteNumber("errorAtBlock", *unit->second.errorAtBlock);
    }
    m_json.EndObject();
  }

  void WriteFiles() {
    BeginObject("files");
    for (const auto& [path, content] : m_machine.files) {
      if (!IsUtf8(path)) throw TUnusable(path + ": has a name that is not UTF-8; capture to a folder");
      BeginObject(path);
      const bool isText = IsUtf8(content);
      WriteText(isText ? "text" : "base64", isText ? content : EncodeBase64(content));
      m_json.EndObject();
    }
    m_json.EndObject();
  }

  void WriteEdids() {
    BeginObject("edids");
    for (const auto& [number, unit] : m_machine.bios.units) {
      const std::string bytes(unit.edid.begin(), unit.edid.end());
      if (!bytes.empty()) WriteText(std::to_string(number).c_str(), EncodeBase64(bytes));
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
