#include "host/cim_value.h"

#include <boost/make_shared.hpp>

#include <charconv>
#include <cstdio>
#include <utility>
#include <variant>

#include "host/exception.h"

namespace NQRXZELT20 {

namespace {

typedef TCIMValue::TCIMType TType;

std::string GetShortestDecimal(float value) {
  char text[32];
  const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
  return std::string(text, end.ptr);
}

}  // namespace

TCIMDateTime::TCIMDateTime() = default;

bool TCIMDateTime::IsNull() const { return m_text.empty(); }

void TCIMDateTime::Set(unsigned short year, unsigned short month, unsigned int day, unsigned short hours,
                       unsigned short minutes, unsigned short seconds, unsigned int microseconds,
                       short utcOffsetMinutes) {
  char text[64];
  std::snprintf(text, sizeof text, "%04u%02u%02u%02u%02u%02u.%06u%c%03d", year, month, day, hours, minutes, seconds,
                microseconds, utcOffsetMinutes < 0 ? '-' : '+',
                utcOffsetMinutes < 0 ? -utcOffsetMinutes : utcOffsetMinutes);
  m_text = text;
}

std::string TCIMDateTime::GetText() const { return m_text; }

TCIMReference::TCIMReference(const std::string& path) : m_path(path) {}

bool TCIMReference::operator==(const TCIMReference& other) const { return m_path == other.m_path; }

const std::string& TCIMReference::GetText() const { return m_path; }

TCIMValue::TCIMType::TCIMType(ECIMType code) : m_code(code) {}

TCIMValue::TCIMType::ECIMType TCIMValue::TCIMType::GetCode() const { return m_code; }

struct TCIMValue::TContent {
  template <typename TData>
  TContent(TType contentType, TData&& content) : type(contentType), data(std::forward<TData>(content)) {}

  /// Puts the content and the count of its owners into one block of memory, since an answer has thousands of values.
  template <typename TData>
  static boost::shared_ptr<const TContent> Make(TType type, TData&& data) {
    return boost::make_shared<const TContent>(type, std::forward<TData>(data));
  }

  TType type;
  // A string, a datetime and a reference are all kept as their text.
  std::variant<bool, unsigned int, float, std::string, std::vector<TCIMValue>> data;
};

TCIMValue::TCIMValue() = default;
TCIMValue::TCIMValue(bool value) : m_content(TContent::Make(TType::kBoolean, value)) {}
TCIMValue::TCIMValue(unsigned char value)
    : m_content(TContent::Make(TType::kUint8, static_cast<unsigned int>(value))) {}
TCIMValue::TCIMValue(unsigned short value)
    : m_content(TContent::Make(TType::kUint16, static_cast<unsigned int>(value))) {}
TCIMValue::TCIMValue(unsigned int value) : m_content(TContent::Make(TType::kUint32, value)) {}
TCIMValue::TCIMValue(float value) : m_content(TContent::Make(TType::kReal32, value)) {}
TCIMValue::TCIMValue(const char* value) : m_content(TContent::Make(TType::kString, std::string(value))) {}
TCIMValue::TCIMValue(const std::string& value) : m_content(TContent::Make(TType::kString, value)) {}
TCIMValue::TCIMValue(const TCIMDateTime& value)
    : m_content(value.IsNull() ? nullptr : TContent::Make(TType::kDateTime, value.GetText())) {}
TCIMValue::TCIMValue(TCIMReference& value) : m_content(TContent::Make(TType::kReference, value.GetText())) {}

TCIMValue::TCIMValue(TCIMType type, unsigned int count, const std::vector<TCIMValue>& elements)
    : m_content(TContent::Make(type, elements)) {
  if (count != elements.size()) throw TZELTException("an array value's count is not the number of its elements");
  for (const TCIMValue& element : elements) {
    if (element.IsArray() || element.GetType().GetCode() != type.GetCode()) {
      throw TZELTException("an array value's element is not of the array's type");
    }
  }
}

bool TCIMValue::IsNull() const { return m_content == nullptr; }

TCIMValue::operator std::string() const {
  // A string comes first, since associations ask for such texts thousands of times.
  const std::string* const text = IsNull() ? nullptr : std::get_if<std::string>(&m_content->data);
  if (text != nullptr) return *text;
  switch (IsArray() ? TType::kNull : GetType().GetCode()) {
    case TType::kBoolean:
      return GetBoolean() ? "true" : "false";
    case TType::kUint8:
    case TType::kUint16:
    case TType::kUint32:
      return std::to_string(GetUnsigned());
    case TType::kReal32:
      return GetShortestDecimal(GetReal());
    default:
      return std::string();
  }
}

TCIMValue::TCIMType TCIMValue::GetType() const { return IsNull() ? TType::kNull : m_content->type; }

bool TCIMValue::IsArray() const { return !IsNull() && std::holds_alternative<std::vector<TCIMValue>>(m_content->data); }

namespace {

template <typename T, typename TContentPointer>
const T& GetContent(const TContentPointer& content, const char* kind) {
  const T* data = content == nullptr ? nullptr : std::get_if<T>(&content->data);
  if (data == nullptr) throw TZELTException(std::string("the value is not ") + kind);
  return *data;
}

}  // namespace

bool TCIMValue::GetBoolean() const { return GetContent<bool>(m_content, "a boolean"); }
unsigned int TCIMValue::GetUnsigned() const { return GetContent<unsigned int>(m_content, "an unsigned integer"); }
float TCIMValue::GetReal() const { return GetContent<float>(m_content, "a real number"); }
const std::string& TCIMValue::GetText() const { return GetContent<std::string>(m_content, "a text"); }
const std::vector<TCIMValue>& TCIMValue::GetElements() const {
  return GetContent<std::vector<TCIMValue>>(m_content, "an array");
}

}  // namespace NQRXZELT20
