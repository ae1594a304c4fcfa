#include "command/report/html/fleet_monitors.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "command/report/html/html_page.h"

namespace {

/// Sorts by year (unknown ones last), then by week.
std::tuple<bool, unsigned int, unsigned int> GetAgeKey(const TFleetMonitor& monitor) {
  return {monitor.year == 0, monitor.year, monitor.week};
}

/// `id`: the target of links to the table; may be empty.
TMarkup MakeFoldedTable(const std::string& summary, const char* id, TMarkup table) {
  return MakeFolded(summary, TMarkup::Element("div", {{"id", id}}, std::move(table)));
}

}  // namespace

TFleetMonitors::TFleetMonitors(const std::deque<TFleetMachine>& machines, const TFleetLinks& links)
    : m_machines(machines), m_links(links) {
  for (std::size_t machine = 0; machine < machines.size(); ++machine) {
    for (std::size_t monitor = 0; monitor < machines[machine].monitors.size(); ++monitor) {
      m_byAge.push_back({machine, monitor});
      const TFleetMonitor& which = machines[machine].monitors[monitor];
      m_models[{which.maker, which.model}].push_back(machine);
      m_modes[{"", which.largestMode.empty() ? "not known" : which.largestMode}].push_back(machine);
    }
  }
  FindDoubtful();
  std::stable_sort(m_byAge.begin(), m_byAge.end(), [this](const TPlace& left, const TPlace& right) {
    return GetAgeKey(Get(left)) < GetAgeKey(Get(right));
  });
}

void TFleetMonitors::FindDoubtful() {
  std::vector<TPlace> places;
  std::copy_if(m_byAge.begin(), m_byAge.end(), std::back_inserter(places),
               [this](const TPlace& place) { return !Get(place).identity.empty(); });
  std::sort(places.begin(), places.end(), [this](const TPlace& left, const TPlace& right) {
    return std::tie(Get(left).identity, left.machine) < std::tie(Get(right).identity, right.machine);
  });
  for (auto first = places.begin(); first != places.end();) {
    const auto last = std::find_if(first, places.end(),
                                   [&](const TPlace& place) { return Get(place).identity != Get(*first).identity; });
    if (first->machine != std::prev(last)->machine) {
      std::vector<std::size_t>& machines = m_doubtful[GetNumber(Get(*first))];
      for (auto place = first; place != last; ++place) machines.push_back(place->machine);
    }
    first = last;
  }
}

std::size_t TFleetMonitors::CountUndated() const {
  return static_cast<std::size_t>(
      std::count_if(m_byAge.begin(), m_byAge.end(), [this](const TPlace& place) { return Get(place).year == 0; }));
}

void TFleetMonitors::PutAges(THtmlPieces& page) const {
  page.Put(MakeHeading(2, "By age of monitor", kAges));
  if (m_byAge.empty()) return page.Put(MakeElement("p", "None: no machine has a monitor."));
  const auto [begin, end] =
      Part(MakeFoldedTable(CountNouns(CountMonitors(), "monitor"), kAllMonitors,
                           MakeTable("The oldest first, unknown years last",
                                     MakeColumnName("Made") + MakeColumnName("Maker") + MakeColumnName("Model") +
                                         MakeColumnName("Serial number") + MakeColumnName("Machine"),
                                     {})),
           "<tbody>");
  page.Put(begin);
  for (auto first = m_byAge.begin(); first != m_byAge.end();) {
    const auto isOther = [&](const TPlace& place) { return Get(place).year != Get(*first).year; };
    const auto last = std::find_if(first, m_byAge.end(), isOther);
    page.Put(MakeYear(first, last));
    first = last;
  }
  page.Put(end.substr(end.find("</table>")));
}

/// The monitors of one year, under a heading row.
TMarkup TFleetMonitors::MakeYear(TPlaceIterator first, TPlaceIterator last) const {
  const unsigned int year = Get(*first).year;
  const std::string name = (year == 0 ? "Year not known" : std::to_string(year)) + ": " +
                           CountNouns(static_cast<std::size_t>(last - first), "monitor");
  TMarkup rows = MakeRow(TMarkup::Element("th", {{"scope", "rowgroup"}, {"colspan", "5"}}, name));
  for (auto place = first; place != last; ++place) {
    const TFleetMonitor& monitor = Get(*place);
    rows +=
        MakeRow(MakeElement("td", monitor.made) + MakeElement("td", monitor.maker) + MakeElement("td", monitor.model) +
                MakeElement("td", monitor.serialNumber) + MakeElement("td", m_links.MakeLink(place->machine)));
  }
  return TMarkup::Element("tbody", {{"id", year == 0 ? kUndated : ""}}, std::move(rows));
}

void TFleetMonitors::PutModels(THtmlPieces& page) const {
  page.Put(MakeHeading(2, "By model", kModels));
  PutGroups(page, m_models, {"Maker", "Model"}, kAllModels);
}

void TFleetMonitors::PutModes(THtmlPieces& page) const {
  page.Put(MakeHeading(2, "By largest mode", kModes));
  PutGroups(page, m_modes, {"Largest mode"}, "");
}

void TFleetMonitors::PutDoubtful(THtmlPieces& page) const {
  page.Put(MakeHeading(2, "Doubtful serial numbers", kDoubtful));
  if (m_doubtful.empty()) return page.Put(MakeElement("p", "None: no serial number is that of several machines."));
  page.Put(MakeElement("p", "Each is that of monitors of several machines."));
  PutGroups(page, m_doubtful, {"Identity", "Serial number"}, "");
}

void TFleetMonitors::PutGroups(THtmlPieces& page, const TGroups& groups, const std::vector<const char*>& columns,
                               const char* id) const {
  if (groups.empty()) return page.Put(MakeElement("p", "None: no machine has a monitor."));
  TMarkup names;
  for (const char* const column : columns) names += MakeColumnName(column);
  const auto [begin, end] = Part(
      MakeFoldedTable(
          CountNouns(groups.size(), "group"), id,
          MakeTable("The most frequent first", names + MakeColumnName("Monitors") + MakeColumnName("Machines"), {})),
      "</tbody>");
  page.Put(begin);
  std::vector<const TGroup*> sorted;
  for (const TGroup& group : groups) sorted.push_back(&group);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const TGroup* left, const TGroup* right) { return left->second.size() > right->second.size(); });
  for (const TGroup* const group : sorted) PutGroup(page, *group, columns.size() > 1);
  page.Put(end);
}

/// Writes the group piece by piece, since it may have very many machines.
void TFleetMonitors::PutGroup(THtmlPieces& page, const TGroup& group, bool hasTwoTexts) const {
  const auto& [name, machines] = group;
  const auto [begin, end] =
      Part(TMarkup::Element("tr", {{"class", "long"}},
                            (hasTwoTexts ? MakeElement("td", name.first) : TMarkup()) + MakeRowName(name.second) +
                                MakeElement("td", std::to_string(machines.size())) + MakeElement("td", "listing", "")),
           "</td>\n</tr>");
  page.Put(begin);
  for (auto first = machines.begin(); first != machines.end();) {
    const auto last = std::find_if(first, machines.end(), [&](std::size_t machine) { return machine != *first; });
    std::string link = m_links.MakeLink(*first).Take();
    link.pop_back();  // its line end, which would show as a blank before the comma
    if (last - first > 1) link += " (" + std::to_string(last - first) + ")";
    page.Put((first == machines.begin() ? "" : ", ") + link);
    first = last;
  }
  page.Put(end);
}
