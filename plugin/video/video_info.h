// TVideoInfo: the collector for the video classes, from the X server's configuration.
//
// A loaded plug-in reads the configuration once; later requests are answered from what was kept. One object serves one
// request of one class, and requests must not run at the same time.
#pragma once

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

#include "host/cim_value.h"
#include "plugin/collector/display.h"
#include "plugin/collector/property_map.h"
#include "plugin/xconfig/xconfig.h"

class TVideoInfo : public TDisplay, public TXConfig {
 public:
  // The classes that the third one, their association, looks up again.
  static constexpr const char* kController = "QRXSG_VideoController";
  static constexpr const char* kHead = "QRXSG_VideoHead";

  explicit TVideoInfo(boost::shared_ptr<NQRXZELT20::ICIMClass> cimClass);
  TVideoInfo(boost::shared_ptr<NQRXZELT20::ICIMClass> cimClass, NQRXZELT20::TPluginManagerProvider* provider);

  // The request (video_info.cpp).

  using TDisplay::GetCIMInstances;

  /// Makes the instances of one of the three video classes; none for any other class. What the reading of the
  /// configuration throws passes through, and the next request reads it again.
  std::vector<NQRXZELT20::ICIMInstance*> GetCIMInstances(std::string className) override;

  /// Appends one instance per map to `result`. A TZELTException of the host loses only the instance being made and is
  /// logged; anything else passes through.
  void GenerateVideoInstances(std::vector<NQRXZELT20::ICIMInstance*>* result, std::vector<PropertyMap> maps,
                              std::string className);

  /// Reads the configuration and appends a map for each head, and for each controller. Throws boost::bad_lexical_cast
  /// for a VideoRam that is not a number; what was appended before stays.
  void GetVideoInfo(std::vector<PropertyMap>* controllers, std::vector<PropertyMap>* heads);

  // What a Device section and the monitor of its screen give (device_values.cpp).

  /// Writes the record's "BusID" and "Identifier" to the outputs; an output whose key is absent stays as it was.
  void GetDeviceData(const SectionRecord& record, std::string& busId, std::string& identifier);

  /// Inserts the system's key properties; they are empty if the host has no answer. Always 0.
  int GetKeyProperties();

  /// Inserts the record's values under their property names. Returns 1 if it has no "Identifier", otherwise 0. Throws
  /// boost::bad_lexical_cast if "VideoRam" is not a number; the keys before it have then been inserted.
  int GetDeviceValues(const SectionRecord& record);

  /// Inserts the model of the monitor with that identifier, if it has one.
  void GetMonitorValues(const std::vector<SectionRecord>& monitors, const std::string& monitorIdentifier);

  /// An array value of strings.
  NQRXZELT20::TCIMValue GetStrArrayCimValue(std::vector<std::string> strings);

  // What a Screen section gives (screen_values.cpp).

  /// Inserts colour depth and resolution from the first screen that uses the device, and sets `monitorName` to the
  /// screen's monitor; it stays as it is if there is none. A value that is no number is logged and left out.
  void GetScreenValues(const std::vector<SectionRecord>& screens, const std::string& deviceIdentifier,
                       std::string& monitorName);

  // Heads of controllers (head_association.cpp).

  /// One map for each pair of a head and a controller that the host holds with the same display id. A TZELTException of
  /// the host is caught: the pairs that it did not prevent are returned.
  std::vector<PropertyMap> MakeHeadAssociation();

  /// The properties of the current Device section.
  const PropertyMap& GetDeviceProperties() const { return m_deviceProperties; }

 private:
  void ReadDevice(const SectionRecord& device, const std::vector<SectionRecord>& screens,
                  const std::vector<SectionRecord>& monitors, struct TVideoLists& lists);
  void GetScreenOfDefaultDepth(const SectionRecord& screen, const std::string& defaultDepth, std::string& monitorName);
  void GetScreenWithoutDefaultDepth(const SectionRecord& screen);
  void GetModeValues(const std::string& modes);
  bool InsertNumber(const char* name, const std::string& text, const std::string& failure);
  void Insert(const char* name, const NQRXZELT20::TCIMValue& value);

  PropertyMap m_deviceProperties;
};
