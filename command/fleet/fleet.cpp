#include "command/fleet/fleet.h"

#include <poll.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <iostream>
#include <memory>
#include <utility>

#include "command/base/signals.h"
#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/collection/budgets.h"
#include "command/collection/plugin_library.h"
#include "command/collection/worker.h"
#include "command/fleet/ordered_lines.h"
#include "command/fleet/progress_bar.h"
#include "command/machine/captured_machine.h"

namespace {

constexpr std::size_t kMaxWaiting = 1;  // the most machines that wait at a busy worker

typedef std::chrono::steady_clock TClock;

// The longest step in which time counts against a machine, so that no machine is blamed if the run itself is stopped,
// for example by Ctrl-Z.
constexpr std::chrono::nanoseconds kMaxStep = std::chrono::seconds(1);

constexpr long kFreshMemory = 256L * 1024;  // KiB: a worker that has used more does not serve another machine

/// Collects as for a single machine, with a freshly loaded plug-in.
std::string MakeLine(const std::string& machine, const TFleet& fleet) {
  const auto showLog = [&](const TLogEntry& entry) {
    if (!fleet.logLevel || entry.severity > *fleet.logLevel) return;
    ShowAboveProgress(ToPrintable(machine + ": " + GetSeverityName(entry.severity) + ": " + entry.message));
  };
  if (machine.size() == TMachineList::kMaxName) {
    throw TUnusable("its name is longer than any that the system takes; this is its beginning");
  }
  const TAnswer answer = Collect(ReadCapturedMachine(machine), fleet.plugin, fleet.requests, showLog);
  for (const std::string& note : answer.notes) ShowAboveProgress("displayinfo: " + ToMessage(note));
  return fleet.answer.makeLines(machine, answer);
}

long GetPeakMemory() {
  rusage usage = {};
  return getrusage(RUSAGE_SELF, &usage) == 0 ? usage.ru_maxrss : 0;
}

/// True if the machines so far have used much memory, so that the rest may be fragmented.
bool HasUsedMuchMemory(long before) { return GetPeakMemory() > before + kFreshMemory; }

/// The line of a machine that failed. Its name comes before the reason, unless the reason begins with it, or the name
/// is so long that the reason would be cut.
TMachineLine MakeFailedLine(const TFleet& fleet, const std::string& machine, const std::string& reason,
                            bool isLast = false) {
  constexpr std::size_t longName = 400;  // bytes
  const std::string name = ToPrintable(machine);
  const bool isNamed = name.size() > longName || reason.compare(0, name.size(), name) == 0;
  return {fleet.answer.makeErrorLine(machine, ToMessage(isNamed ? reason : name + ": " + reason)), true, isLast};
}

/// Called in a worker for each machine.
TMachineLine CollectLine(const std::string& machine, const TFleet& fleet) {
  static const long before = GetPeakMemory();  // of the coordinating process, which this one is a copy of
  OnThrowingPlugin([&](const std::string& reason) { TWorker::EndWith(MakeFailedLine(fleet, machine, reason)); });
  try {
    return {WithinMemory([&] { return MakeLine(machine, fleet); }), false, HasUsedMuchMemory(before)};
  } catch (const std::exception& error) {
    return MakeFailedLine(fleet, machine, error.what(), HasUsedMuchMemory(before) || HasMemoryRunOut());
  }
}

class TFleetRun {
 public:
  explicit TFleetRun(TFleet fleet) : m_fleet(std::move(fleet)), m_bar([this] { return m_fleet.machines.CountAll(); }) {
    while (m_workers.size() < m_fleet.jobs) m_workers.push_back(StartWorker());
  }

  int Run() {
    bool isRead = m_fleet.answer.take(m_fleet.answer.head);
    while (isRead && TSignals::Get() == 0) {
      SpreadMachines();
      if (IsDone()) break;
      WaitForSomething();
      isRead = m_fleet.answer.take(m_lines.TakeReady());
      m_since = TClock::now();  // the reader's time does not count against machines
      m_bar.Set(m_skipped + m_done, m_failed);
    }
    m_bar.Finish();
    if (!isRead) return 0;
    m_fleet.answer.finish(TSignals::Get() == 0);
    if (m_failed > 0) {
      std::cerr << "displayinfo: " << m_failed << " of " << m_done << " machines failed; their lines say why\n";
    }
    if (TSignals::Get() != 0) return 128 + TSignals::Get();
    return m_failed == 0 ? 0 : 1;
  }

 private:
  std::unique_ptr<TWorker> StartWorker() const {
    std::vector<int> others;
    for (const auto& worker : m_workers) {
      if (worker != nullptr) others.push_back(worker->GetDescriptor());
    }
    return std::make_unique<TWorker>([this](const std::string& machine) { return CollectLine(machine, m_fleet); },
                                     others, m_fleet.timeout);
  }

  /// Hands out machines while the list has any and m_lines has room for their lines: first to idle workers, then one
  /// more to each busy one, so that no worker has to wait for its next.
  void SpreadMachines() {
    for (std::size_t waiting = 0; waiting <= kMaxWaiting; ++waiting) {
      for (auto& worker : m_workers) {
        if (worker->GetTasks().size() > waiting || !m_lines.HasRoomFor(m_given) || !FindNext()) continue;
        // A dead worker shows up in poll.
        if (!worker->Give({m_given, *m_next})) continue;
        m_next.reset();
        ++m_given;
      }
    }
  }

  /// Looks for a machine that is not finished among the names that have come so far.
  bool FindNext() {
    while (!m_next && m_fleet.machines.HasNext()) {
      std::string machine = m_fleet.machines.TakeNext();
      if (m_fleet.finished.Take(machine)) {
        ++m_skipped;
      } else {
        m_next = std::move(machine);
      }
    }
    return m_next.has_value();
  }

