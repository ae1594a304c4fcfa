#include "embedded_host/embedded_host.h"

#include <boost/make_shared.hpp>

#include <utility>

#include "embedded_host/schema.h"
#include "host/plugin_manager.h"

using NQRXZELT20::ICIMClass;
using NQRXZELT20::ICIMNamespace;
using NQRXZELT20::ILogger;
using NQRXZELT20::IPluginCallbacks;
using NQRXZELT20::TCIMQueryContext;
using NQRXZELT20::TPluginManagerProvider;

// The handle that plug-ins are given: only whether there is one matters to them.
class NQRXZELT20::TPluginManagerProvider {};

class TEmbeddedHost::TPluginManager : public NQRXZELT20::TPluginManagerNamespace {
 public:
  TPluginManager(TPluginManagerProvider* provider, boost::shared_ptr<TCimStore> store)
      : TPluginManagerNamespace(provider), m_store(std::move(store)) {}

  boost::shared_ptr<ICIMClass> GetClass(const std::string& className, TCIMQueryContext context) override {
    return m_store->GetClass(className, std::move(context));
  }

  std::vector<IPluginCallbacks*> TakeRegistered() { return std::exchange(m_registered, {}); }

 protected:
  void Accept(IPluginCallbacks* plugin) override { m_registered.push_back(plugin); }

 private:
  boost::shared_ptr<TCimStore> m_store;
  std::vector<IPluginCallbacks*> m_registered;
};

namespace {
TPluginManagerProvider g_provider;
}

TEmbeddedHost::TEmbeddedHost(THostConfiguration configuration, std::function<void(const TLogEntry&)> logListener)
    : m_configuration(std::move(configuration)),
      m_files(m_configuration.root),
      m_log(std::move(logListener)),
      m_store(TCimStore::Create(GetSchema())),
      m_pluginManager(boost::make_shared<TPluginManager>(m_configuration.provider ? &g_provider : nullptr, m_store)) {
  InstallHostServices(this);
}

TEmbeddedHost::~TEmbeddedHost() { InstallHostServices(nullptr); }

boost::shared_ptr<TCimStore> TEmbeddedHost::GetStore() { return m_store; }
const TLog& TEmbeddedHost::GetLog() const { return m_log; }
const std::vector<TFileQuery>& TEmbeddedHost::GetFileQueries() const { return m_fileQueries; }
std::vector<IPluginCallbacks*> TEmbeddedHost::TakeRegistered() { return m_pluginManager->TakeRegistered(); }

ILogger* TEmbeddedHost::GetCoreLogger() { return &m_log; }
boost::shared_ptr<ICIMNamespace> TEmbeddedHost::GetPluginManager() { return m_pluginManager; }
std::string TEmbeddedHost::GetSystemName(boost::shared_ptr<ICIMNamespace>) { return m_configuration.systemName; }
std::string TEmbeddedHost::GetSystemCreationClassName(boost::shared_ptr<ICIMNamespace>) {
  return m_configuration.systemCreationClassName;
}
bool TEmbeddedHost::FileExists(const std::string& path) {
  m_fileQueries.push_back({path, m_files.Exists(path)});
  return m_fileQueries.back().exists;
}
std::string TEmbeddedHost::CaptureFile(const std::string& path) { return m_files.Read(path); }
int TEmbeddedHost::GetRunningTypeOnXen() { return m_configuration.systemType; }
