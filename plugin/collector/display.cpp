#include "plugin/collector/display.h"

#include <algorithm>
#include <boost/function.hpp>

#include "host/add_to_vector_callback.h"
#include "host/services.h"

using NQRXZELT20::ICIMClass;
using NQRXZELT20::ICIMInstance;
using NQRXZELT20::ILogger;
using NQRXZELT20::TAddToVectorCallback;
using NQRXZELT20::TCIMQueryContext;
using NQRXZELT20::TCIMReference;
using NQRXZELT20::TPluginManagerProvider;
using NQRXZELT20::TRootObject;

TDisplay::TDisplay() : m_cimClass(nullptr), m_provider(nullptr) {}

TDisplay::TDisplay(boost::shared_ptr<ICIMClass> cimClass) : m_cimClass(cimClass.get()), m_provider(nullptr) {}

TDisplay::TDisplay(boost::shared_ptr<ICIMClass> cimClass, TPluginManagerProvider* provider)
    : m_cimClass(cimClass.get()), m_provider(provider) {}

ICIMClass* TDisplay::GetCIMClass() { return m_cimClass; }

TDisplay::~TDisplay() = default;

std::vector<ICIMInstance*> TDisplay::GetCIMInstances() {
  const std::string className = GetCIMClass()->GetName(TCIMQueryContext());
  return GetCIMInstances(className);
}

TPluginManagerProvider* TDisplay::GetInfoHandle() { return m_provider; }

ICIMInstance* TDisplay::GenerateCIMInstance(PropertyMap properties, std::string className) {
  // "generateCIMInstance" with a small g: a search of the log for this text would miss another.
  WriteVerbose("TDisplay::generateCIMInstance - Generating CIM instance for class " + className + ".");
  const boost::shared_ptr<ICIMInstance> instance = GetCIMClass()->CreateInstance(TCIMQueryContext());
  for (const auto& [name, value] : properties) instance->SetProperty(name, value, TCIMQueryContext());
  if (GetCIMClass()->GetName(TCIMQueryContext()) == className) instance->Commit(TCIMQueryContext());
  return instance.get();
}

bool TDisplay::IsDuplicateInstance(ICIMInstance* instance) {
  const boost::shared_ptr<ICIMClass> cimClass = instance->GetClass(TCIMQueryContext());
  const TCIMReference path = instance->GetObjectPath(TCIMQueryContext());
  std::vector<boost::shared_ptr<ICIMInstance>> held;
  cimClass->EnumerateInstances(TAddToVectorCallback<ICIMInstance>(&held), false, TCIMQueryContext());
  return std::any_of(held.begin(), held.end(), [&](const boost::shared_ptr<ICIMInstance>& other) {
    return other->GetObjectPath(TCIMQueryContext()) == path;
  });
}

void TDisplay::Write(const std::string& message, ILogger::EZELTLogSeverity severity) const {
  // Without a provider the collectors are silent on purpose: the host decides at registration whether it wants them
  // heard.
  if (m_provider == nullptr || message.empty()) return;
  TRootObject::GetCoreLogger()->Write(severity, message);
}

void TDisplay::WriteError(const std::string& message) const { Write(message, ILogger::kError); }
void TDisplay::WriteWarning(const std::string& message) const { Write(message, ILogger::kWarning); }
void TDisplay::WriteStatus(const std::string& message) const { Write(message, ILogger::kStatus); }
void TDisplay::WriteDebug(const std::string& message) const { Write(message, ILogger::kDebug); }
void TDisplay::WriteVerbose(const std::string& message) const { Write(message, ILogger::kVerbose); }
