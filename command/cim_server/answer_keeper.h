// Keeps the newest answer of the machine, and decides when it is collected anew.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "command/cim_server/cim_model.h"

/// What a collection came to: the instances, or why there are none.
struct TCollected {
  std::shared_ptr<const TCimModel> model;  // null when the collection failed
  std::string failure;
};

class TAnswerKeeper {
 public:
  typedef std::chrono::steady_clock::time_point TTime;
  typedef std::function<void(const TCollected&)> TAsker;

  /// `collect` begins a collection, at most one at a time, whose end Put tells. `now`: the clock.
  TAnswerKeeper(std::chrono::seconds maxAge, std::function<void()> collect, std::function<TTime()> now);

  /// Begins the first collection.
  void Start();

  /// Tells what there is: at once, or after the first collection. When that is older than the greatest age, or is a
  /// failure, the next collection begins; what there is stands until it ends.
  void Ask(const TAsker& asker);

  /// A collection has ended.
  void Put(TCollected collected);

 private:
  bool IsStale() const;

  std::chrono::seconds m_maxAge;
  std::function<void()> m_collect;
  std::function<TTime()> m_now;
  bool m_isCollecting = false;
  bool m_hasCollected = false;
  TTime m_time;  // of m_collected
  TCollected m_collected;
  std::vector<TAsker> m_waiting;  // for the first collection
};
