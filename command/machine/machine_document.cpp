#include "command/machine/machine_document.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "command/base/base64.h"
#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/base/utc_time.h"

using nlohmann::json;

namespace {

constexpr std::size_t kMaxDepth = 16;    // of values in values; a captured machine needs four
constexpr std::size_t kMaxShown = 100;   // characters of a key in a message
constexpr std::size_t kMaxReason = 300;  // characters of what the parser says
constexpr const char* kVersionKey = "captured";

[[noreturn]] void FailToParse(const std::string& name, const json::exception& error) {
  // The parser's text begins with its own error number, in brackets.
  const std::string text = error.what();
  const std::string reason = text.substr(std::min(text.find("] ") + 2, text.size()));
  throw TUnusable(name + ": is not JSON: " + ShortenForMessage(reason, kMaxReason));
}

/// The parser would take a zero byte for the end, and ignore what follows it.
void RequireNoZero(const std::string& text, const std::string& name) {
  if (text.find('\0') != std::string::npos) throw TUnusable(name + ": is not JSON: it has a zero byte");
}

struct TReader;
typedef std::map<std::string, TReader> TTable;

/// What a key may have: a plain value, an object of known keys, or an object whose keys are names. One is set.
struct TReader {
  std::function<void(json& value)> value;
  const TTable* table = nullptr;
  std::function<const TReader&(const std::string& name)> each;
  std::function<void()> close;  // at the end of an object, where that has something to check
};

/// Walks through a document as the parser goes, and calls the readers of what it finds. It never gets deeper than the
/// readers' tables.
class TDocumentWalk : public nlohmann::json_sax<json> {
 public:
  /// `name`: of the file, for messages.
  TDocumentWalk(std::string name, const TReader& document) : m_name(std::move(name)), m_next(&document) {}

  void Read(const std::string& text) { json::sax_parse(text, this); }

  [[noreturn]] void Fail(const std::string& what) const { throw TUnusable(GetPlace() + " " + what); }

  /// The file and the key that is being read: where a message begins.
  std::string GetPlace() const { return m_name + ": " + GetKey(); }

  bool null() override { return TakeValue(nullptr); }
  bool boolean(bool value) override { return TakeValue(value); }
  bool number_integer(std::int64_t value) override { return TakeValue(value); }
  bool number_unsigned(std::uint64_t value) override { return TakeValue(value); }
  bool number_float(double value, const std::string&) override { return TakeValue(value); }
  bool string(std::string& value) override { return TakeValue(std::move(value)); }
  bool binary(json::binary_t&) override { return false; }  // not in JSON

  bool start_object(std::size_t) override {
    if (m_next->value) m_next->value(m_object);  // it says what must be there instead
    m_objects.push_back({m_key, m_next, {}});
    return true;
  }

  bool key(std::string& name) override {
    TObject& object = m_objects.back();
    m_key = name;
    if (!object.seen.insert(name).second) Fail("is there twice");
    m_next = object.reader->each ? &object.reader->each(name) : &FindReader(*object.reader->table, name);
    return true;
  }

  bool end_object() override {
    const TObject object = std::move(m_objects.back());
    m_objects.pop_back();
    m_key = object.key;
    if (object.reader->close) object.reader->close();
    return true;
  }

  bool start_array(std::size_t) override { return TakeValue(json::array()); }
  bool end_array() override { return false; }  // no reader takes an array

  bool parse_error(std::size_t, const std::string&, const json::exception& error) override {
    FailToParse(m_name, error);
  }

 private:
  struct TObject {
    std::string key;  // whose value it is
    const TReader* reader;
    std::set<std::string> seen;
  };

  const TReader& FindReader(const TTable& table, const std::string& name) const {
    const auto reader = table.find(name);
    if (reader == table.end()) Fail("is not a known key; known here: " + ListNames(table));
    return reader->second;
  }

  bool TakeValue(json value) {
    if (!m_next->value) Fail("must be an object");
    m_next->value(value);
    return true;
  }

  /// The way to the value, such as "bios.units.0.failAtBlock".
  std::string GetKey() const {
    if (m_objects.empty()) return "the document";
    std::string way;
    for (std::size_t depth = 1; depth < m_objects.size(); ++depth)
      way += ShortenForMessage(m_objects[depth].key, kMaxShown) + ".";
    return "\"" + way + ShortenForMessage(m_key, kMaxShown) + "\"";
  }

