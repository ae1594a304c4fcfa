// What is different between two machines, or between one machine then and now.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "command/compare/machine_facts.h"

/// Moved: it came from another machine. Left: it is gone to one, where its move is told.
enum class EState { kCame, kGone, kChanged, kMoved, kLeft };

template <typename TFact>
struct TChanged {
  TFact before;
  TFact after;
};

/// A fact that is not the same. A property is null where it is missing.
struct TChange {
  std::string name;
  std::variant<TChanged<TPropertyValue>, TChanged<TEdid>, TChanged<TModes>> fact;
};

template <typename TDevice>
struct TDeviceDifference {
  EState state;
  TDevice device;                // the old one when it is gone, else the new one
  std::vector<TChange> changes;  // of one that has changed, sorted by their names
  std::string origin = {};       // of one that has moved: the machine that it was at
};

typedef std::vector<TDeviceDifference<TMonitor>> TMonitorDifferences;
typedef std::vector<TDeviceDifference<TController>> TControllerDifferences;

struct TMachineDifference {
  TMonitorDifferences monitors;
  TControllerDifferences controllers;

  bool IsEmpty() const { return monitors.empty() && controllers.empty(); }
};

/// Whether both were asked for monitors, or both for controllers. Else no difference can be found.
bool AreComparable(const TMachineFacts& before, const TMachineFacts& after);

/// The differences of a machine that came or is gone: each monitor that it was asked for.
TMonitorDifferences ListMonitors(const TMachineFacts& machine, EState state);

/// Where devices stand in their lists is no difference. What one of the two was not asked for is not compared.
TMachineDifference Compare(const TMachineFacts& before, const TMachineFacts& after);
