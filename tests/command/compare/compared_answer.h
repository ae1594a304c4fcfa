// Makes answers for comparisons, with only what matters there.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "command/compare/answer_reader.h"
#include "command/compare/machine_facts.h"
#include "tests/support/edid_builder.h"

inline const std::vector<std::string> kAllClasses = {"QRXSG_VideoController",       "QRXSG_VideoHead",
                                                     "QRXSG_HeadOfVideoController", "QRXSG_DesktopMonitor",
                                                     "QRXSG_MonitorResolution",     "QRXSG_MonitorSetting"};

/// An answer of all classes, as if it had been read. It begins without devices.
class TAnswerBuilder {
 public:
  TAnswerBuilder() { m_answer.requests = {{kAllClasses, {}}}; }

  TAnswerBuilder& Classes(const std::vector<std::string>& classes) {
    m_answer.requests[0].classes = classes;
    return *this;
  }

  /// Begins another request for the same classes.
  TAnswerBuilder& AskAgain() {
    m_answer.requests.push_back({m_answer.requests.back().classes, {}});
    return *this;
  }

  /// An output with that EDID, and the monitor that the plug-in reports for it.
  TAnswerBuilder& Monitor(const std::vector<std::uint8_t>& edid, const std::string& connector = "",
                          TProperties properties = {}) {
    const std::string id = "Monitor " + std::to_string(m_answer.outputs.size() + 1);
    m_answer.outputs.push_back({id, connector, edid});
    properties["DeviceID"] = id;
    return Instance("QRXSG_DesktopMonitor", properties);
  }

  /// An output that the plug-in does not report.
  TAnswerBuilder& Unlisted(const std::vector<std::uint8_t>& edid) {
    m_answer.outputs.push_back({"", "", edid});
    return *this;
  }

  TAnswerBuilder& Instance(const std::string& className, const TProperties& properties) {
    m_answer.requests.back().instances.push_back({className, properties});
    return *this;
  }

  TAnswerBuilder& Controller(const std::string& displayId, TProperties properties) {
    properties["DisplayId"] = displayId;
    return Instance("QRXSG_VideoController", properties);
  }

  TAnswerBuilder& Head(const std::string& displayId, const std::string& name, TProperties properties) {
    properties["DisplayId"] = displayId;
    properties["DeviceID"] = name;
    return Instance("QRXSG_VideoHead", properties);
  }

  TMachineFacts Build() const { return MakeFacts(m_answer); }

 private:
  TReadAnswer m_answer;
};

/// The EDID of a monitor of the maker ACM with its name and, if they are given, its serial numbers.
inline std::vector<std::uint8_t> MakeEdid(const std::string& name, const std::string& serial, unsigned int number = 0) {
  TEdidBuilder edid;
  edid.Manufacturer("ACM").Name(0, name);
  if (!serial.empty()) edid.Serial(1, serial);
  for (unsigned int byte = 0; byte < edid::kSerialNumberSize; ++byte) {
    edid.Byte(edid::kSerialNumber + byte, number >> (8 * byte) & 0xFFU);
  }
  return edid.Build();
}
