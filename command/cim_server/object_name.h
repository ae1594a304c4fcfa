// The name of a CIM instance: its class and its keys.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct TObjectName;

struct TKeyBinding {
  std::string name;   // empty if a client leaves it out, as it may for a class with one key
  std::string value;  // empty for a reference
  std::shared_ptr<const TObjectName> reference = nullptr;
  bool isNumber = false;  // a uint32, otherwise a text; does not matter for finding the instance
};

struct TObjectName {
  std::string className;
  std::vector<TKeyBinding> keys;
};

/// Reads an object path as the host writes it: Class.Key="value",Key="value". In a value, which may itself be a path, a
/// backslash escapes \ and ". Throws std::invalid_argument for any other text.
TObjectName ParseObjectPath(const std::string& path);

/// Compares names of classes, properties or namespaces, ignoring case.
bool IsSameName(std::string_view one, std::string_view other);

/// Orders names, ignoring case.
struct TNameLess {
  bool operator()(std::string_view one, std::string_view other) const;
};

/// A text that is equal for all names of one instance and different for other instances: the class, and the keys sorted
/// by name. Case and order, and leaving out the name of the only key, make no difference.
std::string MakeIdentity(const TObjectName& name);

/// The name without the backslashes that escape characters in values of keys: wbemcli sends keys as it printed them,
/// with escapes.
TObjectName UndoEscapes(const TObjectName& name);

/// The name with a line feed for each line end in values of keys. A name comes back like that from a client that does
/// not escape carriage returns, since XML readers turn every line end into a line feed.
TObjectName JoinLineEnds(const TObjectName& name);
