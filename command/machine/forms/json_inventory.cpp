#include <map>
#include <nlohmann/json.hpp>

#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/machine/forms/inventory_output.h"
#include "command/machine/forms/readers.h"

using nlohmann::json;

namespace {

constexpr std::size_t kMaxDepth = 16;    // of values in values; an inventory needs four
constexpr std::size_t kMaxReason = 300;  // characters of what the parser says

constexpr const char* kContent = ".content";
constexpr const char* kMonitor = ".content.monitors[]";

/// Goes through an inventory as the parser does, and skips what it does not know.
class TInventoryWalk : public nlohmann::json_sax<json> {
 public:
  explicit TInventoryWalk(std::string name) : m_name(std::move(name)) {}

  std::optional<TFoundMachine> Read(const std::string& text) {
    json::sax_parse(text, this);
    if (!m_isInventory) return std::nullopt;
    m_machine.name = m_systemName.value_or(m_deviceId.value_or(""));
    return std::move(m_machine);
  }

  bool null() override { return true; }
  bool boolean(bool) override { return true; }
  bool number_integer(std::int64_t) override { return true; }
  bool number_unsigned(std::uint64_t) override { return true; }
  bool number_float(double, const std::string&) override { return true; }
  bool binary(json::binary_t&) override { return false; }  // not in JSON

  bool string(std::string& value) override {
    const auto text = m_texts.find(m_way);
    if (text == m_texts.end()) return true;
    if (*text->second) throw TUnusable(m_name + ": \"" + m_way.substr(1) + "\" appears twice");
    *text->second = std::move(value);
    return true;
  }

  bool key(std::string& name) override {
    m_way.resize(m_lengths.back());
    m_way += "." + name;
    return true;
  }

  bool start_object(std::size_t) override {
    if (m_way == kContent) m_isInventory = true;
    return Open();
  }

  bool start_array(std::size_t) override {
    Open();
    m_way += "[]";
    return true;
  }

  bool end_object() override {
    Close();
    if (m_way != kMonitor) return true;
    m_machine.Add(MakeInventoryOutput(m_monitor));
    m_monitor = {};
    return true;
  }

  bool end_array() override {
    Close();
    return true;
  }

  bool parse_error(std::size_t, const std::string&, const json::exception& error) override {
    // The parser's text begins with its own error number, in brackets.
    const std::string text = error.what();
    const std::string reason = text.substr(std::min(text.find("] ") + 2, text.size()));
    throw TUnusable(m_name + ": is not JSON: " + ShortenForMessage(reason, kMaxReason));
  }

 private:
  bool Open() {
    if (m_lengths.size() == kMaxDepth) {
      throw TUnusable(m_name + ": is more than " + std::to_string(kMaxDepth) + " values deep, which no inventory is");
    }
    m_lengths.push_back(m_way.size());
    return true;
  }

  /// The way is then that of the object or array.
  void Close() {
    m_way.resize(m_lengths.back());
    m_lengths.pop_back();
  }

  const std::string m_name;
  TFoundMachine m_machine;
  std::string m_way;                   // to the value that comes next, such as ".content.monitors[].port"
  std::vector<std::size_t> m_lengths;  // of the ways to the objects and arrays that are open
  bool m_isInventory = false;
  TInventoryMonitor m_monitor;
  std::optional<std::string> m_systemName;
  std::optional<std::string> m_deviceId;
  const std::map<std::string, std::optional<std::string>*> m_texts = {
      {".deviceid", &m_deviceId},
      {".content.hardware.name", &m_systemName},
      {".content.monitors[].port", &m_monitor.port},
      {".content.monitors[].base64", &m_monitor.base64}};
};

}  // namespace

std::optional<TFoundMachine> ReadJsonInventory(const std::string& text, const std::string& name) {
  // The parser would take a zero byte for the end, and ignore what follows it.
  if (!BeginsLikeObject(text) || text.find('\0') != std::string::npos) return std::nullopt;
  return TInventoryWalk(name).Read(text);
}
