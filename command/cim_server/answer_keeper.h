// Keeps the machine's newest answer, and decides when to collect again.
#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "command/cim_server/cim_model.h"

/// The result of a collection: the instances, or why it failed.
struct TCollected {
  std::shared_ptr<const TCimModel> model;  // null when the collection failed
  std::string failure;
  std::vector<std::string> remarks;  // what people should know of it, a sentence each
};

class TAnswerKeeper {
 public:
  typedef std::chrono::steady_clock::time_point TTime;
  /// Calls a function once, after that time.
  typedef std::function<void(std::chrono::milliseconds time, std::function<void()> wake)> TLater;

  struct TAsker {
    std::function<void(const TCollected&)> tell;
    std::function<bool()> isWanted;  // false: who asked has gone
  };

  static constexpr std::chrono::seconds kPatience{2};  // of an asker, when there is an answer that is too old
  static constexpr std::chrono::seconds kPause{1};     // after a collection that failed, before the next

  /// `collect` begins a collection, at most one at a time, whose end Put tells. `now`: the clock.
  TAnswerKeeper(std::chrono::seconds maxAge, std::function<void()> collect, std::function<TTime()> now, TLater later);

  /// Begins the first collection.
  void Start();

  /// Tells the newest result: at once if it is not older than the greatest age. Else the next collection begins, if
  /// none is under way, and its result is told; if that takes longer than kPatience, the old one. A failure is told at
  /// once until kPause is over. The first collection is waited for until it ends.
  void Ask(TAsker asker);

  /// A collection has ended.
  void Put(TCollected collected);

  /// The machine has changed: the newest result is too old now, and so is that of a collection that is under way.
  void Drop();

 private:
  struct TWaiting {
    TAsker asker;
    TTime end;  // of its patience
  };

  bool IsTooOld() const;
  void WakeLater();
  void TellImpatient();

  std::chrono::seconds m_maxAge;
  std::function<void()> m_collect;
  std::function<TTime()> m_now;
  TLater m_later;
  bool m_isCollecting = false;
  bool m_hasCollected = false;
  bool m_isDropped = false;  // since the last collection began
  bool m_isWaking = false;   // TellImpatient will be called
  TTime m_time;              // of m_collected
  TCollected m_collected;
  std::deque<TWaiting> m_waiting;  // in the order in which their patience ends
};
