// Defines the values, exceptions and interfaces that host/ declares and leaves to the host.
#include <cstdio>

#include "host/cim_objects.h"
#include "host/exception.h"
#include "host/logger.h"
#include "host/plugin_callbacks.h"

namespace NQRXZELT20 {

ICIMNamespace::~ICIMNamespace() = default;
ICIMClass::~ICIMClass() = default;
ICIMProperty::~ICIMProperty() = default;
ICIMInstance::~ICIMInstance() = default;
ILogger::~ILogger() = default;
IPluginCallbacks::~IPluginCallbacks() = default;
IPluginBasicQueryCallbacks::~IPluginBasicQueryCallbacks() = default;

TZELTException::TZELTException(const std::string& description) : m_description(description) {}
TZELTException::TZELTException(const TZELTException&) = default;
TZELTException::~TZELTException() = default;
const char* TZELTException::what() const noexcept { return m_description.c_str(); }

// A host is free in what a value holds. Here it is only the text, since this host prints nothing else.
struct TCIMValue::TContent {
  std::string text;
};
static std::string Join(const std::vector<TCIMValue>& elements) {
  std::string text;
  for (const TCIMValue& element : elements) text += (text.empty() ? "" : ", ") + std::string(element);
  return "{" + text + "}";
}
TCIMValue::TCIMType::TCIMType(ECIMType code) : m_code(code) {}
TCIMValue::TCIMValue() = default;
TCIMValue::TCIMValue(const std::string& value) : m_content(new TContent{value}) {}
TCIMValue::TCIMValue(const char* value) : TCIMValue(std::string(value)) {}
TCIMValue::TCIMValue(bool value) : TCIMValue(value ? "true" : "false") {}
TCIMValue::TCIMValue(unsigned char value) : TCIMValue(std::to_string(value)) {}
TCIMValue::TCIMValue(unsigned short value) : TCIMValue(std::to_string(value)) {}
TCIMValue::TCIMValue(unsigned int value) : TCIMValue(std::to_string(value)) {}
TCIMValue::TCIMValue(float value) : TCIMValue(std::to_string(value)) {}
TCIMValue::TCIMValue(TCIMReference& value) : TCIMValue(value.GetText()) {}
TCIMValue::TCIMValue(TCIMType, unsigned int, const std::vector<TCIMValue>& values) : TCIMValue(Join(values)) {}
TCIMValue::TCIMValue(const TCIMDateTime& value) : TCIMValue() {
  if (!value.IsNull()) *this = value.GetText();
}
bool TCIMValue::IsNull() const { return !m_content; }
TCIMValue::operator std::string() const { return m_content ? m_content->text : std::string(); }

TCIMReference::TCIMReference(const std::string& path) : m_path(path) {}
bool TCIMReference::operator==(const TCIMReference& other) const { return m_path == other.m_path; }
const std::string& TCIMReference::GetText() const { return m_path; }

TCIMDateTime::TCIMDateTime() = default;
bool TCIMDateTime::IsNull() const { return m_text.empty(); }
std::string TCIMDateTime::GetText() const { return m_text; }
void TCIMDateTime::Set(unsigned short year, unsigned short month, unsigned int day, unsigned short hours,
                       unsigned short minutes, unsigned short seconds, unsigned int microseconds, short utcOffset) {
  char text[64];
  std::snprintf(text, sizeof text, "%04u%02u%02u%02u%02u%02u.%06u%+04d", year, month, day, hours, minutes, seconds,
                microseconds, utcOffset);
  m_text = text;
}

}  // namespace NQRXZELT20
