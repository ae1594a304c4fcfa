#include "command/cim_server/cim_model.h"

#include <algorithm>
#include <stdexcept>

#include "command/base/json.h"
#include "command/base/version.h"
#include "command/base/xml_text.h"
#include "command/cim_server/cim_outputs.h"

using nlohmann::json;
using NQRXZELT20::TCIMValue;

namespace {

/// In DSP0201, a real number must have a point.
std::string MakeReal(std::string text) {
  if (text.find('.') == std::string::npos) text.insert(std::min(text.find('e'), text.size()), ".0");
  return text;
}

std::string MakeText(const json& value) {
  if (value.is_boolean()) return value.get<bool>() ? "TRUE" : "FALSE";
  if (value.is_number_float()) return MakeReal(WriteJson(value));
  if (value.is_number()) return WriteJson(value);
  return ToXmlText(value.get_ref<const std::string&>());
}

TCimProperty ReadProperty(const TClassDeclaration& declaration, const std::string& name, const json& value) {
  const TPropertyDeclaration* const declared = declaration.Find(name);
  if (declared == nullptr) throw std::invalid_argument(std::string(declaration.name) + " declares no " + name);
  TCimProperty property = {declared, value.is_null(), {}, {}};
  if (property.isNull) return property;
  if (declared->type == TCIMValue::TCIMType::kReference) {
    property.reference = ParseObjectPath(value.get_ref<const std::string&>());
  } else if (declared->isArray) {
    for (const json& element : value) property.values.push_back(MakeText(element));
  } else {
    property.values.push_back(MakeText(value));
  }
  return property;
}

TCimInstance ReadInstance(const json& instance) {
  const std::string& className = instance.at("class").get_ref<const std::string&>();
  const TCimClass* const declaration = FindCimClass(className);
  if (declaration == nullptr) throw std::invalid_argument("there is no class " + className);
  TCimInstance read = {declaration, ParseObjectPath(instance.at("path").get_ref<const std::string&>()), {}};
  for (const auto& [name, property] : instance.at("properties").items()) {
    read.properties.push_back(ReadProperty(*declaration, name, property.at("value")));
  }
  return read;
}

/// `values`: the properties that are no references, by name.
TCimInstance MakeInstance(const char* className, const json& values) {
  const TCimClass& declaration = *FindCimClass(className);
  TCimInstance made = {&declaration, {className, {}}, {}};
  for (const auto& [name, value] : values.items()) {
    made.properties.push_back(ReadProperty(declaration, name, value));
    const TCimProperty& property = made.properties.back();
    if (!property.declaration->isKey) continue;
    const bool isNumber = property.declaration->type != TCIMValue::TCIMType::kString;
    made.name.keys.push_back({name, property.values.at(0), nullptr, isNumber});
  }
  return made;
}

/// An instance of DI_OutputMonitor.
TCimInstance LinkOutput(const TObjectName& monitor, const TObjectName& output) {
  const TCimClass& declaration = *FindCimClass(kOutputMonitorClass);
  TCimInstance made = {&declaration, {kOutputMonitorClass, {}}, {}};
  for (const auto& [role, name] : {std::pair("Antecedent", monitor), std::pair("Dependent", output)}) {
    made.properties.push_back({declaration.Find(role), false, {}, name});
    made.name.keys.push_back({role, "", std::make_shared<const TObjectName>(name)});
  }
  return made;
}

bool IsReference(const TCimProperty& property) {
  return !property.isNull && property.declaration->type == TCIMValue::TCIMType::kReference;
}

}  // namespace

const TCimProperty* TCimInstance::Find(const std::string& propertyName) const {
  const auto found = std::find_if(properties.begin(), properties.end(), [&](const TCimProperty& property) {
    return IsSameName(property.declaration->name, propertyName);
  });
  return found == properties.end() ? nullptr : &*found;
}

TCimModel::TCimModel(const std::string& answer) {
  const json document = ParseJson(answer);
  for (const json& request : document.at("requests")) {
    for (const json& instance : request.at("instances")) Put(ReadInstance(instance));
  }
  const std::string systemName = document.value("machine", "");
  for (const json& output : document.value("outputs", json::array())) {
    PutOutput(MakeInstance(kOutputClass, ReadOutput(output, systemName)));
  }
  DescribeServer(systemName);
  Link();
}

const TCimInstance* TCimModel::FindMonitor(const TCimProperty& deviceId) const {
  const auto found = std::find_if(m_instances.begin(), m_instances.end(), [&](const TCimInstance& candidate) {
    if (candidate.declaration->name != std::string_view(kDesktopMonitorClass)) return false;
    const TCimProperty* const id = candidate.Find(deviceId.declaration->name);
    return id != nullptr && !id->isNull && id->values == deviceId.values;
  });
  return found == m_instances.end() ? nullptr : &*found;
}

void TCimModel::PutOutput(TCimInstance output) {
  const TCimInstance* const monitor = FindMonitor(*output.Find("DeviceID"));
  std::optional<TCimInstance> link;
  if (monitor != nullptr) link = LinkOutput(monitor->name, output.name);
  Put(std::move(output));
  if (link) Put(std::move(*link));
}

void TCimModel::DescribeServer(const std::string& systemName) {
  const std::string program = "displayinfo";
  const json system = {{"SystemCreationClassName", "CIM_ComputerSystem"}, {"SystemName", systemName}};
  const std::string name = program + ":" + systemName;
  json server = {{"CreationClassName", kObjectManagerClass},
                 {"Name", name},
                 {"ElementName", program},
                 {"Description", program + " " + kCommandVersion},
                 {"Version", kCommandVersion},
                 {"GatherStatisticalData", false}};
  server.update(system);
  Put(MakeInstance(kObjectManagerClass, server));
  for (const char* const nameSpace : {kInteropNamespace, kCimNamespace}) {
    json described = {{"ObjectManagerCreationClassName", kObjectManagerClass},
                      {"ObjectManagerName", name},
                      {"CreationClassName", kNamespaceClass},
                      {"Name", nameSpace}};
    described.update(system);
    Put(MakeInstance(kNamespaceClass, described));
  }
}

void TCimModel::Put(TCimInstance instance) {
  const auto [place, isNew] = m_numbers.emplace(MakeIdentity(instance.name), m_instances.size());
  const std::string alias = MakeIdentity(JoinLineEnds(instance.name));
  if (alias != place->first) m_aliases.emplace(alias, place->second);
  if (isNew) {
    m_instances.push_back(std::move(instance));
  } else {
    m_instances[place->second] = std::move(instance);
  }
}

void TCimModel::Link() {
  m_linksTo.resize(m_instances.size());
  m_linksOf.resize(m_instances.size());
  for (std::size_t number = 0; number < m_instances.size(); ++number) {
    for (const TCimProperty& property : m_instances[number].properties) {
      if (!IsReference(property)) continue;
      const std::optional<std::size_t> object = FindExactly(property.reference);
      if (!object) continue;
      const TCimLink link = {number, property.declaration->name, *object};
      m_linksTo[*object].push_back(link);
      m_linksOf[number].push_back(link);
    }
  }
}

std::optional<std::size_t> TCimModel::Find(const TObjectName& name) const {
  const std::optional<std::size_t> found = FindExactly(name);
  return found ? found : FindExactly(UndoEscapes(name));
}

std::optional<std::size_t> TCimModel::FindExactly(const TObjectName& name) const {
  const std::string identity = MakeIdentity(name);
  for (const auto* const numbers : {&m_numbers, &m_aliases}) {
    const auto found = numbers->find(identity);
    if (found != numbers->end()) return found->second;
  }
  return std::nullopt;
}
