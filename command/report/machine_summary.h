// What an overview of many machines shows of each: its controllers, its monitors, its problems. Short texts, and few,
// however large the machine is.
#pragma once

#include <string>
#include <vector>

#include "command/collection/collection.h"
#include "command/report/monitor_facts.h"

/// A connected monitor. Printable texts; empty where a fact is not known.
struct TMonitorSummary {
  std::string id;         // under which the plug-in reports it: "Monitor 1"; empty when it does not
  std::string notListed;  // why the plug-in does not report it; empty when it does
  std::string connector;  // that its EDID was read from
  std::string identity;   // wherever it hangs, made of its serial number; empty when it has none
  TMonitorFacts facts;
  unsigned int year = 0;  // of the manufacture or of the model; 0 when that is not known
  unsigned int week = 0;  // of the manufacture; 0 when that is not known
};

/// Printable texts, each of 200 characters at most, except the machine's name and the reason why it did not answer.
struct TMachineSummary {
  std::string machine;     // its name in the list
  std::string systemName;  // as the host presents it
  std::string collected;   // as utc_time.h writes it; empty where a capture does not say
  bool hasAnswered = true;
  std::vector<std::string> controllers;
  std::vector<TMonitorSummary> monitors;
  std::vector<std::string> problems;  // a sentence each, without a full stop
  std::string noMonitors;             // why it has none, where no problem says it
};

/// Every output is a monitor, and every monitor of the answer that stands for no output. Problems are outputs that the
/// plug-in does not report, what contradicts itself in EDIDs with wrong checksums, and monitors that only their
/// connectors tell apart. Of more than 16 controllers or problems, the last says how many were left out.
TMachineSummary Summarize(const std::string& machine, const TAnswer& answer, const TMakerNames& makers);

/// A machine that could not be asked.
TMachineSummary SummarizeFailure(const std::string& machine, const std::string& reason);
