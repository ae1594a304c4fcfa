#include "command/fleet/progress_bar.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>

namespace {

constexpr std::size_t kBarWidth = 30;  // columns between the brackets
constexpr std::chrono::milliseconds kPause(100);

std::string MakeBar(std::size_t done, std::size_t total) {
  const std::size_t filled = total == 0 ? kBarWidth : std::min(kBarWidth, done * kBarWidth / total);
  return "[" + std::string(filled, '#') + std::string(kBarWidth - filled, ' ') + "] ";
}

}  // namespace

TProgressBar::TProgressBar(const std::function<std::optional<std::size_t>()>& countAll)
    : m_isShown(isatty(STDERR_FILENO) == 1) {
  if (m_isShown) m_total = countAll();
}

void TProgressBar::Finish() {
  if (!m_isShown) return;
  Show();
  std::cerr << '\n';
  m_isShown = false;
}

void TProgressBar::Set(std::size_t done, std::size_t failed) {
  m_done = done;
  m_failed = failed;
  if (m_isShown && std::chrono::steady_clock::now() - m_lastShown >= kPause) Show();
}

void TProgressBar::Show() {
  m_lastShown = std::chrono::steady_clock::now();
  std::cerr << '\r' + MakeProgressText(m_done, m_failed, m_total) << std::flush;
}

std::string MakeProgressText(std::size_t done, std::size_t failed, std::optional<std::size_t> total) {
  return (total ? MakeBar(done, *total) : "") + std::to_string(done) + (total ? " of " + std::to_string(*total) : "") +
         " machines, " + std::to_string(failed) + " failed";
}
