#include "command/report/html/fleet_machine.h"

#include "command/base/json.h"
#include "command/base/json_writer.h"

namespace {

/// The model's name, or else the number that its maker gave it.
std::string NameModel(const TMonitorFacts& facts) {
  if (!facts.model.empty()) return facts.model;
  return facts.productCode.empty() ? "unknown" : "product code " + facts.productCode;
}

}  // namespace

std::string WriteFleetMachine(const TMachineSummary& machine) {
  TJsonWriter line(TJsonWriter::ELayout::kOneLine);
  line.BeginObject();
  line.Member("name", machine.machine);
  line.Member("systemName", machine.systemName);
  line.Member("collected", machine.collected);
  line.Member("hasAnswered", machine.hasAnswered ? 1 : 0);
  line.Member("controllers", machine.controllers);
  line.Member("problems", machine.problems);
  line.Key("monitors");
  line.BeginArray();
  for (const TMonitorSummary& monitor : machine.monitors) {
    line.BeginObject();
    line.Member("maker", monitor.facts.GetMaker());
    line.Member("model", NameModel(monitor.facts));
    line.Member("serialNumber", monitor.facts.serialNumber);
    line.Member("identity", monitor.identity);
    line.Member("made", monitor.facts.made);
    line.Member("largestMode", monitor.facts.largestMode);
    line.Member("connector", monitor.connector);
    line.Member("isListed", monitor.notListed.empty() ? 1 : 0);
    line.Member("year", monitor.year);
    line.Member("week", monitor.week);
    line.EndObject();
  }
  line.EndArray();
  line.EndObject();
  return line.TakeText() + "\n";
}

TFleetMachine ReadFleetMachine(std::string_view line) {
  const nlohmann::json members = ParseJson(line);
  TFleetMachine machine = {
      members["name"], members["systemName"], members["collected"], members["hasAnswered"] == 1, {}, {}, {}};
  machine.controllers = members["controllers"].get<std::vector<std::string>>();
  machine.problems = members["problems"].get<std::vector<std::string>>();
  for (const nlohmann::json& monitor : members["monitors"]) {
    machine.monitors.push_back({monitor["maker"], monitor["model"], monitor["serialNumber"], monitor["identity"],
                                monitor["made"], monitor["largestMode"], monitor["connector"], monitor["isListed"] == 1,
                                monitor["year"], monitor["week"]});
  }
  machine.monitors.shrink_to_fit();
  return machine;
}
