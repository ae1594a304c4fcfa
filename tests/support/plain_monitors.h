// Finds the monitors and modes in a video BIOS's EDIDs by plain rules; tests compare the monitor classes with them.
#pragma once

#include <algorithm>
#include <bitset>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

class TPlainMonitors {
 public:
  typedef std::vector<std::uint8_t> TEdid;
  typedef std::vector<std::string> TTexts;

  /// `edids`: whole blocks by unit.
  explicit TPlainMonitors(const std::map<unsigned int, TEdid>& edids) {
    // Up to a unit without an EDID, or one whose base block equals that of the unit before.
    for (const auto& [unit, edid] : edids) {
      if (unit != m_walked.size() || edid.empty()) break;
      if (!m_walked.empty() && std::equal(edid.begin(), edid.begin() + 128, m_walked.back().begin())) break;
      m_walked.push_back(edid);
    }
  }

  /// The units of monitors: up to the first invalid EDID.
  TTexts GetDeviceIds() const {
    TTexts ids;
    for (const TEdid& edid : m_walked) {
      if (!Decodes(edid)) break;
      ids.push_back("Monitor " + std::to_string(ids.size() + 1));
    }
    return ids;
  }

  /// The units of modes: one for each established and standard timing.
  TTexts GetSettingIds() const {
    TTexts ids;
    for (std::size_t unit = 0; unit < m_walked.size(); ++unit) {
      const std::size_t count = Decodes(m_walked[unit]) ? CountTimings(m_walked[unit]) : 0;
      for (std::size_t setting = 1; setting <= count; ++setting) {
        ids.push_back("Monitor " + std::to_string(unit + 1) + "\\ Setting " + std::to_string(setting));
      }
    }
    return ids;
  }

 private:
  static bool Decodes(const TEdid& edid) {
    static const TEdid header = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
    return std::equal(header.begin(), header.end(), edid.begin()) && edid[18] == 1;
  }

  static std::size_t CountTimings(const TEdid& edid) {
    std::size_t count = std::bitset<16>(edid[35] * 256U + edid[36]).count();
    for (std::size_t offset = 38; offset < 54; offset += 2) count += edid[offset] > 1 ? 1 : 0;
    return count;
  }

  std::vector<TEdid> m_walked;
};
