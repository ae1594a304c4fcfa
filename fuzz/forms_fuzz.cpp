// Reads any bytes as a file of another program. It must be a machine with at most as many units as one can have, each
// with whole blocks, or be refused with one line that names the file.
//
// Input: the content of the file.
#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/machine/forms/forms.h"
#include "edid/layout.h"
#include "fuzz/input.h"
#include "fuzz/require.h"

namespace {

constexpr const char* kFile = "card0-DP-1/edid";

void RequireMachine(const TMachineDocument& machine) {
  Require(machine.bios.units.size() <= kMaxUnits, "a machine has 256 units at most");
  unsigned int next = 0;
  for (const auto& [number, unit] : machine.bios.units) {
    Require(number == next++, "the units are 0, 1, 2, ...");
    Require(unit.edid.size() % edid::kBlockSize == 0, "an EDID has whole blocks");
    Require(unit.edid.size() <= kMaxEdidSize, "an EDID has 256 blocks at most");
    Require(unit.edid.empty() || machine.damagedEdids.count(number) == 0, "a damaged EDID is not used");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  TMachineDocument machine;
  try {
    ReadForm(TInput(data, size).TakeRest(), kFile, machine);
    RequireMachine(machine);
  } catch (const TUnusable& failure) {
    const std::string message = failure.what();
    Require(message.find(kFile) == 0, "a message begins with the file");
    Require(message.find('\n') == std::string::npos, "a message is one line");
  }
  return 0;
}
