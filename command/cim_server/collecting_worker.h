// Collects in another process, so that the one that listens never loads the plug-in. A worker, the starter, starts
// another worker for each collection.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "command/cim_server/answer_keeper.h"
#include "command/collection/worker.h"

class TCollectingWorker {
 public:
  /// Starts the starter, with the privileges that this process has now. `work` collects: it returns the answer's line,
  /// with remarks before it, a line each. `canBeReplaced`: false if this process is about to give up its privileges;
  /// then no other process can take the starter's place if it dies or hangs. Throws TUnusable if the system has no room
  /// for another process.
  TCollectingWorker(TWorker::TWork work, std::chrono::seconds timeout, bool canBeReplaced);
  TCollectingWorker(const TCollectingWorker&) = delete;
  TCollectingWorker& operator=(const TCollectingWorker&) = delete;

  /// Begins a collection. Returns a failure if it could not begin, otherwise nothing.
  std::optional<TCollected> Begin();

  /// The descriptor to wait for after Begin.
  int GetDescriptor() const { return m_starter->GetDescriptor(); }
  /// Takes what has come; returns the collection's result once it is complete.
  std::optional<TCollected> Take();

  /// Ends a collection whose starter does not answer, though it should have reported a result or a timeout by now.
  TCollected GiveUp();

 private:
  void Start();

  TWorker::TWork m_work;
  std::chrono::seconds m_timeout;
  bool m_canBeReplaced;
  std::unique_ptr<TWorker> m_starter;  // null if it died or was given up
};
