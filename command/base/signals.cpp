#include "command/base/signals.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGXCPU};

volatile std::sig_atomic_t gSignal = 0;

}  // namespace

bool IsEndingSignal(int signal) {
  return std::find(std::begin(kEndingSignals), std::end(kEndingSignals), signal) != std::end(kEndingSignals);
}

TSignals::TSignals() {
  gSignal = 0;
  sigemptyset(&m_noted);
  for (const int signal : kEndingSignals) NoteNext(signal);
}

TSignals::~TSignals() {
  for (const int signal : kEndingSignals) {
    if (sigismember(&m_noted, signal) == 1) std::signal(signal, SIG_DFL);
  }
}

int TSignals::Get() { return gSignal; }

void TSignals::Note(int signal) { gSignal = signal; }

void TSignals::Wait(std::vector<pollfd>& descriptors, const std::optional<std::chrono::nanoseconds>& longest) const {
  const std::chrono::nanoseconds span = longest.value_or(std::chrono::nanoseconds(0));
  const auto seconds = std::chrono::floor<std::chrono::seconds>(span);
  const timespec time = {seconds.count(), static_cast<long>((span - seconds).count())};
  sigset_t before;
  sigprocmask(SIG_BLOCK, &m_noted, &before);
  if (gSignal != 0 || ppoll(descriptors.data(), descriptors.size(), longest ? &time : nullptr, &before) < 0) {
    for (pollfd& descriptor : descriptors) descriptor.revents = 0;
  }
  sigprocmask(SIG_SETMASK, &before, nullptr);
}

void TSignals::NoteNext(int signal) {
  struct sigaction before = {};
  sigaction(signal, nullptr, &before);
  if (signal == SIGHUP && before.sa_handler == SIG_IGN) return;  // nohup
  struct sigaction action = {};
  action.sa_handler = Note;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaddset(&m_noted, signal);
  sigaction(signal, &action, nullptr);
}
