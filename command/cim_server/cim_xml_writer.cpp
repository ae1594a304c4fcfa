#include "command/cim_server/cim_xml_writer.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr const char* kTrue = "TRUE";
constexpr const char* kFalse = "FALSE";

bool IsReference(const TPropertyDeclaration& property) {
  return property.type == NQRXZELT20::TCIMValue::TCIMType::kReference;
}

bool IsShown(const TPropertyDeclaration& property, const TShown& shown) {
  if (shown.ofClass != nullptr && shown.ofClass->Find(property.name) == nullptr) return false;
  return !shown.properties || shown.properties->count(property.name) > 0;
}

const char* GetElement(const TPropertyDeclaration& property) {
  if (IsReference(property)) return "PROPERTY.REFERENCE";
  return property.isArray ? "PROPERTY.ARRAY" : "PROPERTY";
}

/// Opens the element of a property. `target`: the class that a reference refers to. Empty attributes are left out.
void OpenProperty(TXmlWriter& xml, const TPropertyDeclaration& property, const char* target, const char* origin,
                  const char* propagated) {
  const bool isReference = IsReference(property);
  xml.Open(GetElement(property), {{"NAME", property.name},
                                  {"TYPE", isReference ? "" : GetTypeName(property.type, false)},
                                  {"REFERENCECLASS", isReference ? target : ""},
                                  {"CLASSORIGIN", origin},
                                  {"PROPAGATED", propagated}});
}

const char* GetOriginName(const TCimClass& declaration, const TPropertyDeclaration& property, const TShown& shown) {
  return shown.hasOrigin ? declaration.GetOrigin(property).name : "";
}

void WriteReference(TXmlWriter& xml, const TObjectName& name) {
  xml.Open("VALUE.REFERENCE");
  WriteInstanceName(xml, name);
  xml.Close();
}

void WriteQualifier(TXmlWriter& xml, const TQualifier& qualifier, const char* value) {
  xml.Open("QUALIFIER", {{"NAME", qualifier.name},
                         {"TYPE", qualifier.isBoolean ? "boolean" : "string"},
                         {"OVERRIDABLE", qualifier.isOverridable ? "" : "false"}});
  xml.Text("VALUE", value);
  xml.Close();
}

void WriteArrayQualifier(TXmlWriter& xml, const TQualifier& qualifier, const std::vector<const char*>& values) {
  xml.Open("QUALIFIER",
           {{"NAME", qualifier.name}, {"TYPE", "string"}, {"TRANSLATABLE", qualifier.isTranslatable ? "true" : ""}});
  xml.Open("VALUE.ARRAY");
  for (const char* const value : values) xml.Text("VALUE", value);
  xml.Close();
  xml.Close();
}

void WriteQualifiers(TXmlWriter& xml, const TPropertyDeclaration& property) {
  if (property.isKey) WriteQualifier(xml, kKeyQualifier, kTrue);
  if (*property.unit != '\0') WriteQualifier(xml, kUnitsQualifier, property.unit);
  WriteQualifier(xml, kDescriptionQualifier, property.meaning);
  const TValueMap* const map = FindValueMap(property.name);
  if (map == nullptr) return;
  WriteArrayQualifier(xml, kValueMapQualifier, map->values);
  WriteArrayQualifier(xml, kValuesQualifier, map->meanings);
}

void WriteNamespace(TXmlWriter& xml, std::string_view nameSpace) {
  xml.Open("LOCALNAMESPACEPATH");
  while (!nameSpace.empty()) {
    const std::string_view part = nameSpace.substr(0, nameSpace.find('/'));
    xml.Empty("NAMESPACE", {{"NAME", part}});
    nameSpace.remove_prefix(std::min(nameSpace.size(), part.size() + 1));
  }
  xml.Close();
}

}  // namespace

