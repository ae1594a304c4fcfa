// Finds what is different between two machines, or between one machine then and now.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "command/compare/machine_facts.h"

/// Moved: it came from another machine. Left: it went to another machine, which reports the move.
enum class EState { kCame, kGone, kChanged, kMoved, kLeft };

template <typename TFact>
struct TChanged {
  TFact before;
  TFact after;
};

/// A fact that changed. A missing property is null.
struct TChange {
  std::string name;
  std::variant<TChanged<TPropertyValue>, TChanged<TEdid>, TChanged<TModes>> fact;
};

template <typename TDevice>
struct TDeviceDifference {
  EState state;
  TDevice device;                // the old one if it is gone, otherwise the new one
  std::vector<TChange> changes;  // if it has changed: sorted by name
  std::string origin = {};       // if it has moved: the machine that it came from
};

typedef std::vector<TDeviceDifference<TMonitor>> TMonitorDifferences;
typedef std::vector<TDeviceDifference<TController>> TControllerDifferences;

struct TMachineDifference {
  TMonitorDifferences monitors;
  TControllerDifferences controllers;

  bool IsEmpty() const { return monitors.empty() && controllers.empty(); }
};

/// True if both were asked for monitors, or both for controllers. Otherwise no difference can be found.
bool AreComparable(const TMachineFacts& before, const TMachineFacts& after);

/// The differences of a machine that came or is gone: each monitor that it was asked for.
TMonitorDifferences ListMonitors(const TMachineFacts& machine, EState state);

/// The order of devices is no difference. A class that one of the two was not asked for is not compared.
TMachineDifference Compare(const TMachineFacts& before, const TMachineFacts& after);
