#include "command/report/html/html_report.h"

#include <algorithm>
#include <utility>

#include "command/report/html/html_picture.h"
#include "command/report/html/html_plot.h"
#include "command/report/html/html_style.h"
#include "command/report/output_view.h"

namespace {

TMarkup Element(const char* name, TMarkup content) { return TMarkup::Element(name, {}, std::move(content)); }

TMarkup Element(const char* name, const char* look, TMarkup content) {
  return TMarkup::Element(name, {{"class", look}}, std::move(content));
}

TMarkup MakeHeading(const TPropertyDeclaration& property) {
  const std::string remark = property.isKey ? "key" : property.unit;
  const TMarkup name = property.name;
  return TMarkup::Element("th", {{"title", property.meaning}},
                          remark.empty() ? name : name + " " + Element("span", "unit", remark));
}

/// The properties of the class that any of the instances has, in the schema's order: the tables name none themselves.
std::vector<TPropertyDeclaration> GetColumns(const TInstances& instances) {
  std::vector<TPropertyDeclaration> columns = instances.front().Declaration().properties;
  const auto isNowhere = [&](const TPropertyDeclaration& property) {
    return std::none_of(instances.begin(), instances.end(),
                        [&](const TInstanceView& instance) { return instance.Has(property.name); });
  };
  columns.erase(std::remove_if(columns.begin(), columns.end(), isNowhere), columns.end());
  return columns;
}

TMarkup MakeList(const TInstances& instances) {
  const std::vector<TPropertyDeclaration> columns = GetColumns(instances);
  TMarkup headings;
  for (const TPropertyDeclaration& column : columns) headings += MakeHeading(column);
  TMarkup rows = Element("tr", headings);
  for (const TInstanceView& instance : instances) {
    TMarkup cells;
    for (const TPropertyDeclaration& column : columns) cells += Element("td", instance.Text(column.name));
    rows += Element("tr", std::move(cells));
  }
  return Element("div", "wide", Element("table", Element("tbody", std::move(rows))));
}

TMarkup MakeProperties(const TInstanceView& instance) {
  TMarkup rows;
  for (const TPropertyDeclaration& property : GetColumns({instance})) {
    rows += Element("tr", MakeHeading(property) + Element("td", instance.Text(property.name)));
  }
  return Element("div", "properties",
                 Element("table", Element("caption", instance.Text("DeviceID")) + Element("tbody", std::move(rows))));
}

/// A table for each device, a property in each row. Modes and associations are many and small: one table of all, an
/// instance in each row.
TMarkup MakeClass(const TInstances& instances) {
  const TClassDeclaration& declaration = instances.front().Declaration();
  const TMarkup head = Element("h3", declaration.name) + Element("p", "soft", declaration.meaning);
  if (declaration.kind != EKind::kDevice) return head + MakeList(instances);
  TMarkup tables;
  for (const TInstanceView& instance : instances) tables += MakeProperties(instance);
  return head + Element("div", "row", std::move(tables));
}

TMarkup MakeLog(const std::vector<TLogEntry>& log) {
  TMarkup rows;
  for (const TLogEntry& entry : log) {
    const char* severity = GetSeverityName(entry.severity);
    const bool isAlarm = entry.severity <= NQRXZELT20::ILogger::kWarning;
    rows += Element("tr", isAlarm ? severity : "", Element("td", severity) + Element("td", entry.message));
  }
  const std::string title = "Log (" + std::to_string(log.size()) + ")";
  return Element("details", Element("summary", title) + Element("table", Element("tbody", std::move(rows))));
}

/// The part of the page that one request makes.
class TRequestSection {
 public:
  TRequestSection(const TAnswer& answer, const TRequestAnswer& request)
      : m_answer(answer), m_request(request), m_view(request) {}

  TMarkup Make() const {
    TMarkup content;
    if (m_answer.requests.size() > 1) content += Element("h2", "Request: " + JoinTexts(m_request.classes));
    TMarkup panels;
    if (m_view.Asks(EPart::kVideo)) panels += MakePanel("Video controllers", MakeVideo(), EPart::kVideo);
    if (m_view.Asks(EPart::kMonitors)) panels += MakePanel("Monitors", MakeMonitors(), EPart::kMonitors);
    return Element("section", content + Element("div", "row", panels) + MakePlots() + MakeTables());
  }