  static std::string ListNames(const TTable& table) {
    std::string names;
    for (const auto& [name, reader] : table) names += (names.empty() ? "" : ", ") + name;
    return names;
  }

  const std::string m_name;
  std::vector<TObject> m_objects;  // those that are open
  std::string m_key;               // of the value that comes next, in the innermost of them
  const TReader* m_next;           // of that value
  json m_object = json::object();
};

/// The readers of a captured machine's keys, as tables.
class TMachineReader {
 public:
  /// `isWhole`: the document has the machine's files and EDIDs as well.
  TMachineReader(const std::string& name, TMachineDocument& machine, bool isWhole)
      : m_machine(machine), m_walk(name, m_document) {
    if (!isWhole) return;
    m_keys[kVersionKey] = Value([](json&) {});  // looked at before
    m_keys["files"] = Names([this](const std::string& path) -> const TReader& { return BeginFile(path); });
    m_keys["edids"] = Names([this](const std::string& unit) -> const TReader& { return BeginEdid(unit); });
  }

  void Read(const std::string& text) { m_walk.Read(text); }

 private:
  static TReader Value(std::function<void(json&)> read) { return {std::move(read), nullptr, {}, {}}; }
  static TReader Object(const TTable& table, std::function<void()> close = {}) {
    return {{}, &table, {}, std::move(close)};
  }
  static TReader Names(std::function<const TReader&(const std::string&)> each) {
    return {{}, nullptr, std::move(each), {}};
  }

  TReader Text(std::string& target) {
    return Value([this, &target](json& value) { target = TakeText(value); });
  }

  /// As utc_time.h writes it.
  TReader Time(std::string& target) {
    return Value([this, &target](json& value) {
      target = TakeText(value);
      if (!IsUtcTime(target)) m_walk.Fail("must be a time in UTC, such as 2026-11-21T21:30:00Z");
    });
  }

  TReader Boolean(bool& target) {
    return Value([this, &target](json& value) {
      if (!value.is_boolean()) m_walk.Fail("must be true or false");
      target = value.get<bool>();
    });
  }

  TReader Integer(int& target) {
    return Value(
        [this, &target](json& value) { target = TakeNumber<int>(value, "must be a whole number of 32 bits"); });
  }

  /// Of the unit that is being read.
  TReader Block(std::optional<unsigned int> TVirtualBiosConfiguration::TUnit::*target) {
    return Value([this, target](json& value) {
      m_machine.bios.units[m_unit].*target = TakeNumber<unsigned int>(value, "must be a block number: 0, 1, 2, ...");
    });
  }

  /// Of the file that is being read.
  TReader Content(std::string (TMachineReader::*take)(json&) const) {
    return Value([this, take](json& value) {
      ++m_contents;
      *m_file = (this->*take)(value);
    });
  }

  const TReader& BeginUnit(const std::string& name) {
    m_unit = TakeUnit(name);
    AddUnit(m_machine.bios, m_unit, m_walk.GetPlace());
    return m_unitReader;
  }

  const TReader& BeginEdid(const std::string& name) {
    m_unit = TakeUnit(name);
    return m_edidReader;
  }

  const TReader& BeginFile(const std::string& path) {
    if (!IsPlainPath(path)) m_walk.Fail("is not a plain absolute path, such as /etc/X11/xorg.conf");
    m_file = &m_machine.files[path];
    m_contents = 0;
    return m_fileReader;
  }

  void EndFile() const {
    if (m_contents != 1) m_walk.Fail("must have either \"text\" or \"base64\"");
  }

  unsigned int TakeUnit(const std::string& name) const {
    const std::optional<unsigned int> unit = ParseUnit(name);
    if (!unit) m_walk.Fail("is not a unit number; units are named 0, 1, 2, ...");
    return *unit;
  }

  std::string TakeText(json& value) const {
    if (!value.is_string()) m_walk.Fail("must be a string");
    return std::move(value.get_ref<std::string&>());
  }

  std::string TakeBytes(json& value) const {
    std::optional<std::string> bytes;
    if (value.is_string()) bytes = DecodeBase64(value.get_ref<const std::string&>());
    if (!bytes) m_walk.Fail("must be bytes in base64, padded and without line breaks");
    return std::move(*bytes);
  }

