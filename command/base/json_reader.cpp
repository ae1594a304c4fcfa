#include "command/base/json_reader.h"

#include <algorithm>
#include <limits>

#include "command/base/json.h"
#include "command/base/text_encoding.h"
#include "command/base/unusable.h"

using nlohmann::json;

namespace {

constexpr std::size_t kMaxDepth = 16;    // nested objects and arrays; the deepest document we read has nine
constexpr std::size_t kMaxShown = 100;   // characters of a key in a message
constexpr std::size_t kMaxReason = 300;  // characters of what the parser says

std::string ListNames(const TJsonRule::TMembers& members) {
  std::vector<std::string> names;
  for (const auto& [name, rule] : members) names.push_back(name);
  std::sort(names.begin(), names.end());
  return Join(names);
}

}  // namespace

/// Passes what the parser finds to the reader.
class TJsonEvents : public nlohmann::json_sax<json> {
 public:
  explicit TJsonEvents(TJsonReader& reader) : m_reader(reader) {}

  bool null() override { return m_reader.TakeValue(nullptr); }
  bool boolean(bool value) override { return m_reader.TakeValue(value); }
  bool number_integer(std::int64_t value) override { return m_reader.TakeValue(value); }
  bool number_unsigned(std::uint64_t value) override { return m_reader.TakeValue(value); }
  bool number_float(double value, const std::string&) override { return m_reader.TakeValue(value); }
  bool string(std::string& value) override { return m_reader.TakeValue(std::move(value)); }
  bool binary(json::binary_t&) override { return false; }  // never called: JSON has no binary values
  bool key(std::string& name) override { return m_reader.TakeKey(name); }
  bool start_object(std::size_t) override { return m_reader.Open(TJsonRule::kObject); }
  bool start_array(std::size_t) override { return m_reader.Open(TJsonRule::kArray); }
  bool end_object() override { return m_reader.Close(); }
  bool end_array() override { return m_reader.Close(); }

  bool parse_error(std::size_t, const std::string&, const json::exception& error) override {
    // The parser's text begins with its own error number, in brackets.
    const std::string text = error.what();
    // cppcheck-suppress missingReturn ; it throws
    m_reader.FailToParse(text.substr(std::min(text.find("] ") + 2, text.size())));
  }

 private:
  TJsonReader& m_reader;
};

std::optional<std::int64_t> GetInteger(const TJsonValue& value) {
  if (const auto* const number = std::get_if<std::int64_t>(&value)) return *number;
  const auto* const number = std::get_if<std::uint64_t>(&value);
  if (number == nullptr || *number > std::uint64_t{std::numeric_limits<std::int64_t>::max()}) return std::nullopt;
  return static_cast<std::int64_t>(*number);
}

bool IsNumber(const TJsonValue& value) {
  return std::holds_alternative<std::int64_t>(value) || std::holds_alternative<std::uint64_t>(value) ||
         std::holds_alternative<double>(value);
}

std::string ToJson(const TJsonValue& value) {
  return std::visit([](const auto& known) { return WriteJson(known); }, value);
}

TJsonRule TJsonRule::Text(std::function<void(std::string&)> take) {
  const auto takeText = [take = std::move(take)](TJsonValue& value) {
    auto* const text = std::get_if<std::string>(&value);
    if (text != nullptr) take(*text);
    return text != nullptr;
  };
  return {kPlain, "must be a string", takeText};
}

TJsonRule TJsonRule::Plain(std::function<bool(TJsonValue&)> take, const char* expected) {
  return {kPlain, expected, std::move(take)};
}

TJsonRule TJsonRule::Object(TMembers members, TStep begin, TStep end) {
  return {kObject, "must be an object", {}, std::move(members), {}, {}, std::move(begin), std::move(end)};
}

TJsonRule TJsonRule::Names(TJsonRule each, std::function<void(const std::string&)> name) {
  return {kObject, "must be an object", {}, {}, {std::move(each)}, std::move(name)};
}

