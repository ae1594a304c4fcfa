#include "command/cim_server/collecting_worker.h"

#include <dirent.h>
#include <unistd.h>

#include <cstdlib>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

namespace {

/// The descriptors of this process but the standard ones: a worker that held them would keep connections open.
std::vector<int> ListDescriptors() {
  std::vector<int> descriptors;
  DIR* const folder = opendir("/proc/self/fd");
  if (folder == nullptr) return descriptors;
  while (const dirent* const entry = readdir(folder)) {
    const int descriptor = static_cast<int>(std::strtol(entry->d_name, nullptr, 10));
    if (descriptor > STDERR_FILENO && descriptor != dirfd(folder)) descriptors.push_back(descriptor);
  }
  closedir(folder);
  return descriptors;
}

TCollected MakeFailure(const std::string& reason) { return {nullptr, reason}; }

TCollected ReadLine(const TMachineLine& line) try {
  if (!line.hasFailed) return {std::make_shared<const TCimModel>(line.text), ""};
  return MakeFailure(nlohmann::json::parse(line.text).at("error").get<std::string>());
} catch (const std::exception& error) {
  return MakeFailure(std::string("the answer cannot be used: ") + error.what());
}

}  // namespace

TCollectingWorker::TCollectingWorker(TWorker::TWork work, std::chrono::seconds timeout, bool canBeReplaced)
    : m_work(std::move(work)), m_timeout(timeout), m_canBeReplaced(canBeReplaced) {
  Start();
}

void TCollectingWorker::Start() { m_worker = std::make_unique<TWorker>(m_work, ListDescriptors()); }

std::optional<TCollected> TCollectingWorker::Begin() try {
  if (m_worker != nullptr && m_worker->Give({0, ""})) return std::nullopt;
  m_worker.reset();
  if (!m_canBeReplaced) {
    return MakeFailure("the process that had the privileges to collect has ended; start displayinfo serve anew");
  }
  Start();
  if (m_worker->Give({0, ""})) return std::nullopt;
  m_worker.reset();
  return MakeFailure("the process that collects ended at once");
} catch (const std::exception& error) {
  return MakeFailure(error.what());
}

std::optional<TCollected> TCollectingWorker::Take() {
  const bool isAlive = m_worker->Receive();
  if (const auto line = m_worker->TakeLine()) return ReadLine(line->second);
  if (isAlive) return std::nullopt;
  const std::string death = m_worker->DescribeDeath();
  m_worker.reset();
  return MakeFailure("the process that collects " + death);
}

TCollected TCollectingWorker::GiveUp() {
  m_worker.reset();
  return MakeFailure("no answer within " + std::to_string(m_timeout.count()) + " seconds; --timeout gives it longer");
}
