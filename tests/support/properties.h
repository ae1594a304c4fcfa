// Writes whole sets of properties as text, so that a test compares all of them at once and a difference is readable.
#pragma once

#include <map>
#include <string>

#include "embedded_host/cim_store.h"
#include "embedded_host/schema.h"
#include "host/cim_value.h"

/// Property values by name, each as its type and text: "uint8 34", "string[] OK,Failed".
typedef std::map<std::string, std::string> TDescribed;

inline std::string Describe(const NQRXZELT20::TCIMValue& value) {
  std::string text = GetTypeName(value.GetType(), value.IsArray()) + " ";
  if (!value.IsArray()) return text + static_cast<std::string>(value);
  for (const NQRXZELT20::TCIMValue& element : value.GetElements()) {
    text += (text.back() == ' ' ? "" : ",") + static_cast<std::string>(element);
  }
  return text;
}

inline TDescribed Describe(const std::map<std::string, NQRXZELT20::TCIMValue>& properties) {
  TDescribed described;
  for (const auto& [name, value] : properties) described[name] = Describe(value);
  return described;
}

inline TDescribed Describe(const TStoredInstance& instance) { return Describe(instance.GetProperties()); }
