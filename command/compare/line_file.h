// A file of lines, read one after the other, whatever it is: a file, a pipe, standard input.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include "command/base/descriptor.h"

class TLineFile {
 public:
  /// Bytes that a line, or the whole file where that is wanted, can have.
  static constexpr std::size_t kMaxSize = std::size_t{64} * 1024 * 1024;

  /// `path`: "-" for standard input. This and the others throw TUnusable, naming the file, when it cannot be read, or
  /// has more than that.
  explicit TLineFile(const std::filesystem::path& path);

  /// How messages call it.
  const std::string& GetName() const { return m_name; }

  /// What it begins with; empty for an empty file. To be asked for before anything is taken.
  const std::string& GetBeginning();

  /// The next line that is not empty, without its end; nothing at the end of the file.
  std::optional<std::string> TakeLine();

  /// The number of the line that was taken last, from 1 on.
  std::size_t GetNumber() const { return m_number; }

  /// The rest of the file.
  std::string TakeRest();

 private:
  bool ReadMore();

  std::string m_name;
  TDescriptor m_file;
  std::string m_piece;  // what was read and not taken
  std::size_t m_next = 0;
  std::size_t m_number = 0;
};
