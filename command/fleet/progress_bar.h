// Shows the progress of a run over a fleet, on standard error if that is a terminal.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>

class TProgressBar {
 public:
  /// `countAll` gives the number of machines, or nothing; it is called only if there is a terminal.
  explicit TProgressBar(const std::function<std::optional<std::size_t>()>& countAll);
  ~TProgressBar() { Finish(); }
  TProgressBar(const TProgressBar&) = delete;
  TProgressBar& operator=(const TProgressBar&) = delete;

  /// Notes how many machines are done (including failed ones) and how many failed; shows it a few times a second.
  void Set(std::size_t done, std::size_t failed);

  /// Leaves the last state on the screen, on a line of its own. Further calls do nothing.
  void Finish();

 private:
  void Show();

  bool m_isShown;
  std::optional<std::size_t> m_total;
  std::size_t m_done = 0;
  std::size_t m_failed = 0;
  std::chrono::steady_clock::time_point m_lastShown;
};

/// The bar's text, "[#####     ] 50 of 100 machines, 1 failed", for a terminal of that many columns. It leaves the last
/// column free. For a narrow terminal it is shorter: "50 of 100, 1 failed", or "50/100".
std::string MakeProgressText(std::size_t done, std::size_t failed, std::optional<std::size_t> total,
                             std::size_t columns = 80);

/// Writes a line to standard error by one call, from any process of the run. On a terminal it replaces the bar, which
/// then comes back below it.
void ShowAboveProgress(const std::string& line);
