// Reads a file line by line, whatever it is: a file, a pipe, standard input. It is never held as a whole: it may be
// longer than memory, and its writer slower than its reader.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include "command/base/descriptor.h"

struct TLine {
  std::string text;    // without its end
  bool hasEnd = true;  // false if the file ended before a line end came
};

/// What becomes of a line that is longer than is wanted: its rest is passed over, or the file is refused.
enum class ELongLine { kCut, kRefused };

class TLineReader {
 public:
  /// `name`: of the file, for messages. `longest`: bytes of a line. `cure`: ends a message, after "; ". This and the
  /// others throw TUnusable, naming the file, when it is not open or cannot be read.
  TLineReader(std::string name, TDescriptor file, std::size_t longest, ELongLine longLine, const char* cure);

  /// `path`: "-" for standard input.
  static TLineReader Open(const std::filesystem::path& path, std::size_t longest, ELongLine longLine, const char* cure);

  const std::string& GetName() const { return m_name; }

  /// Waits for what the file begins with, and takes nothing; empty for an empty file. To be asked for first.
  const std::string& GetBeginning();

  /// Waits for the next line; nothing at the end of the file.
  std::optional<TLine> TakeNext();

  /// The number of the line that was taken last, from 1 on.
  std::size_t GetNumber() const { return m_number; }

  /// Waits for the rest of the file. Reads a little past `maxSize` bytes, so that the caller sees that it is too large.
  std::string TakeRest(std::size_t maxSize);

  // For a caller that waits for other things as well (with poll):

  int GetDescriptor() const { return m_file.Get(); }
  /// True when nothing is left to be read.
  bool IsAtEnd() const { return !m_file.IsOpen(); }
  /// Reads a piece of what has come, once all lines before it were taken.
  void ReadMore();
  /// The next line of what was read; nothing while its end has not come.
  std::optional<TLine> TakeRead();

 private:
  void WaitAndReadMore();
  TLine TakeLine(bool hasEnd);
  [[noreturn]] void Fail() const;

  std::string m_name;
  TDescriptor m_file;  // closed at its end
  std::size_t m_longest;
  ELongLine m_longLine;
  const char* m_cure;
  std::string m_piece;     // that was read last, ...
  std::size_t m_next = 0;  // ... and where what was not taken begins in it
  TLine m_line;            // the beginning of a line whose end has not come
  bool m_hasBegun = false;
  std::size_t m_number = 0;
};
