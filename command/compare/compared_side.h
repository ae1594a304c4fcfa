// One of the two sides of a comparison: a captured machine, which is asked, or a file of answers.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "command/base/line_reader.h"
#include "command/compare/answer_reader.h"
#include "command/machine/machine.h"

struct TComparedMachine {
  std::string name;
  TReadAnswer answer;
};

class TComparedSide {
 public:
  /// Asks the plug-in over the machine that `read` gives.
  typedef std::function<TReadAnswer(const std::string& name, const std::function<TMachine()>& read)> TAsk;

  /// `path`: a captured machine, folder or file, or a file of answers; "-" for standard input. This and the others
  /// throw TUnusable, naming the file and the line, when it is neither.
  TComparedSide(const std::filesystem::path& path, const TAsk& ask);

  /// True if TakeNext may be called.
  bool HasNext() const { return m_next.has_value(); }
  TComparedMachine TakeNext();

  /// Whether the machines bear names of their own, as those in the lines of many do. Else there is one machine, which
  /// has the name of the file.
  bool HasNames() const { return m_hasNames; }

  /// Whether its texts have all their bytes, as those of a captured machine do. A written answer has lost those that
  /// are not UTF-8.
  bool HasBytes() const { return m_hasBytes; }

  /// Makes of its texts what an answer has of them, to compare it with one.
  void LoseBytes();

 private:
  void ReadFile(const std::filesystem::path& path, const TAsk& ask);
  void AskMachine(const std::string& text, const std::string& name, const TAsk& ask);
  void TakeLine();

  bool m_hasNames = false;
  bool m_hasBytes = false;
  std::optional<TLineReader> m_lines;  // those that are left
  std::optional<TComparedMachine> m_next;
};
