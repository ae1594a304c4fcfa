// A pseudo-terminal, for what a command shows only on a terminal.
#pragma once

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

class TTerminal {
 public:
  TTerminal() : m_screen(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    if (m_screen < 0 || grantpt(m_screen) != 0 || unlockpt(m_screen) != 0) throw std::runtime_error("no terminal");
    m_keyboard = open(GetName().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  }
  ~TTerminal() {
    close(m_screen);
    if (m_keyboard >= 0) close(m_keyboard);
  }
  TTerminal(const TTerminal&) = delete;
  TTerminal& operator=(const TTerminal&) = delete;

  void SetColumns(std::size_t columns) const {
    winsize size = {};
    size.ws_row = 24;
    size.ws_col = static_cast<unsigned short>(columns);
    if (ioctl(m_keyboard, TIOCSWINSZ, &size) != 0) throw std::runtime_error("no width for the terminal");
  }

  /// The path for a command to open, so that it takes itself to run on a terminal.
  std::string GetName() const { return ptsname(m_screen); }

  /// Everything that was written to it, with line ends as "\r\n". Nobody may have it open any more.
  std::string Read() {
    close(m_keyboard);
    m_keyboard = -1;
    std::string text;
    char piece[4096];
    for (ssize_t count = 0; (count = read(m_screen, piece, sizeof piece)) > 0;) {
      text.append(piece, static_cast<std::size_t>(count));
    }
    return text;
  }

 private:
  int m_screen;
  int m_keyboard = -1;  // keeps what was written until it is read
};
