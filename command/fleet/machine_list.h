// The machines of a fleet, by their names, one after the other.
#pragma once

#include <cstddef>
#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "command/base/line_reader.h"

/// Names that are known from the start, or come line by line from a file or standard input; empty lines are skipped,
/// and those whose first character but blanks is #; lines may end as those of Windows do.
/// The list is never held as a whole: it may be longer than memory, and its writer slower than its reader.
class TMachineList {
 public:
  /// Bytes. A name of this length is too long for any file, so a longer one is cut to it: it names no machine anyway.
  static constexpr std::size_t kMaxName = 4096;

  explicit TMachineList(const std::vector<std::string>& names);
  /// `file`: "-" for standard input. Throws TUnusable, naming the file, when it cannot be read.
  static TMachineList Open(const std::filesystem::path& file);

  /// True if TakeNext may be called.
  bool HasNext() const;
  std::string TakeNext();

  /// True at the end of the list.
  bool IsAtEnd() const;

  /// What to wait for (with poll) when neither is true; then ReadMore takes a piece of what has come, without waiting
  /// for more. Throws TUnusable when the list cannot be read.
  int GetDescriptor() const { return m_lines->GetDescriptor(); }
  void ReadMore();

  /// How many names there are in all; nothing when that is known only at the end.
  std::optional<std::size_t> CountAll() const;

 private:
  explicit TMachineList(TLineReader lines);

  std::optional<TLineReader> m_lines;  // nothing for names that are known from the start
  std::deque<std::string> m_names;
};
