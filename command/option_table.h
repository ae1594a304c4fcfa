// Every option and word of the command line, as one table: what it is called, what its value is, what it does. The
// parser, the help, the manual page and the shell's completion are made from it.
#pragma once

#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "command/options.h"

/// What was typed cannot be understood or done: one line that says what to type instead.
class TWrongUsage : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a shell offers for a value, where it is not one of a few words.
enum class ECompletion { kNothing, kFiles, kClasses };

/// The value of an option, or a word that belongs to no option.
struct TOptionValue {
  std::string name;  // of the row, for messages
  std::string text;
  std::size_t choice = 0;  // its place among the words of the row's argument

  template <typename TEnum>
  TEnum As() const {
    return static_cast<TEnum>(choice);
  }
};

/// One option, or a word that belongs to no option. A word must be given, unless it may be repeated.
struct TOptionRow {
  const char* name;      // of an option with its two hyphens: "--machine"; of a word what stands for it: "TARGET"
  const char* argument;  // what stands for an option's value; "a|b": it is one of these words; empty: there is none
  const char* sentence;  // what it does, for the help, in which a line has 80 columns; without a full stop
  const char* details;   // what the manual page says besides, in whole sentences

  /// Takes the value over. Throws TWrongUsage. Null: ParseCommandLine acts itself.
  void (*take)(TCommandLine& line, const TOptionValue& value);

  ECompletion completion = ECompletion::kNothing;
  bool isRepeatable = false;
  std::array<const char*, 2> excludes = {};  // names of other rows, before the first null

  bool IsOption() const { return name[0] == '-'; }
  bool HasValue() const { return argument[0] != '\0'; }

  /// The words that the value may be; none: it may be anything.
  std::vector<std::string> ListChoices() const;
};

/// The command itself, or a subcommand, which has options of its own.
struct TPage {
  const char* name;      // what the subcommand is called; empty for the command itself
  const char* sentence;  // what it does, for the help
  ESubcommand subcommand;
  std::vector<TOptionRow> rows;

  /// Completes and checks what was taken over. Throws TWrongUsage. Null: nothing is to be done.
  void (*finish)(TCommandLine& line);
};

/// The command itself, then the subcommands.
const std::vector<TPage>& GetPages();
