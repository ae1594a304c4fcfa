#include "command/report/html/fleet_page.h"

#include <algorithm>
#include <utility>

#include "command/base/utc_time.h"
#include "command/base/version.h"
#include "command/report/answer_view.h"
#include "command/report/html/fleet_links.h"
#include "command/report/html/fleet_monitors.h"
#include "command/report/html/fleet_style.h"
#include "command/report/html/html_page.h"
#include "command/report/html/html_pieces.h"

namespace {

constexpr std::size_t kMachineColumns = 120;  // of a machine's name in its own row
constexpr std::size_t kDateLength = 10;       // the date in the text of a time

// Ids that links lead to; TFleetMonitors has those for monitors.
constexpr const char* kProblems = "problems";
constexpr const char* kUnasked = "unasked";
constexpr const char* kWithout = "without";
constexpr const char* kMachines = "machines";

TMarkup MakeList(const char* name, const std::vector<std::string>& texts) {
  TMarkup items;
  for (const std::string& text : texts) items += MakeElement("li", text);
  return MakeElement(name, std::move(items));
}

/// A cell with one text, or with a list of several. `column`: the column's name, for screens that do not show the
/// heading row.
TMarkup MakeTexts(const char* column, const std::vector<std::string>& texts, const char* list = "ul") {
  if (texts.size() > 1) {
    return TMarkup::Element("td", {{"class", "listing"}, {"data-name", column}}, MakeList(list, texts));
  }
  return TMarkup::Element("td", {{"data-name", column}}, texts.empty() ? TMarkup() : TMarkup(texts.front()));
}

/// `place`: the id of the counted machines.
TMarkup MakeCount(std::size_t count, const char* noun, const char* place) {
  const TMarkup text = MakeElement("b", std::to_string(count)) + " " + noun;
  return MakeElement("li", count == 0 ? text : MakeLink(place, text));
}

TMarkup MakeEntry(const char* section, const char* title) { return MakeElement("li", MakeLink(section, title)); }

TMarkup MakeContents() {
  return MakeElement("nav",
                     MakeElement("ul", "contents",
                                 MakeEntry(kProblems, "Machines with problems") + MakeEntry(kMachines, "By machine") +
                                     MakeEntry(TFleetMonitors::kAges, "By age of monitor") +
                                     MakeEntry(TFleetMonitors::kModels, "By model") +
                                     MakeEntry(TFleetMonitors::kModes, "By largest mode") +
                                     MakeEntry(TFleetMonitors::kDoubtful, "Doubtful serial numbers")));
}

std::string DescribeSerial(const TFleetMonitor& monitor, bool isDoubtful) {
  if (monitor.serialNumber.empty()) return "no serial";
  return (isDoubtful ? "doubtful serial " : "serial ") + monitor.serialNumber;
}

/// A short line: the maker by its letters only, since the groups by model have its name.
std::string DescribeMonitor(const TFleetMonitor& monitor, bool isDoubtful) {
  const std::string letters = monitor.maker.substr(0, monitor.maker.find(' '));
  return letters + (letters.empty() ? "" : " ") +
         Join({monitor.model, monitor.largestMode, monitor.connector, monitor.isListed ? "" : "not listed",
               DescribeSerial(monitor, isDoubtful),
               monitor.year == 0 ? "year not known" : std::to_string(monitor.year)});
}

/// True if a file or folder has the system's name, such as "ws-17.json".
bool IsNamedAfter(const std::string& name, const std::string& systemName) {
  return name.compare(0, systemName.size(), systemName) == 0 &&
         (name.size() == systemName.size() || name[systemName.size()] == '.');
}

/// Writes the sections that list machines, in the order of the list.
class TFleetSections {
 public:
  TFleetSections(const std::deque<TFleetMachine>& machines, const TFleetMonitors& monitors, const TFleetLinks& links)
      : m_machines(machines), m_monitors(monitors), m_links(links) {}

