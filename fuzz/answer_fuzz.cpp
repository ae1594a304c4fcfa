// Compares two answers made from any text. Each must be read, or refused with one short line that names the file. An
// answer must not differ from itself, and what came from one to the other must be gone in the opposite direction.
//
// Input: the text of the older answer, ended by a zero byte, and that of the newer.
#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>

#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/compare/answer_reader.h"
#include "command/compare/difference_report.h"
#include "fuzz/input.h"
#include "fuzz/require.h"

using nlohmann::json;

namespace {

const std::string kName = "ws-17.json";

void RequireMessage(const std::string& message) {
  Require(message.find(kName + ": ") == 0, "a message begins with the file");
  Require(message.size() > kName.size() + 2, "a message says what is wrong");
  Require(message.size() < 5000, "a message is short");
  Require(message == ToPrintable(message), "a message is one line that a terminal may show");
}

/// The answer; nothing if the text is refused or is a captured machine.
std::optional<TMachineFacts> Read(const std::string& text) try {
  const TReadAnswer answer = ReadAnswer(text, kName);
  if (answer.isCapturedMachine) return std::nullopt;
  Require(json::accept(text), "what is read is JSON");
  return MakeFacts(answer);
} catch (const TUnusable& failure) {
  RequireMessage(failure.what());
  return std::nullopt;
}

void RequireEqualToItself(const TMachineFacts& facts) {
  Require(Compare(facts, facts).IsEmpty(), "an answer does not differ from itself");
  const std::string packed = Pack(facts);
  const TMachineFacts unpacked = Unpack(packed);
  Require(Pack(unpacked) == packed, "facts stay what they are when they are packed");
  Require(Compare(facts, unpacked).IsEmpty(), "facts that were packed are the same");
}

template <typename TReport>
std::string MakeReport(const TMachineReport& machine) {
  TReport report;
  TMachineCounts counts = {};
  ++counts[static_cast<std::size_t>(machine.state)];
  const std::string begin = report.Begin();
  const std::string text = begin + report.Add(machine);
  return text + report.End(counts, {});
}

void RequireReports(const TMachineDifference& difference) {
  const TMachineReport machine = {"ws-17", EMachineState::kChanged, difference};
  const json report = json::parse(MakeReport<TJsonDifferenceReport>(machine)).at("machines").at(0);
  Require(report.at("monitors").size() == difference.monitors.size(), "the JSON has each monitor");
  Require(report.at("controllers").size() == difference.controllers.size(), "the JSON has each controller");
  std::string text = MakeReport<TTextDifferenceReport>(machine);
  text.erase(std::remove(text.begin(), text.end(), '\n'), text.end());
  Require(text == ToPrintable(text), "a terminal may show the text");
}

template <typename TDifferences>
std::ptrdiff_t Count(const TDifferences& devices, EState state) {
  return std::count_if(devices.begin(), devices.end(), [&](const auto& device) { return device.state == state; });
}

template <typename TDifferences>
void RequireOpposite(const TDifferences& there, const TDifferences& back) {
  Require(Count(there, EState::kCame) == Count(back, EState::kGone), "what came is gone on the way back");
  Require(Count(there, EState::kGone) == Count(back, EState::kCame), "what is gone came on the way back");
  Require(Count(there, EState::kChanged) == Count(back, EState::kChanged), "what changed changed on the way back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  TInput input(data, size);
  const std::optional<TMachineFacts> before = Read(input.TakeText());
  const std::optional<TMachineFacts> after = Read(input.TakeRest());
  if (before) RequireEqualToItself(*before);
  if (!before || !after) return 0;
  const TMachineDifference there = Compare(*before, *after);
  const TMachineDifference back = Compare(*after, *before);
  RequireOpposite(there.monitors, back.monitors);
  RequireOpposite(there.controllers, back.controllers);
  RequireReports(there);
  RequireReports(back);
  return 0;
}
