#include "command/cim_server/answer_keeper.h"

#include <algorithm>
#include <utility>

TAnswerKeeper::TAnswerKeeper(std::chrono::seconds maxAge, std::function<void()> collect, std::function<TTime()> now,
                             TLater later)
    : m_maxAge(maxAge), m_collect(std::move(collect)), m_now(std::move(now)), m_later(std::move(later)) {}

void TAnswerKeeper::Start() {
  m_isCollecting = true;
  m_isDropped = false;
  m_collect();
}

void TAnswerKeeper::Ask(TAsker asker) {
  if (m_hasCollected && !IsTooOld()) return asker.tell(m_collected);
  const auto hasGone = [](const TWaiting& waiting) { return !waiting.asker.isWanted(); };
  m_waiting.erase(std::remove_if(m_waiting.begin(), m_waiting.end(), hasGone), m_waiting.end());
  m_waiting.push_back({std::move(asker), m_now() + kPatience});
  if (!m_isCollecting) Start();
  WakeLater();
}

void TAnswerKeeper::Put(TCollected collected) {
  m_isCollecting = false;
  m_hasCollected = true;
  m_time = m_now();
  m_collected = std::move(collected);
  for (const TWaiting& waiting : std::exchange(m_waiting, {})) waiting.asker.tell(m_collected);
}

void TAnswerKeeper::Drop() { m_isDropped = true; }

bool TAnswerKeeper::IsTooOld() const {
  return m_isDropped || m_now() - m_time > (m_collected.model == nullptr ? kPause : m_maxAge);
}

void TAnswerKeeper::WakeLater() {
  if (!m_hasCollected || m_isWaking || m_waiting.empty()) return;
  m_isWaking = true;
  m_later(std::chrono::ceil<std::chrono::milliseconds>(m_waiting.front().end - m_now()), [this] {
    m_isWaking = false;
    TellImpatient();
    WakeLater();
  });
}

void TAnswerKeeper::TellImpatient() {
  while (!m_waiting.empty() && m_waiting.front().end <= m_now()) {
    const TAsker asker = std::move(m_waiting.front().asker);
    m_waiting.pop_front();
    asker.tell(m_collected);
  }
}
