// Collects from a captured machine made from any bytes, as a stranger may send it. It must be refused in one line, or
// answered within the budgets of log and answer, in a line of JSON that parses. libFuzzer watches time and memory.
//
// Input: the text of machine.json, a zero byte, the configuration, a zero byte, EDIDs (fuzz/input.h).
#include <nlohmann/json.hpp>

#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/machine/captured_machine.h"
#include "command/report/json_report.h"
#include "fuzz/collect.h"
#include "fuzz/input.h"
#include "fuzz/require.h"
#include "tests/support/captured_machine_builder.h"

namespace {

constexpr std::size_t kMaxLine = std::size_t{64} * 1024 * 1024 + 16;  // with the brackets that close it

void WriteMachine(const TCapturedMachineBuilder& machine, TInput& input) {
  std::filesystem::remove_all(machine.GetPath() / "edid");
  machine.Json(input.TakeText());
  machine.File("root/etc/X11/xorg.conf", input.TakeText());
  for (const auto& [unit, edid] : input.TakeEdids()) machine.Edid(unit, edid);
}

/// The ids of the monitors that the plug-in reports, and of those that the outputs say it does.
void RequireSameMonitors(const TAnswer& answer) {
  std::vector<std::string> reported;
  for (const auto& instance : answer.requests[0].instances) {
    if (instance->GetDeclaration().name != std::string(kDesktopMonitorClass)) continue;
    reported.push_back(instance->GetProperties().at("DeviceID"));
  }
  std::vector<std::string> told;
  for (const TOutput& output : answer.outputs) {
    if (output.deviceId) told.push_back(*output.deviceId);
  }
  Require(told == reported, "the outputs tell which monitors are reported");
}

/// The machine's line in the answer of a fleet.
std::string MakeLine(const TCapturedMachineBuilder& machine) try {
  const TAnswer answer = CollectHere(ReadCapturedMachine(machine.GetPath()));
  Require(answer.log.size() <= TLog::kMaxEntries + 1, "the log keeps to its budget");
  RequireSameMonitors(answer);
  return MakeMachineLine("machine", answer);
} catch (const TUnusable& failure) {
  return MakeErrorLine("machine", ToMessage(failure.what()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const TCapturedMachineBuilder machine;
  TInput input(data, size);
  WriteMachine(machine, input);
  const std::string line = MakeLine(machine);
  Require(line.size() <= kMaxLine, "the line keeps to its budget");
  Require(line.find('\n') == line.size() - 1, "it is one line");
  Require(nlohmann::json::parse(line).at("machine") == "machine", "it names the machine");
  return 0;
}
