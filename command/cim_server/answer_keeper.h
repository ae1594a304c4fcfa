// Keeps the machine's newest answer, and decides when to collect again.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "command/cim_server/cim_model.h"

/// The result of a collection: the instances, or why it failed.
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

  /// Gives the newest result: at once, or after the first collection. If it is older than the greatest age, or a
  /// failure, the next collection begins; until that ends, askers still get the old one.
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
