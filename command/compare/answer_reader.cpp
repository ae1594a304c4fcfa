#include "command/compare/answer_reader.h"

#include <cmath>
#include <utility>

#include "command/base/base64.h"
#include "command/base/json.h"
#include "command/base/json_reader.h"
#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/machine/machine_document.h"

using nlohmann::json;
using NQRXZELT20::TCIMValue;

namespace {

/// Reads an answer by rules for its keys.
class TAnswerReader {
 public:
  /// `isLine`: `place` includes the line of the file.
  TAnswerReader(const std::string& place, bool isLine)
      : m_place(place), m_json({place, "answer", kCompareTakes, isLine}, EUnexpected::kUnknownSkipped) {}

  TReadAnswer Read(const std::string& text) {
    // A captured machine, or the inventory of one, has other keys than an answer, and is left to another reader.
    TJsonRule captured = TJsonRule::Plain([this](TJsonValue&) { return StopAtCapturedMachine(); }, "");
    captured.shapes |= TJsonRule::kObject | TJsonRule::kArray;
    captured.each = {captured};
    captured.begin = [this] { StopAtCapturedMachine(); };
    m_json.Read(text, TJsonRule::Object({{"captured", captured},
                                         {"content", captured},
                                         {"machine", Text(m_answer.machine)},
                                         {"error", Text(m_answer.error)},
                                         {"requests", MakeRequestsRule()},
                                         {"outputs", MakeOutputsRule()}}));
    if (!m_answer.isCapturedMachine && !(m_answer.error && m_answer.machine)) RequireAnswer();
    return std::move(m_answer);
  }

 private:
  static TJsonRule Text(std::optional<std::string>& target) {
    return TJsonRule::Text([&target](std::string& text) { target = std::move(text); });
  }

  TJsonRule MakeRequestsRule() {
    const TJsonRule name =
        TJsonRule::Text([this](std::string& text) { m_answer.requests.back().classes.push_back(std::move(text)); });
    const TJsonRule request =
        TJsonRule::Object({{"classes", TJsonRule::Array(name)}, {"instances", TJsonRule::Array(MakeInstanceRule())}},
                          [this] { m_answer.requests.emplace_back(); });
    TJsonRule requests = TJsonRule::Array(request);
    requests.begin = [this] { m_hasRequests = true; };
    return requests;
  }

  TJsonRule MakeInstanceRule() {
    const TJsonRule property = TJsonRule::Object(
        {{"value", MakeValueRule()}}, [this] { m_value = json(json::value_t::discarded); }, [this] { EndProperty(); });
    return TJsonRule::Object(
        {{"class", TJsonRule::Text([this](std::string& text) { m_instance.className = std::move(text); })},
         {"properties", TJsonRule::Names(property, [this](const std::string& name) { m_property = name; })}},
        [this] { m_instance = {}; }, [this] { EndInstance(); });
  }

  /// A plain value, or an array of plain values.
  TJsonRule MakeValueRule() {
    constexpr const char* expected = "must be a plain value, or an array of such";
    const auto takeInto = [this](void (TAnswerReader::*take)(json)) {
      return [this, take](TJsonValue& value) {
        std::visit([&](auto& known) { (this->*take)(std::move(known)); }, value);
        return true;
      };
    };
    TJsonRule rule = TJsonRule::Plain(takeInto(&TAnswerReader::TakeProperty), expected);
    rule.shapes |= TJsonRule::kArray;
    rule.each = {TJsonRule::Plain(takeInto(&TAnswerReader::TakeElement), expected)};
    rule.begin = [this] { m_value = json::array(); };
    return rule;
  }

  TJsonRule MakeOutputsRule() {
    const TJsonRule output = TJsonRule::Object(
        {{"deviceID",
          TJsonRule::Plain([this](TJsonValue& value) { return TakeDeviceId(value); }, "must be a string or null")},
         {"connector",
          TJsonRule::Text([this](std::string& text) { m_answer.outputs.back().connector = std::move(text); })},
         {"edid", TJsonRule::Text([this](const std::string& text) { TakeEdid(text); })}},
        [this] { m_answer.outputs.emplace_back(); });
    TJsonRule outputs = TJsonRule::Array(output);
    outputs.begin = [this] { m_hasOutputs = true; };
    return outputs;
  }

