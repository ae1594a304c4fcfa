// The table of an output's keys, from which JSON, rows, their schema and the table in docs/json.md are made.
#pragma once

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

#include "command/collection/outputs.h"

enum class EKeyType { kBoolean, kInteger, kReal, kString, kIntegers, kReals, kStrings };

/// A number as JSON writes it.
struct TNumber {
  std::string text;
};

/// The value of a key; std::monostate if the output has none.
typedef std::variant<std::monostate, bool, TNumber, std::string, std::vector<TNumber>, std::vector<std::string>>
    TKeyValue;

// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): the members have the order of the table's columns
struct TOutputKey {
  const char* group;  // the object or the array of objects that the key belongs to; empty for the output itself
  const char* name;
  EKeyType type;
  const char* unit;     // empty if it has none
  const char* meaning;  // a sentence
  /// `element`: its index in the group's array; 0 if the group is no array.
  TKeyValue (*get)(const TOutput& output, std::size_t element);
  bool hasSerial = false;  // its value comes from a serial number of the EDID
};

/// A key of the output itself, or the members of one object.
struct TKeyGroup {
  const char* name;  // of the object or the array; empty for a key of the output itself
  /// How many objects an output has in the array; null if the group is no array.
  std::size_t (*count)(const TOutput& output);
  std::vector<const TOutputKey*> keys;
};

/// All groups, in the order of the JSON.
const std::vector<TKeyGroup>& GetKeyGroups();

/// True for a key that every output has, as null if it has no value. Other keys are left out then.
bool IsAlwaysThere(const TOutputKey& key);

/// The name of the type in docs and schemas: "integer", "string[]", ...
std::string GetName(EKeyType type);

/// The table for docs/json.md: a line of Markdown for each key.
std::string MakeKeyTable();
