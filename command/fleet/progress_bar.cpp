#include "command/fleet/progress_bar.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>

namespace {

constexpr std::size_t kMaxBar = 30;  // columns between the brackets
constexpr std::size_t kMinBar = 5;
constexpr std::chrono::milliseconds kPause(100);

std::string MakeBar(std::size_t done, std::size_t total, std::size_t width) {
  const std::size_t filled = total == 0 ? width : std::min(width, done * width / total);
  std::string bar(width, ' ');
  std::fill_n(bar.begin(), filled, '#');
  return '[' + bar + "] ";
}

/// The columns of the terminal on standard error; 80 if it does not know them.
std::size_t GetColumns() {
  constexpr std::size_t usual = 80;
  winsize size = {};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usual;
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
  std::cerr << '\r' + MakeProgressText(m_done, m_failed, m_total, GetColumns()) << std::flush;
}

std::string MakeProgressText(std::size_t done, std::size_t failed, std::optional<std::size_t> total,
                             std::size_t columns) {
  constexpr std::size_t frame = 3;  // the brackets and a blank
  const std::size_t space = columns - 1;
  const std::string count = std::to_string(done) + (total ? " of " + std::to_string(*total) : "");
  const std::string failures = std::to_string(failed) + " failed";
  std::string text = count + " machines, " + failures;
  if (total && text.size() + frame + kMinBar <= space) {
    return MakeBar(done, *total, std::min(kMaxBar, space - frame - text.size())) + text;
  }
  const std::string shorter = count + ", " + failures;
  const std::string shortest = std::to_string(done) + (total ? "/" + std::to_string(*total) : "");
  if (text.size() <= space) return text;
  return shorter.size() <= space ? shorter : shortest.substr(0, space);
}

void ShowAboveProgress(const std::string& line) {
  constexpr const char* eraseLine = "\r\x1B[K";
  std::cerr << (isatty(STDERR_FILENO) == 1 ? eraseLine + line + "\n" : line + "\n");
}
