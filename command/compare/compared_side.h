// Reads one of the two sides of a comparison: a captured machine, which is asked, or a file of answers.
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

  /// `path`: a captured machine (a folder or a file), or a file of answers; "-" for standard input. All functions throw
  /// TUnusable, which names the file and the line, if it is neither.
  TComparedSide(const std::filesystem::path& path, const TAsk& ask);

  /// True if TakeNext may be called.
  bool HasNext() const { return m_next.has_value(); }
  TComparedMachine TakeNext();

  /// True if the machines have names of their own, as lines of many machines do. Otherwise there is one machine, which
  /// has the name of the file.
  bool HasNames() const { return m_hasNames; }

  /// True if the texts have all their bytes, as those of a captured machine do. A written answer has lost those that
  /// are not UTF-8.
  bool HasBytes() const { return m_hasBytes; }

  /// Replaces those bytes as a written answer does, so that the side can be compared with one.
  void LoseBytes();

 private:
  void ReadFile(const std::filesystem::path& path, const TAsk& ask);
  void AskMachine(const std::string& text, const std::string& name, const TAsk& ask);
  void TakeLine();

  bool m_hasNames = false;
  bool m_hasBytes = false;
  std::optional<TLineReader> m_lines;  // the remaining lines
  std::optional<TComparedMachine> m_next;
};