  bool IsDone() const { return !m_next && m_fleet.machines.IsAtEnd() && m_lines.GetTurn() == m_given; }

  /// Waits until a worker has sent something or is late, or until a name comes if the run needs one, and deals with it.
  void WaitForSomething() {
    std::vector<pollfd> descriptors;
    descriptors.reserve(m_workers.size() + 1);
    const std::vector<bool> isHeard = ChooseHeard();
    for (std::size_t index = 0; index < m_workers.size(); ++index) {
      descriptors.push_back({isHeard[index] ? m_workers[index]->GetDescriptor() : -1, POLLIN, 0});
    }
    const bool needsName =
        m_lines.HasRoomFor(m_given) && !m_next && !m_fleet.machines.HasNext() && !m_fleet.machines.IsAtEnd();
    if (needsName) descriptors.push_back({m_fleet.machines.GetDescriptor(), POLLIN, 0});
    m_signals.Wait(descriptors, GetPause(isHeard));
    const std::chrono::nanoseconds step = TakeStep();
    if (needsName && descriptors.back().revents != 0) m_fleet.machines.ReadMore();
    for (std::size_t index = 0; index < m_workers.size(); ++index) {
      if (isHeard[index]) m_workers[index]->Spend(step);
      if (descriptors[index].revents != 0) Receive(m_workers[index]);
      if (m_workers[index]->IsLate()) Replace(m_workers[index], DescribeTimeout(m_fleet.timeout));
    }
  }

  /// The workers to read from now. If too many bytes wait for an earlier line, only the worker that makes that line, so
  /// that this process never holds more than those bytes and one line.
  std::vector<bool> ChooseHeard() const {
    std::size_t held = m_lines.GetHeldSize();
    for (const auto& worker : m_workers) held += worker->GetHeldSize();
    std::vector<bool> isHeard;
    isHeard.reserve(m_workers.size());
    for (const auto& worker : m_workers) {
      isHeard.push_back(held < TOrderedLines::kMaxHeldSize || worker->GetTasks().empty() ||
                        worker->GetTasks().front().number == m_lines.GetTurn());
    }
    return isHeard;
  }

  /// How long to wait at most; nothing if no worker has a task.
  std::optional<std::chrono::nanoseconds> GetPause(const std::vector<bool>& isHeard) const {
    std::optional<std::chrono::nanoseconds> pause;
    for (std::size_t index = 0; index < m_workers.size(); ++index) {
      if (!isHeard[index] || m_workers[index]->GetTasks().empty()) continue;
      pause = std::min(pause.value_or(kMaxStep), m_workers[index]->GetTimeLeft());
    }
    return pause;
  }

  /// The time since the last call, at most kMaxStep.
  std::chrono::nanoseconds TakeStep() {
    const TClock::time_point now = TClock::now();
    return std::min<std::chrono::nanoseconds>(now - std::exchange(m_since, now), kMaxStep);
  }

  void Receive(std::unique_ptr<TWorker>& worker) {
    const bool isAlive = worker->Receive();
    while (auto done = worker->TakeLine()) Put(done->first, std::move(done->second));
    if (worker->HasRetired()) {
      Replace(worker, std::nullopt);
    } else if (!isAlive) {
      Bury(worker);
    }
  }

  /// The running task of a dead worker fails, unless the worker's end is that of the run: then --resume asks that
  /// machine again.
  void Bury(std::unique_ptr<TWorker>& worker) {
    const std::string death = worker->DescribeDeath();
    if (!IsEndingSignal(worker->GetSignal())) return Replace(worker, "the process that collected from it " + death);
    TSignals::Note(worker->GetSignal());
    ShowAboveProgress("displayinfo: the run ends, since one of its processes " + death + "; --resume goes on with it");
    Replace(worker, std::nullopt);
  }

  /// Starts another worker, which takes the tasks over. If there is a reason, the running task fails for it.
  void Replace(std::unique_ptr<TWorker>& worker, const std::optional<std::string>& reason) {
    std::deque<TTask> tasks = worker->GetTasks();
    if (reason && !tasks.empty()) {
      Put(tasks.front().number, MakeFailedLine(m_fleet, tasks.front().machine, *reason));
      tasks.pop_front();
    }
    bool isGiven = false;
    while (!isGiven) {
      worker.reset();  // first, since the system may have no room for one more process
      worker = StartWorker();
      isGiven = std::all_of(tasks.begin(), tasks.end(), [&](const TTask& task) { return worker->Give(task); });
    }
  }

  void Put(std::size_t number, TMachineLine line) {
    ++m_done;
    m_failed += line.hasFailed ? 1 : 0;
    m_lines.Put(number, std::move(line.text));
  }

  TFleet m_fleet;
  TSignals m_signals;
  TProgressBar m_bar;
  std::vector<std::unique_ptr<TWorker>> m_workers;
  TClock::time_point m_since = TClock::now();
  std::optional<std::string> m_next;  // the next machine for a worker
  std::size_t m_given = 0;            // machines given to workers
  std::size_t m_skipped = 0;
  std::size_t m_done = 0;
  std::size_t m_failed = 0;  // among those that are done
  TOrderedLines m_lines;
};

}  // namespace

int CollectFleet(TFleet fleet) {
  RequirePlugin(fleet.plugin);
  std::signal(SIGCHLD, SIG_DFL);  // if it were ignored, the system would not tell how a worker ended
  return TFleetRun(std::move(fleet)).Run();
}