  TMarkup MakeCounts() const {
    const std::size_t answered = Count([](const TFleetMachine& machine) { return machine.hasAnswered; });
    return MakeElement("ul", "counts",
                       MakeCount(m_machines.size(), "machines asked", kMachines) +
                           MakeCount(answered, "answered", kMachines) +
                           MakeCount(m_machines.size() - answered, "could not be asked", kUnasked) +
                           MakeCount(Count(HasProblems), "with problems", kProblems) +
                           MakeCount(Count(HasNoMonitor), "without a monitor", kWithout) +
                           MakeCount(m_monitors.CountMonitors(), "monitors", TFleetMonitors::kAllMonitors) +
                           MakeCount(m_monitors.CountModels(), "models of monitors", TFleetMonitors::kAllModels) +
                           MakeCount(m_monitors.CountUndated(), "monitors of unknown year", TFleetMonitors::kUndated) +
                           MakeCount(m_monitors.CountDoubtful(), "doubtful serial numbers", TFleetMonitors::kDoubtful));
  }

  void PutProblems(THtmlPieces& page) const {
    page.Put(MakeHeading(2, "Machines with problems", kProblems));
    if (Count(HasProblems) == 0) return page.Put(MakeElement("p", "None."));
    const auto [begin, end] = Part(
        MakeTable("In the order of the list", MakeColumnName("Machine") + MakeColumnName("Problems"), {}), "<tbody>");
    page.Put(begin);
    PutProblems(page, IsUnasked, kUnasked, "Could not be asked");
    PutProblems(page, IsTroubled, "", "Answered");
    page.Put(end.substr(end.find("</table>")));
  }

  /// Lists the machines that answered and have no monitor. Writes nothing if there are none.
  void PutWithoutMonitor(THtmlPieces& page) const {
    if (Count(HasNoMonitor) == 0) return;
    page.Put(MakeHeading(2, "Without a monitor", kWithout));
    const auto [begin, end] = Part(MakeElement("ul", "contents", {}), "</ul>");
    page.Put(begin);
    for (std::size_t position = 0; position < m_machines.size(); ++position) {
      if (HasNoMonitor(m_machines[position])) page.Put(MakeElement("li", m_links.MakeLink(position)));
    }
    page.Put(end);
  }

  void PutMachines(THtmlPieces& page) const {
    page.Put(MakeHeading(2, "By machine", kMachines));
    if (m_machines.empty()) return page.Put(MakeElement("p", "None: the list names no machine."));
    const auto [begin, end] =
        Part(TMarkup::Element(
                 "div", {{"class", "machines"}},
                 MakeTable("In the order of the list",
                           MakeColumnName("Machine") + MakeColumnName("Controllers") +
                               MakeColumnName("Monitors: maker, model, largest mode, connector, serial number, year"),
                           {})),
             "</tbody>");
    page.Put(begin);
    for (std::size_t position = 0; position < m_machines.size(); ++position) page.Put(MakeMachineRow(position));
    page.Put(end);
  }

 private:
  static bool HasProblems(const TFleetMachine& machine) { return !machine.problems.empty(); }
  static bool IsUnasked(const TFleetMachine& machine) { return !machine.hasAnswered; }
  static bool IsTroubled(const TFleetMachine& machine) { return machine.hasAnswered && HasProblems(machine); }
  static bool HasNoMonitor(const TFleetMachine& machine) { return machine.hasAnswered && machine.monitors.empty(); }

  std::size_t Count(bool (*isCounted)(const TFleetMachine&)) const {
    return static_cast<std::size_t>(std::count_if(m_machines.begin(), m_machines.end(), isCounted));
  }

  /// Writes the rows of the machines for which `isOne` is true, under a title. `id`: for these rows; may be empty.
  void PutProblems(THtmlPieces& page, bool (*isOne)(const TFleetMachine&), const char* id, const char* title) const {
    const std::size_t count = Count(isOne);
    if (count == 0) return;
    const std::string name = title + (": " + CountNouns(count, "machine"));
    const auto [begin, end] =
        Part(TMarkup::Element("tbody", {{"id", id}},
                              MakeRow(TMarkup::Element("th", {{"scope", "rowgroup"}, {"colspan", "2"}}, name))),
             "</tbody>");
    page.Put(begin);
    for (std::size_t position = 0; position < m_machines.size(); ++position) {
      const TFleetMachine& machine = m_machines[position];
      if (!isOne(machine)) continue;
      page.Put(MakeRow(MakeRowName(m_links.MakeLink(position)) + MakeTexts("", machine.problems)));
    }
    page.Put(end);
  }

