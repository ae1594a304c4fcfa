// Writes the monitors of many machines by age, by model and by largest mode, and those with doubtful serial numbers.
#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "command/report/html/fleet_links.h"
#include "command/report/html/fleet_machine.h"
#include "command/report/html/html_pieces.h"

class TFleetMonitors {
 public:
  // The ids of the sections and of their folded parts, which browsers open for a link.
  static constexpr const char* kAges = "ages";
  static constexpr const char* kModels = "models";
  static constexpr const char* kModes = "modes";
  static constexpr const char* kDoubtful = "doubtful";
  static constexpr const char* kAllMonitors = "all-monitors";
  static constexpr const char* kAllModels = "all-models";
  static constexpr const char* kUndated = "undated";

  /// `machines`, `links`: the page's; they must outlive this.
  TFleetMonitors(const std::deque<TFleetMachine>& machines, const TFleetLinks& links);

  std::size_t CountMonitors() const { return m_byAge.size(); }
  std::size_t CountUndated() const;
  std::size_t CountModels() const { return m_models.size(); }
  std::size_t CountDoubtful() const { return m_doubtful.size(); }

  /// True if several machines have a monitor with its serial number.
  bool IsDoubtful(const TFleetMonitor& monitor) const { return m_doubtful.count(GetNumber(monitor)) != 0; }

  /// Writes the oldest first, under the years.
  void PutAges(THtmlPieces& page) const;

  /// Write the most frequent first, each with the machines that have it.
  void PutModels(THtmlPieces& page) const;
  void PutModes(THtmlPieces& page) const;

  /// Writes the serial numbers that several machines have.
  void PutDoubtful(THtmlPieces& page) const;

 private:
  /// The positions of a machine and of a monitor in it.
  struct TPlace {
    std::size_t machine, monitor;
  };

  typedef std::vector<TPlace>::const_iterator TPlaceIterator;
  /// Machines grouped by one or two texts, in their order. A machine appears once for each of its monitors.
  typedef std::map<std::pair<std::string, std::string>, std::vector<std::size_t>> TGroups;
  typedef TGroups::value_type TGroup;

  const TFleetMonitor& Get(const TPlace& place) const { return m_machines[place.machine].monitors[place.monitor]; }
  static TGroups::key_type GetNumber(const TFleetMonitor& monitor) { return {monitor.identity, monitor.serialNumber}; }
  void FindDoubtful();
  TMarkup MakeYear(TPlaceIterator first, TPlaceIterator last) const;
  /// `columns`: the names of a group's texts. `id`: the table's.
  void PutGroups(THtmlPieces& page, const TGroups& groups, const std::vector<const char*>& columns,
                 const char* id) const;
  void PutGroup(THtmlPieces& page, const TGroup& group, bool hasTwoTexts) const;

  const std::deque<TFleetMachine>& m_machines;
  const TFleetLinks& m_links;
  std::vector<TPlace> m_byAge;
  TGroups m_models;    // by maker and model
  TGroups m_modes;     // by largest mode
  TGroups m_doubtful;  // by identity and serial number
};
