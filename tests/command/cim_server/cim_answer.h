// Makes an answer of two monitors with a mode each, in the JSON from which the server takes its instances.
#pragma once

#include <algorithm>
#include <string>

inline std::string MakeMonitorJson(const std::string& id) {
  return R"({"class": "QRXSG_DesktopMonitor", "path": "QRXSG_DesktopMonitor.CreationClassName=\"QRXSG_DesktopMonitor\",DeviceID=\")" +
         id + R"(\",SystemCreationClassName=\"S\",SystemName=\"N\"", "properties": {
           "Bandwidth": {"type": "uint32", "value": 140}, "DPMSStandby": {"type": "boolean", "value": true},
           "DeviceID": {"type": "string", "value": ")" +
         id + R"("}, "EDIDVersion": {"type": "real32", "value": 1e+20}, "Name": {"type": "null", "value": null},
           "OperationalStatus": {"type": "uint16[]", "value": [2, 3]}}})";
}

inline std::string MakeModeJson(const std::string& id) {
  return R"({"class": "QRXSG_MonitorResolution", "path": "QRXSG_MonitorResolution.SettingID=\")" + id +
         R"(\"", "properties": {"SettingID": {"type": "string", "value": ")" + id + R"("}}})";
}

inline std::string MakeSettingJson(const std::string& monitor, const std::string& mode) {
  const std::string element = R"(QRXSG_DesktopMonitor.CreationClassName=\"QRXSG_DesktopMonitor\",DeviceID=\")" +
                              monitor + R"(\",SystemCreationClassName=\"S\",SystemName=\"N\")";
  const std::string setting = R"(QRXSG_MonitorResolution.SettingID=\")" + mode + R"(\")";
  const auto escape = [](const std::string& path) {
    std::string escaped;
    for (const char character : path) escaped += character == '\\' ? std::string(R"(\\\)") : std::string(1, character);
    return escaped;
  };
  return R"({"class": "QRXSG_MonitorSetting", "path": "QRXSG_MonitorSetting.Element=\")" + escape(element) +
         R"(\",Setting=\")" + escape(setting) + R"(\"", "properties": {"Element": {"type": "reference", "value": ")" +
         element + R"("}, "Setting": {"type": "reference", "value": ")" + setting + R"("}}})";
}

/// `instances`, `outputs`: in JSON, with commas between them. The answer is one line, as a collector sends it.
inline std::string MakeAnswerJson(const std::string& instances, const std::string& outputs = "") {
  std::string text =
      R"({"machine": "N", "requests": [{"instances": [)" + instances + R"(]}], "outputs": [)" + outputs + "]}";
  text.erase(std::remove(text.begin(), text.end(), '\n'), text.end());
  return text + "\n";
}

inline std::string MakeTwoMonitorsJson() {
  return MakeAnswerJson(MakeMonitorJson("one") + "," + MakeMonitorJson("two") + "," + MakeModeJson("a") + "," +
                        MakeModeJson("b") + "," + MakeSettingJson("one", "a") + "," + MakeSettingJson("two", "b"));
}
