#include "command/report/html/html_report.h"

#include <algorithm>
#include <utility>

#include "command/report/answer_view.h"
#include "command/report/device_rows.h"
#include "command/report/empty_classes.h"
#include "command/report/html/html_instances.h"
#include "command/report/html/html_modes.h"
#include "command/report/html/html_page.h"
#include "command/report/html/html_picture.h"
#include "command/report/mode_order.h"

namespace {

constexpr std::size_t kTitleColumns = 64;
constexpr std::size_t kFactColumns = 400;

/// "1 instance", "2 instances".
std::string Count(std::size_t count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

TMarkup MakeLog(const std::vector<TLogEntry>& log) {
  TMarkup rows;
  for (const TLogEntry& entry : log) {
    const char* severity = GetSeverityName(entry.severity);
    const bool isAlarm = entry.severity <= NQRXZELT20::ILogger::kWarning;
    rows += MakeElement("tr", isAlarm ? severity : "", MakeElement("td", severity) + MakeElement("td", entry.message));
  }
  return MakeHeading(2, "Log") +
         MakeFolded(Count(log.size(), "message"),
                    MakeTable({}, MakeColumnName("Severity") + MakeColumnName("Message"), std::move(rows)));
}

/// The rows that belong in `place`, each made by `make`.
TMarkup MakeRows(const std::vector<TOutputRow>& facts, ERowPlace place,
                 TMarkup (*make)(const char* label, const TMarkup& text)) {
  TMarkup rows;
  for (const TOutputRow& row : facts) {
    if (row.place == place) rows += make(row.label, MakeShortText(row.text, kFactColumns));
  }
  return rows;
}

TMarkup MakeProblem(const char* label, const TMarkup& text) {
  return MakeElement("p", "problem", MakeElement("b", label + std::string(":")) + " " + text);
}

TMarkup MakeTopFact(const char* label, const TMarkup& text) {
  return MakeElement("li", MakeElement("span", "soft", label) + " " + MakeElement("b", text));
}

TMarkup MakeFactTable(const std::vector<TOutputRow>& facts, ERowPlace place) {
  TMarkup rows = MakeRows(facts, place, [](const char* label, const TMarkup& text) {
    return MakeRow(MakeRowName(label) + MakeElement("td", text));
  });
  return rows.IsEmpty() ? rows : MakeTable({}, {}, std::move(rows));
}

/// Everything below a monitor's heading: problems, what people look for, other facts, the modes, and the rest folded
/// away.
TMarkup MakeFacts(const std::vector<TOutputRow>& facts, const TMarkup& modes) {
  TMarkup top = MakeRows(facts, ERowPlace::kTop, MakeTopFact);
  if (!top.IsEmpty()) top = MakeElement("ul", "top", std::move(top));
  TMarkup rest = MakeFactTable(facts, ERowPlace::kFolded);
  if (!rest.IsEmpty()) rest = MakeFolded("Limits, power saving, versions", rest);
  return MakeRows(facts, ERowPlace::kProblem, MakeProblem) + top + MakeFactTable(facts, ERowPlace::kPlain) + modes +
         rest;
}

/// Makes the part of the page for one request. With several requests, each has a heading of its own, and the other
/// headings are one level deeper.
class TRequestSection {
 public:
  TRequestSection(const TAnswer& answer, const TMakerNames& makers, const THtmlAnchors& anchors, std::size_t request)
      : m_answer(answer),
        m_makers(makers),
        m_anchors(anchors),
        m_number(request),
        m_request(answer.requests[request]),
        m_view(m_request),
        m_level(answer.requests.size() > 1 ? 3 : 2) {}

  TMarkup Make() const {
    TMarkup content;
    if (m_level > 2) content += MakeHeading(2, "Request: " + Join(m_request.classes));
    TMarkup panels;
    if (m_view.Asks(EPart::kVideo)) panels += MakePanel("Video controllers", MakeVideo(), EPart::kVideo);
    if (m_view.Asks(EPart::kMonitors)) panels += MakePanel("Monitors", MakeMonitors(), EPart::kMonitors);
    return MakeElement("section", content + MakeElement("div", "row", panels) + MakeCards() + MakeFoldedInstances());
  }

 private:
  TMarkup MakePanel(const char* title, const TMarkup& content, EPart part) const {
    TMarkup complaints;
    for (const std::string& complaint : m_view.GetComplaints(part)) complaints += MakeElement("li", complaint);
    if (!complaints.IsEmpty()) complaints = MakeElement("p", "The plug-in says:") + MakeElement("ul", complaints);
    return MakeElement("div", "panel", MakeHeading(m_level, title) + content + complaints);
  }

  TMarkup MakeVideo() const {
    const std::string& origin = m_answer.xconfigOrigin;
    const TMarkup remark = origin.empty() ? TMarkup() : MakeElement("p", "soft", "X configuration " + origin);
    const TMarkup pictures = MakeVideoPictures(m_view);
    return (pictures.IsEmpty() ? TMarkup() : MakeElement("div", "row", pictures) + remark) + MakeGaps(EPart::kVideo);
  }

  TMarkup MakeMonitors() const {
    TMarkup gaps = MakeGaps(EPart::kMonitors);
    const std::string suggestion = SuggestMakerNames(m_answer, m_makers);
    if (!suggestion.empty()) gaps += MakeElement("p", "soft", suggestion + ".");
    return m_view.GetMonitors().empty() ? gaps : MakeMonitorPictures(m_answer, m_view, GetCardId()) + gaps;
  }

  /// What is missing in the answer, and why.
  TMarkup MakeGaps(EPart part) const {
    TMarkup sentences;
    bool isEmpty = !HasInstances(m_request, part);
    for (const std::string& sentence : ExplainGaps(m_answer, m_request, part)) {
      sentences += MakeElement("p", (isEmpty ? "None: " : "") + sentence + ".");
      isEmpty = false;  // only the first sentence is the cause
    }
    return sentences;
  }

  TMarkup MakeCards() const {
    TMarkup cards;
    std::size_t number = 0;
    for (const TMonitorView& monitor : m_view.GetMonitors()) {
      const TOutput* const output = FindOutput(m_answer, monitor.id);
      const std::string name = monitor.monitor ? NameMonitor(m_answer, monitor) : std::string();
      const std::string title = name.empty() || name == monitor.id ? monitor.id : monitor.id + ": " + name;
      cards += MakeElement(
          "div", "panel",
          MakeHeading(m_level + 1, MakeShortText(title, kTitleColumns), GetCardId() + std::to_string(++number)) +
              MakeFacts(DescribeMonitor(m_answer, monitor, m_makers),
                        MakeModes(m_view.FindHead(monitor, output), ListModes(monitor.modes, output))));
    }
    if (m_view.Asks(EPart::kMonitors)) cards += MakeUnlistedCards();
    return cards.IsEmpty() ? cards : MakeElement("div", "row cards", std::move(cards));
  }

  /// The connected outputs whose monitors the plug-in does not list.
  TMarkup MakeUnlistedCards() const {
    TMarkup cards;
    for (const TOutput& output : m_answer.outputs) {
      if (!IsUnlisted(output)) continue;
      const std::string name = NameMonitor(output);
      const std::string title = name.empty() ? GetName(output) : GetName(output) + ": " + name;
      cards += MakeElement(
          "div", "panel",
          MakeHeading(m_level + 1, MakeShortText(title, kTitleColumns)) +
              MakeFacts(DescribeUnlisted(m_answer, output, m_makers), MakeModes(nullptr, ListModes({}, &output))));
    }
    return cards;
  }

  TMarkup MakeFoldedInstances() const {
    TMarkup content = MakeInstances(m_anchors, m_number, m_view, m_level + 1);
    if (content.IsEmpty()) return content;
    return MakeHeading(m_level, "Instances") +
           MakeFolded(Count(m_request.instances.size(), "instance") + " as CIM has them", content);
  }

  std::string GetCardId() const { return "request" + std::to_string(m_number + 1) + "-monitor-"; }

  const TAnswer& m_answer;
  const TMakerNames& m_makers;
  const THtmlAnchors& m_anchors;
  const std::size_t m_number;
  const TRequestAnswer& m_request;
  const TRequestView m_view;
  const int m_level;
};

}  // namespace

std::string MakeHtmlReport(const TAnswer& answer, const TMakerNames& makers) {
  const std::string name = ShowSystemName(answer.identity);
  const std::string collection = DescribeCollection(answer.identity);
  TMarkup content =
      MakeHeading(1, MakeShortText(name, kTitleColumns)) +
      MakeElement("p", "soft", collection + ". Plug-in: " + answer.plugin.name + " " + answer.plugin.version + ".");
  const THtmlAnchors anchors(answer);
  for (std::size_t request = 0; request < answer.requests.size(); ++request) {
    content += TRequestSection(answer, makers, anchors, request).Make();
  }
  content += MakeLog(answer.log);
  return MakeHtmlPage(Shorten(name, kTitleColumns) + " \u2013 " + collection, std::move(content));
}
