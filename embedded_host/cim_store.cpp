#include "embedded_host/cim_store.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <utility>

#include "host/exception.h"

using NQRXZELT20::ICIMClass;
using NQRXZELT20::ICIMInstance;
using NQRXZELT20::ICIMNamespace;
using NQRXZELT20::ICIMProperty;
using NQRXZELT20::TCIMQueryContext;
using NQRXZELT20::TCIMReference;
using NQRXZELT20::TCIMValue;
using NQRXZELT20::TZELTException;

namespace {

class TStoredProperty : public ICIMProperty {
 public:
  explicit TStoredProperty(const TCIMValue& value) : m_value(value) {}

  const TCIMValue& GetValue(TCIMQueryContext) override { return m_value; }

 private:
  TCIMValue m_value;
};

bool IsSpecial(char character) { return character == '\\' || character == '"'; }

/// Appends the value with a backslash before each special character.
void AppendEscaped(std::string& target, const std::string& value) {
  const char* const end = value.data() + value.size();
  for (const char* run = value.data();;) {
    const char* const special = std::find_if(run, end, IsSpecial);
    target.append(run, static_cast<std::size_t>(special - run));
    if (special == end) return;
    target += '\\';
    target += *special;
    run = special + 1;
  }
}

template <typename T>
boost::shared_ptr<T> LockOrThrow(const boost::weak_ptr<T>& pointer, const char* what) {
  boost::shared_ptr<T> locked = pointer.lock();
  if (locked == nullptr) throw TZELTException(std::string(what) + " is gone");
  return locked;
}

}  // namespace

TStoredInstance::TStoredInstance(boost::shared_ptr<TStoredClass> cimClass)
    : m_class(cimClass), m_declaration(cimClass->GetDeclaration()) {}

boost::shared_ptr<TStoredClass> TStoredInstance::Owner() const { return LockOrThrow(m_class, "the instance's class"); }

void TStoredInstance::Commit(TCIMQueryContext) { Owner()->Hold(shared_from_this()); }

TCIMReference TStoredInstance::GetObjectPath(TCIMQueryContext) { return TCIMReference(GetPathText()); }

boost::shared_ptr<ICIMClass> TStoredInstance::GetClass(TCIMQueryContext) { return Owner(); }

boost::shared_ptr<ICIMProperty> TStoredInstance::GetProperty(const std::string& name, TCIMQueryContext) {
  if (m_asked != nullptr && m_askedName == name) return m_asked;
  const auto found = m_properties.find(name);
  if (found == m_properties.end()) Declared(name);
  m_askedName = name;
  m_asked = boost::make_shared<TStoredProperty>(found == m_properties.end() ? TCIMValue() : found->second);
  return m_asked;
}

void TStoredInstance::SetProperty(const std::string& name, const TCIMValue& value, TCIMQueryContext) {
  const TPropertyDeclaration& declared = Declared(name);
  const bool isOfType = value.GetType().GetCode() == declared.type && value.IsArray() == declared.isArray;
  if (!isOfType && !value.IsNull()) {
    throw TZELTException(std::string(m_declaration.name) + "." + name + " is a " +
                         GetTypeName(declared.type, declared.isArray) + " and was given a " +
                         GetTypeName(value.GetType(), value.IsArray()));
  }
  m_properties[name] = value;
  m_path.clear();
  m_asked.reset();
}

const TClassDeclaration& TStoredInstance::GetDeclaration() const { return m_declaration; }

const std::map<std::string, TCIMValue>& TStoredInstance::GetProperties() const { return m_properties; }

const std::string& TStoredInstance::GetPathText() const {
  if (!m_path.empty()) return m_path;
  std::string path = m_declaration.name;
  char separator = '.';
  for (const TPropertyDeclaration& property : m_declaration.properties) {
    if (!property.isKey) break;
    const auto found = m_properties.find(property.name);
    if (found == m_properties.end()) continue;
    path += separator;
    path.append(property.name).append("=\"");
    AppendEscaped(path, found->second);
    path += '"';
    separator = ',';
  }
  return m_path = std::move(path);
}

const TPropertyDeclaration& TStoredInstance::Declared(const std::string& name) const {
  const TPropertyDeclaration* declared = m_declaration.Find(name);
  if (declared == nullptr) {
    throw TZELTException(std::string(m_declaration.name) + " declares no property \"" + name + "\"");
  }
  return *declared;
}

TStoredClass::TStoredClass(const TClassDeclaration& declaration, boost::weak_ptr<TCimStore> store)
    : m_declaration(declaration), m_name(declaration.name), m_store(store) {}

const std::string& TStoredClass::GetName(TCIMQueryContext) { return m_name; }

boost::shared_ptr<ICIMNamespace> TStoredClass::GetNamespace(TCIMQueryContext) {
  return LockOrThrow(m_store, "the class's namespace");
}

boost::shared_ptr<ICIMInstance> TStoredClass::CreateInstance(TCIMQueryContext) {
  return boost::make_shared<TStoredInstance>(shared_from_this());
}

void TStoredClass::EnumerateInstances(boost::function<bool(boost::shared_ptr<ICIMInstance>)> callback, bool,
                                      TCIMQueryContext) {
  const std::vector<boost::shared_ptr<TStoredInstance>> held = m_instances;  // the callback may commit
  for (const boost::shared_ptr<TStoredInstance>& instance : held) {
    if (!callback(instance)) return;
  }
}

void TStoredClass::Hold(boost::shared_ptr<TStoredInstance> instance) {
  const auto [position, isNew] = m_positions.emplace(instance->GetPathText(), m_instances.size());
  if (isNew) {
    m_instances.push_back(instance);
  } else {
    m_instances[position->second] = instance;
  }
  LockOrThrow(m_store, "the class's namespace")->NoteCommit(instance);
}

const TClassDeclaration& TStoredClass::GetDeclaration() const { return m_declaration; }

boost::shared_ptr<TCimStore> TCimStore::Create(const std::vector<TClassDeclaration>& schema) {
  boost::shared_ptr<TCimStore> store(new TCimStore());
  for (const TClassDeclaration& declaration : schema) {
    store->m_classes[declaration.name] = boost::make_shared<TStoredClass>(declaration, store);
  }
  return store;
}

boost::shared_ptr<ICIMClass> TCimStore::GetClass(const std::string& className, TCIMQueryContext) {
  const auto found = m_classes.find(className);
  if (found == m_classes.end()) throw TZELTException("the namespace has no class \"" + className + "\"");
  return found->second;
}

std::vector<boost::shared_ptr<TStoredInstance>> TCimStore::TakeCommits() {
  std::vector<boost::shared_ptr<TStoredInstance>> commits;
  commits.swap(m_commits);
  return commits;
}

void TCimStore::NoteCommit(boost::shared_ptr<TStoredInstance> instance) { m_commits.push_back(instance); }
