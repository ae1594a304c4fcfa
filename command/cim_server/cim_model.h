// The instances that CIM clients see: an answer of the plug-in, each object path once, with its references resolved,
// the outputs, and what the server says of itself.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "command/cim_server/cim_classes.h"
#include "command/cim_server/object_name.h"

struct TCimProperty {
  const TPropertyDeclaration* declaration;
  bool isNull = false;
  std::vector<std::string> values;  // as CIM-XML writes them; one when the property is no array; none for a reference
  TObjectName reference;            // of a reference property
};

struct TCimInstance {
  const TCimClass* declaration;
  TObjectName name;
  std::vector<TCimProperty> properties;  // those that are set, in ascending order of their names

  /// The property of that name, or null.
  const TCimProperty* Find(const std::string& propertyName) const;
};

/// That `association` links, by its property `role`, to `object`. Both are numbers of instances.
struct TCimLink {
  std::size_t association;
  std::string role;
  std::size_t object;
};

class TCimModel {
 public:
  /// Without instances.
  TCimModel() = default;

  /// Takes instances and outputs from an answer in JSON, as MakeMachineLine writes it, and the system's name from its
  /// `machine`. If a path was committed more than once, the last commit wins and keeps the first one's position, as in
  /// the host's store. Throws std::exception for a text that is no such answer.
  explicit TCimModel(const std::string& answer);

  const std::vector<TCimInstance>& GetInstances() const { return m_instances; }
  /// Those to one instance, and those of one association, both in the order of the associations.
  const std::vector<TCimLink>& GetLinksTo(std::size_t object) const { return m_linksTo[object]; }
  const std::vector<TCimLink>& GetLinksOf(std::size_t association) const { return m_linksOf[association]; }

  /// The number of the instance that a client names. Its keys are looked up as they come, then with their escapes
  /// undone; line ends in them may have become line feeds.
  std::optional<std::size_t> Find(const TObjectName& name) const;

 private:
  std::optional<std::size_t> FindExactly(const TObjectName& name) const;
  void Put(TCimInstance instance);
  /// Null when none has that id.
  const TCimInstance* FindMonitor(const TCimProperty& deviceId) const;
  void PutOutput(TCimInstance output);
  void DescribeServer(const std::string& systemName);
  void Link();

  std::vector<TCimInstance> m_instances;
  std::map<std::string, std::size_t> m_numbers;  // of the instances, by their identities
  std::map<std::string, std::size_t> m_aliases;  // the same, by the identities of their names with joined line ends
  // By the number of the instance:
  std::vector<std::vector<TCimLink>> m_linksTo;
  std::vector<std::vector<TCimLink>> m_linksOf;
};
