// An answer as a comparison takes it: one that displayinfo has written, or one that the plug-in has just given.
//
// A written one comes from strangers. It is read piece by piece by tables of what is expected where, so that the first
// wrong thing ends the reading, and no more is kept than a comparison needs. Unknown keys are skipped: a later version
// may write more.
#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "command/collection/collection.h"

/// Null, a boolean, a number, a text, or an array of these. A text that the plug-in has just given may have any bytes;
/// in a written one, U+FFFD stands for those that are not UTF-8.
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
  std::string deviceId;   // empty when the plug-in reports no monitor for it
  std::string connector;  // empty when it is not known
  TEdid edid;             // empty when it has none
};

struct TReadAnswer {
  bool isCapturedMachine = false;      // it is no answer but a captured machine, and was read no further
  std::optional<std::string> machine;  // its name, which only a line has
  std::optional<std::string> error;    // why it could not be asked; then the rest is empty
  std::vector<TReadRequest> requests;
  std::vector<TReadOutput> outputs;
};

/// What people are told where something else is found.
constexpr const char* kCompareTakes =
    "compare takes captured machines, and what --format json or --machines has written";

/// `place`: the file, or the file and the line, where a message begins. Throws TUnusable, naming place and key, for a
/// text that is no such answer.
TReadAnswer ReadAnswer(const std::string& text, const std::string& place);

/// What the plug-in has just given, with its texts as they are.
TReadAnswer TakeAnswer(const TAnswer& answer);

/// The same answer as it would be read after it was written.
TReadAnswer AsWritten(TReadAnswer answer);
