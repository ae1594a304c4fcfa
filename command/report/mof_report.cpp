#include "command/report/mof_report.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "command/base/text_encoding.h"
#include "command/report/answer_view.h"

using NQRXZELT20::TCIMValue;

namespace {

/// In MOF, a real number must have a point, and only finite numbers exist.
std::string MakeMofReal(const TCIMValue& value) {
  if (!std::isfinite(value.GetReal())) return "NULL";
  std::string text = value;
  if (text.find('.') == std::string::npos) text.insert(std::min(text.find('e'), text.size()), ".0");
  return text;
}

std::string MakeValue(const TCIMValue& value) {
  typedef TCIMValue::TCIMType TType;
  if (value.IsArray()) {
    std::vector<std::string> elements;
    for (const TCIMValue& element : value.GetElements()) elements.push_back(MakeValue(element));
    return "{" + Join(elements) + "}";
  }
  std::string text = value;
  switch (value.GetType().GetCode()) {
    case TType::kNull:
      return "NULL";
    case TType::kBoolean:
      return value.GetBoolean() ? "TRUE" : "FALSE";
    case TType::kUint8:
    case TType::kUint16:
    case TType::kUint32:
      return text;
    case TType::kReal32:
      return MakeMofReal(value);
    case TType::kString:
    case TType::kDateTime:
    case TType::kReference:
      break;
  }
  return QuoteMof(text);
}

std::string MakeInstance(const TStoredInstance& instance) {
  std::string text = std::string("instance of ") + instance.GetDeclaration().name + " {\n";
  for (const auto& [name, value] : instance.GetProperties()) text += "    " + name + " = " + MakeValue(value) + ";\n";
  return text + "};\n";
}

/// The last commit of each object path, which is the one that the host keeps.
std::map<std::string, const TStoredInstance*> FindNewest(const TAnswer& answer) {
  std::map<std::string, const TStoredInstance*> newest;
  for (const TRequestAnswer& request : answer.requests) {
    for (const auto& instance : request.instances) newest[instance->GetPathText()] = instance.get();
  }
  return newest;
}

}  // namespace

std::string MakeMofReport(const TAnswer& answer) {
  const std::map<std::string, const TStoredInstance*> newest = FindNewest(answer);
  std::set<std::string> written;
  std::string text;
  for (const TRequestAnswer& request : answer.requests) {
    if (answer.requests.size() > 1) text += "// Request: " + Join(request.classes) + "\n";
    for (const auto& instance : request.instances) {
      const std::string path = instance->GetPathText();
      if (written.insert(path).second) text += MakeInstance(*newest.at(path));
    }
  }
  return text;
}
