// TMonitorInfo: the collector for the monitor classes, from the EDIDs that the video BIOS hands out.
//
// One object serves one request of one class. Its real-mode set-up is opened by the first EDID read and closed at the
// end of GetCIMInstances; nothing outlives the request. EDID buffers are edid::kBufferSize (2048) bytes whatever the
// length of the EDID in them; lengths are in bytes.
#pragma once

#include <boost/shared_ptr.hpp>

#include <functional>
#include <string>
#include <vector>

#include "host/cim_value.h"
#include "plugin/collector/display.h"
#include "plugin/collector/property_map.h"

class TMonitorInfo : public TDisplay {
 public:
  static constexpr const char* kMonitor = "QRXSG_DesktopMonitor";  // the class that the settings look up again

  explicit TMonitorInfo(boost::shared_ptr<NQRXZELT20::ICIMClass> cimClass);
  TMonitorInfo(boost::shared_ptr<NQRXZELT20::ICIMClass> cimClass, NQRXZELT20::TPluginManagerProvider* provider);
  ~TMonitorInfo() override;

  // The request (monitor_info.cpp).

  using TDisplay::GetCIMInstances;

  /// Makes the instances of one of the three monitor classes, in unit order; none for any other class. A TZELTException
  /// of the host loses only the instance being made and is logged; anything else passes through.
  std::vector<NQRXZELT20::ICIMInstance*> GetCIMInstances(std::string className) override;

  /// The id of the monitor in hand, such as "Monitor 1".
  std::string GetDeviceId();
  void SetDeviceId(std::string deviceId);

  /// Array values of strings and of 16-bit words.
  NQRXZELT20::TCIMValue GetStrCimValue(std::vector<std::string> strings);
  NQRXZELT20::TCIMValue GetWordCimValue(std::vector<unsigned short> words);

  // Desktop monitors (monitor_info.cpp).

  /// One map per monitor: units 0, 1, 2, ... until one has no EDID, repeats the one before, or cannot be decoded.
  std::vector<PropertyMap> GetMonitorInfo();

  /// Inserts the key properties that all monitors of this system share; they are empty if the host has no answer.
  /// Always 0.
  int GetDeviceKeyProperties();

  // Monitor resolutions (monitor_resolutions.cpp).

  /// One map per mode that an EDID declares, for units 0, 1, 2, ... until one has no EDID or repeats the one before.
  /// Unlike for monitors, a unit whose EDID cannot be decoded gives no modes and does not end the walk.
  std::vector<PropertyMap> GetMonitorResolution();

  /// The modes of one EDID. Their setting ids begin with the device id that was set before, and count from 1. Returns
  /// none, and writes a message, if it is not an EDID of version 1 or no device id is set.
  std::vector<PropertyMap> GetResolutionInfo(unsigned char* edid, unsigned int length);

  // Monitor settings (monitor_settings.cpp).

  /// One map for each pair of a monitor and one of its modes that the host holds. A TZELTException of the host ends the
  /// pass, is logged, and leaves the pairs made before; anything else passes through.
  std::vector<PropertyMap> MakeMonitorSettingAssociation();

  // Reading an EDID through the video BIOS (edid_reading.cpp).

  /// Reads the EDID of a controller unit, at most 15 blocks of it, into a buffer of 2048 bytes. `length` becomes the
  /// number of bytes that the BIOS answered, or stays as it is if the BIOS was not reached. Returns true if there is no
  /// EDID. Returns false if there are bytes, or if real mode could not be set up and the buffer's first byte is 0.
  bool ReadEdid(int unit, unsigned char* edid, unsigned int* length);

  // Decoding an EDID into the current property map (edid_decoding.cpp). edid_properties.h says what the bytes mean;
  // these functions insert the values, and log.

  /// 0: all properties that the EDID holds were inserted. 1: it is not an EDID of version 1, nothing was inserted.
  int ParseMonitorEdid(unsigned char* edid, unsigned int length);

  /// Returns 0 for the header and version of an EDID 1.x; otherwise logs and returns 1. Does not check the checksum.
  unsigned int CheckEdidHeader(unsigned char* edid, unsigned int length);

  /// Decodes the two bytes at `p` into three letters; leaves `id` as it is when they are 0.
  void GetManufacturerId(unsigned char* p, std::string& id);

  /// When that week of that year began, as given by DecodeManufacturingDate (edid_properties.h).
  NQRXZELT20::TCIMDateTime GetMfgDateTime(unsigned char week, unsigned short year);

  /// The tag of an 18-byte descriptor slot, 0 to 255; kReservedTag or kDetailedTiming (edid_properties.h) for a slot
  /// without one. Every call for a slot that is not a detailed timing writes a line to the log.
  int GetEdidTag(unsigned char* descriptor);

  /// Assigns the text of an 18-byte descriptor slot, at most 13 bytes up to a line feed or a zero byte.
  void GetMonitorString(unsigned char* descriptor, std::string& text);

  /// Inserts the range limits of an 18-byte descriptor slot.
  void GetMonitorSyncData(unsigned char* descriptor);

  /// The properties decoded so far.
  const PropertyMap& GetProperties() const { return m_properties; }

 private:
  /// Gets one monitor's EDID, of `length` bytes in its buffer; `deviceId` is "Monitor 1" for unit 0. False ends the
  /// walk.
  typedef std::function<bool(const std::string& deviceId, unsigned char* edid, unsigned int length)> TTakeEdid;

  void WalkUnits(const TTakeEdid& take);
  bool PrepareRealMode();

  unsigned char* FindDescriptor(unsigned char* edid, int tag);
  std::string FindText(unsigned char* edid, int tag);

  void Insert(const char* name, const NQRXZELT20::TCIMValue& value);
  void Insert(const PropertyMap& properties);
  void InsertText(const char* name, const std::string& text);

  bool m_lrmiReady;  // set only by GetCIMInstances and a successful LRMI_init
  std::string m_deviceId;
  PropertyMap m_properties;
};
