#include "command/report/schema_document.h"

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>

#include "command/base/text_encoding.h"
#include "command/collection/collection.h"
#include "command/collection/output_keys.h"
#include "command/report/json_schema.h"
#include "command/report/qualifiers.h"
#include "embedded_host/schema.h"

using nlohmann::ordered_json;

namespace {

std::string Pad(std::string text, std::size_t width) {
  text.resize(std::max(width, text.size()), ' ');
  return text;
}

std::string GetType(const TPropertyDeclaration& property) { return GetTypeName(property.type, property.isArray); }

/// "key", or the unit, or nothing. A key has no unit.
std::string GetRemark(const TPropertyDeclaration& property) { return property.isKey ? "key" : property.unit; }

std::string MakeMofProperty(const TPropertyDeclaration& property) {
  std::string text = property.isKey ? "    [Key, " : "    [";
  if (*property.unit != '\0') text += "Units(" + QuoteMof(property.unit) + "), ";
  text += "Description(" + QuoteMof(property.meaning) + ")]\n    ";
  if (*property.target != '\0') return text + property.target + " REF " + property.name + ";\n";
  return text + GetTypeName(property.type, false) + " " + property.name + (property.isArray ? "[]" : "") + ";\n";
}

std::string JoinScopes(unsigned int scopes) {
  if (scopes == kAnyScope) return "any";
  std::vector<std::string> names;
  for (const TQualifierScopeName& scope : kQualifierScopes) {
    if ((scopes & scope.scope) != 0) names.emplace_back(scope.name);
  }
  return Join(names);
}

std::string MakeMofQualifier(const TQualifier& qualifier) {
  return std::string("Qualifier ") + qualifier.name +
         (qualifier.isBoolean ? " : boolean = false" : " : string = null") + ",\n    Scope(" +
         JoinScopes(qualifier.scopes) + "),\n    Flavor(" +
         (qualifier.isOverridable ? "EnableOverride" : "DisableOverride") +
         (qualifier.isTranslatable ? ", Translatable" : "") + ");\n";
}

ordered_json MakeObject(const ordered_json& properties) {
  ordered_json required = ordered_json::array();
  for (const auto& [name, schema] : properties.items()) required.push_back(name);
  return {{"type", "object"}, {"properties", properties}, {"required", required}, {"additionalProperties", false}};
}

ordered_json MakeArray(const ordered_json& items) { return {{"type", "array"}, {"items", items}}; }

ordered_json MakeUnsigned(std::uint32_t max) { return {{"type", "integer"}, {"minimum", 0}, {"maximum", max}}; }

/// An object that may lack some of its properties.
ordered_json MakeObject(const ordered_json& properties, const ordered_json& required) {
  ordered_json schema = MakeObject(properties);
  schema["required"] = required;
  return schema;
}

/// The JSON form of a value of a type.
ordered_json MakeValue(NQRXZELT20::TCIMValue::TCIMType::ECIMType type) {
  typedef NQRXZELT20::TCIMValue::TCIMType TType;
  switch (type) {
    case TType::kBoolean:
      return {{"type", "boolean"}};
    case TType::kUint8:
      return MakeUnsigned(std::numeric_limits<std::uint8_t>::max());
    case TType::kUint16:
      return MakeUnsigned(std::numeric_limits<std::uint16_t>::max());
    case TType::kUint32:
      return MakeUnsigned(std::numeric_limits<std::uint32_t>::max());
    case TType::kReal32:
      return {{"type", "number"}};
    case TType::kDateTime:
      return {{"type", "string"}, {"pattern", "^[0-9]{14}\\.[0-9]{6}[+-][0-9]{3}$"}};
    default:
      return {{"type", "string"}};
  }
}

ordered_json MakePropertyValue(const TPropertyDeclaration& property) {
  const ordered_json value = MakeValue(property.type);
  return property.isArray ? MakeArray(value) : value;
}

ordered_json MakePropertySchema(const TPropertyDeclaration& property) {
  ordered_json schema = MakeObject({{"type", {{"const", GetType(property)}}}, {"value", MakePropertyValue(property)}});
  schema["description"] = property.meaning;
  return schema;
}

ordered_json MakeInstanceSchema(const TClassDeclaration& declaration) {
  ordered_json properties;
  ordered_json keys = ordered_json::array();
  for (const TPropertyDeclaration& property : declaration.properties) {
    properties[property.name] = MakePropertySchema(property);
    if (property.isKey) keys.push_back(property.name);
  }
  ordered_json schema = MakeObject(
      {{"class", {{"const", declaration.name}}},
       {"path", {{"type", "string"}}},
       {"properties",
        {{"type", "object"}, {"properties", properties}, {"required", keys}, {"additionalProperties", false}}}});
  schema["description"] = declaration.meaning;
  return schema;
}

/// The JSON form of a key's value.
ordered_json MakeKeySchema(const TOutputKey& key) {
  const std::string type = GetName(key.type);
  const std::size_t brackets = type.find("[]");
  ordered_json value = {{"type", type.substr(0, brackets)}};
  if (key.type == EKeyType::kString && IsAlwaysThere(key)) value["type"] = {"string", "null"};
  if (type[0] != 's' && type[0] != 'b') value["minimum"] = 0;
  ordered_json schema = brackets == std::string::npos ? value : MakeArray(value);
  schema["description"] = key.meaning + (*key.unit == '\0' ? "" : " In " + std::string(key.unit) + ".");
  return schema;
}

/// The keys of an output, which the command itself reads from the EDID.
ordered_json MakeOutputMembers() {
  ordered_json members = ordered_json::object();
  for (const TKeyGroup& group : GetKeyGroups()) {
    ordered_json keys = ordered_json::object();
    for (const TOutputKey* const key : group.keys) keys[key->name] = MakeKeySchema(*key);
    if (*group.name == '\0') {
      members.update(keys);
    } else {
      const ordered_json object = MakeObject(keys, ordered_json::array());
      members[group.name] = group.count == nullptr ? object : MakeArray(object);
    }
  }
  return members;
}

/// A row of --format rows: an instance with its properties as plain values, or an output. `required`: in addition to
/// the members of every row.
ordered_json MakeRowSchema(const std::string& className, const ordered_json& members, const ordered_json& required) {
  const ordered_json string = {{"type", "string"}};
  ordered_json all = {
      {"machine", string}, {"collected", string}, {"version", string}, {"class", {{"const", className}}}};
  all.update(members);
  ordered_json names = {"machine", "version", "class"};
  names.insert(names.end(), required.begin(), required.end());
  return MakeObject(all, names);
}

ordered_json MakeRowSchemas() {
  ordered_json rows = ordered_json::array();
  for (const TClassDeclaration& declaration : GetSchema()) {
    ordered_json members = {{"path", {{"type", "string"}}}};
    ordered_json required = {"path"};
    for (const TPropertyDeclaration& property : declaration.properties) {
      members[property.name] = MakePropertyValue(property);
      if (property.isKey) required.push_back(property.name);
    }
    rows.push_back(MakeRowSchema(declaration.name, members, required));
  }
  rows.push_back(MakeRowSchema("output", MakeOutputMembers(), {"unit", "deviceID"}));
  return rows;
}

}  // namespace

