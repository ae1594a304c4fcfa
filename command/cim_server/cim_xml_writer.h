// Writes the elements of an answer (DSP0201, CIM in XML) in the order of the DTD (DSP0203).
#pragma once

#include <optional>
#include <set>
#include <string>

#include "command/cim_server/cim_model.h"
#include "command/cim_server/xml_writer.h"
#include "command/report/qualifiers.h"

/// A qualifier of the classes that clients see.
struct TCimQualifier {
  TQualifier declaration;
  bool isArray;
};

constexpr TQualifier kValueMapQualifier = {"ValueMap", kPropertyScope | kMethodScope | kParameterScope, false, true,
                                           false};
constexpr TQualifier kValuesQualifier = {"Values", kPropertyScope | kMethodScope | kParameterScope, false, true, true};

constexpr TCimQualifier kCimQualifiers[] = {{kKeyQualifier, false},         {kAssociationQualifier, false},
                                            {kDescriptionQualifier, false}, {kUnitsQualifier, false},
                                            {kValueMapQualifier, true},     {kValuesQualifier, true}};

/// Which parts of a class or an instance are written.
struct TShown {
  std::optional<std::set<std::string, TNameLess>> properties;  // only these; all if absent
  const TCimClass* ofClass = nullptr;                          // only the properties of this class; all if null
  bool isLocalOnly = false;                                    // for classes: without the superclass's properties
  bool hasQualifiers = false;                                  // for classes
  bool hasOrigin = false;
};

void WriteInstanceName(TXmlWriter& xml, const TObjectName& name);

/// The instance's name with namespace and host.
void WriteInstancePath(TXmlWriter& xml, const TCimInstance& instance, const std::string& host);

void WriteInstance(TXmlWriter& xml, const TCimInstance& instance, const TShown& shown);

/// Writes the value of a property, or nothing if it is null.
void WriteValue(TXmlWriter& xml, const TCimProperty& property);

void WriteClass(TXmlWriter& xml, const TCimClass& declaration, const TShown& shown);

void WriteQualifierDeclaration(TXmlWriter& xml, const TCimQualifier& declared);
