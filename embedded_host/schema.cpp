#include "embedded_host/schema.h"

#include <algorithm>

namespace {

typedef NQRXZELT20::TCIMValue::TCIMType TType;

TPropertyDeclaration Key(const char* name, const char* meaning) {
  return {name, TType::kString, false, true, "", meaning, ""};
}

TPropertyDeclaration Reference(const char* name, const char* target, const char* meaning) {
  return {name, TType::kReference, false, true, "", meaning, target};
}

TPropertyDeclaration Scalar(const char* name, TType::ECIMType type, const char* meaning, const char* unit = "") {
  return {name, type, false, false, unit, meaning, ""};
}

TPropertyDeclaration Array(const char* name, TType::ECIMType elementType, const char* meaning) {
  return {name, elementType, true, false, "", meaning, ""};
}

typedef std::vector<TPropertyDeclaration> TProperties;

TProperties operator+(TProperties first, const TProperties& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

constexpr const char* kConfiguration = "the X server's configuration";
constexpr const char* kEdid = "the EDID of the monitor";
constexpr const char* kInstances = "the instances that the host holds of the two classes";

TProperties DeviceKeys() {
  return {
      Key("CreationClassName", "The name of the instance's class."),
      Key("DeviceID", "What tells the device from the others of its class."),
      Key("SystemCreationClassName", "The class of the computer system the device belongs to."),
      Key("SystemName", "The name of that computer system."),
  };
}

// The properties that a controller and its heads have in common, all of them from the X server's configuration.
TProperties VideoProperties() {
  return {
      Scalar("Name", TType::kString, "The board's name, or the Device section's identifier where it gives none."),
      Scalar("DisplayId", TType::kString, "The bus address, or the Device section's identifier where it gives none."),
      Scalar("VideoProcessor", TType::kString, "The graphics chip."),
      Scalar("DACType", TType::kString, "The digital-to-analogue converter."),
      Scalar("VideoRamSize", TType::kUint32, "The size of the video memory.", "bytes"),
      Scalar("CurrentBitsPerPixel", TType::kUint32, "The configured colour depth.", "bits"),
      Scalar("CurrentHorizontalResolution", TType::kUint32, "The width of the configured mode.", "pixels"),
      Scalar("CurrentVerticalResolution", TType::kUint32, "The height of the configured mode.", "lines"),
      Array("MonitorString", TType::kString, "The model of the monitor that the screen names."),
  };
}

TProperties MonitorProperties() {
  return {
      Scalar("Name", TType::kString, "The name descriptor's text."),
      Scalar("Description", TType::kString, "The same text."),
      Scalar("MonitorManufacturer", TType::kString, "The maker's three-letter code."),
      Scalar("SerialNumber", TType::kString, "The serial number descriptor's text."),
      Scalar("ManufacturingDate", TType::kDateTime, "The first day of the week of manufacture, 06:00 local time."),
      Scalar("EDIDVersion", TType::kReal32, "The EDID's version and revision."),
      Scalar("HorizontalImageSize", TType::kUint8, "The width of the picture.", "cm"),
      Scalar("VerticalImageSize", TType::kUint8, "The height of the picture.", "cm"),
      Scalar("Gamma", TType::kReal32, "The display's transfer characteristic."),
      Scalar("DPMSActiveOff", TType::kBoolean, "Whether the monitor knows the active-off state."),
      Scalar("DPMSSuspend", TType::kBoolean, "Whether the monitor knows the suspend state."),
      Scalar("DPMSStandby", TType::kBoolean, "Whether the monitor knows the standby state."),
      Scalar("MinHorizFreq", TType::kUint8, "The lowest line rate.", "kHz"),
      Scalar("MaxHorizFreq", TType::kUint8, "The highest line rate.", "kHz"),
      Scalar("MinVertFreq", TType::kUint8, "The lowest field rate.", "Hz"),
      Scalar("MaxVertFreq", TType::kUint8, "The highest field rate.", "Hz"),
      Scalar("Bandwidth", TType::kUint32, "The highest pixel clock.", "MHz"),
      Scalar("SupportedDigitalInterface", TType::kUint8, "The digital interface code of the DI extension block."),
      Array("OperationalStatus", TType::kUint16, "2: the monitor answered."),
      Array("StatusDescriptions", TType::kString, "The same in words."),
  };
}

}  // namespace

const TPropertyDeclaration* TClassDeclaration::Find(const std::string& propertyName) const {
  // Compare the first letter first, since most names already differ there.
  const auto isNamed = [&](const TPropertyDeclaration& property) {
    return property.name[0] == propertyName[0] && propertyName == property.name;
  };
  const auto found = std::find_if(properties.begin(), properties.end(), isNamed);
  return found == properties.end() ? nullptr : &*found;
}

const std::vector<TClassDeclaration>& GetSchema() {
  static const std::vector<TClassDeclaration> schema = {
      {kVideoControllerClass, EPart::kVideo, EKind::kDevice,
       "A video controller: one for each bus address that the configuration names.", kConfiguration,
       DeviceKeys() + VideoProperties() +
           TProperties{Array("OtherIdentifyingInfo", TType::kString, "The Device section's identifier.")}},
      {kVideoHeadClass, EPart::kVideo, EKind::kDevice,
       "A head of a video controller: one for each usable Device section.", kConfiguration,
       DeviceKeys() + VideoProperties() +
           TProperties{
               Scalar("HeadNumber", TType::kUint8, "The head's number, counted over the whole configuration.")}},
      {kHeadOfVideoControllerClass,
       EPart::kVideo,
       EKind::kAssociation,
       "Links a head to its controller.",
       kInstances,
       {Reference("Antecedent", kVideoControllerClass, "The controller."),
        Reference("Dependent", kVideoHeadClass, "The head.")}},
      {kDesktopMonitorClass, EPart::kMonitors, EKind::kDevice, "A monitor that answers the video BIOS with an EDID.",
       kEdid, DeviceKeys() + MonitorProperties()},
      {kMonitorResolutionClass,
       EPart::kMonitors,
       EKind::kMode,
       "A mode that a monitor's EDID declares as an established or a standard timing.",
       kEdid,
       {Key("SettingID", "The monitor's DeviceID and the number of the mode."),
        Scalar("HorizontalResolution", TType::kUint32, "The width.", "pixels"),
        Scalar("VerticalResolution", TType::kUint32, "The height.", "lines"),
        Scalar("RefreshRate", TType::kUint32, "The field rate.", "Hz"),
        Scalar("ScanMode", TType::kUint16, "5 interlaced, 4 not interlaced, 2 unknown; for all of its modes alike.")}},
      {kMonitorSettingClass,
       EPart::kMonitors,
       EKind::kAssociation,
       "Links a monitor to a mode.",
       kInstances,
       {Reference("Element", kDesktopMonitorClass, "The monitor."),
        Reference("Setting", kMonitorResolutionClass, "The mode.")}},
  };
  return schema;
}

const TClassDeclaration* FindClass(const std::string& name) {
  const std::vector<TClassDeclaration>& schema = GetSchema();
  const auto found = std::find_if(schema.begin(), schema.end(),
                                  [&](const TClassDeclaration& declaration) { return name == declaration.name; });
  return found == schema.end() ? nullptr : &*found;
}

std::string GetTypeName(TType type, bool isArray) {
  const char* name = "null";
  switch (type.GetCode()) {
    case TType::kNull:
      break;
    case TType::kUint8:
      name = "uint8";
      break;
    case TType::kUint16:
      name = "uint16";
      break;
    case TType::kUint32:
      name = "uint32";
      break;
    case TType::kReal32:
      name = "real32";
      break;
    case TType::kBoolean:
      name = "boolean";
      break;
    case TType::kString:
      name = "string";
      break;
    case TType::kDateTime:
      name = "datetime";
      break;
    case TType::kReference:
      name = "reference";
      break;
  }
  return std::string(name) + (isArray ? "[]" : "");
}
