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
  std::shared_ptr<const TCimModel> model;  // null if the collection failed
  std::string failure;
  std::vector<std::string> remarks;  // what people should know, a sentence each
};

class TAnswerKeeper {
 public:
  typedef std::chrono::steady_clock::time_point TTime;
  /// Calls `wake` once, after that time.
  typedef std::function<void(std::chrono::milliseconds time, std::function<void()> wake)> TLater;

  struct TAsker {
    std::function<void(const TCollected&)> tell;
    std::function<bool()> isWanted;  // false once the asker has gone
  };

  static constexpr std::chrono::seconds kPatience{2};  // how long an asker waits rather than take an old answer
  static constexpr std::chrono::seconds kPause{1};     // between a failed collection and the next

  /// `collect` begins a collection; its result must be given to Put. It is called only after the previous one has
  /// ended. `now`: the clock.
  TAnswerKeeper(std::chrono::seconds maxAge, std::function<void()> collect, std::function<TTime()> now, TLater later);

  /// Begins the first collection.
  void Start();

  /// Tells the newest result, at once if it is not older than `maxAge`. Otherwise begins a collection, if none is
  /// running, and tells its result, or the old one if that takes longer than kPatience. Until kPause is over, a failure
  /// is told at once. For the first collection, the asker waits until it ends.
  void Ask(TAsker asker);

  /// Takes the result of a collection that has ended.
  void Put(TCollected collected);

  /// Call it when the machine has changed: the newest result, and that of a running collection, are then too old.
  void Drop();

 private:
  struct TWaiting {
    TAsker asker;
    TTime end;  // when its patience ends
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
  TTime m_time;              // when m_collected came
  TCollected m_collected;
  std::deque<TWaiting> m_waiting;  // in the order in which their patience ends
};
