// The table of all options and words of the command line: their names, values and meanings. The parser, the help, the
// manual page and the shell's completion are made from it.
#pragma once

#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "command/options.h"

/// The command line is wrong: one line that says what to type instead.
class TWrongUsage : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a shell offers for a value that is not one of a few words.
enum class ECompletion { kNothing, kFiles, kClasses };

/// The value of an option, or a word that belongs to no option.
struct TOptionValue {
  std::string name;  // the row's, for messages
  std::string text;
  std::size_t choice = 0;  // its index among the words of the row's argument

  template <typename TEnum>
  TEnum As() const {
    return static_cast<TEnum>(choice);
  }
};

/// One option, or a word that belongs to no option. A word must be given, unless it may be repeated.
struct TOptionRow {
  const char* name;      // of an option: "--machine"; of a word: what stands for it in the help, "TARGET"
  const char* argument;  // what stands for an option's value in the help; "a|b": one of these words; empty: no value
  const char* sentence;  // what it does, for the help, whose lines have 80 columns; without a full stop
  const char* details;   // what the manual page adds, in whole sentences

  /// Takes the value over. Throws TWrongUsage if it is wrong. Null: ParseCommandLine acts itself.
  void (*take)(TCommandLine& line, const TOptionValue& value);

  ECompletion completion = ECompletion::kNothing;
  bool isRepeatable = false;
  std::array<const char*, 2> excludes = {};  // names of rows that must not be given with this one; null: no further row

  bool IsOption() const { return name[0] == '-'; }
  bool HasValue() const { return argument[0] != '\0'; }

  /// The words that the value may be; empty if it may be anything.
  std::vector<std::string> ListChoices() const;
};

/// The command itself, or a subcommand, which has options of its own.
struct TPage {
  const char* name;      // the subcommand's name; empty for the command itself
  const char* sentence;  // what it does, for the help
  ESubcommand subcommand;
  std::vector<TOptionRow> rows;

  /// Completes and checks what was taken over. Throws TWrongUsage if something is wrong. Null: nothing is to be done.
  void (*finish)(TCommandLine& line);
};

/// The command itself, then the subcommands.
const std::vector<TPage>& GetPages();
