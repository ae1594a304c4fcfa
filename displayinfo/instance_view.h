// An instance's properties as printable text.
#pragma once

#include <string>

#include "displayinfo/text_encoding.h"
#include "embedded_host/cim_store.h"

class TInstanceView {
 public:
  explicit TInstanceView(const TStoredInstance& instance) : m_instance(instance) {}

  bool Has(const std::string& name) const { return m_instance.GetProperties().count(name) != 0; }

  /// The value as people read it, an array's elements joined by commas; empty for a property that is not there.
  std::string Text(const std::string& name) const {
    const auto found = m_instance.GetProperties().find(name);
    return found == m_instance.GetProperties().end() ? std::string() : ToPrintable(Join(found->second));
  }

  std::string Class() const { return m_instance.GetDeclaration().name; }
  std::string Path() const { return m_instance.GetPathText(); }

 private:
  static std::string Join(const NQRXZELT20::TCIMValue& value) {
    if (!value.IsArray()) return value;
    std::string joined;
    for (const NQRXZELT20::TCIMValue& element : value.GetElements()) {
      joined += (joined.empty() ? "" : ", ") + static_cast<std::string>(element);
    }
    return joined;
  }

  const TStoredInstance& m_instance;
};
