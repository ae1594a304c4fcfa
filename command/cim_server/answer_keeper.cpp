#include "command/cim_server/answer_keeper.h"

#include <utility>

TAnswerKeeper::TAnswerKeeper(std::chrono::seconds maxAge, std::function<void()> collect, std::function<TTime()> now)
    : m_maxAge(maxAge), m_collect(std::move(collect)), m_now(std::move(now)) {}

void TAnswerKeeper::Start() {
  m_isCollecting = true;
  m_collect();
}

void TAnswerKeeper::Ask(const TAsker& asker) {
  if (!m_hasCollected) {
    m_waiting.push_back(asker);
    return;
  }
  const TCollected collected = m_collected;  // a collection that ends at once would put another in its place
  if (!m_isCollecting && IsStale()) Start();
  asker(collected);
}

void TAnswerKeeper::Put(TCollected collected) {
  m_isCollecting = false;
  m_hasCollected = true;
  m_time = m_now();
  m_collected = std::move(collected);
  for (const TAsker& asker : std::exchange(m_waiting, {})) asker(m_collected);
}

bool TAnswerKeeper::IsStale() const { return m_collected.model == nullptr || m_now() - m_time > m_maxAge; }
