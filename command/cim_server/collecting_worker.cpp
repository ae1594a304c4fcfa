#include "command/cim_server/collecting_worker.h"

#include <dirent.h>
#include <poll.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>
#include <utility>
#include <vector>

#include "command/base/json.h"
#include "command/collection/budgets.h"
#include "command/report/json_report.h"

namespace {

/// All descriptors of this process except the standard ones. A worker must close them, or it would keep connections
/// open.
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

TMachineLine MakeFailedLine(const std::string& reason) { return {MakeErrorLine("", reason), true}; }

/// Waits for the collector's line; returns a failure if the process dies or the time is over.
TMachineLine WaitForLine(TWorker& collector, std::chrono::seconds timeout) {
  const auto end = std::chrono::steady_clock::now() + timeout;
  for (bool isAlive = true; true; isAlive = collector.Receive()) {
    if (auto line = collector.TakeLine()) return std::move(line->second);
    if (!isAlive) return MakeFailedLine("the process that collects " + collector.DescribeDeath());
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    pollfd descriptor = {collector.GetDescriptor(), POLLIN, 0};
    if (left.count() <= 0 || poll(&descriptor, 1, static_cast<int>(left.count())) == 0) {
      return MakeFailedLine("collecting " + DescribeTimeout(timeout));
    }
  }
}

/// Called in the starter for each collection.
TMachineLine CollectApart(const TWorker::TWork& work, std::chrono::seconds timeout) try {
  TWorker collector(work, ListDescriptors(), timeout);
  collector.Give({0, ""});
  TMachineLine line = WaitForLine(collector, timeout);
  line.isLast = false;  // only the collector ends, not the starter
  return line;
} catch (const std::exception& error) {
  return MakeFailedLine(error.what());
}

TCollected MakeFailure(const std::string& reason) { return {nullptr, reason, {}}; }

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

/// `text`: remarks, a line each, then the line of an answer.
TCollected ReadLines(const std::string& text) {
  const std::size_t end = text.size() < 2 ? std::string::npos : text.rfind('\n', text.size() - 2);
  const std::size_t answer = end == std::string::npos ? 0 : end + 1;
  return {std::make_shared<const TCimModel>(text.substr(answer)), "", SplitLines(text.substr(0, answer))};
}

TCollected ReadLine(const TMachineLine& line) try {
  if (!line.hasFailed) return ReadLines(line.text);
  return MakeFailure(ParseJson(line.text).at("error").get<std::string>());
} catch (const std::exception& error) {
  return MakeFailure(std::string("the answer cannot be used: ") + error.what());
}

}  // namespace

TCollectingWorker::TCollectingWorker(TWorker::TWork work, std::chrono::seconds timeout, bool canBeReplaced)
    : m_work(std::move(work)), m_timeout(timeout), m_canBeReplaced(canBeReplaced) {
  Start();
}

void TCollectingWorker::Start() {
  const auto start = [work = m_work, timeout = m_timeout](const std::string&) { return CollectApart(work, timeout); };
  m_starter = std::make_unique<TWorker>(start, ListDescriptors(), m_timeout);
}

std::optional<TCollected> TCollectingWorker::Begin() try {
  if (m_starter != nullptr && m_starter->Give({0, ""})) return std::nullopt;
  m_starter.reset();
  if (!m_canBeReplaced) {
    return MakeFailure("the process that had the privileges to collect has ended; start displayinfo serve anew");
  }
  Start();
  if (m_starter->Give({0, ""})) return std::nullopt;
  m_starter.reset();
  return MakeFailure("the process that starts collections ended at once");
} catch (const std::exception& error) {
  return MakeFailure(error.what());
}

std::optional<TCollected> TCollectingWorker::Take() {
  const bool isAlive = m_starter->Receive();
  if (const auto line = m_starter->TakeLine()) return ReadLine(line->second);
  if (isAlive) return std::nullopt;
  const std::string death = m_starter->DescribeDeath();
  m_starter.reset();
  return MakeFailure("the process that starts collections " + death);
}

TCollected TCollectingWorker::GiveUp() {
  m_starter.reset();
  return MakeFailure("the process that starts collections does not answer");
}
