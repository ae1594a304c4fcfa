// The embedded host's CIM model: one namespace with the classes of the schema, and the instances committed to them.
#pragma once

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>

#include <map>
#include <string>
#include <vector>

#include "embedded_host/schema.h"
#include "host/cim_objects.h"

class TStoredClass;

/// An instance. It accepts only properties that its class declares, of the declared type. For any other it throws a
/// TZELTException that names class and property.
class HOST_API TStoredInstance : public NQRXZELT20::ICIMInstance,
                                 public boost::enable_shared_from_this<TStoredInstance> {
 public:
  explicit TStoredInstance(boost::shared_ptr<TStoredClass> cimClass);

  void Commit(NQRXZELT20::TCIMQueryContext context) override;
  NQRXZELT20::TCIMReference GetObjectPath(NQRXZELT20::TCIMQueryContext context) override;
  boost::shared_ptr<NQRXZELT20::ICIMClass> GetClass(NQRXZELT20::TCIMQueryContext context) override;
  /// A property that was not set has a null value.
  boost::shared_ptr<NQRXZELT20::ICIMProperty> GetProperty(const std::string& name,
                                                          NQRXZELT20::TCIMQueryContext context) override;
  void SetProperty(const std::string& name, const NQRXZELT20::TCIMValue& value,
                   NQRXZELT20::TCIMQueryContext context) override;

  const TClassDeclaration& GetDeclaration() const;
  const std::map<std::string, NQRXZELT20::TCIMValue>& GetProperties() const;
  /// The class, a dot, and the keys that are set as Name="value", sorted by name and joined by commas.
  const std::string& GetPathText() const;

 private:
  boost::shared_ptr<TStoredClass> Owner() const;
  const TPropertyDeclaration& Declared(const std::string& name) const;

  boost::weak_ptr<TStoredClass> m_class;  // weak: the class holds its instances
  const TClassDeclaration& m_declaration;
  std::map<std::string, NQRXZELT20::TCIMValue> m_properties;
  // Kept since associations ask for them again and again; empty until the first time.
  mutable std::string m_path;
  std::string m_askedName;  // of the property that was asked for last
  boost::shared_ptr<NQRXZELT20::ICIMProperty> m_asked;
};

class TCimStore;

class HOST_API TStoredClass : public NQRXZELT20::ICIMClass, public boost::enable_shared_from_this<TStoredClass> {
 public:
  TStoredClass(const TClassDeclaration& declaration, boost::weak_ptr<TCimStore> store);

  const std::string& GetName(NQRXZELT20::TCIMQueryContext context) override;
  boost::shared_ptr<NQRXZELT20::ICIMNamespace> GetNamespace(NQRXZELT20::TCIMQueryContext context) override;
  boost::shared_ptr<NQRXZELT20::ICIMInstance> CreateInstance(NQRXZELT20::TCIMQueryContext context) override;
  /// Enumerates each path once, in the order of the first commits.
  void EnumerateInstances(boost::function<bool(boost::shared_ptr<NQRXZELT20::ICIMInstance>)> callback, bool flag,
                          NQRXZELT20::TCIMQueryContext context) override;

  /// Holds the instance; it replaces one with the same object path.
  void Hold(boost::shared_ptr<TStoredInstance> instance);

  const TClassDeclaration& GetDeclaration() const;

 private:
  const TClassDeclaration& m_declaration;
  const std::string m_name;
  boost::weak_ptr<TCimStore> m_store;  // weak: the store holds its classes
  std::vector<boost::shared_ptr<TStoredInstance>> m_instances;
  std::map<std::string, std::size_t> m_positions;  // indexes in m_instances, by object path
};

/// The namespace. Make it with Create: its classes refer back to it.
class HOST_API TCimStore : public NQRXZELT20::ICIMNamespace, public boost::enable_shared_from_this<TCimStore> {
 public:
  /// A store with these classes and no instances. `schema` must outlive it.
  static boost::shared_ptr<TCimStore> Create(const std::vector<TClassDeclaration>& schema);

  /// Throws TZELTException, which names the class, for a class that is not in the schema.
  boost::shared_ptr<NQRXZELT20::ICIMClass> GetClass(const std::string& className,
                                                    NQRXZELT20::TCIMQueryContext context) override;

  /// Every instance committed since the last call, in commit order, even if it has been replaced.
  std::vector<boost::shared_ptr<TStoredInstance>> TakeCommits();

  void NoteCommit(boost::shared_ptr<TStoredInstance> instance);

 private:
  TCimStore() = default;

  std::map<std::string, boost::shared_ptr<TStoredClass>> m_classes;
  std::vector<boost::shared_ptr<TStoredInstance>> m_commits;
};
