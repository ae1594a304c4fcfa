// The classes that CIM clients see: the plug-in's with the superclasses that generic tools ask for, those of the
// outputs, and those with which the server describes itself.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "embedded_host/schema.h"

constexpr const char* kCimNamespace = "root/cimv2";
constexpr const char* kInteropNamespace = "root/interop";

constexpr const char* kObjectManagerClass = "CIM_ObjectManager";
constexpr const char* kNamespaceClass = "CIM_Namespace";

struct TCimClass : TClassDeclaration {
  const char* nameSpace = kCimNamespace;
  const TCimClass* superclass = nullptr;  // it has no superclass itself

  /// The class that declares the property: this one or its superclass.
  const TCimClass& GetOrigin(const TPropertyDeclaration& property) const;
  /// True for this class and its superclass.
  bool IsA(const TCimClass& other) const { return this == &other || superclass == &other; }
};

/// All classes of both namespaces, a superclass before its subclass.
const std::vector<TCimClass>& GetCimClasses();

/// The class of that name, ignoring case; null if there is none.
const TCimClass* FindCimClass(std::string_view name);

/// What the values of a property mean (the qualifiers ValueMap and Values).
struct TValueMap {
  const char* property;
  std::vector<const char*> values;    // of ValueMap
  std::vector<const char*> meanings;  // of Values, in the same order
};

/// Null if the property's values need no explanation.
const TValueMap* FindValueMap(std::string_view property);
