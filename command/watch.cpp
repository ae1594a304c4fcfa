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

constexpr int kMaxReadings = 20;  // gives up on a state that keeps changing

/// The state of the machine, as a line.
std::string Read(const TWatchOptions& options) {
  const TTimeLimit limit(options.timeout, "displayinfo: this machine " + DescribeTimeout(options.timeout) + "\n");
  return WithinMemory([&] {
    const TMachine machine = MakeThisMachine(EEdidSource::kDrm, EXconfigSource::kAuto);
    const TAnswer answer = Collect(machine, options.plugin, {ListAllClasses()}, [](const TLogEntry&) {});
    return MakeMachineLine(machine.host.systemName, answer, ELogPart::kLeftOut);
  });
}

/// Everything that the graphics drivers show, as a text to compare with another.
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

/// The state, read again until the graphics were the same before and after reading it: a driver that is unloaded
/// removes its outputs one by one.
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

/// Waits for a change of the graphics. False if it is time to end.
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
  TGraphicsEvents events;  // made before the first state is read, so that no later change is missed
  std::string shown;
  do {
    const std::string state = ReadSettled(options);
    if (state != shown && !WriteStandardOutput(state)) return;
    shown = state;
  } while (TSignals::Get() == 0 && WaitForChange(signals, events));
}