TJsonRule TJsonRule::Array(TJsonRule each) { return {kArray, "must be an array", {}, {}, {std::move(each)}}; }

TJsonReader::TJsonReader(TJsonSource source, EUnexpected unexpected)
    : m_source(std::move(source)), m_unexpected(unexpected) {}

void TJsonReader::Read(const std::string& text, const TJsonRule& document) {
  // The parser would take a zero byte as the end of the text and ignore the rest.
  if (text.find('\0') != std::string::npos) throw TUnusable(m_source.name + ": is not JSON: it has a zero byte");
  m_document = &document;
  TJsonEvents events(*this);
  json::sax_parse(text, &events);
}

void TJsonReader::Fail(const std::string& what) const { throw TUnusable(GetPlace() + " " + what); }

std::string TJsonReader::GetPlace() const { return m_source.name + ": " + GetKey(); }

void TJsonReader::FailToParse(const std::string& reason) const {
  const std::string firstLine = "line 1, ";
  const std::size_t found = m_source.isLine ? reason.find(firstLine) : std::string::npos;
  const std::string shown = found == std::string::npos ? reason : std::string(reason).erase(found, firstLine.size());
  FailWithCure("is not JSON: " + ShortenForMessage(shown, kMaxReason));
}

void TJsonReader::FailWithCure(const std::string& what) const {
  throw TUnusable(m_source.name + ": " + what + (*m_source.cure == '\0' ? "" : "; ") + m_source.cure);
}

std::string TJsonReader::GetKey() const {
  std::string way;
  for (const TFrame& frame : m_frames) {
    if (!frame.isArray) way += (way.empty() ? "" : ".") + ShortenForMessage(frame.key, kMaxShown);
  }
  return m_frames.empty() ? "the document" : '"' + way + '"';
}

const TJsonRule* TJsonReader::FindMember(const TJsonRule& object, const std::string& name) const {
  if (!object.each.empty()) return &object.each.front();
  const auto member = std::find_if(object.members.begin(), object.members.end(),
                                   [&](const auto& candidate) { return candidate.first == name; });
  if (member != object.members.end()) return &member->second;
  if (m_unexpected == EUnexpected::kRefused) {
    Fail("is not a known key; known here: " + ListNames(object.members));
  }
  return nullptr;
}

bool TJsonReader::TakeKey(const std::string& name) {
  TFrame& frame = m_frames.back();
  frame.key = name;
  if (frame.rule == nullptr) return true;
  frame.next = FindMember(*frame.rule, name);
  if (frame.next != nullptr && !frame.seen.insert(name).second) Fail("appears twice");
  if (frame.rule->name) frame.rule->name(name);
  return !m_isStopped;
}

bool TJsonReader::TakeValue(TJsonValue value) {
  const TJsonRule* const rule = GetNext();
  if (rule == nullptr) return true;
  const bool isTaken = rule->take && rule->take(value);
  if (!isTaken && m_unexpected != EUnexpected::kSkipped) Fail(rule->expected);
  return !m_isStopped;
}

bool TJsonReader::Open(TJsonRule::EShape shape) {
  const TJsonRule* rule = GetNext();
  if (rule != nullptr && (rule->shapes & shape) == 0) {
    if (m_unexpected != EUnexpected::kSkipped) Fail(rule->expected);
    rule = nullptr;
  }
  if (m_frames.size() == kMaxDepth) {
    FailWithCure("is more than " + std::to_string(kMaxDepth) + " values deep, which no " + m_source.kind + " is");
  }
  if (rule != nullptr && rule->begin) rule->begin();
  const bool isArray = shape == TJsonRule::kArray;
  m_frames.push_back({rule, isArray, {}, isArray && rule != nullptr ? &rule->each.front() : nullptr, {}});
  return !m_isStopped;
}

bool TJsonReader::Close() {
  const TJsonRule* const rule = m_frames.back().rule;
  m_frames.pop_back();
  if (rule != nullptr && rule->end) rule->end();
  return !m_isStopped;
}
