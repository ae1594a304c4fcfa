// What is different between two machines, or between one machine then and now.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "command/compare/machine_facts.h"

enum class EState { kCame, kGone, kChanged };

/// A fact that is not the same: its values as JSON text, nothing where it is missing.
struct TChange {
  std::string name;
  std::optional<std::string> before;
  std::optional<std::string> after;
};

struct TDeviceDifference {
  EState state;
  TFacts description;            // of the old one when it is gone, else of the new one
  std::vector<TChange> changes;  // of one that has changed
};

struct TMachineDifference {
  std::vector<TDeviceDifference> monitors;
  std::vector<TDeviceDifference> controllers;

  bool IsEmpty() const { return monitors.empty() && controllers.empty(); }
};

/// Whether both were asked for monitors, or both for controllers. Else no difference can be found.
bool AreComparable(const TMachineFacts& before, const TMachineFacts& after);

/// Where devices stand in their lists is no difference. What one of the two was not asked for is not compared.
TMachineDifference Compare(const TMachineFacts& before, const TMachineFacts& after);
