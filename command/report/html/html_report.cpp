#include "command/report/html/html_report.h"

#include <algorithm>
#include <set>

#include "command/machine/machine.h"
#include "command/report/html/html_picture.h"
#include "command/report/html/html_plot.h"
#include "command/report/html/html_style.h"

namespace {

TMarkup Element(const char* name, const TMarkup& content) { return TMarkup::Element(name, {}, content); }

TMarkup Element(const char* name, const char* look, const TMarkup& content) {
  return TMarkup::Element(name, {{"class", look}}, content);
}

// The classes of which there are many small instances: one table of all, an instance in each row. The instances of the
// others have a table each, a property in each row.
const std::set<std::string> kListedClasses = {"QRXSG_HeadOfVideoController", "QRXSG_MonitorResolution",
                                              "QRXSG_MonitorSetting"};

TMarkup MakeHeading(const TPropertyDeclaration& property) {
  const std::string remark = property.isKey ? "key" : property.unit;
  const TMarkup name = property.name;
  return TMarkup::Element("th", {{"title", property.meaning}},
                          remark.empty() ? name : name + " " + Element("span", "unit", remark));
}

/// The properties of the class that any of the instances has.
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
    rows += Element("tr", cells);
  }
  return Element("div", "wide", Element("table", Element("tbody", rows)));
}

TMarkup MakeProperties(const TInstanceView& instance) {
  TMarkup rows;
  for (const TPropertyDeclaration& property : GetColumns({instance})) {
    rows += Element("tr", MakeHeading(property) + Element("td", instance.Text(property.name)));
  }
  return Element("div", "properties",
                 Element("table", Element("caption", instance.Text("DeviceID")) + Element("tbody", rows)));
}

TMarkup MakeClass(const TInstances& instances) {
  const TClassDeclaration& declaration = instances.front().Declaration();
  const TMarkup head = Element("h3", declaration.name) + Element("p", "soft", declaration.meaning);
  if (kListedClasses.count(declaration.name) != 0) return head + MakeList(instances);
  TMarkup tables;
  for (const TInstanceView& instance : instances) tables += MakeProperties(instance);
  return head + Element("div", "row", tables);
}

TMarkup MakeLog(const std::vector<TLogEntry>& log) {
  TMarkup rows;
  for (const TLogEntry& entry : log) {
    const char* severity = GetSeverityName(entry.severity);
    rows += Element("tr", severity, Element("td", severity) + Element("td", entry.message));
  }
  const std::string title = "Log (" + std::to_string(log.size()) + ")";
  return Element("details", Element("summary", title) + Element("table", Element("tbody", rows)));
}

/// The part of the page that one request makes.
class TRequestSection {
 public:
  TRequestSection(const TAnswer& answer, const TRequestAnswer& request, const TEdidOrigin& origin)
      : m_answer(answer), m_request(request), m_view(request), m_origin(origin) {}

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
    if (!m_view.GetControllers().empty() || !m_view.GetLooseHeads().empty()) return MakeVideoPicture(m_view);
    return Element("p", "None: " + ExplainNoControllers(m_answer));
  }

  TMarkup MakeMonitors() const {
    if (m_view.GetMonitors().empty()) return Element("p", "None: " + m_origin.none);
    TMarkup sources;
    for (const auto& [id, monitor, modes] : m_view.GetMonitors()) {
      const std::string source = monitor ? GetEdidSource(*monitor, m_origin) : std::string();
      if (!source.empty()) sources += Element("p", "soft", id + ": EDID read from " + source);
    }
    return MakeMonitorsPicture(m_view) + sources;
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
      const TInstances instances = m_view.Select(declaration.name);
      if (!instances.empty()) tables += MakeClass(instances);
    }
    return tables.IsEmpty() ? tables : Element("h2", "Instances") + tables;
  }

  const TAnswer& m_answer;
  const TRequestAnswer& m_request;
  const TRequestView m_view;
  const TEdidOrigin& m_origin;
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

std::string MakeHtmlReport(const TAnswer& answer, const TEdidOrigin& origin) {
  const std::string title = "Video controllers, heads and monitors";
  TMarkup body = Element("h1", title) +
                 Element("p", "soft", "As the plug-in " + answer.plugin.name + " " + answer.plugin.version + " tells.");
  for (const TRequestAnswer& request : answer.requests) body += TRequestSection(answer, request, origin).Make();
  body += MakeLog(answer.log);
  const TMarkup page = TMarkup::Element("html", {{"xmlns", "http://www.w3.org/1999/xhtml"}, {"lang", "en"}},
                                        MakeHead(title) + Element("body", body));
  return "<!DOCTYPE html>\n" + page.Get();
}
