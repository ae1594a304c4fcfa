// The six CIM classes that the plug-in serves, as one table: what each describes, and every property with its type, its
// unit, whether it is a key, and what it means. The host checks instances against it, and the documentation and the
// reports are made from it.
#pragma once

#include <string>
#include <vector>

#include "host/cim_value.h"

// The names of the classes, for code that needs one of them; code that needs all of them uses GetSchema.
constexpr const char* kVideoControllerClass = "QRXSG_VideoController";
constexpr const char* kVideoHeadClass = "QRXSG_VideoHead";
constexpr const char* kHeadOfVideoControllerClass = "QRXSG_HeadOfVideoController";
constexpr const char* kDesktopMonitorClass = "QRXSG_DesktopMonitor";
constexpr const char* kMonitorResolutionClass = "QRXSG_MonitorResolution";
constexpr const char* kMonitorSettingClass = "QRXSG_MonitorSetting";

/// Where a class comes from: the X server's configuration, or EDIDs.
enum class EPart { kVideo, kMonitors };

/// What an instance describes. Only an association has references.
enum class EKind { kDevice, kMode, kAssociation };

/// One property of a class.
struct TPropertyDeclaration {
  const char* name;
  NQRXZELT20::TCIMValue::TCIMType::ECIMType type;  // for an array: of its elements
  bool isArray;
  bool isKey;
  const char* unit;  // empty if it has none
  const char* meaning;
  const char* target;  // the class that a reference refers to; empty for other types
};

/// One class. Its keys come first, sorted by name as in an object path. The other properties are in the order in which
/// people read them.
struct HOST_API TClassDeclaration {
  const char* name;
  EPart part;
  EKind kind;
  const char* meaning;
  const char* source;  // what its instances are made from
  std::vector<TPropertyDeclaration> properties;

  /// The declaration of that property, or null.
  const TPropertyDeclaration* Find(const std::string& propertyName) const;
};

/// The six classes, in the order in which a collection asks for them by default.
HOST_API const std::vector<TClassDeclaration>& GetSchema();

/// The class of that name, or null.
HOST_API const TClassDeclaration* FindClass(const std::string& name);

/// The CIM name of a type: "uint16", or "uint16[]" for an array.
HOST_API std::string GetTypeName(NQRXZELT20::TCIMValue::TCIMType type, bool isArray);
