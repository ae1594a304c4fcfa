// Answers to compare, made of what matters in them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "command/base/base64.h"
#include "command/compare/answer_reader.h"
#include "command/compare/machine_facts.h"
#include "tests/support/edid_builder.h"

inline const std::set<std::string> kAllClasses = {"QRXSG_VideoController",       "QRXSG_VideoHead",
                                                  "QRXSG_HeadOfVideoController", "QRXSG_DesktopMonitor",
                                                  "QRXSG_MonitorResolution",     "QRXSG_MonitorSetting"};

/// An answer of all classes, as it was read; it begins without any device.
class TAnswerBuilder {
 public:
  TAnswerBuilder() { m_answer.classes = kAllClasses; }

  TAnswerBuilder& Classes(const std::set<std::string>& classes) {
    m_answer.classes = classes;
    return *this;
  }

  /// An output with that EDID, and the monitor that the plug-in reports for it.
  TAnswerBuilder& Monitor(const std::vector<std::uint8_t>& edid, const std::string& connector = "",
                          std::map<std::string, std::string> properties = {}) {
    const std::string id = "Monitor " + std::to_string(m_answer.outputs.size() + 1);
    m_answer.outputs.push_back({id, connector, edid});
    properties["DeviceID"] = '"' + id + '"';
    m_answer.instances.push_back({"QRXSG_DesktopMonitor", "monitor " + id, properties});
    return *this;
  }

  /// An output that the plug-in does not report.
  TAnswerBuilder& Unlisted(const std::vector<std::uint8_t>& edid) {
    m_answer.outputs.push_back({"", "", edid});
    return *this;
  }

  /// `properties`: as JSON text.
  TAnswerBuilder& Instance(const std::string& className, const std::string& path,
                           const std::map<std::string, std::string>& properties) {
    m_answer.instances.push_back({className, path, properties});
    return *this;
  }

  TAnswerBuilder& Controller(const std::string& displayId, std::map<std::string, std::string> properties) {
    properties["DisplayId"] = '"' + displayId + '"';
    return Instance("QRXSG_VideoController", "controller " + displayId, properties);
  }

  TAnswerBuilder& Head(const std::string& displayId, const std::string& name,
                       std::map<std::string, std::string> properties) {
    properties["DisplayId"] = '"' + displayId + '"';
    properties["DeviceID"] = '"' + name + '"';
    return Instance("QRXSG_VideoHead", "head " + name, properties);
  }

  TMachineFacts Build() const { return MakeFacts(m_answer); }

 private:
  TReadAnswer m_answer;
};

/// The EDID of a monitor of the maker ACM that says its name and, where they are given, its serial numbers.
inline std::vector<std::uint8_t> MakeEdid(const std::string& name, const std::string& serial, unsigned int number = 0) {
  TEdidBuilder edid;
  edid.Manufacturer("ACM").Name(0, name);
  if (!serial.empty()) edid.Serial(1, serial);
  for (unsigned int byte = 0; byte < edid::kSerialNumberSize; ++byte) {
    edid.Byte(edid::kSerialNumber + byte, number >> (8 * byte) & 0xFFU);
  }
  return edid.Build();
}
