// The name of a CIM instance: its class and its keys.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct TObjectName;

struct TKeyBinding {
  std::string name;   // empty when a client leaves it out, as it may for a class with one key
  std::string value;  // of a key that is no reference
  std::shared_ptr<const TObjectName> reference = nullptr;
  bool isNumber = false;  // of a uint32, else of a text; makes no difference to what the name names
};

struct TObjectName {
  std::string className;
  std::vector<TKeyBinding> keys;
};

/// Reads an object path as the host writes it: Class.Key="value",Key="value", with \ and " escaped by a backslash in a
/// value, even where the value is itself a path. Throws std::invalid_argument for any other text.
TObjectName ParseObjectPath(const std::string& path);

/// Class, property and namespace names are compared without regard to case.
bool IsSameName(std::string_view one, std::string_view other);

/// Orders names without regard to case.
struct TNameLess {
  bool operator()(std::string_view one, std::string_view other) const;
};

/// A text that is the same for two names of one instance, and for no other: the class, and the keys in ascending order
/// of their names. Case, order and a name left out make no difference.
std::string MakeIdentity(const TObjectName& name);

/// The name with the backslash taken away before each character of a key's value that it escapes: wbemcli sends the
/// keys of a path as it printed them, which is with escapes.
TObjectName UndoEscapes(const TObjectName& name);

/// The name with each line end in a key's value as a line feed: so it comes back from a client that writes the carriage
/// return of a value as it is, since XML readers join line ends.
TObjectName JoinLineEnds(const TObjectName& name);
