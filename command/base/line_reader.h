// Reads a file, a pipe or standard input line by line. It is never held in memory as a whole, since it may be larger,
// and its writer may be slower than its reader.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include "command/base/descriptor.h"

struct TLine {
  std::string text;    // without its end
  bool hasEnd = true;  // false if the file ended without a line end
};

/// What happens to a line that is too long: its rest is skipped, or the file is refused.
enum class ELongLine { kCut, kRefused };

class TLineReader {
 public:
  /// `name`: of the file, for messages. `longest`: a line's limit in bytes. `cure`: ends a message, after "; ".
  /// All functions throw TUnusable, which names the file, if it is not open, cannot be read or has a refused line.
  TLineReader(std::string name, TDescriptor file, std::size_t longest, ELongLine longLine, const char* cure);

  /// `path`: "-" for standard input.
  static TLineReader Open(const std::filesystem::path& path, std::size_t longest, ELongLine longLine, const char* cure);

  const std::string& GetName() const { return m_name; }

  /// Waits for the first bytes of the file and takes none of them; empty if the file is. Call it before the others.
  const std::string& GetBeginning();

  /// Waits for the next line; nothing at the end of the file.
  std::optional<TLine> TakeNext();

  /// The number of the line that was taken last, counted from 1.
  std::size_t GetNumber() const { return m_number; }

  /// Waits for the rest of the file. Reads a little past `maxSize` bytes, so that the caller sees if it is too large.
  std::string TakeRest(std::size_t maxSize);

  // For a caller that also waits for other things, with poll:

  int GetDescriptor() const { return m_file.Get(); }
  /// True when nothing is left to be read.
  bool IsAtEnd() const { return !m_file.IsOpen(); }
  /// Reads a piece of what has come. Take all lines that were read before.
  void ReadMore();
  /// The next line of what was read; nothing until it is complete.
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
  std::string m_piece;     // read last
  std::size_t m_next = 0;  // where its part that was not taken begins
  TLine m_line;            // the beginning of a line whose end has not come
  bool m_hasBegun = false;
  std::size_t m_number = 0;
};
