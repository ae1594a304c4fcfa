#include "embedded_host/plugin_manager.h"

#include <utility>

#include "host/plugin_callbacks.h"

namespace NQRXZELT20 {

// The handle that plug-ins are given. They only check whether they have one.
class TPluginManagerProvider {};

TPluginManagerNamespace::TPluginManagerNamespace(TPluginManagerProvider* provider) : m_provider(provider) {}

void TPluginManagerNamespace::RegisterPlugin(IPluginCallbacks* plugin) {
  plugin->m_provider = m_provider;
  Accept(plugin);
}

}  // namespace NQRXZELT20

using NQRXZELT20::ICIMClass;
using NQRXZELT20::IPluginCallbacks;
using NQRXZELT20::TCIMQueryContext;

namespace {
NQRXZELT20::TPluginManagerProvider g_provider;
}

TPluginManager::TPluginManager(bool hasProvider, boost::shared_ptr<TCimStore> store)
    : TPluginManagerNamespace(hasProvider ? &g_provider : nullptr), m_store(std::move(store)) {}

boost::shared_ptr<ICIMClass> TPluginManager::GetClass(const std::string& className, TCIMQueryContext context) {
  return m_store->GetClass(className, std::move(context));
}

std::vector<IPluginCallbacks*> TPluginManager::TakeRegistered() { return std::exchange(m_registered, {}); }

void TPluginManager::Accept(IPluginCallbacks* plugin) { m_registered.push_back(plugin); }
