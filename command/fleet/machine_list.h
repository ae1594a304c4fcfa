// The machines of a fleet, by the names of their folders, one after the other.
#pragma once

#include <cstddef>
#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// Names that are known from the start, or come line by line from a file or standard input; empty lines are none. The
/// list is never held as a whole: it may be longer than memory, and its writer slower than its reader.
class TMachineList {
 public:
  explicit TMachineList(std::vector<std::string> names);
  /// `file`: "-" for standard input. Throws TUnusable, naming the file, when it cannot be read.
  static TMachineList Open(const std::filesystem::path& file);
  ~TMachineList();
  TMachineList(TMachineList&& other) noexcept;
  TMachineList& operator=(TMachineList&&) = delete;

  /// A name is there to be taken.
  bool HasNext() const;
  std::string TakeNext();

  /// No name is there, and none will come.
  bool IsAtEnd() const;

  /// What to wait for (with poll) when neither holds; then ReadMore takes what has come, without waiting for more.
  /// Throws TUnusable when the list cannot be read, or is none.
  int GetDescriptor() const;
  void ReadMore();

  /// How many names there are in all; nothing when only their end will tell.
  std::optional<std::size_t> CountAll() const;

 private:
  TMachineList(std::string name, int descriptor);

  void TakeLines();

  std::string m_name = "the list";  // for messages
  int m_descriptor = -1;            // -1 when no more is to be read
  std::string m_rest;               // the beginning of a line whose end has not come
  std::deque<std::string> m_names;
};
