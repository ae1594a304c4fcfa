#include "command/compare/answer_reader.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "command/base/base64.h"
#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/machine/machine_document.h"

using nlohmann::json;
using NQRXZELT20::TCIMValue;

namespace {

constexpr std::size_t kMaxDepth = 16;    // of values in values; an answer needs nine
constexpr std::size_t kMaxShown = 100;   // characters of a key in a message
constexpr std::size_t kMaxReason = 300;  // characters of what the parser says
constexpr const char* kCure = "; compare takes captured machines, and what --format json or --machines has written";

/// Goes through an answer as the parser does.
class TAnswerWalk : public nlohmann::json_sax<json> {
 public:
  explicit TAnswerWalk(std::string place) : m_place(std::move(place)) {}

  TReadAnswer Read(const std::string& text) {
    // The parser would take a zero byte for the end, and ignore what follows it.
    if (text.find('\0') != std::string::npos) throw TUnusable(m_place + ": is not JSON: it has a zero byte");
    m_isLine = text.find('\n') == std::string::npos;
    json::sax_parse(text, this);
    if (!m_answer.isCapturedMachine) RequireAnswer();
    return std::move(m_answer);
  }

  bool null() override { return TakeValue(nullptr); }
  bool boolean(bool value) override { return TakeValue(value); }
  bool number_integer(std::int64_t value) override { return TakeValue(value); }
  bool number_unsigned(std::uint64_t value) override { return TakeValue(value); }
  bool number_float(double value, const std::string&) override { return TakeValue(value); }
  bool string(std::string& value) override { return TakeValue(std::move(value)); }
  bool binary(json::binary_t&) override { return false; }  // not in JSON
  bool start_object(std::size_t) override { return Open(EShape::kObject); }
  bool start_array(std::size_t) override { return Open(EShape::kArray); }
  bool end_object() override { return Close(); }
  bool end_array() override { return Close(); }

  bool key(std::string& name) override {
    TFrame& frame = m_frames.back();
    frame.key = name;
    if (frame.node == nullptr) return true;
    if (!frame.seen.insert(name).second) Fail("is there twice");
    // A captured machine, or the inventory of one, has none of an answer's keys, but another reader.
    m_answer.isCapturedMachine = m_frames.size() == 1 && (name == "captured" || name == "content");
    return !m_answer.isCapturedMachine;
  }

  bool parse_error(std::size_t, const std::string&, const json::exception& error) override {
    // The parser's text begins with its own error number, in brackets.
    const std::string text = error.what();
    std::string reason = text.substr(std::min(text.find("] ") + 2, text.size()));
    const std::string firstLine = "line 1, ";
    const std::size_t found = reason.find(firstLine);
    if (m_isLine && found != std::string::npos) reason.erase(found, firstLine.size());
    throw TUnusable(m_place + ": is not JSON: " + ShortenForMessage(reason, kMaxReason) + kCure);
  }

 private:
  enum class EShape { kText, kTextOrNull, kPlain, kObject, kArray };

  /// What a value must be, and what is done with it.
  struct TNode {
    EShape shape;
    void (TAnswerWalk::*take)(json& value) = nullptr;  // of a text or a plain value
    void (TAnswerWalk::*begin)() = nullptr;            // of an object or an array
    void (TAnswerWalk::*end)() = nullptr;
    std::map<std::string, const TNode*> members = {};  // of an object; what has another key is skipped
    const TNode* each = nullptr;                       // of an array, or of an object whose keys are names
  };

  /// An object or an array that is open.
  struct TFrame {
    const TNode* node;  // null for one that is skipped
    std::string key;    // of the member that comes next
    std::set<std::string> seen;
  };

