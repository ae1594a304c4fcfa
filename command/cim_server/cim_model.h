// The instances that CIM clients see: those of an answer (each object path once, references resolved), the outputs, and
// those with which the server describes itself.
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
  std::vector<std::string> values;  // as CIM-XML writes them: one if the property is no array; none for a reference
  TObjectName reference;            // only for a reference
};

struct TCimInstance {
  const TCimClass* declaration;
  TObjectName name;
  std::vector<TCimProperty> properties;  // those that are set, sorted by name

  /// The property of that name, or null.
  const TCimProperty* Find(const std::string& propertyName) const;
};

/// A link of the instance `association`, by its property `role`, to the instance `object`. Both are given by number.
struct TCimLink {
  std::size_t association;
  std::string role;
  std::size_t object;
};

class TCimModel {
 public:
  /// A model without instances.
  TCimModel() = default;

  /// Takes instances and outputs from an answer in JSON, as MakeMachineLine writes it, and the system's name from its
  /// `machine`. If a path was committed more than once, the last commit wins and keeps the first one's position, as in
  /// the host's store. Throws std::exception if the text is no such answer.
  explicit TCimModel(const std::string& answer);

  const std::vector<TCimInstance>& GetInstances() const { return m_instances; }
  /// The links to an instance, and the links of an association, both in the order of the associations.
  const std::vector<TCimLink>& GetLinksTo(std::size_t object) const { return m_linksTo[object]; }
  const std::vector<TCimLink>& GetLinksOf(std::size_t association) const { return m_linksOf[association]; }

  /// The number of the instance that a client names. The keys are looked up as they are, then with their escapes
  /// undone. Line ends in them may have become line feeds.
  std::optional<std::size_t> Find(const TObjectName& name) const;

 private:
  std::optional<std::size_t> FindExactly(const TObjectName& name) const;
  void Put(TCimInstance instance);
  /// Null if no monitor has that id.
  const TCimInstance* FindMonitor(const TCimProperty& deviceId) const;
  void PutOutput(TCimInstance output);
  void DescribeServer(const std::string& systemName);
  void Link();

  std::vector<TCimInstance> m_instances;
  std::map<std::string, std::size_t> m_numbers;  // of the instances, by identity
  std::map<std::string, std::size_t> m_aliases;  // the same, by the identity of the name with joined line ends
  // By the number of an instance:
  std::vector<std::vector<TCimLink>> m_linksTo;
  std::vector<std::vector<TCimLink>> m_linksOf;
};
