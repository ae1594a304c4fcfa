// What a file of another program says of a machine's outputs, and what the readers of such files have in common.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "command/machine/machine_document.h"

struct TFoundOutput {
  std::string connector = {};  // as the file calls the output; empty where it does not
  std::string edid = {};       // its bytes; none when there is a fault
  std::string fault = {};      // why it has no EDID that can be used, such as "is not base64"
};

struct TFoundMachine {
  std::string name = {};  // empty where the file does not name the machine
  std::vector<TFoundOutput> outputs = {};

  /// Keeps one output more than a machine can have, so that the caller sees that there are too many.
  void Add(TFoundOutput output) {
    if (outputs.size() <= kMaxUnits) outputs.push_back(std::move(output));
  }

  /// Adds each EDID of a row of them. The bytes tell where one ends: it has as many blocks as it says, and what follows
  /// them belongs to it unless that begins like an EDID. A copy of the EDID belongs to it too, since a display whose
  /// memory is smaller than what is read from it answers with the same bytes again.
  void AddEdids(std::string_view bytes);
};

/// Goes through a text line by line.
class TLines {
 public:
  explicit TLines(std::string_view text) : m_rest(text) {}

  /// The next line without its end; false after the last.
  bool Take(std::string_view& line);

 private:
  std::string_view m_rest;
};

constexpr bool IsBlank(char character) { return character == ' ' || character == '\t'; }

/// Without the blanks at both ends.
std::string_view Trim(std::string_view text);

/// Takes what stands before the first of these characters; all of the text when none is in it.
std::string_view TakeUntil(std::string_view& text, std::string_view ends);

bool BeginsWith(std::string_view text, std::string_view beginning);

/// Whether the bytes begin as those of an EDID do.
bool BeginsLikeEdid(std::string_view bytes);

/// The same, or whole blocks the first of which has a valid checksum: an EDID whose header is damaged.
bool LooksLikeEdid(std::string_view bytes);

/// The bytes that an EDID takes as it says itself; all of them when they are fewer.
std::size_t GetPromisedSize(std::string_view edid);

/// Appends the bytes that pairs of hexadecimal digits stand for. False, and nothing appended, when the text is anything
/// else; an empty text is no bytes.
bool AppendHex(std::string& bytes, std::string_view digits);

/// The number in hexadecimal digits, at most eight.
std::optional<std::size_t> ReadHexNumber(std::string_view digits);
