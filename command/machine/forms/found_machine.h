// What a file of another program says of a machine's outputs, and functions that the readers of such files share.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "command/machine/machine_document.h"

struct TFoundOutput {
  std::string connector = {};  // the output's name in the file; empty if it has none
  std::string edid = {};       // its bytes; empty if there is a fault
  std::string fault = {};      // why it has no usable EDID, such as "is not base64"
};

struct TFoundMachine {
  std::string name = {};  // empty if the file does not name the machine
  std::vector<TFoundOutput> outputs = {};

  /// Keeps one output more than a machine can have, so that the caller sees that there are too many.
  void Add(TFoundOutput output) {
    if (outputs.size() <= kMaxUnits) outputs.push_back(std::move(output));
  }

  /// Adds consecutive EDIDs. Each has as many blocks as it says, and also what follows them unless that begins like an
  /// EDID. A copy of the EDID belongs to it too: a display repeats its bytes if more is read from it than its memory
  /// holds.
  void AddEdids(std::string_view bytes);
};

/// Splits a text into lines.
class TLines {
 public:
  explicit TLines(std::string_view text) : m_rest(text) {}

  /// The next line without its end; false after the last.
  bool Take(std::string_view& line);

 private:
  std::string_view m_rest;
};

constexpr bool IsBlank(char character) { return character == ' ' || character == '\t'; }

/// The text without the blanks at both ends.
std::string_view Trim(std::string_view text);

/// Takes everything before the first of the characters in `ends`; the whole text if it has none of them.
std::string_view TakeUntil(std::string_view& text, std::string_view ends);

bool BeginsWith(std::string_view text, std::string_view beginning);

/// True if the bytes begin with the header of an EDID.
bool BeginsLikeEdid(std::string_view bytes);

/// The same, but also true for whole blocks if the first has a valid checksum: an EDID with a damaged header.
bool LooksLikeEdid(std::string_view bytes);

/// The size in bytes that the EDID itself gives, or that of `edid` if it is smaller.
std::size_t GetPromisedSize(std::string_view edid);

/// Appends the bytes that pairs of hexadecimal digits stand for. Returns false and appends nothing if the text has
/// anything else. An empty text stands for no bytes.
bool AppendHex(std::string& bytes, std::string_view digits);

/// The number that hexadecimal digits stand for, of 32 bits at most; nothing for any other text.
std::optional<std::size_t> ReadHexNumber(std::string_view digits);
