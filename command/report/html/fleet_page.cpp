#include "command/report/html/fleet_page.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <tuple>
#include <utility>

#include "command/base/text_encoding.h"
#include "command/base/utc_time.h"
#include "command/base/version.h"
#include "command/report/html/fleet_style.h"
#include "command/report/html/html_page.h"
#include "command/report/json_writer.h"
#include "command/report/request_view.h"

using nlohmann::json;

namespace {

constexpr std::size_t kNameColumns = 120;  // of a machine in its own row
constexpr std::size_t kLinkColumns = 40;   // of a link to it
constexpr std::size_t kDateLength = 10;    // of a time's text
constexpr std::size_t kPieceSize = 65536;  // bytes that are written at once, at least

// The sections, by the ids that links lead to.
constexpr const char* kProblems = "problems";
constexpr const char* kMachines = "machines";
constexpr const char* kAges = "ages";
constexpr const char* kModels = "models";

void WriteMember(TJsonWriter& line, const char* name, const std::string& text) {
  line.Key(name);
  line.String(text);
}

void WriteMember(TJsonWriter& line, const char* name, unsigned int number) {
  line.Key(name);
  line.Literal(std::to_string(number));
}

void WriteMember(TJsonWriter& line, const char* name, const std::vector<std::string>& texts) {
  line.Key(name);
  line.BeginArray();
  for (const std::string& text : texts) line.String(text);
  line.EndArray();
}

/// The model's name, else the number that its maker gave it.
std::string NameModel(const TMonitorFacts& facts) {
  return facts.model.empty() ? "product code " + facts.productCode : facts.model;
}

/// "1 machine", "2 machines".
std::string Count(std::size_t count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

/// An element that is made empty, as what comes before and after a content that is too long to be held: it is parted
/// before that tag.
std::pair<std::string, std::string> Part(TMarkup markup, const char* tag) {
  const std::string text = markup.Take();
  const std::size_t place = text.find(tag);
  return {text.substr(0, place), text.substr(place)};
}

/// The folder of a path, with its slash; empty for a path without one.
std::string GetFolder(const std::string& path) {
  const std::size_t slash = path.size() < 2 ? std::string::npos : path.find_last_of('/', path.size() - 2);
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

/// The printable text without its beginning where it has more than `columns` characters: the end of a path tells it
/// from others.
std::string KeepEnd(const std::string& text, std::size_t columns) {
  const std::size_t length = CountColumns(text);
  return length <= columns ? text : "\u2026" + text.substr(GetLength(text, length - columns + 1));
}

std::string MakeMachineId(std::size_t position) { return "machine-" + std::to_string(position + 1); }

TMarkup MakeRow(TMarkup cells) { return MakeElement("tr", std::move(cells)); }

TMarkup MakeList(const char* name, const std::vector<std::string>& texts) {
  TMarkup items;
  for (const std::string& text : texts) items += MakeElement("li", text);
  return MakeElement(name, std::move(items));
}

/// A cell with one text as it is, or several as a list. `column`: its name, for screens that do not show the heading
/// row.
TMarkup MakeTexts(const char* column, const std::vector<std::string>& texts, const char* list = "ul") {
  if (texts.size() > 1) {
    return TMarkup::Element("td", {{"class", "listing"}, {"data-name", column}}, MakeList(list, texts));
  }
  return TMarkup::Element("td", {{"data-name", column}}, texts.empty() ? TMarkup() : TMarkup(texts.front()));
}

TMarkup MakeCount(std::size_t count, const char* noun) {
  return MakeElement("li", MakeElement("b", std::to_string(count)) + " " + noun);
}

TMarkup MakeEntry(const char* section, const char* title) { return MakeElement("li", MakeLink(section, title)); }

}  // namespace

std::string TFleetPage::MakeLine(const TMachineSummary& machine) {
  TJsonWriter line(TJsonWriter::ELayout::kOneLine);
  line.BeginObject();
  WriteMember(line, "name", machine.machine);
  WriteMember(line, "systemName", machine.systemName);
  WriteMember(line, "collected", machine.collected);
  WriteMember(line, "hasAnswered", machine.hasAnswered ? 1 : 0);
  WriteMember(line, "controllers", machine.controllers);
  WriteMember(line, "problems", machine.problems);
  line.Key("monitors");
  line.BeginArray();
  for (const TMonitorSummary& monitor : machine.monitors) {
    line.BeginObject();
    WriteMember(line, "maker", monitor.facts.GetMaker());
    WriteMember(line, "model", NameModel(monitor.facts));
    WriteMember(line, "serialNumber", monitor.facts.serialNumber);
    WriteMember(line, "made", monitor.facts.made);
    WriteMember(line, "year", monitor.year);
    WriteMember(line, "week", monitor.week);
    line.EndObject();
  }
  line.EndArray();
  line.EndObject();
  return line.TakeText() + "\n";
}

void TFleetPage::Take(const std::string& lines) {
  std::size_t end = 0;
  for (std::size_t begin = 0; (end = lines.find('\n', begin)) != std::string::npos; begin = end + 1) {
    const json line = json::parse(lines.begin() + static_cast<std::ptrdiff_t>(begin),
                                  lines.begin() + static_cast<std::ptrdiff_t>(end));
    TMachine machine = {line["name"], line["systemName"], line["collected"], line["hasAnswered"] == 1, {}, {}, {}};
    machine.controllers = line["controllers"].get<std::vector<std::string>>();
    machine.problems = line["problems"].get<std::vector<std::string>>();
    for (const json& monitor : line["monitors"]) {
      machine.monitors.push_back({monitor["maker"], monitor["model"], monitor["serialNumber"], monitor["made"],
                                  monitor["year"], monitor["week"]});
    }
    machine.monitors.shrink_to_fit();
    m_machines.push_back(std::move(machine));
  }
}

/// One page on its way out.
class TFleetPage::TWriter {
 public:
  typedef std::function<bool(const std::string&)> TWrite;

  TWriter(const std::deque<TMachine>& machines, const TWrite& write)
      : m_machines(machines), m_write(write), m_folder(FindCommonFolder(machines)) {
    for (std::size_t machine = 0; machine < machines.size(); ++machine) {
      for (std::size_t monitor = 0; monitor < machines[machine].monitors.size(); ++monitor) {
        m_byAge.push_back({machine, monitor});
        const TMonitor& which = machines[machine].monitors[monitor];
        m_models[{which.maker, which.model}].push_back(machine);
      }
    }
    std::stable_sort(m_byAge.begin(), m_byAge.end(),
                     [this](const TPlace& left, const TPlace& right) { return GetAgeKey(left) < GetAgeKey(right); });
  }

  void Write(const std::string& made, bool isWhole) {
    const std::string title = Count(m_machines.size(), "machine");
    const std::string making = "Made " + ShowUtcTime(made) + ", by displayinfo " + kCommandVersion;
    const std::string endTag = "</main>";
    const std::string page = MakeHtmlPage(title + " \u2013 " + making, {}, kFleetStyle);
    const std::size_t end = page.find(endTag);
    Put(page.substr(0, end));
    Put(MakeHeading(1, title) + MakeElement("p", "soft", making + "."));
    if (!isWhole) Put(MakeElement("p", "warning", "The run was stopped: the rest of the list is missing."));
    if (!m_folder.empty()) Put(MakeElement("p", "soft", "All of them are in " + Shorten(m_folder, kNameColumns)));
    Put(MakeCounts() + MakeContents());
    PutProblems();
    PutMachines();
    PutAges();
    PutModels();
    Put(page.substr(end));
    Flush();
  }

 private:
  static std::string FindCommonFolder(const std::deque<TMachine>& machines) {
    std::string folder = machines.empty() ? "" : GetFolder(machines.front().name);
    for (const TMachine& machine : machines) {
      while (GetFolder(machine.name).compare(0, folder.size(), folder) != 0) folder = GetFolder(folder);
    }
    return folder;
  }

  /// The machine's name in the list, without the folder that all of them have in common.
  std::string GetName(const TMachine& machine) const { return machine.name.substr(m_folder.size()); }

  const TMonitor& Get(const TPlace& place) const { return m_machines[place.machine].monitors[place.monitor]; }

  /// By year, unknown ones last; by week within a year.
  std::tuple<bool, unsigned int, unsigned int> GetAgeKey(const TPlace& place) const {
    const TMonitor& monitor = Get(place);
    return {monitor.year == 0, monitor.year, monitor.week};
  }

  std::size_t CountMachines(bool (*isCounted)(const TMachine&)) const {
    return static_cast<std::size_t>(std::count_if(m_machines.begin(), m_machines.end(), isCounted));
  }

  TMarkup MakeCounts() const {
    const std::size_t answered = CountMachines([](const TMachine& machine) { return machine.hasAnswered; });
    const auto isUndated = [this](const TPlace& place) { return Get(place).year == 0; };
    TMarkup counts = MakeCount(m_machines.size(), "machines asked") + MakeCount(answered, "answered") +
                     MakeCount(m_machines.size() - answered, "could not be asked");
    counts +=
        MakeCount(CountMachines([](const TMachine& machine) { return !machine.problems.empty(); }), "with problems");
    counts += MakeCount(
        CountMachines([](const TMachine& machine) { return machine.hasAnswered && machine.monitors.empty(); }),
        "without a monitor");
    counts += MakeCount(m_byAge.size(), "monitors") + MakeCount(m_models.size(), "models of monitors");
    counts += MakeCount(static_cast<std::size_t>(std::count_if(m_byAge.begin(), m_byAge.end(), isUndated)),
                        "monitors of unknown year");
    return MakeElement("ul", "counts", std::move(counts));
  }

  static TMarkup MakeContents() {
    return MakeElement("nav",
                       MakeElement("ul", "contents",
                                   MakeEntry(kProblems, "Machines with problems") + MakeEntry(kMachines, "By machine") +
                                       MakeEntry(kAges, "By age of monitor") + MakeEntry(kModels, "By model")));
  }

  TMarkup MakeMachineLink(std::size_t position) const {
    const std::string name = GetName(m_machines[position]);
    const std::string shown = KeepEnd(name, kLinkColumns);
    return TMarkup::Element("a", {{"href", "#" + MakeMachineId(position)}, {"title", shown == name ? "" : name}},
                            shown);
  }

  void PutProblems() {
    Put(MakeHeading(2, "Machines with problems", kProblems));
    if (CountMachines([](const TMachine& machine) { return !machine.problems.empty(); }) == 0) {
      return Put(MakeElement("p", "None."));
    }
    const auto [begin, end] = Part(
        MakeTable("In the order of the list", MakeColumnName("Machine") + MakeColumnName("Problems"), {}), "</tbody>");
    Put(begin);
    for (std::size_t position = 0; position < m_machines.size(); ++position) {
      const std::vector<std::string>& problems = m_machines[position].problems;
      if (problems.empty()) continue;
      Put(MakeRow(MakeRowName(MakeMachineLink(position)) + MakeTexts("", problems)));
    }
    Put(end);
  }

  void PutMachines() {
    Put(MakeHeading(2, "By machine", kMachines));
    if (m_machines.empty()) return Put(MakeElement("p", "None: the list names no machine."));
    const auto [begin, end] =
        Part(TMarkup::Element("div", {{"class", "machines"}},
                              MakeTable("In the order of the list",
                                        MakeColumnName("Machine") + MakeColumnName("Controllers") +
                                            MakeColumnName("Monitors: maker, model, serial number, year") +
                                            MakeColumnName("Problems"),
                                        {})),
             "</tbody>");
    Put(begin);
    for (std::size_t position = 0; position < m_machines.size(); ++position) Put(MakeMachineRow(position));
    Put(end);
  }

  TMarkup MakeMachineRow(std::size_t position) const {
    const TMachine& machine = m_machines[position];
    const std::vector<std::string> nothing = {machine.hasAnswered ? "none" : "not known"};
    std::vector<std::string> monitors;
    for (const TMonitor& monitor : machine.monitors) monitors.push_back(DescribeMonitor(monitor));
    return TMarkup::Element("tr", {{"id", MakeMachineId(position)}},
                            MakeRowName(DescribeMachine(machine)) +
                                MakeTexts("Controllers", machine.controllers.empty() ? nothing : machine.controllers) +
                                // Numbered as the plug-in numbers them.
                                MakeTexts("Monitors", monitors.empty() ? nothing : monitors, "ol") +
                                MakeTexts("Problems", machine.problems));
  }

  /// The name, then the system's where it is another, and the day of the collection.
  TMarkup DescribeMachine(const TMachine& machine) const {
    const std::string name = GetName(machine);
    const TMarkup text = MakeShortText(name, kNameColumns);
    const bool isNamed = !machine.systemName.empty() && machine.systemName != name;
    const std::string collected =
        machine.collected.empty() ? "" : "collected " + machine.collected.substr(0, kDateLength);
    const std::string more = JoinTexts({isNamed ? machine.systemName : "", collected});
    return more.empty() ? text : text + " " + MakeElement("span", "soft", more);
  }

  static std::string DescribeMonitor(const TMonitor& monitor) {
    return monitor.maker + (monitor.maker.empty() ? "" : " ") +
           JoinTexts({monitor.model, monitor.serialNumber.empty() ? "no serial" : "serial " + monitor.serialNumber,
                      monitor.year == 0 ? "year not known" : std::to_string(monitor.year)});
  }

  void PutAges() {
    Put(MakeHeading(2, "By age of monitor", kAges));
    if (m_byAge.empty()) return Put(MakeElement("p", "None: no machine has a monitor."));
    const auto [begin, end] =
        Part(MakeTable("The oldest first, unknown years last",
                       MakeColumnName("Made") + MakeColumnName("Maker") + MakeColumnName("Model") +
                           MakeColumnName("Serial number") + MakeColumnName("Machine"),
                       {}),
             "<tbody>");
    Put(begin);
    for (auto first = m_byAge.begin(); first != m_byAge.end();) {
      const auto isOther = [&](const TPlace& place) { return Get(place).year != Get(*first).year; };
      const auto last = std::find_if(first, m_byAge.end(), isOther);
      Put(MakeYear(first, last));
      first = last;
    }
    Put(end.substr(end.find("</table>")));
  }

  typedef std::vector<TPlace>::const_iterator TPlaceIterator;

  /// The rows of one year under its name.
  TMarkup MakeYear(TPlaceIterator first, TPlaceIterator last) const {
    const unsigned int year = Get(*first).year;
    const std::string name = (year == 0 ? "Year not known" : std::to_string(year)) + ": " +
                             Count(static_cast<std::size_t>(last - first), "monitor");
    TMarkup rows = MakeRow(TMarkup::Element("th", {{"scope", "rowgroup"}, {"colspan", "5"}}, name));
    for (auto place = first; place != last; ++place) {
      const TMonitor& monitor = Get(*place);
      rows += MakeRow(MakeElement("td", monitor.made) + MakeElement("td", monitor.maker) +
                      MakeElement("td", monitor.model) + MakeElement("td", monitor.serialNumber) +
                      MakeElement("td", MakeMachineLink(place->machine)));
    }
    return MakeElement("tbody", std::move(rows));
  }

  void PutModels() {
    Put(MakeHeading(2, "By model", kModels));
    if (m_models.empty()) return Put(MakeElement("p", "None: no machine has a monitor."));
    const auto [begin, end] = Part(MakeTable("The most frequent first",
                                             MakeColumnName("Maker") + MakeColumnName("Model") +
                                                 MakeColumnName("Monitors") + MakeColumnName("Machines"),
                                             {}),
                                   "</tbody>");
    Put(begin);
    std::vector<const TModel*> models;
    for (const TModel& model : m_models) models.push_back(&model);
    std::stable_sort(models.begin(), models.end(), [](const TModel* left, const TModel* right) {
      return left->second.size() > right->second.size();
    });
    for (const TModel* const model : models) PutModel(*model);
    Put(end);
  }

  typedef std::map<std::pair<std::string, std::string>, std::vector<std::size_t>> TModels;
  typedef TModels::value_type TModel;

  /// The machines of a model may be very many.
  void PutModel(const TModel& model) {
    const auto& [name, machines] = model;
    const auto [begin, end] = Part(
        TMarkup::Element("tr", {{"class", "long"}},
                         MakeElement("td", name.first) + MakeRowName(name.second) +
                             MakeElement("td", std::to_string(machines.size())) + MakeElement("td", "listing", "")),
        "</td>\n</tr>");
    Put(begin);
    for (auto first = machines.begin(); first != machines.end();) {
      const auto last = std::find_if(first, machines.end(), [&](std::size_t machine) { return machine != *first; });
      std::string link = MakeMachineLink(*first).Take();
      link.pop_back();  // its line end, which would show as a blank before the comma
      if (last - first > 1) link += " (" + std::to_string(last - first) + ")";
      Put((first == machines.begin() ? "" : ", ") + link);
      first = last;
    }
    Put(end);
  }

  void Put(TMarkup markup) { Put(markup.Take()); }

  void Put(const std::string& text) {
    m_piece += text;
    if (m_piece.size() >= kPieceSize) Flush();
  }

  void Flush() {
    m_isRead = m_isRead && m_write(m_piece);
    m_piece.clear();
  }

  const std::deque<TMachine>& m_machines;
  const TWrite& m_write;
  const std::string m_folder;  // that all machines have in common
  std::vector<TPlace> m_byAge;
  TModels m_models;  // by maker and model, the machines in their order, each once for each monitor
  std::string m_piece;
  bool m_isRead = true;
};

void TFleetPage::Write(const std::string& made, bool isWhole,
                       const std::function<bool(const std::string&)>& write) const {
  TWriter(m_machines, write).Write(made, isWhole);
}
