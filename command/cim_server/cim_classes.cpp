#include "command/cim_server/cim_classes.h"

#include <algorithm>
#include <utility>

#include "command/cim_server/cim_outputs.h"
#include "command/cim_server/object_name.h"

namespace {

typedef NQRXZELT20::TCIMValue::TCIMType TType;

/// A class of the DMTF's schema, reduced to the properties that a class of the plug-in has.
struct TSuperclass {
  const char* name;
  const char* subclass;
  const char* meaning;
  std::vector<const char*> properties;
  const char* target;  // the class its references refer to; empty: the superclasses of those of the subclass
};

const TSuperclass kSuperclasses[] = {
    {"CIM_VideoController",
     kVideoControllerClass,
     "A video controller.",
     {"CreationClassName", "DeviceID", "SystemCreationClassName", "SystemName", "Name", "VideoProcessor",
      "CurrentBitsPerPixel", "CurrentHorizontalResolution", "CurrentVerticalResolution", "OtherIdentifyingInfo"},
     ""},
    {"CIM_VideoHead",
     kVideoHeadClass,
     "A head of a video controller.",
     {"CreationClassName", "DeviceID", "SystemCreationClassName", "SystemName", "Name", "CurrentBitsPerPixel",
      "CurrentHorizontalResolution", "CurrentVerticalResolution"},
     ""},
    {"CIM_Dependency",
     kHeadOfVideoControllerClass,
     "An association in which one object depends on another.",
     {"Antecedent", "Dependent"},
     "CIM_ManagedElement"},
    {"CIM_DesktopMonitor",
     kDesktopMonitorClass,
     "A monitor.",
     {"CreationClassName", "DeviceID", "SystemCreationClassName", "SystemName", "Name", "Description", "Bandwidth",
      "OperationalStatus", "StatusDescriptions"},
     ""},
    {"CIM_MonitorResolution",
     kMonitorResolutionClass,
     "A mode of a monitor.",
     {"SettingID", "HorizontalResolution", "VerticalResolution", "RefreshRate", "ScanMode"},
     ""},
    {"CIM_MonitorSetting", kMonitorSettingClass, "Links a monitor to a mode.", {"Element", "Setting"}, ""},
};

const char* FindSuperclassName(std::string_view subclass) {
  const auto* const found = std::find_if(std::begin(kSuperclasses), std::end(kSuperclasses),
                                         [&](const TSuperclass& candidate) { return candidate.subclass == subclass; });
  return found == std::end(kSuperclasses) ? "" : found->name;
}

TCimClass MakeSuperclass(const TSuperclass& superclass) {
  const TClassDeclaration& subclass = *FindClass(superclass.subclass);
  TCimClass made = {subclass};
  made.name = superclass.name;
  made.meaning = superclass.meaning;
  made.properties.clear();
  for (const char* const name : superclass.properties) {
    TPropertyDeclaration property = *subclass.Find(name);
    if (property.type == TType::kReference) {
      property.target = *superclass.target != '\0' ? superclass.target : FindSuperclassName(property.target);
    }
    made.properties.push_back(property);
  }
  return made;
}

TPropertyDeclaration Key(const char* name, const char* meaning) {
  return {name, TType::kString, false, true, "", meaning, ""};
}

TPropertyDeclaration Property(const char* name, TType::ECIMType type, bool isArray, const char* meaning) {
  return {name, type, isArray, false, "", meaning, ""};
}

TCimClass MakeInteropClass(const char* name, const char* meaning, std::vector<TPropertyDeclaration> properties) {
  TCimClass made = {{name, EPart::kVideo, EKind::kDevice, meaning, "the server itself", std::move(properties)}};
  made.nameSpace = kInteropNamespace;
  return made;
}

std::vector<TCimClass> MakeInteropClasses() {
  return {
      MakeInteropClass(
          kObjectManagerClass, "The server.",
          {Key("CreationClassName", "The name of the instance's class."), Key("Name", "The server's name."),
           Key("SystemCreationClassName", "The class of the computer system."),
           Key("SystemName", "The name of that computer system."),
           Property("ElementName", TType::kString, false, "The program."),
           Property("Description", TType::kString, false, "The program and its version."),
           Property("Version", TType::kString, false, "The program's version."),
           Property("GatherStatisticalData", TType::kBoolean, false, "Whether it counts what it does.")}),
      MakeInteropClass(kNamespaceClass, "A namespace of the server.",
                       {Key("CreationClassName", "The name of the instance's class."), Key("Name", "The namespace."),
                        Key("ObjectManagerCreationClassName", "The class of the server."),
                        Key("ObjectManagerName", "The name of the server."),
                        Key("SystemCreationClassName", "The class of the computer system."),
                        Key("SystemName", "The name of that computer system.")}),
      MakeInteropClass("CIM_RegisteredProfile", "A profile of the DMTF that the server conforms to: none.",
                       {Key("InstanceID", "What tells the profile from others."),
                        Property("RegisteredOrganization", TType::kUint16, false, "Who defines the profile."),
                        Property("RegisteredName", TType::kString, false, "The profile's name."),
                        Property("RegisteredVersion", TType::kString, false, "The profile's version."),
                        Property("AdvertiseTypes", TType::kUint16, true, "How the profile is advertised.")}),
  };
}

std::vector<TCimClass> MakeClasses() {
  std::vector<TCimClass> classes;
  classes.reserve(64);  // subclasses point to their superclasses, which must not move
  for (const TSuperclass& superclass : kSuperclasses) classes.push_back(MakeSuperclass(superclass));
  const std::size_t superclassCount = classes.size();
  for (const TClassDeclaration& declaration : GetSchema()) {
    TCimClass made = {declaration};
    for (std::size_t number = 0; number < superclassCount; ++number) {
      if (classes[number].name == std::string_view(FindSuperclassName(made.name))) made.superclass = &classes[number];
    }
    classes.push_back(std::move(made));
  }
  for (TClassDeclaration& declaration : MakeOutputClasses()) classes.push_back({std::move(declaration)});
  for (TCimClass& made : MakeInteropClasses()) classes.push_back(std::move(made));
  return classes;
}

// The values of the DMTF's schema. The values of the interface are the codes of VESA's DI-EXT standard.
const TValueMap kValueMaps[] = {
    {"OperationalStatus",
     {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12", "13", "14", "15", "16", "17", "18"},
     {"Unknown", "Other", "OK", "Degraded", "Stressed", "Predictive Failure", "Error", "Non-Recoverable Error",
      "Starting", "Stopping", "Stopped", "In Service", "No Contact", "Lost Communication", "Aborted", "Dormant",
      "Supporting Entity in Error", "Completed", "Power Mode"}},
    {"ScanMode",
     {"1", "2", "3", "4", "5"},
     {"Other", "Unknown", "Not Supported", "Non-Interlaced Operation", "Interlaced Operation"}},
    {"SupportedDigitalInterface",
     {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10"},
     {"Analog", "Digital, standard not defined", "DVI, single link", "DVI, dual link, high resolution",
      "DVI, dual link, high colour", "DVI for consumer electronics", "Plug and Display", "DFP", "OpenLDI, single link",
      "OpenLDI, dual link", "OpenLDI for consumer electronics"}},
    {"RegisteredOrganization", {"1", "2"}, {"Other", "DMTF"}},
    {"AdvertiseTypes", {"1", "2", "3"}, {"Other", "Not Advertised", "SLP"}},
};

}  // namespace

const TCimClass& TCimClass::GetOrigin(const TPropertyDeclaration& property) const {
  return superclass != nullptr && superclass->Find(property.name) != nullptr ? *superclass : *this;
}

const std::vector<TCimClass>& GetCimClasses() {
  static const std::vector<TCimClass> classes = MakeClasses();
  return classes;
}

const TCimClass* FindCimClass(std::string_view name) {
  const auto& classes = GetCimClasses();
  const auto found = std::find_if(classes.begin(), classes.end(),
                                  [&](const TCimClass& candidate) { return IsSameName(candidate.name, name); });
  return found == classes.end() ? nullptr : &*found;
}

const TValueMap* FindValueMap(std::string_view property) {
  const auto* const found = std::find_if(std::begin(kValueMaps), std::end(kValueMaps),
                                         [&](const TValueMap& candidate) { return candidate.property == property; });
  return found == std::end(kValueMaps) ? nullptr : found;
}
