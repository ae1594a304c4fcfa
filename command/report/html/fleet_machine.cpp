#include "command/report/html/fleet_machine.h"

#include <nlohmann/json.hpp>

#include "command/base/json_writer.h"

using nlohmann::json;

namespace {

void WriteMember(TJsonWriter& line, const char* name, const std::string& text) {
  line.Key(name);
  line.String(text);
}

void WriteMember(TJsonWriter& line, const char* name, unsigned int number) {
  line.Key(name);
  line.Literal(std::to_string(number));
}

void WriteMember(TJsonWriter& line, const char* name, const std::vector<std::string>& texts) {
  line.Key(name);
  line.BeginArray();
  for (const std::string& text : texts) line.String(text);
  line.EndArray();
}

/// The model's name, else the number that its maker gave it.
std::string NameModel(const TMonitorFacts& facts) {
  if (!facts.model.empty()) return facts.model;
  return facts.productCode.empty() ? "unknown" : "product code " + facts.productCode;
}

}  // namespace

std::string WriteFleetMachine(const TMachineSummary& machine) {
  TJsonWriter line(TJsonWriter::ELayout::kOneLine);
  line.BeginObject();
  WriteMember(line, "name", machine.machine);
  WriteMember(line, "systemName", machine.systemName);
  WriteMember(line, "collected", machine.collected);
  WriteMember(line, "hasAnswered", machine.hasAnswered ? 1 : 0);
  WriteMember(line, "controllers", machine.controllers);
  WriteMember(line, "problems", machine.problems);
  line.Key("monitors");
  line.BeginArray();
  for (const TMonitorSummary& monitor : machine.monitors) {
    line.BeginObject();
    WriteMember(line, "maker", monitor.facts.GetMaker());
    WriteMember(line, "model", NameModel(monitor.facts));
    WriteMember(line, "serialNumber", monitor.facts.serialNumber);
    WriteMember(line, "identity", monitor.identity);
    WriteMember(line, "made", monitor.facts.made);
    WriteMember(line, "largestMode", monitor.facts.largestMode);
    WriteMember(line, "connector", monitor.connector);
    WriteMember(line, "isListed", monitor.notListed.empty() ? 1 : 0);
    WriteMember(line, "year", monitor.year);
    WriteMember(line, "week", monitor.week);
    line.EndObject();
  }
  line.EndArray();
  line.EndObject();
  return line.TakeText() + "\n";
}

TFleetMachine ReadFleetMachine(std::string_view line) {
  const json members = json::parse(line);
  TFleetMachine machine = {
      members["name"], members["systemName"], members["collected"], members["hasAnswered"] == 1, {}, {}, {}};
  machine.controllers = members["controllers"].get<std::vector<std::string>>();
  machine.problems = members["problems"].get<std::vector<std::string>>();
  for (const json& monitor : members["monitors"]) {
    machine.monitors.push_back({monitor["maker"], monitor["model"], monitor["serialNumber"], monitor["identity"],
                                monitor["made"], monitor["largestMode"], monitor["connector"], monitor["isListed"] == 1,
                                monitor["year"], monitor["week"]});
  }
  machine.monitors.shrink_to_fit();
  return machine;
}
