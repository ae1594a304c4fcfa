#include "command/fleet/fleet.h"

#include <poll.h>

#include <csignal>
#include <iostream>
#include <memory>
#include <utility>

#include "command/base/standard_output.h"
#include "command/base/text_encoding.h"
#include "command/collection/plugin_library.h"
#include "command/fleet/ordered_lines.h"
#include "command/fleet/progress_bar.h"
#include "command/fleet/worker.h"
#include "command/machine/captured_machine.h"
#include "command/report/json_report.h"

namespace {

constexpr std::size_t kMaxWaiting = 1;  // machines that wait at a busy worker

volatile std::sig_atomic_t gSignal = 0;

/// While it lives, the first SIGINT or SIGTERM is noted instead of ending the process, so that a line can be finished.
/// The second one ends it.
class TSignals {
 public:
  TSignals() {
    gSignal = 0;
    sigemptyset(&m_noted);
    struct sigaction action = {};
    action.sa_handler = [](int signal) { gSignal = signal; };
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : {SIGINT, SIGTERM}) {
      sigaddset(&m_noted, signal);
      sigaction(signal, &action, nullptr);
    }
  }
  ~TSignals() {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
  }
  TSignals(const TSignals&) = delete;
  TSignals& operator=(const TSignals&) = delete;

  /// The signal that has come, or 0.
  static int Get() { return gSignal; }

  /// poll, which a signal ends also when it comes just before.
  void Wait(std::vector<pollfd>& descriptors) const {
    sigset_t before;
    sigprocmask(SIG_BLOCK, &m_noted, &before);
    if (gSignal != 0 || ppoll(descriptors.data(), descriptors.size(), nullptr, &before) < 0) {
      for (pollfd& descriptor : descriptors) descriptor.revents = 0;
    }
    sigprocmask(SIG_SETMASK, &before, nullptr);
  }

 private:
  sigset_t m_noted;
};

/// What a worker does with a machine: the collection that a single machine gets, in a freshly loaded plug-in.
TMachineLine CollectLine(const std::string& machine, const TFleet& fleet) try {
  const auto showLog = [&](const TLogEntry& entry) {
    if (!fleet.logLevel || entry.severity > *fleet.logLevel) return;
    std::cerr << ToPrintable(machine + ": " + GetSeverityName(entry.severity) + ": " + entry.message) + "\n";
  };
  const TAnswer answer = Collect(ReadCapturedMachine(machine), fleet.plugin, fleet.requests, showLog);
  return {MakeMachineLine(machine, answer), false};
} catch (const std::exception& error) {
  return {MakeErrorLine(machine, ToMessage(error.what())), true};
}

class TFleetRun {
 public:
  explicit TFleetRun(TFleet fleet) : m_fleet(std::move(fleet)), m_bar([this] { return m_fleet.machines.CountAll(); }) {
    while (m_workers.size() < m_fleet.jobs) m_workers.push_back(StartWorker());
  }

  int Run() {
    bool isRead = true;
    while (isRead && TSignals::Get() == 0) {
      SpreadMachines();
      if (IsDone()) break;
      WaitForSomething();
      isRead = WriteStandardOutput(m_lines.TakeReady());
      m_bar.Set(m_skipped + m_done, m_failed);
    }
    m_bar.Finish();
    if (!isRead) return 0;
    if (m_failed > 0) {
      std::cerr << "displayinfo: " << m_failed << " of " << m_done << " machines failed; their lines say why\n";
    }
    if (TSignals::Get() != 0) return 128 + TSignals::Get();
    return m_failed == 0 ? 0 : 1;
  }

 private:
  std::unique_ptr<TWorker> StartWorker() const {
    std::vector<int> others;
    for (const auto& worker : m_workers) others.push_back(worker->GetDescriptor());
    return std::make_unique<TWorker>([this](const std::string& machine) { return CollectLine(machine, m_fleet); },
                                     others);
  }

  /// Gives each worker machines, as far as there are any and the order lets it go ahead: first to those with nothing to
  /// do, then one that waits, so that no worker has to.
  void SpreadMachines() {
    for (std::size_t waiting = 0; waiting <= kMaxWaiting; ++waiting) {
      for (auto& worker : m_workers) {
        if (worker->GetTasks().size() > waiting || !m_lines.HasRoomFor(m_given) || !FindNext()) continue;
        // Whether the process is there still is what waiting for it tells.
        if (!worker->Give({m_given, *m_next})) continue;
        m_next.reset();
        ++m_given;
      }
    }
  }

  /// Looks for a machine that is not finished, among those that are known already.
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

  /// Until a worker has something to say, or the list has, when the run could go on with it.
  void WaitForSomething() {
    std::vector<pollfd> descriptors;
    for (const auto& worker : m_workers) descriptors.push_back({worker->GetDescriptor(), POLLIN, 0});
    const bool needsName = m_lines.HasRoomFor(m_given) && !m_next && !m_fleet.machines.IsAtEnd();
    if (needsName) descriptors.push_back({m_fleet.machines.GetDescriptor(), POLLIN, 0});
    m_signals.Wait(descriptors);
    if (needsName && descriptors.back().revents != 0) m_fleet.machines.ReadMore();
    for (std::size_t index = 0; index < m_workers.size(); ++index) {
      if (descriptors[index].revents != 0) Receive(m_workers[index]);
    }
  }

  void Receive(std::unique_ptr<TWorker>& worker) {
    const bool isAlive = worker->Receive();
    while (auto done = worker->TakeLine()) Put(done->first, std::move(done->second));
    if (!isAlive) Replace(worker);
  }

  /// The machine that a worker has died of fails; those that waited go to its successor.
  void Replace(std::unique_ptr<TWorker>& worker) {
    std::deque<TTask> tasks = worker->GetTasks();
    const std::string death = worker->DescribeDeath();
    worker = StartWorker();
    if (tasks.empty()) return;
    const TTask& fatal = tasks.front();
    Put(fatal.number, {MakeErrorLine(fatal.machine, "the process that collected from it " + death), true});
    tasks.pop_front();
    for (const TTask& task : tasks) {
      while (!worker->Give(task)) worker = StartWorker();
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
  std::optional<std::string> m_next;  // to be given
  std::size_t m_given = 0;            // so many machines have been given to workers
  std::size_t m_skipped = 0;
  std::size_t m_done = 0;
  std::size_t m_failed = 0;  // of those that are done
  TOrderedLines m_lines;
};

}  // namespace

int CollectFleet(TFleet fleet) {
  RequirePlugin(fleet.plugin);
  return TFleetRun(std::move(fleet)).Run();
}
