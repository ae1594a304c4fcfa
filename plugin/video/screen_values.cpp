// Reads what a Screen section gives the device that it uses: colour depth, resolution, and the name of its monitor.
#include <algorithm>
#include <boost/lexical_cast.hpp>

#include "plugin/collector/data_to_string.h"
#include "plugin/video/video_info.h"

using NQRXZELT20::TCIMValue;

namespace {

const std::string kDepth = "Depth";
const std::string kDefaultDepth = "DefaultDepth";
const std::string kModes = "Modes";

bool IsDepthKey(const std::string& key) { return key.find(kDepth) != std::string::npos; }

std::string GetValue(const SectionRecord& record, const std::string& key) {
  const auto found = record.find(key);
  return found == record.end() ? std::string() : found->second;
}

/// The width and the height of a mode such as "1024x768". A mode without an x is taken as a width. One such as "x768",
/// whose only x comes first, has no pieces, so neither width nor height.
std::vector<std::string> SplitMode(const std::string& mode) {
  if (mode.find('x') == std::string::npos) return {mode};
  return TXConfig::MultiStringTok(mode, "x");
}

}  // namespace

void TVideoInfo::GetScreenValues(const std::vector<SectionRecord>& screens, const std::string& deviceIdentifier,
                                 std::string& monitorName) {
  const auto usesDevice = [&](const SectionRecord& record) {
    const auto device = record.find("Device");
    return device != record.end() && device->second == deviceIdentifier;
  };
  const auto screen = std::find_if(screens.begin(), screens.end(), usesDevice);
  if (screen == screens.end()) return;
  const std::string defaultDepth = GetValue(*screen, kDefaultDepth);
  if (defaultDepth.empty()) {
    GetScreenWithoutDefaultDepth(*screen);
  } else {
    GetScreenOfDefaultDepth(*screen, defaultDepth, monitorName);
  }
}

void TVideoInfo::GetScreenOfDefaultDepth(const SectionRecord& screen, const std::string& defaultDepth,
                                         std::string& monitorName) {
  const auto monitor = screen.find("Monitor");
  if (monitor != screen.end()) monitorName = monitor->second;

  const auto isConverted = [&](const SectionRecord::value_type& entry) {
    return IsDepthKey(entry.first) && entry.first != kDefaultDepth && entry.second == defaultDepth &&
           InsertNumber("CurrentBitsPerPixel", entry.second,
                        "Could not convert to integer color quality from" + dataToString(entry.second));
  };
  const auto depth = std::find_if(screen.begin(), screen.end(), isConverted);
  if (depth == screen.end()) return;
  // The modes of the same number: they belong to this depth as long as every Display subsection has one line of each.
  const std::string suffix = depth->first.substr(depth->first.find(kDepth) + kDepth.size());
  const auto modes = screen.find(kModes + suffix);
  if (!suffix.empty() && modes != screen.end()) GetModeValues(modes->second);
}

void TVideoInfo::GetScreenWithoutDefaultDepth(const SectionRecord& screen) {
  // Neither resolution nor monitor comes from such a screen: reading them would add properties to answers that never
  // had them. A depth that fails is called a resolution: a search of the log for this text would miss another.
  for (const auto& [key, value] : screen) {
    if (!IsDepthKey(key)) continue;
    InsertNumber("CurrentBitsPerPixel", value,
                 "Could not convert to integer horizontal resolution from" + dataToString(value));
  }
}

/// Takes the first of the modes: its width and its height.
void TVideoInfo::GetModeValues(const std::string& modes) {
  const std::vector<std::string> listed = MultiStringTok(RemoveSpaces(modes.c_str()), " ");
  const std::vector<std::string> sides = SplitMode(listed.empty() ? modes : listed[0]);
  if (sides.empty()) return;

  if (!sides[0].empty()) {
    InsertNumber("CurrentHorizontalResolution", sides[0],
                 "Could not convert to integer horizontal resolution from" + dataToString(sides[0]));
  }
  if (sides.size() < 2) return;
  // The message names the width, not the height that failed: a search of the log for this text would miss another.
  InsertNumber("CurrentVerticalResolution", sides[1],
               "Could not convert to integer vertical resolution from " + dataToString(sides[0]));
}

/// Inserts the text as a number; if it is not one, logs `failure` and returns false.
bool TVideoInfo::InsertNumber(const char* name, const std::string& text, const std::string& failure) {
  try {
    Insert(name, TCIMValue(boost::lexical_cast<unsigned int>(text)));
    return true;
  } catch (const boost::bad_lexical_cast&) {
    WriteDebug(failure);
    return false;
  }
}
