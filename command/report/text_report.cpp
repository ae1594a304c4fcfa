#include "command/report/text_report.h"

#include <set>
#include <utility>
#include <vector>

#include "command/report/answer_view.h"
#include "command/report/device_rows.h"
#include "command/report/empty_classes.h"
#include "command/report/mode_order.h"

namespace {

// The marks in the list of modes, and what they mean.
constexpr const char* kConfiguredMark = "*";
constexpr const char* kConfiguredLegend = "* the resolution that the configuration names";
constexpr const char* kPreferredMark = "+";
constexpr const char* kPreferredLegend = "+ the mode that the monitor prefers";
constexpr const char* kListedMark = "=";
constexpr const char* kListedLegend = "= a mode that the plug-in lists";

/// Makes the text of one request.
class TRequestReport {
 public:
  TRequestReport(const TAnswer& answer, const TRequestAnswer& request, const TMakerNames& makers,
                 const TTextLines& lines)
      : m_answer(answer), m_request(request), m_makers(makers), m_lines(lines), m_view(request) {}

  std::string Make() const {
    std::string text;
    if (m_view.Asks(EPart::kVideo)) text += MakeVideo() + MakeComplaints(EPart::kVideo);
    if (m_view.Asks(EPart::kMonitors)) {
      text += (text.empty() ? "" : "\n") + MakeMonitors() + MakeComplaints(EPart::kMonitors);
    }
    return text;
  }

 private:
  std::string MakeVideo() const {
    std::string text = "Video controllers\n";
    if (!m_answer.xconfigOrigin.empty()) text += m_lines.Wrap("  X configuration ", m_answer.xconfigOrigin);
    for (const auto& [controller, heads] : m_view.GetControllers()) {
      text += MakeTitle("  ", controller.Text("DeviceID"), controller.Text("Name"));
      text += MakeRows("    ", DescribeController(controller));
      for (const TInstanceView& head : heads) text += MakeHead("    ", head);
    }
    for (const TInstanceView& head : m_view.GetLooseHeads()) text += MakeHead("  ", head);
    if (m_view.GetControllers().empty() && m_view.GetLooseHeads().empty()) {
      text += MakeLinks(kHeadOfVideoControllerClass, "Links of heads to controllers: ");
    }
    return text + MakeGaps(EPart::kVideo);
  }

  /// The number of links, for a request that asked only for links.
  std::string MakeLinks(const char* className, const char* label) const {
    const std::size_t count = m_view.Select(className).size();
    return count == 0 ? "" : m_lines.Wrap("  ", label + std::to_string(count));
  }

  /// What is missing in the answer, and why.
  std::string MakeGaps(EPart part) const {
    std::string text;
    bool isEmpty = !HasInstances(m_request, part);
    for (const std::string& sentence : ExplainGaps(m_answer, m_request, part)) {
      text += m_lines.Wrap(isEmpty ? "  None: " : "  ", sentence + ".");
      isEmpty = false;  // only the first sentence is the cause
    }
    return text;
  }

  std::string MakeHead(const std::string& indent, const TInstanceView& head) const {
    return MakeTitle(indent, "Head " + head.Text("HeadNumber"), head.Text("DeviceID")) +
           MakeRows(indent + "  ", DescribeHead(head));
  }

  std::string MakeMonitors() const {
    std::string text = "Monitors\n";
    for (const TMonitorView& monitor : m_view.GetMonitors()) text += MakeMonitor(monitor);
    if (m_view.GetMonitors().empty()) text += MakeLinks(kMonitorSettingClass, "Links of monitors to modes: ");
    text += MakeGaps(EPart::kMonitors);
    for (const TOutput& output : m_answer.outputs) {
      if (IsUnlisted(output)) text += MakeUnlisted(output);
    }
    const std::string suggestion = SuggestMakerNames(m_answer, m_makers);
    if (!suggestion.empty()) text += m_lines.Wrap("  ", suggestion + ".");
    return text;
  }

  std::string MakeMonitor(const TMonitorView& view) const {
    const TOutput* const output = FindOutput(m_answer, view.id);
    return MakeTitle("  ", view.id, view.monitor ? NameMonitor(m_answer, view) : "") +
           MakeRows("    ", DescribeMonitor(m_answer, view, m_makers)) +
           MakeModes(m_view.FindHead(view, output), ListModes(view.modes, output));
  }

  std::string MakeUnlisted(const TOutput& output) const {
    return MakeTitle("  ", GetName(output), NameMonitor(output)) +
           MakeRows("    ", DescribeUnlisted(m_answer, output, m_makers)) + MakeModes(nullptr, ListModes({}, &output));
  }

  std::string MakeModes(const TInstanceView* head, const std::vector<TShownMode>& modes) const {
    std::vector<std::string> texts;
    std::set<std::string> marks;
    const bool areAllListed = AreAllInClasses(modes);
    for (const TShownMode& mode : modes) {
      texts.push_back(WriteMode(mode));
      const bool isConfigured = IsConfigured(head, mode.width, mode.height);
      for (const auto& [isMarked, mark] :
           {std::pair(isConfigured, kConfiguredMark), std::pair(mode.isPreferred, kPreferredMark),
            std::pair(mode.isInClasses && !areAllListed, kListedMark)}) {
        if (isMarked) texts.back() += *marks.insert(mark).first;
      }
    }
    return MakeRow("Modes", Join(texts)) + MakeRow("", marks.count(kConfiguredMark) != 0 ? kConfiguredLegend : "") +
           MakeRow("", marks.count(kPreferredMark) != 0 ? kPreferredLegend : "") +
           MakeRow("", marks.count(kListedMark) != 0 ? kListedLegend : "");
  }

  std::string MakeComplaints(EPart part) const {
    std::string text;
    for (const std::string& complaint : m_view.GetComplaints(part)) text += m_lines.Wrap("    ", complaint);
    return text.empty() ? text : "  The plug-in says:\n" + text;
  }

  std::string MakeTitle(const std::string& indent, const std::string& id, const std::string& name) const {
    return m_lines.Wrap(indent, name.empty() || name == id ? id : id + ": " + name);
  }

  std::string MakeRows(const std::string& indent, const std::vector<TOutputRow>& rows) const {
    std::string text;
    for (const TOutputRow& row : rows) text += m_lines.MakeRow(indent, row.label, row.text);
    return text;
  }

  /// A row of a monitor.
  std::string MakeRow(const char* label, const std::string& text) const { return m_lines.MakeRow("    ", label, text); }

  const TAnswer& m_answer;
  const TRequestAnswer& m_request;
  const TMakerNames& m_makers;
  const TTextLines& m_lines;
  const TRequestView m_view;
};

}  // namespace

std::string MakeTextReport(const TAnswer& answer, const TMakerNames& makers, std::size_t width) {
  const TTextLines lines(width);
  std::string text =
      lines.Wrap("", ShowSystemName(answer.identity)) + lines.Wrap("", DescribeCollection(answer.identity));
  for (const TRequestAnswer& request : answer.requests) {
    text += "\n";
    if (answer.requests.size() > 1) text += lines.Wrap("Request: ", Join(request.classes));
    text += TRequestReport(answer, request, makers, lines).Make();
  }
  return text;
}