  bool StopAtCapturedMachine() {
    m_answer.isCapturedMachine = true;
    m_json.Stop();
    return true;
  }

  void RequireAnswer() const {
    for (const auto& [key, hasKey] : {std::pair("requests", m_hasRequests), std::pair("outputs", m_hasOutputs)}) {
      if (!hasKey) throw TUnusable(m_place + ": has no \"" + key + "\", so it is no answer; " + kCompareTakes);
    }
  }

  void TakeProperty(json value) { m_value = std::move(value); }
  void TakeElement(json value) { m_value.push_back(std::move(value)); }

  void EndProperty() {
    if (m_value.is_discarded()) m_json.Fail("has no \"value\"");
    m_instance.properties[m_property] = std::move(m_value);
  }

  void EndInstance() {
    if (m_instance.className.empty()) m_json.Fail("has an instance without \"class\"");
    m_answer.requests.back().instances.push_back(std::move(m_instance));
  }

  bool TakeDeviceId(TJsonValue& value) {
    auto* const text = std::get_if<std::string>(&value);
    if (text != nullptr) m_answer.outputs.back().deviceId = std::move(*text);
    return text != nullptr || std::holds_alternative<std::nullptr_t>(value);
  }

  void TakeEdid(const std::string& text) {
    const std::optional<std::string> bytes = DecodeBase64(text);
    if (!bytes || bytes->empty() || bytes->size() % edid::kBlockSize != 0 || bytes->size() > kMaxEdidSize) {
      m_json.Fail("must be whole 128-byte blocks in base64");
    }
    m_answer.outputs.back().edid.assign(bytes->begin(), bytes->end());
  }

  const std::string& m_place;
  TJsonReader m_json;
  TReadAnswer m_answer;
  bool m_hasRequests = false;
  bool m_hasOutputs = false;
  TReadInstance m_instance;  // the one that is being read
  std::string m_property;    // its property that is being read
  json m_value;              // that property's value
};

TPropertyValue TakeValue(const TCIMValue& value) {
  typedef TCIMValue::TCIMType TType;
  if (value.IsArray()) {
    TPropertyValue array = json::array();
    for (const TCIMValue& element : value.GetElements()) array.push_back(TakeValue(element));
    return array;
  }
  switch (value.GetType().GetCode()) {
    case TType::kNull:
      return nullptr;
    case TType::kBoolean:
      return value.GetBoolean();
    case TType::kUint8:
    case TType::kUint16:
    case TType::kUint32:
      return value.GetUnsigned();
    case TType::kReal32:
      // A written answer has the shortest decimal of the number; read as a double, it differs from the number itself.
      if (!std::isfinite(value.GetReal())) return nullptr;
      return ParseJson(static_cast<std::string>(value)).get<double>();
    case TType::kString:
    case TType::kDateTime:
    case TType::kReference:
      break;
  }
  return value.GetText();
}

TReadInstance TakeInstance(const TStoredInstance& stored) {
  TReadInstance instance = {stored.GetDeclaration().name, {}};
  for (const auto& [name, value] : stored.GetProperties()) instance.properties[name] = TakeValue(value);
  return instance;
}

void ReplaceBytes(TPropertyValue& value) {
  // Iterating over a plain value gives the value itself.
  for (TPropertyValue& element : value) {
    if (element.is_string()) element = ToUtf8(element.get_ref<const std::string&>());
  }
}

}  // namespace

TReadAnswer ReadAnswer(const std::string& text, const std::string& place) {
  const bool isLine = text.find('\n') == std::string::npos;
  return TAnswerReader(place, isLine).Read(text);
}

TReadAnswer TakeAnswer(const TAnswer& answer) {
  TReadAnswer taken;
  for (const TRequestAnswer& request : answer.requests) {
    taken.requests.push_back({request.classes, {}});
    for (const auto& instance : request.instances) taken.requests.back().instances.push_back(TakeInstance(*instance));
  }
  for (const TOutput& output : answer.outputs) {
    taken.outputs.push_back({output.deviceId.value_or(""), output.connector, output.edid});
  }
  return taken;
}

TReadAnswer AsWritten(TReadAnswer answer) {
  for (TReadRequest& request : answer.requests) {
    for (TReadInstance& instance : request.instances) {
      for (auto& [name, value] : instance.properties) ReplaceBytes(value);
    }
  }
  return answer;
}