void WriteInstanceName(TXmlWriter& xml, const TObjectName& name) {
  xml.Open("INSTANCENAME", {{"CLASSNAME", name.className}});
  for (const TKeyBinding& key : name.keys) {
    xml.Open("KEYBINDING", {{"NAME", key.name}});
    if (key.reference == nullptr) {
      xml.Text("KEYVALUE", key.value,
               {{"VALUETYPE", key.isNumber ? "numeric" : "string"}, {"TYPE", key.isNumber ? "uint32" : "string"}});
    } else {
      WriteReference(xml, *key.reference);
    }
    xml.Close();
  }
  xml.Close();
}

void WriteInstancePath(TXmlWriter& xml, const TCimInstance& instance, const std::string& host) {
  xml.Open("INSTANCEPATH");
  xml.Open("NAMESPACEPATH");
  xml.Text("HOST", host);
  WriteNamespace(xml, instance.declaration->nameSpace);
  xml.Close();
  WriteInstanceName(xml, instance.name);
  xml.Close();
}

void WriteInstance(TXmlWriter& xml, const TCimInstance& instance, const TShown& shown) {
  xml.Open("INSTANCE", {{"CLASSNAME", instance.declaration->name}});
  for (const TCimProperty& property : instance.properties) {
    if (!IsShown(*property.declaration, shown)) continue;
    OpenProperty(xml, *property.declaration, "", GetOriginName(*instance.declaration, *property.declaration, shown),
                 "");
    WriteValue(xml, property);
    xml.Close();
  }
  xml.Close();
}

void WriteValue(TXmlWriter& xml, const TCimProperty& property) {
  if (property.isNull) return;
  if (IsReference(*property.declaration)) return WriteReference(xml, property.reference);
  if (!property.declaration->isArray) return xml.Text("VALUE", property.values.front());
  xml.Open("VALUE.ARRAY");
  for (const std::string& value : property.values) xml.Text("VALUE", value);
  xml.Close();
}

void WriteClass(TXmlWriter& xml, const TCimClass& declaration, const TShown& shown) {
  xml.Open("CLASS", {{"NAME", declaration.name},
                     {"SUPERCLASS", declaration.superclass == nullptr ? "" : declaration.superclass->name}});
  if (shown.hasQualifiers) {
    if (declaration.kind == EKind::kAssociation) WriteQualifier(xml, kAssociationQualifier, kTrue);
    WriteQualifier(xml, kDescriptionQualifier, declaration.meaning);
  }
  for (const TPropertyDeclaration& property : declaration.properties) {
    const bool isInherited = &declaration.GetOrigin(property) != &declaration;
    if (!IsShown(property, shown) || (isInherited && shown.isLocalOnly)) continue;
    OpenProperty(xml, property, property.target, GetOriginName(declaration, property, shown),
                 isInherited ? "true" : "");
    if (shown.hasQualifiers) WriteQualifiers(xml, property);
    xml.Close();
  }
  xml.Close();
}

void WriteQualifierDeclaration(TXmlWriter& xml, const TCimQualifier& declared) {
  const TQualifier& qualifier = declared.declaration;
  const auto is = [&](EQualifierScope scope) { return (qualifier.scopes & scope) != 0 ? "true" : ""; };
  xml.Open("QUALIFIER.DECLARATION", {{"NAME", qualifier.name},
                                     {"TYPE", qualifier.isBoolean ? "boolean" : "string"},
                                     {"ISARRAY", declared.isArray ? "true" : "false"},
                                     {"OVERRIDABLE", qualifier.isOverridable ? "true" : "false"},
                                     {"TRANSLATABLE", qualifier.isTranslatable ? "true" : ""}});
  xml.Empty("SCOPE", {{"CLASS", is(kClassScope)},
                      {"ASSOCIATION", is(kAssociationScope)},
                      {"REFERENCE", is(kReferenceScope)},
                      {"PROPERTY", is(kPropertyScope)},
                      {"METHOD", is(kMethodScope)},
                      {"PARAMETER", is(kParameterScope)},
                      {"INDICATION", is(kIndicationScope)}});
  if (qualifier.isBoolean) xml.Text("VALUE", kFalse);
  xml.Close();
}
