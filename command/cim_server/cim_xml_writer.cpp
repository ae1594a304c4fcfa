#include "command/cim_server/cim_xml_writer.h"

namespace {

constexpr const char* kTrue = "TRUE";
constexpr const char* kFalse = "FALSE";

bool IsReference(const TPropertyDeclaration& property) {
  return property.type == NQRXZELT20::TCIMValue::TCIMType::kReference;
}

bool IsShown(const TPropertyDeclaration& property, const TShown& shown) {
  return !shown.properties || shown.properties->count(property.name) > 0;
}

const char* GetElement(const TPropertyDeclaration& property) {
  if (IsReference(property)) return "PROPERTY.REFERENCE";
  return property.isArray ? "PROPERTY.ARRAY" : "PROPERTY";
}

/// Opens the element of a property, of a class or an instance. `target`: the class that a reference refers to.
void OpenProperty(TXmlWriter& xml, const TPropertyDeclaration& property, const char* target, const char* origin) {
  if (IsReference(property)) {
    xml.Open(GetElement(property), {{"NAME", property.name}, {"REFERENCECLASS", target}, {"CLASSORIGIN", origin}});
  } else {
    xml.Open(GetElement(property),
             {{"NAME", property.name}, {"TYPE", GetTypeName(property.type, false)}, {"CLASSORIGIN", origin}});
  }
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

void WriteQualifiers(TXmlWriter& xml, const TPropertyDeclaration& property) {
  if (property.isKey) WriteQualifier(xml, kKeyQualifier, kTrue);
  if (*property.unit != '\0') WriteQualifier(xml, kUnitsQualifier, property.unit);
  WriteQualifier(xml, kDescriptionQualifier, property.meaning);
}

}  // namespace

void WriteInstanceName(TXmlWriter& xml, const TObjectName& name) {
  xml.Open("INSTANCENAME", {{"CLASSNAME", name.className}});
  for (const TKeyBinding& key : name.keys) {
    xml.Open("KEYBINDING", {{"NAME", key.name}});
    if (key.reference == nullptr) {
      xml.Text("KEYVALUE", key.value, {{"VALUETYPE", "string"}, {"TYPE", "string"}});
    } else {
      WriteReference(xml, *key.reference);
    }
    xml.Close();
  }
  xml.Close();
}

void WriteInstancePath(TXmlWriter& xml, const TObjectName& name, const std::string& host) {
  xml.Open("INSTANCEPATH");
  xml.Open("NAMESPACEPATH");
  xml.Text("HOST", host);
  xml.Open("LOCALNAMESPACEPATH");
  for (const char* const part : kCimNamespace) xml.Empty("NAMESPACE", {{"NAME", part}});
  xml.Close();
  xml.Close();
  WriteInstanceName(xml, name);
  xml.Close();
}

void WriteInstance(TXmlWriter& xml, const TCimInstance& instance, const TShown& shown) {
  xml.Open("INSTANCE", {{"CLASSNAME", instance.declaration->name}});
  for (const TCimProperty& property : instance.properties) {
    if (!IsShown(*property.declaration, shown)) continue;
    OpenProperty(xml, *property.declaration, "", shown.hasOrigin ? instance.declaration->name : "");
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

void WriteClass(TXmlWriter& xml, const TClassDeclaration& declaration, const TShown& shown) {
  xml.Open("CLASS", {{"NAME", declaration.name}});
  if (shown.hasQualifiers) {
    if (declaration.kind == EKind::kAssociation) WriteQualifier(xml, kAssociationQualifier, kTrue);
    WriteQualifier(xml, kDescriptionQualifier, declaration.meaning);
  }
  for (const TPropertyDeclaration& property : declaration.properties) {
    if (!IsShown(property, shown)) continue;
    OpenProperty(xml, property, property.target, shown.hasOrigin ? declaration.name : "");
    if (shown.hasQualifiers) WriteQualifiers(xml, property);
    xml.Close();
  }
  xml.Close();
}

void WriteQualifierDeclaration(TXmlWriter& xml, const TQualifier& qualifier) {
  const auto is = [&](EQualifierScope scope) { return (qualifier.scopes & scope) != 0 ? "true" : ""; };
  xml.Open("QUALIFIER.DECLARATION", {{"NAME", qualifier.name},
                                     {"TYPE", qualifier.isBoolean ? "boolean" : "string"},
                                     {"ISARRAY", "false"},
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
