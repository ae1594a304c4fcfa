// Reads an answer for a comparison: one that displayinfo has written, or one that the plug-in has just given.
//
// Strangers send written ones. They are read piece by piece, the first error ends the reading, and only what a
// comparison needs is kept. Unknown keys are skipped, since a later version may write more.
#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "command/collection/collection.h"

/// Null, a Boolean, a number, a text, or an array of these. A text that the plug-in has just given may have any bytes;
/// a written one has U+FFFD in place of those that are not UTF-8.
typedef nlohmann::json TPropertyValue;
typedef std::map<std::string, TPropertyValue> TProperties;

typedef std::vector<std::uint8_t> TEdid;  // whole 128-byte blocks

struct TReadInstance {
  std::string className;
  TProperties properties;
};

struct TReadRequest {
  std::vector<std::string> classes;
  std::vector<TReadInstance> instances;  // in commit order
};

struct TReadOutput {
  std::string deviceId;   // empty if the plug-in reports no monitor for it
  std::string connector;  // empty if it is unknown
  TEdid edid;             // empty if it has none
};

struct TReadAnswer {
  bool isCapturedMachine = false;      // it is a captured machine instead of an answer, and was not read further
  std::optional<std::string> machine;  // its name; only a line of many has one
  std::optional<std::string> error;    // why the machine could not be asked; the rest is then empty
  std::vector<TReadRequest> requests;
  std::vector<TReadOutput> outputs;
};

/// What the message says if the file is something else.
constexpr const char* kCompareTakes =
    "compare takes captured machines, and what --format json or --machines has written";

/// `place`: the file, or the file and the line: the beginning of a message. Throws TUnusable, which names place and
/// key, if the text is no such answer.
TReadAnswer ReadAnswer(const std::string& text, const std::string& place);

/// Takes what the plug-in has just given, with its texts as they are.
TReadAnswer TakeAnswer(const TAnswer& answer);

/// The answer as it would be after writing and reading it.
TReadAnswer AsWritten(TReadAnswer answer);
