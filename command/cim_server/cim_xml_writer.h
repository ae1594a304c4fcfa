// The elements of an answer (DSP0201, CIM in XML), in the order in which its DTD (DSP0203) wants them.
#pragma once

#include <optional>
#include <set>
#include <string>

#include "command/cim_server/cim_model.h"
#include "command/cim_server/xml_writer.h"
#include "command/report/qualifiers.h"

constexpr const char* kCimNamespace[] = {"root", "cimv2"};

/// Which parts of a class or an instance are written.
struct TShown {
  std::optional<std::set<std::string, TNameLess>> properties;  // only these; all when absent
  bool hasQualifiers = false;                                  // of classes
  bool hasOrigin = false;
};

void WriteInstanceName(TXmlWriter& xml, const TObjectName& name);

/// The name with namespace and host.
void WriteInstancePath(TXmlWriter& xml, const TObjectName& name, const std::string& host);

void WriteInstance(TXmlWriter& xml, const TCimInstance& instance, const TShown& shown);

/// The value of a property; nothing when it is null.
void WriteValue(TXmlWriter& xml, const TCimProperty& property);

void WriteClass(TXmlWriter& xml, const TClassDeclaration& declaration, const TShown& shown);

void WriteQualifierDeclaration(TXmlWriter& xml, const TQualifier& qualifier);
