// The keys of an output: one table, from which JSON, rows, their schema and the table of docs/json.md are made.
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

/// Of a key; nothing where an output has no value for it.
typedef std::variant<std::monostate, bool, TNumber, std::string, std::vector<TNumber>, std::vector<std::string>>
    TKeyValue;

struct TOutputKey {
  const char* group;  // the object whose member it is, or the array of objects; empty for a key of the output itself
  const char* name;
  EKeyType type;
  const char* unit;     // empty for none
  const char* meaning;  // a sentence
  /// `element`: of the group's array; 0 where the group is none.
  TKeyValue (*get)(const TOutput& output, std::size_t element);
  bool hasSerial = false;  // its value comes from a serial number of the EDID
};

/// A key of the output itself, or the members of one object.
struct TKeyGroup {
  const char* name;  // of the object or the array; empty for a key of the output itself
  /// How many objects an output has in the array; null where the group is no array.
  std::size_t (*count)(const TOutput& output);
  std::vector<const TOutputKey*> keys;
};

/// In the order in which JSON has them.
const std::vector<TKeyGroup>& GetKeyGroups();

/// True for a key that every output has: null where it has no value. Other keys are left out then.
bool IsAlwaysThere(const TOutputKey& key);

/// "integer", "string[]", ...: how docs and schemas call the type.
std::string GetName(EKeyType type);

/// The table of docs/json.md: a line for each key, in Markdown.
std::string MakeKeyTable();
