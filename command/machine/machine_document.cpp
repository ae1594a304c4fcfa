#include "command/machine/machine_document.h"

#include <charconv>
#include <limits>
#include <optional>
#include <utility>

#include "command/base/base64.h"
#include "command/base/json_reader.h"
#include "command/base/unusable.h"
#include "command/base/utc_time.h"

namespace {

constexpr const char* kKind = "captured machine";
constexpr const char* kVersionKey = "captured";

/// Reads a captured machine by rules for its keys.
class TMachineReader {
 public:
  TMachineReader(const std::string& name, TMachineDocument& machine)
      : m_machine(machine), m_json({name, kKind}, EUnexpected::kRefused) {}

  void ReadMachineJson(const std::string& text) { m_json.Read(text, TJsonRule::Object(ListKeys())); }

  /// Reads a machine in one file, with its files and EDIDs.
  void ReadDocument(const std::string& text) {
    TJsonRule::TMembers keys = ListKeys();
    keys.emplace_back(kVersionKey, TJsonRule::Plain([](TJsonValue&) { return true; }, ""));  // already checked
    keys.emplace_back("files", TJsonRule::Names(MakeFileRule(), [this](const std::string& path) { BeginFile(path); }));
    keys.emplace_back("edids", TJsonRule::Names(TJsonRule::Text([this](const std::string& edid) { TakeEdid(edid); }),
                                                [this](const std::string& name) { m_unit = TakeUnit(name); }));
    m_json.Read(text, TJsonRule::Object(std::move(keys)));
  }

 private:
  TJsonRule::TMembers ListKeys() {
    return {{"systemName", Text(m_machine.host.systemName)},
            {"collected", TJsonRule::Text([this](std::string& text) { TakeTime(text); })},
            {"systemCreationClassName", Text(m_machine.host.systemCreationClassName)},
            {"systemType", MakeNumberRule<int>([this](int number) { m_machine.host.systemType = number; },
                                               "must be a whole number of 32 bits")},
            {"provider", Boolean(m_machine.host.provider)},
            {"bios", TJsonRule::Object({{"present", Boolean(m_machine.bios.present)},
                                        {"memory", Boolean(m_machine.bios.memory)},
                                        {"ignoresUnit", Boolean(m_machine.bios.ignoresUnit)},
                                        {"units", TJsonRule::Names(MakeUnitRule(), [this](const std::string& name) {
                                           BeginUnit(name);
                                         })}})}};
  }

  TJsonRule MakeUnitRule() {
    typedef TVirtualBiosConfiguration::TUnit TUnit;
    return TJsonRule::Object(
        {{"connector", TJsonRule::Text([this](std::string& text) { m_machine.connectors[m_unit] = std::move(text); })},
         {"path", TJsonRule::Text([this](std::string& text) { m_machine.paths[m_unit] = std::move(text); })},
         {"failAtBlock", Block(&TUnit::failAtBlock)},
         {"errorAtBlock", Block(&TUnit::errorAtBlock)}});
  }

  TJsonRule MakeFileRule() {
    return TJsonRule::Object({{"text", TJsonRule::Text([this](std::string& text) { TakeContent(std::move(text)); })},
                              {"base64", TJsonRule::Plain([this](TJsonValue& value) { return TakeBytes(value); },
                                                          "must be bytes in base64, padded and without line breaks")}},
                             {}, [this] { EndFile(); });
  }

  static TJsonRule Text(std::string& target) {
    return TJsonRule::Text([&target](std::string& text) { target = std::move(text); });
  }

  static TJsonRule Boolean(bool& target) {
    const auto take = [&target](TJsonValue& value) {
      const bool* const boolean = std::get_if<bool>(&value);
      if (boolean != nullptr) target = *boolean;
      return boolean != nullptr;
    };
    return TJsonRule::Plain(take, "must be true or false");
  }

  template <typename TWhole, typename TTake>
  static TJsonRule MakeNumberRule(const TTake& take, const char* expected) {
    const auto takeFitting = [take](TJsonValue& value) {
      const std::optional<std::int64_t> number = GetInteger(value);
      const bool fits = number && *number >= std::int64_t{std::numeric_limits<TWhole>::min()} &&
                        *number <= std::int64_t{std::numeric_limits<TWhole>::max()};
      if (fits) take(static_cast<TWhole>(*number));
      return fits;
    };
    return TJsonRule::Plain(takeFitting, expected);
  }