  void TakeEdid(json& value) {
    const std::optional<std::string> bytes = DecodeBase64(TakeText(value));
    if (bytes) return AddEdid(m_machine, m_unit, *bytes, m_walk.GetPlace());
    AddDamagedEdid(m_machine, m_unit, {m_walk.GetPlace(), "is not base64, padded and without line breaks"});
  }

  template <typename T>
  T TakeNumber(const json& value, const char* otherwise) const {
    constexpr std::int64_t min = std::numeric_limits<T>::min();
    constexpr std::int64_t max = std::numeric_limits<T>::max();
    const bool fits = value.is_number_integer() &&
                      (!value.is_number_unsigned() || value.get<std::uint64_t>() <= static_cast<std::uint64_t>(max)) &&
                      value.get<std::int64_t>() >= min && value.get<std::int64_t>() <= max;
    if (!fits) m_walk.Fail(otherwise);
    return static_cast<T>(value.get<std::int64_t>());
  }

  TMachineDocument& m_machine;
  unsigned int m_unit = 0;        // that is being read
  std::string* m_file = nullptr;  // its content
  unsigned int m_contents = 0;    // that the file was given

  const TTable m_fileKeys = {{"text", Content(&TMachineReader::TakeText)},
                             {"base64", Content(&TMachineReader::TakeBytes)}};
  const TReader m_fileReader = Object(m_fileKeys, [this] { EndFile(); });

  const TReader m_edidReader = Value([this](json& value) { TakeEdid(value); });

  const TTable m_unitKeys = {
      {"connector", Value([this](json& value) { m_machine.connectors[m_unit] = TakeText(value); })},
      {"path", Value([this](json& value) { m_machine.paths[m_unit] = TakeText(value); })},
      {"failAtBlock", Block(&TVirtualBiosConfiguration::TUnit::failAtBlock)},
      {"errorAtBlock", Block(&TVirtualBiosConfiguration::TUnit::errorAtBlock)}};
  const TReader m_unitReader = Object(m_unitKeys);

  const TTable m_biosKeys = {
      {"present", Boolean(m_machine.bios.present)},
      {"memory", Boolean(m_machine.bios.memory)},
      {"ignoresUnit", Boolean(m_machine.bios.ignoresUnit)},
      {"units", Names([this](const std::string& name) -> const TReader& { return BeginUnit(name); })}};

  TTable m_keys = {{"systemName", Text(m_machine.host.systemName)},
                   {"collected", Time(m_machine.collected)},
                   {"systemCreationClassName", Text(m_machine.host.systemCreationClassName)},
                   {"systemType", Integer(m_machine.host.systemType)},
                   {"provider", Boolean(m_machine.host.provider)},
                   {"bios", Object(m_biosKeys)}};
  const TReader m_document = Object(m_keys);

  TDocumentWalk m_walk;
};

/// Looks for the version of a captured machine, no further than it must. A newer format may have keys before it that
/// the reader does not know.
class TVersionSearch : public nlohmann::json_sax<json> {
 public:
  explicit TVersionSearch(const std::string& name) : m_name(name) {}

  std::optional<json> Find(const std::string& text) {
    json::sax_parse(text, this);
    return m_version;
  }

  bool null() override { return Take(nullptr); }
  bool boolean(bool value) override { return Take(value); }
  bool number_integer(std::int64_t value) override { return Take(value); }
  bool number_unsigned(std::uint64_t value) override { return Take(value); }
  bool number_float(double value, const std::string&) override { return Take(value); }
  bool string(std::string&) override { return Take("a string"); }
  bool binary(json::binary_t&) override { return false; }
  bool start_object(std::size_t) override { return Open(); }
  bool start_array(std::size_t) override { return Open(); }
  bool end_object() override { return Close(); }
  bool end_array() override { return Close(); }
  bool key(std::string& name) override {
    m_isNext = m_depth == 1 && name == kVersionKey;
    return true;
  }
  bool parse_error(std::size_t, const std::string&, const json::exception& error) override {
    FailToParse(m_name, error);
  }