  TMarkup MakeMachineRow(std::size_t position) const {
    const TFleetMachine& machine = m_machines[position];
    const std::vector<std::string> nothing = {machine.hasAnswered ? "none" : "not known"};
    std::vector<std::string> monitors;
    monitors.reserve(machine.monitors.size());
    for (const TFleetMonitor& monitor : machine.monitors) {
      monitors.push_back(DescribeMonitor(monitor, m_monitors.IsDoubtful(monitor)));
    }
    return TMarkup::Element("tr", {{"id", TFleetLinks::MakeId(position)}},
                            MakeRowName(DescribeMachine(position)) +
                                MakeTexts("Controllers", machine.controllers.empty() ? nothing : machine.controllers) +
                                MakeTexts("Monitors", monitors.empty() ? nothing : monitors, "ol"));
  }

  /// The machine's name, the system's name if it differs, the day of the collection, and a mark if it has problems.
  TMarkup DescribeMachine(std::size_t position) const {
    const TFleetMachine& machine = m_machines[position];
    const std::string name = m_links.GetName(position);
    const TMarkup text = MakeShortText(name, kMachineColumns);
    const bool isNamed = !machine.systemName.empty() && !IsNamedAfter(name, machine.systemName);
    const std::string more = Join({isNamed ? machine.systemName : "", machine.collected.substr(0, kDateLength)});
    TMarkup described = more.empty() ? text : text + " " + MakeElement("span", "soft", more);
    if (!HasProblems(machine)) return described;
    return described + " " +
           TMarkup::Element("a", {{"href", std::string("#") + kProblems}, {"class", "error"}},
                            CountNouns(machine.problems.size(), "problem"));
  }

  const std::deque<TFleetMachine>& m_machines;
  const TFleetMonitors& m_monitors;
  const TFleetLinks& m_links;
};

}  // namespace

std::string TFleetPage::MakeLine(const TMachineSummary& machine) { return WriteFleetMachine(machine); }

void TFleetPage::Take(const std::string& lines) {
  std::size_t end = 0;
  for (std::size_t begin = 0; (end = lines.find('\n', begin)) != std::string::npos; begin = end + 1) {
    m_machines.push_back(ReadFleetMachine(std::string_view(lines).substr(begin, end - begin)));
  }
}

void TFleetPage::Write(const std::string& made, bool isWhole,
                       const std::function<bool(const std::string&)>& write) const {
  const TFleetLinks links(m_machines);
  const TFleetMonitors monitors(m_machines, links);
  const TFleetSections machines(m_machines, monitors, links);
  const std::string title = CountNouns(m_machines.size(), "machine");
  const std::string making = "Made " + ShowUtcTime(made) + ", by displayinfo " + kCommandVersion;
  const auto [begin, end] = Part(MakeHtmlPage(title + " \u2013 " + making, {}, kFleetStyle), "</main>");
  THtmlPieces page(write);
  page.Put(begin);
  page.Put(MakeHeading(1, title) + MakeElement("p", "soft", making + "."));
  if (!isWhole) page.Put(MakeElement("p", "warning", "The run was stopped: the rest of the list is missing."));
  if (!links.GetFolder().empty()) {
    page.Put(MakeElement("p", "soft", "All of them are in " + Shorten(links.GetFolder(), kMachineColumns)));
  }
  page.Put(machines.MakeCounts() + MakeContents());
  machines.PutProblems(page);
  machines.PutWithoutMonitor(page);
  machines.PutMachines(page);
  monitors.PutAges(page);
  monitors.PutModels(page);
  monitors.PutModes(page);
  monitors.PutDoubtful(page);
  page.Put(end);
  page.Flush();
}
