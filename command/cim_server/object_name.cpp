#include "command/cim_server/object_name.h"

#include <algorithm>
#include <stdexcept>

#include "command/base/xml_text.h"
#include "command/cim_server/cim_classes.h"

namespace {

char ToLower(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
}

std::string UndoEscapes(const std::string& text) {
  std::string plain;
  for (std::size_t position = 0; position < text.size(); ++position) {
    if (text[position] == '\\' && position + 1 < text.size()) ++position;
    plain += text[position];
  }
  return plain;
}

/// The position of the closing quote of the value that begins at `first`.
std::size_t FindQuote(const std::string& path, std::size_t first) {
  std::size_t position = first;
  while (position < path.size() && path[position] != '"') position += path[position] == '\\' ? 2 : 1;
  if (position >= path.size()) throw std::invalid_argument("an object path without its last quote: " + path);
  return position;
}

bool IsReference(const TClassDeclaration* declaration, const std::string& key) {
  const TPropertyDeclaration* const property = declaration == nullptr ? nullptr : declaration->Find(key);
  return property != nullptr && property->type == NQRXZELT20::TCIMValue::TCIMType::kReference;
}

std::string ToLower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), static_cast<char (*)(char)>(ToLower));
  return text;
}

/// The text after its length, so that no value can be confused with two.
std::string Measure(const std::string& text) { return std::to_string(text.size()) + ':' + text; }

std::string GetKeyName(const TKeyBinding& key, const TClassDeclaration* declaration) {
  const bool isUnnamed = key.name.empty() && declaration != nullptr && !declaration->properties.empty();
  return ToLower(isUnnamed ? declaration->properties.front().name : key.name);  // keys come first
}

/// The name with `change` applied to each key's value, also in the names that keys refer to.
template <typename TChange>
TObjectName ChangeValues(const TObjectName& name, TChange change) {
  TObjectName changed = name;
  for (TKeyBinding& key : changed.keys) {
    key.value = change(key.value);
    if (key.reference == nullptr) continue;
    key.reference = std::make_shared<const TObjectName>(ChangeValues(*key.reference, change));
  }
  return changed;
}

}  // namespace

TObjectName ParseObjectPath(const std::string& path) {
  TObjectName name;
  std::size_t position = std::min(path.size(), path.find('.'));
  name.className = path.substr(0, position);
  const TClassDeclaration* const declaration = FindCimClass(name.className);
  while (position < path.size()) {
    if (path[position] != (name.keys.empty() ? '.' : ',')) throw std::invalid_argument("not an object path: " + path);
    const std::size_t equals = path.find("=\"", position);
    if (equals == std::string::npos) throw std::invalid_argument("an object path without a value: " + path);
    TKeyBinding key = {path.substr(position + 1, equals - position - 1), ""};
    const std::size_t quote = FindQuote(path, equals + 2);
    key.value = UndoEscapes(path.substr(equals + 2, quote - equals - 2));
    if (IsReference(declaration, key.name)) {
      key.reference = std::make_shared<const TObjectName>(ParseObjectPath(key.value));
      key.value.clear();
    }
    key.value = ToXmlText(key.value);
    name.keys.push_back(std::move(key));
    position = quote + 1;
  }
  return name;
}

bool IsSameName(std::string_view one, std::string_view other) {
  return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                    [](char left, char right) { return ToLower(left) == ToLower(right); });
}

bool TNameLess::operator()(std::string_view one, std::string_view other) const {
  return std::lexicographical_compare(one.begin(), one.end(), other.begin(), other.end(),
                                      [](char left, char right) { return ToLower(left) < ToLower(right); });
}

std::string MakeIdentity(const TObjectName& name) {
  const TClassDeclaration* const declaration = FindCimClass(name.className);
  std::vector<std::string> keys;
  for (const TKeyBinding& key : name.keys) {
    const std::string value = key.reference == nullptr ? '"' + key.value : '&' + MakeIdentity(*key.reference);
    keys.push_back(Measure(GetKeyName(key, declaration)) + Measure(value));
  }
  std::sort(keys.begin(), keys.end());
  std::string identity = Measure(ToLower(name.className));
  for (const std::string& key : keys) identity += key;
  return identity;
}

TObjectName UndoEscapes(const TObjectName& name) {
  return ChangeValues(name, [](const std::string& text) { return UndoEscapes(text); });
}

TObjectName JoinLineEnds(const TObjectName& name) {
  return ChangeValues(name, [](const std::string& text) {
    std::string joined;
    for (std::size_t position = 0; position < text.size(); ++position) {
      const bool isReturn = text[position] == '\r';
      if (isReturn && text.compare(position + 1, 1, "\n") == 0) continue;
      joined += isReturn ? '\n' : text[position];
    }
    return joined;
  });
}