  /// A block number for the unit that is being read.
  TJsonRule Block(std::optional<unsigned int> TVirtualBiosConfiguration::TUnit::*target) {
    const auto take = [this, target](unsigned int block) { m_machine.bios.units[m_unit].*target = block; };
    return MakeNumberRule<unsigned int>(take, "must be a block number: 0, 1, 2, ...");
  }

  void TakeTime(const std::string& text) {
    if (!IsUtcTime(text)) m_json.Fail("must be a time in UTC, such as 2026-11-21T21:30:00Z");
    m_machine.collected = text;
  }

  void BeginUnit(const std::string& name) {
    m_unit = TakeUnit(name);
    AddUnit(m_machine.bios, m_unit, m_json.GetPlace());
  }

  unsigned int TakeUnit(const std::string& name) const {
    const std::optional<unsigned int> unit = ParseUnit(name);
    if (!unit) m_json.Fail("is not a unit number; units are named 0, 1, 2, ...");
    return *unit;
  }

  void TakeEdid(const std::string& text) {
    const std::optional<std::string> bytes = DecodeBase64(text);
    if (bytes) return AddEdid(m_machine, m_unit, *bytes, m_json.GetPlace());
    AddDamagedEdid(m_machine, m_unit, {m_json.GetPlace(), "is not base64, padded and without line breaks"});
  }

  void BeginFile(const std::string& path) {
    if (!IsPlainPath(path)) m_json.Fail("is not a plain absolute path, such as /etc/X11/xorg.conf");
    m_file = &m_machine.files[path];
    m_contents = 0;
  }

  bool TakeBytes(const TJsonValue& value) {
    const auto* const text = std::get_if<std::string>(&value);
    std::optional<std::string> bytes = text == nullptr ? std::nullopt : DecodeBase64(*text);
    if (bytes) TakeContent(std::move(*bytes));
    return bytes.has_value();
  }

  void TakeContent(std::string content) {
    ++m_contents;
    *m_file = std::move(content);
  }

  void EndFile() const {
    if (m_contents != 1) m_json.Fail("must have either \"text\" or \"base64\"");
  }

  TMachineDocument& m_machine;
  TJsonReader m_json;
  unsigned int m_unit = 0;        // the one that is being read
  std::string* m_file = nullptr;  // the content of the file that is being read
  unsigned int m_contents = 0;    // how many contents that file was given
};

/// Looks for the version of a captured machine, and reads no further, since a newer format may have keys that this
/// command does not know. Null stands for a version that is an object or an array.
std::optional<TJsonValue> FindVersion(const std::string& text, const std::string& name) {
  TJsonReader reader({name, kKind}, EUnexpected::kSkipped);
  std::optional<TJsonValue> version;
  const auto take = [&](const TJsonValue& value) {
    version = value;
    reader.Stop();
    return true;
  };
  TJsonRule any = TJsonRule::Plain(take, "");
  any.shapes |= TJsonRule::kObject | TJsonRule::kArray;
  any.each = {any};
  any.begin = [&] { take(nullptr); };
  reader.Read(text, TJsonRule::Object({{kVersionKey, any}}));
  return version;
}

void RequireVersion(const std::string& text, const std::string& name) {
  const std::optional<TJsonValue> version = FindVersion(text, name);
  const std::string known = std::to_string(kDocumentVersion);
  if (!version) {
    throw TUnusable(name + ": is not a captured machine: it has no \"captured\": " + known +
                    "; displayinfo capture FILE.json writes one");
  }
  if (GetInteger(*version) == kDocumentVersion) return;
  if (!IsNumber(*version)) throw TUnusable(name + ": \"captured\" must be " + known);
  throw TUnusable(name + ": \"captured\" is " + ToJson(*version) +
                  ", a format that this command does not read; it reads " + known);
}

/// What is wrong with the size of an EDID; empty if nothing is.
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
  return BeginsLikeObject(text) && FindVersion(text, name).has_value();
}

void ReadMachineJson(const std::string& text, const std::string& name, TMachineDocument& machine) {
  TMachineReader(name, machine).ReadMachineJson(text);
}

void ReadMachineDocument(const std::string& text, const std::string& name, TMachineDocument& machine) {
  RequireVersion(text, name);
  TMachineReader(name, machine).ReadDocument(text);
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