  static const TNode& GetAnswerNode() {
    static const TNode className = {EShape::kText, &TAnswerWalk::TakeClass};
    static const TNode classes = {EShape::kArray, nullptr, nullptr, nullptr, {}, &className};

    static const TNode element = {EShape::kPlain, &TAnswerWalk::TakeElement};
    static const TNode value = {EShape::kPlain, &TAnswerWalk::TakeProperty, &TAnswerWalk::BeginElements, nullptr, {},
                                &element};
    static const TNode property = {
        EShape::kObject, nullptr, &TAnswerWalk::BeginProperty, &TAnswerWalk::EndProperty, {{"value", &value}}};
    static const TNode properties = {EShape::kObject, nullptr, nullptr, nullptr, {}, &property};

    static const TNode instanceClass = {EShape::kText, &TAnswerWalk::TakeInstanceClass};
    static const TNode instance = {EShape::kObject,
                                   nullptr,
                                   &TAnswerWalk::BeginInstance,
                                   &TAnswerWalk::EndInstance,
                                   {{"class", &instanceClass}, {"properties", &properties}}};
    static const TNode instances = {EShape::kArray, nullptr, nullptr, nullptr, {}, &instance};
    static const TNode request = {EShape::kObject,
                                  nullptr,
                                  &TAnswerWalk::BeginRequest,
                                  nullptr,
                                  {{"classes", &classes}, {"instances", &instances}}};
    static const TNode requests = {EShape::kArray, nullptr, nullptr, nullptr, {}, &request};

    static const TNode deviceId = {EShape::kTextOrNull, &TAnswerWalk::TakeDeviceId};
    static const TNode connector = {EShape::kText, &TAnswerWalk::TakeConnector};
    static const TNode edid = {EShape::kText, &TAnswerWalk::TakeEdid};
    static const TNode output = {EShape::kObject,
                                 nullptr,
                                 &TAnswerWalk::BeginOutput,
                                 nullptr,
                                 {{"deviceID", &deviceId}, {"connector", &connector}, {"edid", &edid}}};
    static const TNode outputs = {EShape::kArray, nullptr, nullptr, nullptr, {}, &output};

    static const TNode machine = {EShape::kText, &TAnswerWalk::TakeMachine};
    static const TNode error = {EShape::kText, &TAnswerWalk::TakeError};
    static const TNode answer = {
        EShape::kObject,
        nullptr,
        nullptr,
        nullptr,
        {{"machine", &machine}, {"error", &error}, {"requests", &requests}, {"outputs", &outputs}}};
    return answer;
  }

  /// What the next value must be; null when it is skipped.
  const TNode* GetNext() const {
    if (m_frames.empty()) return &GetAnswerNode();
    const TFrame& frame = m_frames.back();
    if (frame.node == nullptr || frame.node->each != nullptr) return frame.node == nullptr ? nullptr : frame.node->each;
    const auto member = frame.node->members.find(frame.key);
    return member == frame.node->members.end() ? nullptr : member->second;
  }

  bool TakeValue(json value) {
    const TNode* const node = GetNext();
    if (node == nullptr) return true;
    const bool fits = node->shape == EShape::kPlain || (node->shape == EShape::kText && value.is_string()) ||
                      (node->shape == EShape::kTextOrNull && (value.is_string() || value.is_null()));
    if (!fits) FailAsShape(node->shape);
    (this->*node->take)(value);
    return true;
  }

  bool Open(EShape shape) {
    const TNode* const node = GetNext();
    if (node != nullptr && node->shape != shape) {
      const bool isArrayOfPlain = shape == EShape::kArray && node->shape == EShape::kPlain && node->each != nullptr;
      if (!isArrayOfPlain) FailAsShape(node->shape);
    }
    if (m_frames.size() == kMaxDepth) {
      throw TUnusable(m_place + ": is more than " + std::to_string(kMaxDepth) + " values deep, which no answer is" +
                      kCure);
    }
    if (node != nullptr && node->begin != nullptr) (this->*node->begin)();
    m_frames.push_back({node, {}, {}});
    return true;
  }

  bool Close() {
    const TNode* const node = m_frames.back().node;
    if (m_frames.size() == 1) m_keys = std::move(m_frames.back().seen);
    m_frames.pop_back();
    if (node != nullptr && node->end != nullptr) (this->*node->end)();
    return true;
  }