std::string MakeSchemaText() {
  std::string text;
  for (const TClassDeclaration& declaration : GetSchema()) {
    text += (text.empty() ? "" : "\n") + std::string(declaration.name) + "\n  " + declaration.meaning + "\n  From " +
            declaration.source + ".\n";
    for (const TPropertyDeclaration& property : declaration.properties) {
      text += "  " + Pad(property.name, 30) + Pad(GetType(property), 10) + GetRemark(property) + "\n      " +
              property.meaning + "\n";
    }
  }
  return text;
}

std::string MakeSchemaMof() {
  std::string text;
  for (const TQualifier& qualifier : kQualifiers) text += MakeMofQualifier(qualifier);
  for (const TClassDeclaration& declaration : GetSchema()) {
    text += (text.empty() ? "" : "\n") + std::string(declaration.kind == EKind::kAssociation ? "[Association, " : "[") +
            "Description(" + QuoteMof(declaration.meaning) + ")]\nclass " + declaration.name + " {\n";
    for (const TPropertyDeclaration& property : declaration.properties) text += MakeMofProperty(property);
    text += "};\n";
  }
  return text;
}

std::string MakeJsonSchema() {
  ordered_json schema = ordered_json::parse(kJsonSchema);
  ordered_json& parts = schema["$defs"];
  parts["request"]["properties"]["classes"]["items"]["enum"] = ListAllClasses();
  parts["instance"]["oneOf"] = ordered_json::array();
  for (const TClassDeclaration& declaration : GetSchema()) {
    parts["instance"]["oneOf"].push_back(MakeInstanceSchema(declaration));
  }
  parts["output"]["properties"] = MakeOutputMembers();
  parts["row"]["oneOf"] = MakeRowSchemas();
  return schema.dump(2) + "\n";
}