 private:
  bool Open() {
    if (++m_depth > kMaxDepth) {
      throw TUnusable(m_name + ": is more than " + std::to_string(kMaxDepth) +
                      " values deep, which no captured machine is");
    }
    return Take("an object");
  }

  bool Close() {
    --m_depth;
    return true;
  }

  bool Take(const json& value) {
    if (m_isNext) m_version = value;
    return !m_isNext;
  }

  const std::string& m_name;
  std::size_t m_depth = 0;
  bool m_isNext = false;
  std::optional<json> m_version;
};

void RequireVersion(const std::string& text, const std::string& name) {
  const std::optional<json> version = TVersionSearch(name).Find(text);
  const std::string known = std::to_string(kDocumentVersion);
  if (!version) {
    throw TUnusable(name + ": is not a captured machine: it has no \"captured\": " + known +
                    "; displayinfo capture FILE.json writes one");
  }
  if (!version->is_number()) throw TUnusable(name + ": \"captured\" must be " + known);
  if (version->is_number_integer() && *version == kDocumentVersion) return;
  throw TUnusable(name + ": \"captured\" is " + version->dump() +
                  ", a format that this command does not read; it reads " + known);
}

/// What is wrong with the size of an EDID; empty when nothing is.
std::string FindFault(std::size_t size) {
  if (size == 0) return "is empty";
  if (size > kMaxEdidSize) return "has more than " + std::to_string(kMaxEdidSize) + " bytes, the most of an EDID";
  if (size % edid::kBlockSize == 0) return std::string();
  return "has " + std::to_string(size) + " bytes, which is not a multiple of " + std::to_string(edid::kBlockSize);
}

}  // namespace

bool BeginsLikeObject(std::string_view text) {
  constexpr std::string_view blanks = " \t\r\n";
  const std::size_t brace = text.find_first_not_of(blanks);
  if (brace == std::string_view::npos || text[brace] != '{') return false;
  const std::size_t next = text.find_first_not_of(blanks, brace + 1);
  return next != std::string_view::npos && (text[next] == '"' || text[next] == '}');
}

bool IsMachineDocument(const std::string& text, const std::string& name) {
  if (!BeginsLikeObject(text)) return false;
  RequireNoZero(text, name);
  return TVersionSearch(name).Find(text).has_value();
}

void ReadMachineJson(const std::string& text, const std::string& name, TMachineDocument& machine) {
  RequireNoZero(text, name);
  TMachineReader(name, machine, false).Read(text);
}

void ReadMachineDocument(const std::string& text, const std::string& name, TMachineDocument& machine) {
  RequireNoZero(text, name);
  RequireVersion(text, name);
  TMachineReader(name, machine, true).Read(text);
}

std::optional<unsigned int> ParseUnit(std::string_view name) {
  unsigned int unit = 0;
  std::from_chars(name.data(), name.data() + name.size(), unit);
  if (name != std::to_string(unit)) return std::nullopt;
  return unit;
}

TVirtualBiosConfiguration::TUnit& AddUnit(TVirtualBiosConfiguration& bios, unsigned int unit,
                                          const std::string& place) {
  if (bios.units.size() == kMaxUnits && bios.units.count(unit) == 0) {
    throw TUnusable(place + " is one unit too many; a captured machine has " + std::to_string(kMaxUnits) + " at most");
  }
  return bios.units[unit];
}

void AddEdid(TMachineDocument& machine, unsigned int unit, const std::string& bytes, const std::string& place) {
  const std::string fault = FindFault(bytes.size());
  if (!fault.empty()) return AddDamagedEdid(machine, unit, {place, fault});
  AddUnit(machine.bios, unit, place).edid.assign(bytes.begin(), bytes.end());
}

void AddDamagedEdid(TMachineDocument& machine, unsigned int unit, const TDamagedEdid& damage) {
  AddUnit(machine.bios, unit, damage.place);
  machine.damagedEdids[unit] = damage;
}

bool IsPlainPath(std::string_view path) {
  if (path.empty() || path.front() != '/' || path.find('\0') != std::string_view::npos) return false;
  while (!path.empty()) {
    path.remove_prefix(1);
    const std::string_view name = path.substr(0, path.find('/'));
    if (name.empty() || name == "." || name == "..") return false;
    path.remove_prefix(name.size());
  }
  return true;
}
