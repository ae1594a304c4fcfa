// Summarizes a machine for an overview of many: its controllers, monitors and problems, in few and short texts however
// large the machine is.
#pragma once

#include <string>
#include <vector>

#include "command/collection/collection.h"
#include "command/report/monitor_facts.h"

/// A connected monitor. Printable texts; empty if a fact is unknown.
struct TMonitorSummary {
  std::string id;         // the plug-in's id: "Monitor 1"; empty if the plug-in does not report it
  std::string notListed;  // why the plug-in does not report it; empty if it does
  std::string connector;  // where its EDID was read from
  std::string identity;   // made of its serial number, the same at any connector; empty if it has none
  TMonitorFacts facts;
  unsigned int year = 0;  // of the manufacture or of the model; 0 if unknown
  unsigned int week = 0;  // of the manufacture; 0 if unknown
};

/// Printable texts of at most 200 characters, except the machine's name and the reason why it did not answer.
struct TMachineSummary {
  std::string machine;     // its name in the list
  std::string systemName;  // as the host presents it
  std::string collected;   // as utc_time.h writes it; empty if a capture does not give it
  bool hasAnswered = true;
  std::vector<std::string> controllers;
  std::vector<TMonitorSummary> monitors;
  std::vector<std::string> problems;  // a sentence each, without a full stop
  std::string noMonitors;             // why it has no monitors, if no problem says it
};

/// The monitors are all outputs, and the monitors of the answer that belong to no output. Problems are outputs that the
/// plug-in does not report, contradictions in EDIDs with wrong checksums, and monitors with equal EDIDs. With more than
/// 16 controllers or problems, the last text says how many were left out.
TMachineSummary Summarize(const std::string& machine, const TAnswer& answer, const TMakerNames& makers);

/// A machine that could not be asked.
TMachineSummary SummarizeFailure(const std::string& machine, const std::string& reason);
