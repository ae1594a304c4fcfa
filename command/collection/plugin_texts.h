// Texts that the command recognises in the plug-in's answers: parts of ids and of log messages. A test compares each
// with what the plug-in writes.
#pragma once

#include <string>

/// Stands between the DeviceID of a monitor and the number of a mode in a mode's SettingID: "Monitor 1\ Setting 3".
constexpr const char* kModeOfMonitor = "\\ Setting ";

/// The DeviceID of the monitor that a mode belongs to.
inline std::string GetMonitorOfMode(const std::string& settingId) {
  return settingId.substr(0, settingId.rfind(kModeOfMonitor));
}

/// The log message with which the plug-in begins to serve a class; the class's name and a full stop follow.
constexpr const char* kServesClass = "Received request for class ";

// Messages that end with the text of the configuration that is not a number.
constexpr const char* kNoColourDepth = "Could not convert to integer color quality from";
constexpr const char* kNoWidthOrDepth = "Could not convert to integer horizontal resolution from";
/// Ends with the width of the mode instead of the height, which is what failed.
constexpr const char* kNoHeight = "Could not convert to integer vertical resolution from ";
