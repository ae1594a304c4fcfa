#include "command/compare/compare.h"

#include <cstdlib>
#include <deque>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "command/base/privileges.h"
#include "command/base/remark.h"
#include "command/base/standard_output.h"
#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/collection/budgets.h"
#include "command/collection/collection.h"
#include "command/collection/plugin_library.h"
#include "command/collection/reasons.h"
#include "command/compare/compared_side.h"
#include "command/compare/difference_report.h"
#include "command/compare/moves.h"
#include "embedded_host/schema.h"

namespace {

constexpr int kEqual = 0;
constexpr int kDifferent = 1;
constexpr int kUnusable = 2;

TReadAnswer Ask(const std::string& name, const std::function<TMachine()>& read, const TCompareOptions& options) {
  OnThrowingPlugin([](const std::string& reason) {
    std::cerr << "displayinfo: " << ToMessage(reason) << '\n';
    std::_Exit(kUnusable);
  });
  const TTimeLimit limit(options.timeout,
                         "displayinfo: " + ToMessage(name) + ": " + DescribeTimeout(options.timeout) + "\n", kUnusable);
  return WithinMemory([&] {
    const TMachine machine = read();
    const TAnswer answer = Collect(machine, options.plugin, {ListAllClasses()}, {});
    // If a configuration may not be read, nobody knows whether its controllers are gone.
    const std::string unreadable = ExplainUnreadableFiles(machine, answer.fileQueries);
    if (!unreadable.empty()) throw TUnusable(unreadable);
    for (const std::string& note : answer.notes) ShowRemark(note);
    return TakeAnswer(answer);
  });
}

/// By what a machine is recognised on the other side.
struct TMachineKey {
  std::string path;        // its name in its line, or its file's name
  std::string systemName;  // empty if its answer has none, or if machines are recognised by their paths
};

/// The machines of the older side, kept until their counterparts come.
class TKnownMachines {
 public:
  void Add(TMachineKey key, const TMachineFacts& facts) {
    m_byPath[key.path].push_back(m_machines.size());
    if (!key.systemName.empty()) m_bySystemName[key.systemName].push_back(m_machines.size());
    m_machines.push_back({std::move(key), Pack(facts)});
  }

  std::size_t CountAll() const { return m_machines.size(); }

  /// The packed facts of the machine, if there is only one.
  std::string TakeOnly() { return TakeAt(0); }

  /// The packed facts of the only machine with the system name; otherwise those of the machine with the path, unless it
  /// has another system name. Several with one path are taken in their order. Nothing if none is left.
  std::optional<std::string> Take(const TMachineKey& key) {
    const auto namesakes = m_bySystemName.find(key.systemName);
    if (namesakes != m_bySystemName.end() && namesakes->second.size() == 1) {
      const std::size_t only = namesakes->second.front();
      if (!m_machines[only].isTaken) return TakeAt(only);
    }
    const auto found = m_byPath.find(key.path);
    if (found == m_byPath.end()) return std::nullopt;
    std::deque<std::size_t>& waiting = found->second;
    while (!waiting.empty() && m_machines[waiting.front()].isTaken) waiting.pop_front();
    if (waiting.empty()) return std::nullopt;
    const std::string& systemName = m_machines[waiting.front()].key.systemName;
    const bool isOther = !systemName.empty() && !key.systemName.empty() && systemName != key.systemName;
    if (isOther) return std::nullopt;
    return TakeAt(waiting.front());
  }

  /// Reports of the machines that were not taken, in their order.
  std::vector<TMachineReport> ListGone() const {
    std::vector<TMachineReport> reports;
    for (const TMachine& machine : m_machines) {
      if (machine.isTaken) continue;
      reports.push_back(
          {machine.key.path, EMachineState::kGone, {ListMonitors(Unpack(machine.packed), EState::kGone), {}}});
    }
    return reports;
  }

 private:
  struct TMachine {
    TMachineKey key;
    std::string packed;
    bool isTaken = false;
  };

  std::string TakeAt(std::size_t index) {
    m_machines[index].isTaken = true;
    return std::move(m_machines[index].packed);
  }

  std::vector<TMachine> m_machines;
  std::unordered_map<std::string, std::deque<std::size_t>> m_byPath;  // indexes in m_machines
  std::unordered_map<std::string, std::vector<std::size_t>> m_bySystemName;
};

void RequireComparable(const std::string& name, const TMachineFacts& before, const TMachineFacts& after) {
  if (AreComparable(before, after)) return;
  throw TUnusable(name + ": there is nothing to compare, since OLD and NEW were not both asked for " +
                  kDesktopMonitorClass + " or " + kVideoControllerClass + "; ask both for all classes");
}

TMachineReport CompareMachines(const std::string& name, const TMachineFacts& before, const TMachineFacts& after) {
  if (before.error || after.error) return {name, EMachineState::kUnknown, {}, before.error, after.error};
  RequireComparable(name, before, after);
  TMachineDifference difference = Compare(before, after);
  const EMachineState state = difference.IsEmpty() ? EMachineState::kEqual : EMachineState::kChanged;
  return {name, state, std::move(difference)};
}

class TComparison {
 public:
  explicit TComparison(const TCompareOptions& options) : m_options(options) {
    if (options.isJson) {
      m_report = std::make_unique<TJsonDifferenceReport>();
    } else {
      m_report = std::make_unique<TTextDifferenceReport>();
    }
  }

