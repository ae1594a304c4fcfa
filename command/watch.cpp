#include "command/watch.h"

#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include "command/base/privileges.h"
#include "command/base/signals.h"
#include "command/base/standard_output.h"
#include "command/collection/budgets.h"
#include "command/collection/collection.h"
#include "command/machine/drm_cards.h"
#include "command/machine/graphics_events.h"
#include "command/machine/this_machine.h"
#include "command/report/json_report.h"
#include "embedded_host/schema.h"

namespace {

constexpr int kMaxReadings = 20;  // for a state that never settles

/// The state of the machine: a line.
std::string Read(const TWatchOptions& options) {
  const TTimeLimit limit(options.timeout, "displayinfo: this machine " + DescribeTimeout(options.timeout) + "\n");
  return WithinMemory([&] {
    const TMachine machine = MakeThisMachine(EEdidSource::kDrm, EXconfigSource::kAuto);
    const TAnswer answer = Collect(machine, options.plugin, {ListAllClasses()}, [](const TLogEntry&) {});
    return MakeMachineLine(machine.host.systemName, answer, ELogPart::kLeftOut);
  });
}

/// All that the graphics drivers show: two texts are equal when that is.
std::string ReadGraphics() {
  std::string text;
  for (const TDrmCard& card : ReadDrmCards({})) {
    text += card.name + card.address + std::to_string(static_cast<int>(card.power)) + '\n';
    for (const TDrmOutput& output : card.outputs) {
      text += output.connector + output.edidFault + std::string(output.edid.begin(), output.edid.end()) + '\n';
    }
  }
  return text;
}

/// The state once the graphics are the same before and after it was read: a driver that goes takes its outputs away one
/// by one.
std::string ReadSettled(const TWatchOptions& options) {
  std::string state;
  std::string before = ReadGraphics();
  for (int reading = 0; reading < kMaxReadings; ++reading) {
    state = Read(options);
    std::string after = ReadGraphics();
    if (after == before) break;
    before = std::move(after);
  }
  return state;
}

/// False when it is time to end.
bool WaitForChange(const TSignals& signals, TGraphicsEvents& events) {
  for (;;) {
    std::vector<pollfd> descriptors = {{events.GetDescriptor(), POLLIN, 0}, {STDOUT_FILENO, 0, 0}};
    signals.Wait(descriptors, std::nullopt);
    if (TSignals::Get() != 0 || descriptors[1].revents != 0) return false;
    if (descriptors[0].revents != 0 && events.Take()) return true;
  }
}

}  // namespace

void Watch(const TWatchOptions& options) {
  DropPrivileges(false);
  const TSignals signals;
  TGraphicsEvents events;  // before the first state is read: no change after that is missed
  std::string shown;
  do {
    const std::string state = ReadSettled(options);
    if (state != shown && !WriteStandardOutput(state)) return;
    shown = state;
  } while (TSignals::Get() == 0 && WaitForChange(signals, events));
}
