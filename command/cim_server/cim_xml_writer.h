// The elements of an answer (DSP0201, CIM in XML), in the order in which its DTD (DSP0203) wants them.
#pragma once

#include <optional>
#include <set>
#include <string>

#include "command/cim_server/cim_model.h"
#include "command/cim_server/xml_writer.h"
#include "command/report/qualifiers.h"

/// A qualifier that classes carry for clients.
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
  std::optional<std::set<std::string, TNameLess>> properties;  // only these; all when absent
  const TCimClass* ofClass = nullptr;                          // only the properties of this class; all when null
  bool isLocalOnly = false;                                    // of classes: without what the superclass has
  bool hasQualifiers = false;                                  // of classes
  bool hasOrigin = false;
};

void WriteInstanceName(TXmlWriter& xml, const TObjectName& name);

/// The instance's name with namespace and host.
void WriteInstancePath(TXmlWriter& xml, const TCimInstance& instance, const std::string& host);

void WriteInstance(TXmlWriter& xml, const TCimInstance& instance, const TShown& shown);

/// The value of a property; nothing when it is null.
void WriteValue(TXmlWriter& xml, const TCimProperty& property);

void WriteClass(TXmlWriter& xml, const TCimClass& declaration, const TShown& shown);

void WriteQualifierDeclaration(TXmlWriter& xml, const TCimQualifier& qualifier);
