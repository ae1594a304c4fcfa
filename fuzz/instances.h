// Rules for the instances that a request committed.
#pragma once

#include <boost/shared_ptr.hpp>

#include <algorithm>
#include <string>
#include <vector>

#include "embedded_host/cim_store.h"
#include "fuzz/require.h"

typedef std::vector<boost::shared_ptr<TStoredInstance>> TInstances;

/// The property's text in each of them; empty if it is not set.
inline std::vector<std::string> GetTexts(const TInstances& instances, const std::string& property) {
  std::vector<std::string> texts;
  for (const auto& instance : instances) {
    const auto found = instance->GetProperties().find(property);
    texts.push_back(found == instance->GetProperties().end() ? std::string() : static_cast<std::string>(found->second));
  }
  return texts;
}

inline void RequireValues(const TInstances& instances) {
  for (const auto& instance : instances) {
    for (const auto& [name, value] : instance->GetProperties()) Require(!value.IsNull(), "no property is null");
  }
}

/// Requires that each reference names one of `targets`.
inline void RequireReferences(const TInstances& instances, const std::string& property, const TInstances& targets) {
  for (const std::string& path : GetTexts(instances, property)) {
    Require(
        std::any_of(targets.begin(), targets.end(), [&](const auto& target) { return target->GetPathText() == path; }),
        "references name what was committed");
  }
}
