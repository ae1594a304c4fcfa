// The CIM qualifiers that the classes carry, as DSP0004 declares them. MOF and CIM-XML are written from this table.
#pragma once

/// What may carry a qualifier.
enum EQualifierScope : unsigned int {
  kClassScope = 1,
  kAssociationScope = 2,
  kPropertyScope = 4,
  kReferenceScope = 8,
  kMethodScope = 16,
  kParameterScope = 32,
  kIndicationScope = 64,
  kAnyScope = 127
};

struct TQualifier {
  const char* name;
  unsigned int scopes;
  bool isBoolean;       // a Boolean, false by default; otherwise a string, null by default
  bool isOverridable;   // by a subclass
  bool isTranslatable;  // a text for people
};

constexpr TQualifier kKeyQualifier = {"Key", kPropertyScope | kReferenceScope, true, false, false};
constexpr TQualifier kAssociationQualifier = {"Association", kAssociationScope, true, false, false};
constexpr TQualifier kDescriptionQualifier = {"Description", kAnyScope, false, true, true};
constexpr TQualifier kUnitsQualifier = {"Units", kPropertyScope | kMethodScope | kParameterScope, false, true, true};

constexpr TQualifier kQualifiers[] = {kKeyQualifier, kAssociationQualifier, kDescriptionQualifier, kUnitsQualifier};

struct TQualifierScopeName {
  EQualifierScope scope;
  const char* name;
};

constexpr TQualifierScopeName kQualifierScopes[] = {
    {kClassScope, "class"},           {kAssociationScope, "association"}, {kReferenceScope, "reference"},
    {kPropertyScope, "property"},     {kMethodScope, "method"},           {kParameterScope, "parameter"},
    {kIndicationScope, "indication"},
};
