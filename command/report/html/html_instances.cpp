#include "command/report/html/html_instances.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "command/report/html/html_page.h"

namespace {

constexpr std::size_t kLabelColumns = 48;

std::string GetLabel(const TInstanceView& instance) {
  const std::string name = instance.Text(instance.Has("SettingID") ? "SettingID" : "DeviceID");
  return Shorten(std::string(instance.Declaration().name) + " " + name, kLabelColumns);
}

/// A name of words in CamelCase, with a possible line break before each word.
TMarkup MakeBreakable(const std::string& name) {
  TMarkup markup;
  std::size_t begin = 0;
  for (std::size_t end = 1; end < name.size(); ++end) {
    if (std::islower(name[end - 1]) == 0 || std::isupper(name[end]) == 0) continue;
    markup += name.substr(begin, end - begin) + TMarkup::Element("wbr");
    begin = end;
  }
  return markup + name.substr(begin);
}

struct TName {
  TMarkup text;
  std::string meaning;
};

TName GetName(const TPropertyDeclaration& property) {
  const std::string remark = property.isKey ? "key" : property.unit;
  const TMarkup name = MakeBreakable(property.name);
  return {remark.empty() ? name : name + " " + MakeElement("span", "unit", remark), property.meaning};
}

/// The properties that at least one of the instances has, in the schema's order.
std::vector<TPropertyDeclaration> GetColumns(const TInstances& instances) {
  std::vector<TPropertyDeclaration> columns = instances.front().Declaration().properties;
  const auto isNowhere = [&](const TPropertyDeclaration& property) {
    return std::none_of(instances.begin(), instances.end(),
                        [&](const TInstanceView& instance) { return instance.Has(property.name); });
  };
  columns.erase(std::remove_if(columns.begin(), columns.end(), isNowhere), columns.end());
  return columns;
}

/// The tables of one request.
class TTables {
 public:
  TTables(const THtmlAnchors& anchors, std::size_t request) : m_anchors(anchors), m_request(request) {}

  TMarkup MakeClass(const TInstances& instances, int level) const {
    const TClassDeclaration& declaration = instances.front().Declaration();
    const TMarkup head =
        MakeHeading(level, declaration.name) + MakeElement("p", "soft", std::string(declaration.meaning));
    if (declaration.kind != EKind::kDevice) return head + MakeList(instances);
    TMarkup tables;
    for (std::size_t position = 0; position < instances.size(); ++position) {
      tables += MakeDevice(instances[position], position);
    }
    return head + MakeElement("div", "row cards", std::move(tables));
  }

 private:
  TMarkup MakeList(const TInstances& instances) const {
    const std::vector<TPropertyDeclaration> columns = GetColumns(instances);
    TMarkup names;
    for (const TPropertyDeclaration& column : columns) {
      const auto [text, meaning] = GetName(column);
      names += MakeColumnName(text, meaning);
    }
    TMarkup rows;
    for (std::size_t position = 0; position < instances.size(); ++position) {
      TMarkup cells;
      for (const TPropertyDeclaration& column : columns) cells += MakeCell(instances[position], column);
      rows += TMarkup::Element("tr", {{"id", GetId(instances[position], position)}}, std::move(cells));
    }
    return MakeElement("div", "wide", MakeTable({}, names, std::move(rows)));
  }

  TMarkup MakeDevice(const TInstanceView& device, std::size_t position) const {
    TMarkup rows;
    for (const TPropertyDeclaration& property : GetColumns({device})) {
      const auto [text, meaning] = GetName(property);
      rows += MakeElement("tr", MakeRowName(text, meaning) + MakeCell(device, property));
    }
    const TMarkup names = MakeColumnName("Property") + MakeColumnName("Value");
    return TMarkup::Element("div", {{"class", "properties"}, {"id", GetId(device, position)}},
                            MakeTable(MakeShortText(device.Text("DeviceID"), kLabelColumns), names, std::move(rows)));
  }

  TMarkup MakeCell(const TInstanceView& instance, const TPropertyDeclaration& property) const {
    const std::string text = instance.Text(property.name);
    if (property.type == NQRXZELT20::TCIMValue::TCIMType::kReference) {
      const THtmlAnchors::TAnchor* const anchor = m_anchors.Find(m_request, text);
      if (anchor != nullptr) return MakeElement("td", MakeLink(anchor->id, anchor->label));
    }
    return MakeElement("td", text);
  }

  std::string GetId(const TInstanceView& instance, std::size_t position) const {
    return THtmlAnchors::MakeId(m_request, instance.Declaration().name, position);
  }

  const THtmlAnchors& m_anchors;
  const std::size_t m_request;
};

}  // namespace

THtmlAnchors::THtmlAnchors(const TAnswer& answer) {
  for (const TRequestAnswer& request : answer.requests) {
    std::map<std::string, TAnchor> anchors;
    std::map<std::string, std::size_t> counts;  // of the instances of each class
    for (const auto& stored : request.instances) {
      const TInstanceView instance(*stored);
      const std::string className = instance.Declaration().name;
      anchors[ToPrintable(instance.Path())] = {MakeId(m_requests.size(), className, counts[className]++),
                                               GetLabel(instance)};
    }
    m_requests.push_back(std::move(anchors));
  }
}

const THtmlAnchors::TAnchor* THtmlAnchors::Find(std::size_t request, const std::string& path) const {
  const auto own = m_requests[request].find(path);
  if (own != m_requests[request].end()) return &own->second;
  for (const auto& anchors : m_requests) {
    const auto found = anchors.find(path);
    if (found != anchors.end()) return &found->second;
  }
  return nullptr;
}

std::string THtmlAnchors::MakeId(std::size_t request, const std::string& className, std::size_t position) {
  return "request" + std::to_string(request + 1) + "-" + className + "-" + std::to_string(position + 1);
}

TMarkup MakeInstances(const THtmlAnchors& anchors, std::size_t request, const TRequestView& view, int level) {
  const TTables tables(anchors, request);
  TMarkup content;
  for (const TClassDeclaration& declaration : GetSchema()) {
    const TInstances& instances = view.Select(declaration.name);
    if (!instances.empty()) content += tables.MakeClass(instances, level);
  }
  return content;
}
