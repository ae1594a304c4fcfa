// The host's plug-in manager: where a plug-in registers.
#pragma once

#include "host/cim_objects.h"
#include "host/visibility.h"

namespace NQRXZELT20 {

class IPluginCallbacks;

/// An opaque handle that a host may give a plug-in at registration. A plug-in only stores it and passes it on.
class TPluginManagerProvider;

/// The dynamic type of the namespace that TRootObject::GetPluginManager returns.
class HOST_API TPluginManagerNamespace : public ICIMNamespace {
 public:
  /// Makes the plug-in known to the host. The object must stay alive until the host calls its PrepareForUnload. Throws
  /// TZELTException if the host refuses it.
  void RegisterPlugin(IPluginCallbacks* plugin);

 protected:
  /// The provider to give to plug-ins, or null for none.
  explicit TPluginManagerNamespace(TPluginManagerProvider* provider);

  /// Keeps a plug-in whose provider has been set.
  virtual void Accept(IPluginCallbacks* plugin) = 0;

 private:
  TPluginManagerProvider* m_provider;
};

}  // namespace NQRXZELT20
