// An instance's properties as printable text.
#pragma once

#include <string>

#include "command/base/text_encoding.h"
#include "embedded_host/cim_store.h"

class TInstanceView {
 public:
  explicit TInstanceView(const TStoredInstance& instance) : m_instance(&instance) {}

  bool Has(const std::string& name) const { return m_instance->GetProperties().count(name) != 0; }

  /// The value as people read it, an array's elements joined by commas; empty for a property that the instance lacks.
  std::string Text(const std::string& name) const {
    const auto found = m_instance->GetProperties().find(name);
    return found == m_instance->GetProperties().end() ? std::string() : ToPrintable(Join(found->second));
  }

  /// The property's unit, as the schema has it; empty for one without.
  std::string Unit(const std::string& name) const { return Declaration().Find(name)->unit; }

  /// "140 MHz"; empty for a property that the instance lacks.
  std::string TextWithUnit(const std::string& name) const {
    return Has(name) ? Text(name) + " " + Unit(name) : std::string();
  }

  /// "640 x 480", with "?" for a side that the instance lacks; empty when it lacks both.
  std::string Size(const std::string& width, const std::string& height) const {
    if (!Has(width) && !Has(height)) return std::string();
    return (Has(width) ? Text(width) : "?") + " x " + (Has(height) ? Text(height) : "?");
  }

  /// The value of an unsigned integer; 0 for a property that is missing or null.
  unsigned int Number(const std::string& name) const {
    const auto found = m_instance->GetProperties().find(name);
    const bool isThere = found != m_instance->GetProperties().end() && !found->second.IsNull();
    return isThere ? found->second.GetUnsigned() : 0;
  }

  const TClassDeclaration& Declaration() const { return m_instance->GetDeclaration(); }
  const std::string& Path() const { return m_instance->GetPathText(); }

 private:
  static std::string Join(const NQRXZELT20::TCIMValue& value) {
    if (!value.IsArray()) return value;
    std::string joined;
    for (const NQRXZELT20::TCIMValue& element : value.GetElements()) {
      joined += (joined.empty() ? "" : ", ") + static_cast<std::string>(element);
    }
    return joined;
  }

  const TStoredInstance* m_instance;  // a pointer, so that a view can be assigned
};
