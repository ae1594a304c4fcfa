// Texts of the plug-in that are read back: parts of ids, and of messages in its log. A test holds each against what the
// plug-in writes.
#pragma once

#include <string>

/// Stands between the DeviceID of a monitor and the number of a mode in a mode's SettingID: "Monitor 1\ Setting 3".
constexpr const char* kModeOfMonitor = "\\ Setting ";

/// The DeviceID of the monitor that a mode belongs to.
inline std::string GetMonitorOfMode(const std::string& settingId) {
  return settingId.substr(0, settingId.rfind(kModeOfMonitor));
}

/// Comes before the name of a class, and the full stop after it, in the message that opens the serving of that class.
constexpr const char* kServesClass = "Received request for class ";

// Messages that end with a text of the configuration that is no number.
constexpr const char* kNoColourDepth = "Could not convert to integer color quality from";
constexpr const char* kNoWidthOrDepth = "Could not convert to integer horizontal resolution from";
/// Ends with the width of the mode, not with the height that failed.
constexpr const char* kNoHeight = "Could not convert to integer vertical resolution from ";
