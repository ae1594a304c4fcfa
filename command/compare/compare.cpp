#include "command/compare/compare.h"

#include <cstdlib>
#include <iostream>
#include <map>
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
#include "command/collection/collection.h"
#include "command/collection/memory_budget.h"
#include "command/collection/plugin_library.h"
#include "command/collection/time_limit.h"
#include "command/compare/compared_side.h"
#include "command/compare/difference_report.h"
#include "command/machine/reasons.h"
#include "embedded_host/schema.h"

namespace {

constexpr int kEqual = 0;
constexpr int kDifferent = 1;
constexpr int kUnusable = 2;

TReadAnswer Ask(const std::string& name, const std::function<TMachine()>& read, const TCompareOptions& options) {
  TRequest all;
  for (const TClassDeclaration& declaration : GetSchema()) all.emplace_back(declaration.name);
  OnThrowingPlugin([](const std::string& reason) {
    std::cerr << "displayinfo: " << ToMessage(reason) << '\n';
    std::_Exit(kUnusable);
  });
  const TTimeLimit limit(options.timeout,
                         "displayinfo: " + ToMessage(name) + ": " + DescribeTimeout(options.timeout) + "\n", kUnusable);
  return WithinMemory([&] {
    const TMachine machine = read();
    const TAnswer answer = Collect(machine, options.plugin, {all}, {});
    // Of files that may not be read it is not known whether their controllers are gone.
    const std::string unreadable = ExplainUnreadableFiles(machine, answer.fileQueries);
    if (!unreadable.empty()) throw TUnusable(unreadable);
    for (const std::string& note : answer.notes) ShowRemark(note);
    return TakeAnswer(answer);
  });
}

/// The machines of the older side, kept until their counterpart comes.
class TKnownMachines {
 public:
  explicit TKnownMachines(TComparedSide& side) {
    while (side.HasNext()) {
      const TComparedMachine machine = side.TakeNext();
      m_machines[machine.name].waiting.push_back({m_count++, Pack(MakeFacts(machine.answer))});
    }
  }

  std::size_t CountAll() const { return m_count; }

  /// The packed facts of the machine of that name; nothing when none is left. Several of one name come in their order.
  std::optional<std::string> Take(const std::string& name) {
    const auto found = m_machines.find(name);
    if (found == m_machines.end() || found->second.IsUsedUp()) return std::nullopt;
    return std::move(found->second.waiting[found->second.next++].packed);
  }

  /// The names of those that are left, in their order.
  std::vector<std::string> ListLeft() const {
    std::map<std::size_t, std::string> left;  // by their numbers
    for (const auto& [name, machines] : m_machines) {
      for (std::size_t index = machines.next; index < machines.waiting.size(); ++index) {
        left[machines.waiting[index].number] = name;
      }
    }
    std::vector<std::string> names;
    names.reserve(left.size());
    for (auto& [number, name] : left) names.push_back(std::move(name));
    return names;
  }

  /// The name of the only machine.
  const std::string& GetOnlyName() const { return m_machines.begin()->first; }

 private:
  struct TMachine {
    std::size_t number;
    std::string packed;
  };

  struct TNamesakes {
    std::vector<TMachine> waiting;
    std::size_t next = 0;

    bool IsUsedUp() const { return next == waiting.size(); }
  };

  std::unordered_map<std::string, TNamesakes> m_machines;
  std::size_t m_count = 0;
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
    TKnownMachines known(before);
    Write(m_report->Begin());
    while (after.HasNext()) {
      const TComparedMachine machine = after.TakeNext();
      // Of one machine on each side it does not matter what the file is called.
      const bool isOnlyOne = !hasNames && m_done++ == 0 && known.CountAll() == 1 && !after.HasNext();
      AddNew(machine, isOnlyOne ? known.GetOnlyName() : machine.name, known);
    }
    for (const std::string& name : known.ListLeft()) Add({name, EMachineState::kGone, {}});
    Write(m_report->End(m_counts));
    RequireAsked();
    return m_isDifferent ? kDifferent : kEqual;
  }

 private:
  void AddNew(const TComparedMachine& machine, const std::string& oldName, TKnownMachines& known) {
    const std::optional<std::string> before = known.Take(oldName);
    if (!before) return Add({machine.name, EMachineState::kCame, {}});
    const TMachineFacts facts = MakeFacts(machine.answer);
    if (*before == Pack(facts) && !facts.error) {
      RequireComparable(machine.name, facts, facts);
      return Add({machine.name, EMachineState::kEqual, {}});
    }
    Add(CompareMachines(machine.name, Unpack(*before), facts));
  }

  void Add(const TMachineReport& machine) {
    ++m_counts[static_cast<std::size_t>(machine.state)];
    if (machine.state == EMachineState::kEqual) return;
    // One that could be asked neither then nor now may be the same.
    m_isDifferent = m_isDifferent || !machine.before || !machine.after;
    Write(m_report->Add(machine));
  }

  /// Nothing is equal where each machine is an error on both sides.
  void RequireAsked() const {
    const bool isCompared = m_isDifferent || m_counts[static_cast<std::size_t>(EMachineState::kEqual)] != 0;
    if (!isCompared) throw TUnusable("there is nothing to compare, since no machine could be asked, then or now");
  }

  /// When nobody reads any more, the exit status is still to be found.
  void Write(const std::string& text) { m_isRead = m_isRead && WriteStandardOutput(text); }

  const TCompareOptions& m_options;
  std::unique_ptr<IDifferenceReport> m_report;
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
