// The process that loads the plug-in and collects, so that the one that listens never does. It is one of the fleet's
// workers, with one machine.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "command/cim_server/answer_keeper.h"
#include "command/collection/worker.h"

class TCollectingWorker {
 public:
  /// Starts the process, with the privileges that this one has now. `work` collects in it: its line
  /// may have remarks before it, a line each. `canBeReplaced`: another
  /// process may take its place when it dies or hangs; false when it has privileges that this one is about to give up.
  /// Throws TUnusable when the system has no room for it.
  TCollectingWorker(TWorker::TWork work, std::chrono::seconds timeout, bool canBeReplaced);
  TCollectingWorker(const TCollectingWorker&) = delete;
  TCollectingWorker& operator=(const TCollectingWorker&) = delete;

  /// Begins a collection. Returns a result, a failure, only when it could not begin.
  std::optional<TCollected> Begin();

  /// What to wait for after Begin; then Take, until it returns the collection's result.
  int GetDescriptor() const { return m_starter->GetDescriptor(); }
  std::optional<TCollected> Take();

  /// Ends a collection whose starter does not answer: it should have reported a result, or a timeout, by now.
  TCollected GiveUp();

 private:
  void Start();

  TWorker::TWork m_work;
  std::chrono::seconds m_timeout;
  bool m_canBeReplaced;
  std::unique_ptr<TWorker> m_starter;  // null when it died or was given up
};