  int Run() {
    const auto ask = [this](const std::string& name, const std::function<TMachine()>& read) {
      return Ask(name, read, m_options);
    };
    TComparedSide before(m_options.before, ask);
    TComparedSide after(m_options.after, ask);
    if (before.HasBytes() != after.HasBytes()) (before.HasBytes() ? before : after).LoseBytes();
    const bool hasNames = before.HasNames() && after.HasNames();
    TKnownMachines known;
    while (before.HasNext()) {
      const TComparedMachine machine = before.TakeNext();
      const TMachineFacts facts = MakeFacts(machine.answer);
      m_moves.CountOld(facts);
      known.Add(GetKey(machine), facts);
    }
    Write(m_report->Begin());
    try {
      AddAll(after, hasNames, known);
    } catch (const TUnusable&) {
      WriteReports();  // of the machines before the unusable one
      throw;
    }
    for (TMachineReport& machine : known.ListGone()) Add(std::move(machine));
    const std::vector<TDoubtfulSerial> doubtful = m_moves.Find(m_reports);
    WriteReports();
    Write(m_report->End(m_counts, doubtful));
    RequireAsked();
    return m_isDifferent ? kDifferent : kEqual;
  }

 private:
  void AddAll(TComparedSide& after, bool hasNames, TKnownMachines& known) {
    while (after.HasNext()) {
      const TComparedMachine machine = after.TakeNext();
      // With one machine on each side, the names of the files do not matter.
      const bool isOnlyOne = !hasNames && m_done++ == 0 && known.CountAll() == 1 && !after.HasNext();
      AddNew(machine, isOnlyOne ? known.TakeOnly() : known.Take(GetKey(machine)));
    }
  }

  TMachineKey GetKey(const TComparedMachine& machine) const {
    return {machine.name, m_options.isByPath ? std::string() : GetSystemName(machine.answer)};
  }

  /// `before`: the packed facts of its counterpart; nothing if it has none.
  void AddNew(const TComparedMachine& machine, const std::optional<std::string>& before) {
    const TMachineFacts facts = MakeFacts(machine.answer);
    m_moves.CountNew(facts);
    if (!before) return Add({machine.name, EMachineState::kCame, {ListMonitors(facts, EState::kCame), {}}});
    if (*before == Pack(facts) && !facts.error) {
      RequireComparable(machine.name, facts, facts);
      return Add({machine.name, EMachineState::kEqual, {}});
    }
    Add(CompareMachines(machine.name, Unpack(*before), facts));
  }

  void Add(TMachineReport machine) {
    ++m_counts[static_cast<std::size_t>(machine.state)];
    if (machine.state == EMachineState::kEqual) return;
    // A machine that could be asked neither then nor now does not count as different.
    m_isDifferent = m_isDifferent || !machine.before || !machine.after;
    m_reports.push_back(std::move(machine));
  }

  void WriteReports() {
    for (TMachineReport& machine : m_reports) {
      RemoveWhatIsNotTold(machine);
      Write(m_report->Add(machine));
    }
  }

  /// Throws if every machine is an error on both sides: that must not count as equal.
  void RequireAsked() const {
    const bool isCompared = m_isDifferent || m_counts[static_cast<std::size_t>(EMachineState::kEqual)] != 0;
    if (!isCompared) throw TUnusable("there is nothing to compare, since no machine could be asked, then or now");
  }

  /// Stops writing once nobody reads any more; the comparison goes on for the sake of the exit status.
  void Write(const std::string& text) { m_isRead = m_isRead && WriteStandardOutput(text); }

  const TCompareOptions& m_options;
  std::unique_ptr<IDifferenceReport> m_report;
  TMoves m_moves;
  std::vector<TMachineReport> m_reports;  // kept until all moves are known
  TMachineCounts m_counts = {};
  std::size_t m_done = 0;
  bool m_isDifferent = false;
  bool m_isRead = true;
};

}  // namespace

int Compare(const TCompareOptions& options) try {
  DropPrivileges(true);
  return TComparison(options).Run();
} catch (const std::bad_alloc&) {
  throw TUnusable("the two need more memory than there is; compare parts of them");
}