 private:
  TMarkup MakePanel(const char* title, const TMarkup& content, EPart part) const {
    TMarkup complaints;
    for (const std::string& complaint : m_view.GetComplaints(part)) complaints += Element("li", complaint);
    if (!complaints.IsEmpty()) complaints = Element("p", "The plug-in says:") + Element("ul", complaints);
    return Element("div", "panel", Element("h3", title) + content + complaints);
  }

  TMarkup MakeVideo() const {
    const std::string& origin = m_answer.xconfigOrigin;
    const TMarkup remark = origin.empty() ? TMarkup() : Element("p", "soft", "X configuration " + origin);
    if (!m_view.GetControllers().empty() || !m_view.GetLooseHeads().empty()) return MakeVideoPicture(m_view) + remark;
    return Element("p", "None: " + ExplainNoControllers(m_answer));
  }

  TMarkup MakeMonitors() const {
    if (m_view.GetMonitors().empty()) return Element("p", "None: " + m_answer.edidOrigin.none);
    TMarkup sources;
    for (const auto& [id, monitor, modes] : m_view.GetMonitors()) {
      const std::string source = monitor ? GetEdidSource(*monitor, m_answer) : std::string();
      if (!source.empty()) sources += Element("p", "soft", id + ": EDID read from " + source);
      sources += MakeOutput(id);
    }
    for (const std::string& sentence : ExplainUnlisted(m_answer)) sources += Element("p", sentence + ".");
    return MakeMonitorsPicture(m_view) + sources;
  }

  TMarkup MakeOutput(const std::string& deviceId) const {
    const TOutput* const output = FindOutput(m_answer, deviceId);
    std::vector<std::string> texts;
    if (output == nullptr) return {};
    for (const auto& [label, text] : DescribeOutput(m_answer, *output)) texts.push_back(label + (": " + text));
    return texts.empty() ? TMarkup() : Element("p", "soft", deviceId + ": " + JoinTexts(texts));
  }

  TMarkup MakePlots() const {
    TMarkup plots;
    for (const TMonitorView& monitor : m_view.GetMonitors()) {
      if (monitor.modes.empty()) continue;
      plots += Element("div", "panel", Element("h3", "Modes of " + monitor.id) + MakeModesPlot(m_view, monitor));
    }
    return plots.IsEmpty() ? plots : Element("h2", "Modes") + Element("div", "row", plots);
  }

  TMarkup MakeTables() const {
    TMarkup tables;
    for (const TClassDeclaration& declaration : GetSchema()) {
      const TInstances& instances = m_view.Select(declaration.name);
      if (!instances.empty()) tables += MakeClass(instances);
    }
    return tables.IsEmpty() ? tables : Element("h2", "Instances") + tables;
  }

  const TAnswer& m_answer;
  const TRequestAnswer& m_request;
  const TRequestView m_view;
};

TMarkup MakeHead(const std::string& title) {
  return Element(
      "head", TMarkup::Element("meta", {{"charset", "utf-8"}}) +
                  TMarkup::Element("meta", {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}}) +
                  // Whatever the page might come to hold, it loads nothing and runs nothing.
                  TMarkup::Element("meta", {{"http-equiv", "Content-Security-Policy"},
                                            {"content", "default-src 'none'; style-src 'unsafe-inline'"}}) +
                  Element("title", title) + Element("style", kHtmlStyle));
}

}  // namespace

std::string MakeHtmlReport(const TAnswer& answer) {
  const std::string title = "Video controllers, heads and monitors";
  TMarkup body = Element("h1", title) +
                 Element("p", "soft", "As the plug-in " + answer.plugin.name + " " + answer.plugin.version + " tells.");
  for (const TRequestAnswer& request : answer.requests) body += TRequestSection(answer, request).Make();
  body += MakeLog(answer.log);
  TMarkup page = TMarkup::Element("html", {{"xmlns", "http://www.w3.org/1999/xhtml"}, {"lang", "en"}},
                                  MakeHead(title) + Element("body", std::move(body)));
  return "<!DOCTYPE html>\n" + page.Take();
}