  [[noreturn]] void Fail(const std::string& what) const { throw TUnusable(m_place + ": " + GetWay() + " " + what); }

  [[noreturn]] void FailAsShape(EShape shape) const {
    switch (shape) {
      case EShape::kText:
        Fail("must be a string");
      case EShape::kTextOrNull:
        Fail("must be a string or null");
      case EShape::kPlain:
        Fail("must be a plain value, or an array of such");
      case EShape::kObject:
        Fail("must be an object");
      case EShape::kArray:
        break;
    }
    Fail("must be an array");
  }

  /// The way to the value, such as "requests.instances.properties.Gamma".
  std::string GetWay() const {
    std::string way;
    for (const TFrame& frame : m_frames) {
      if (!frame.key.empty()) way += (way.empty() ? "" : ".") + ShortenForMessage(frame.key, kMaxShown);
    }
    return way.empty() ? "the document" : '"' + way + '"';
  }

  void RequireAnswer() const {
    if (m_answer.error && m_answer.machine) return;
    for (const char* const key : {"requests", "outputs"}) {
      if (m_keys.count(key) == 0) throw TUnusable(m_place + ": has no \"" + key + "\", so it is no answer" + kCure);
    }
  }

  void TakeMachine(json& value) { m_answer.machine = value.get<std::string>(); }
  void TakeError(json& value) { m_answer.error = value.get<std::string>(); }

  void BeginRequest() { m_answer.requests.emplace_back(); }
  void TakeClass(json& value) { m_answer.requests.back().classes.push_back(value.get<std::string>()); }

  void BeginInstance() { m_instance = TReadInstance(); }
  void TakeInstanceClass(json& value) { m_instance.className = value.get<std::string>(); }
  void EndInstance() {
    if (m_instance.className.empty()) Fail("has an instance without \"class\"");
    m_answer.requests.back().instances.push_back(std::move(m_instance));
  }

  void BeginProperty() {
    m_property = m_frames.back().key;
    m_value = json(json::value_t::discarded);
  }
  void TakeProperty(json& value) { m_value = std::move(value); }
  void BeginElements() { m_value = json::array(); }
  void TakeElement(json& value) { m_value.push_back(std::move(value)); }
  void EndProperty() {
    if (m_value.is_discarded()) Fail("has no \"value\"");
    m_instance.properties[m_property] = std::move(m_value);
  }

  void BeginOutput() { m_answer.outputs.emplace_back(); }
  void TakeDeviceId(json& value) {
    if (value.is_string()) m_answer.outputs.back().deviceId = value.get<std::string>();
  }
  void TakeConnector(json& value) { m_answer.outputs.back().connector = value.get<std::string>(); }
  void TakeEdid(json& value) {
    const std::optional<std::string> bytes = DecodeBase64(value.get_ref<const std::string&>());
    if (!bytes || bytes->empty() || bytes->size() % edid::kBlockSize != 0 || bytes->size() > kMaxEdidSize) {
      Fail("must be whole 128-byte blocks in base64");
    }
    m_answer.outputs.back().edid.assign(bytes->begin(), bytes->end());
  }

  const std::string m_place;
  bool m_isLine = false;  // of a file: the place says which
  std::vector<TFrame> m_frames;
  std::set<std::string> m_keys;  // of the document, once it is read
  TReadAnswer m_answer;
  TReadInstance m_instance;  // that is being read
  std::string m_property;    // of it
  json m_value;              // of that
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
      // An answer has the shortest decimal of the number, which is not the same number with the bits of a double.
      if (!std::isfinite(value.GetReal())) return nullptr;
      return json::parse(static_cast<std::string>(value)).get<double>();
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
  // A plain value is its own only element.
  for (TPropertyValue& element : value) {
    if (element.is_string()) element = ToUtf8(element.get_ref<const std::string&>());
  }
}

}  // namespace

TReadAnswer ReadAnswer(const std::string& text, const std::string& place) { return TAnswerWalk(place).Read(text); }

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
