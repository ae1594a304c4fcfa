#include <optional>

#include "command/base/json_reader.h"
#include "command/machine/forms/inventory_output.h"
#include "command/machine/forms/readers.h"

namespace {

/// Reads an inventory, and skips what it does not know.
class TInventoryReader {
 public:
  explicit TInventoryReader(const std::string& name) : m_json({name, "inventory"}, EUnexpected::kSkipped) {}

  std::optional<TFoundMachine> Read(const std::string& text) {
    const TJsonRule monitor = TJsonRule::Object({{"port", Text(m_monitor.port)}, {"base64", Text(m_monitor.base64)}},
                                                {}, [this] { EndMonitor(); });
    const TJsonRule content = TJsonRule::Object(
        {{"hardware", TJsonRule::Object({{"name", Text(m_systemName)}})}, {"monitors", TJsonRule::Array(monitor)}},
        [this] { m_isInventory = true; });
    m_json.Read(text, TJsonRule::Object({{"deviceid", Text(m_deviceId)}, {"content", content}}));
    if (!m_isInventory) return std::nullopt;
    m_machine.name = m_systemName.value_or(m_deviceId.value_or(""));
    return std::move(m_machine);
  }

 private:
  static TJsonRule Text(std::optional<std::string>& target) {
    return TJsonRule::Text([&target](std::string& text) { target = std::move(text); });
  }

  void EndMonitor() {
    m_machine.Add(MakeInventoryOutput(m_monitor));
    m_monitor = {};
  }

  TJsonReader m_json;
  TFoundMachine m_machine;
  bool m_isInventory = false;
  TInventoryMonitor m_monitor;
  std::optional<std::string> m_systemName;
  std::optional<std::string> m_deviceId;
};

}  // namespace

std::optional<TFoundMachine> ReadJsonInventory(const std::string& text, const std::string& name) {
  if (!BeginsLikeObject(text) || text.find('\0') != std::string::npos) return std::nullopt;
  return TInventoryReader(name).Read(text);
}
