// Reads the names of the machines of a fleet.
#pragma once

#include <cstddef>
#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "command/base/line_reader.h"

/// Names that are known from the start, or that come line by line from a file or standard input. Empty lines, and lines
/// that begin with # after blanks, are skipped; lines may end as in Windows. The list is never held in memory as a
/// whole, since it may be larger, and its writer may be slower than its reader.
class TMachineList {
 public:
  /// Bytes. A name of this length is too long for any file. A longer one is cut to it, since it names no machine
  /// anyway.
  static constexpr std::size_t kMaxName = 4096;

  explicit TMachineList(const std::vector<std::string>& names);
  /// `file`: "-" for standard input. Throws TUnusable, which names the file, if it cannot be read.
  static TMachineList Open(const std::filesystem::path& file);

  /// True if TakeNext may be called.
  bool HasNext() const;
  std::string TakeNext();

  /// True at the end of the list.
  bool IsAtEnd() const;

  /// The descriptor to wait for with poll if neither is true.
  int GetDescriptor() const { return m_lines->GetDescriptor(); }
  /// Reads a piece of what has come. Throws TUnusable if the list cannot be read.
  void ReadMore();

  /// The number of all names; nothing if that is known only at the end.
  std::optional<std::size_t> CountAll() const;

 private:
  explicit TMachineList(TLineReader lines);

  std::optional<TLineReader> m_lines;  // nothing for names that are known from the start
  std::deque<std::string> m_names;
};
