#include "embedded_host/embedded_host.h"

#include <boost/make_shared.hpp>

#include <utility>

#include "embedded_host/plugin_manager.h"
#include "embedded_host/schema.h"
#include "host/exception.h"

using NQRXZELT20::ICIMNamespace;
using NQRXZELT20::ILogger;
using NQRXZELT20::IPluginCallbacks;
using NQRXZELT20::TZELTException;

TEmbeddedHost::TEmbeddedHost(THostConfiguration configuration, std::function<void(const TLogEntry&)> logListener)
    : m_configuration(std::move(configuration)),
      m_log(std::move(logListener)),
      m_store(TCimStore::Create(GetSchema())),
      m_pluginManager(boost::make_shared<TPluginManager>(m_configuration.provider, m_store)) {
  InstallHostServices(this);
}

TEmbeddedHost::~TEmbeddedHost() { InstallHostServices(nullptr); }

boost::shared_ptr<TCimStore> TEmbeddedHost::GetStore() { return m_store; }
const TLog& TEmbeddedHost::GetLog() const { return m_log; }
std::vector<TLogEntry> TEmbeddedHost::TakeLog() { return m_log.TakeEntries(); }
const std::vector<TFileQuery>& TEmbeddedHost::GetFileQueries() const { return m_fileQueries; }
std::vector<IPluginCallbacks*> TEmbeddedHost::TakeRegistered() { return m_pluginManager->TakeRegistered(); }

void TEmbeddedHost::RethrowFailure() const {
  if (m_failure) std::rethrow_exception(m_failure);
}

template <typename TLook>
auto TEmbeddedHost::NoteFailure(const TLook& look) try {
  return look();
} catch (const TZELTException&) {
  throw;
} catch (...) {
  if (!m_failure) m_failure = std::current_exception();
  throw;
}

ILogger* TEmbeddedHost::GetCoreLogger() { return &m_log; }
boost::shared_ptr<ICIMNamespace> TEmbeddedHost::GetPluginManager() { return m_pluginManager; }
std::string TEmbeddedHost::GetSystemName(boost::shared_ptr<ICIMNamespace>) { return m_configuration.systemName; }
std::string TEmbeddedHost::GetSystemCreationClassName(boost::shared_ptr<ICIMNamespace>) {
  return m_configuration.systemCreationClassName;
}
bool TEmbeddedHost::FileExists(const std::string& path) {
  const bool exists = m_configuration.files && NoteFailure([&] { return m_configuration.files->Exists(path); });
  m_fileQueries.push_back({path, exists});
  return exists;
}
std::string TEmbeddedHost::CaptureFile(const std::string& path) {
  if (!m_configuration.files) throw TZELTException(path + ": no such file");
  return NoteFailure([&] { return m_configuration.files->Read(path); });
}
int TEmbeddedHost::GetRunningTypeOnXen() { return m_configuration.systemType; }
