// The plug-in namespace library: registration of plug-ins.
#include "host/plugin_manager.h"

#include "host/plugin_callbacks.h"

namespace NQRXZELT20 {

TPluginManagerNamespace::TPluginManagerNamespace(TPluginManagerProvider* provider) : m_provider(provider) {}

void TPluginManagerNamespace::RegisterPlugin(IPluginCallbacks* plugin) {
  plugin->m_provider = m_provider;
  Accept(plugin);
}

}  // namespace NQRXZELT20
