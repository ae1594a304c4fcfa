// The host's plug-in manager: where a plug-in registers.
#pragma once

#include "host/cim_objects.h"
#include "host/visibility.h"

namespace NQRXZELT20 {

class IPluginCallbacks;

/// An opaque handle that a host may give a plug-in at registration. A plug-in stores it and passes it on, never more.
class TPluginManagerProvider;

/// The namespace that TRootObject::GetPluginManager answers with has this dynamic type.
class HOST_API TPluginManagerNamespace : public ICIMNamespace {
 public:
  /// Makes the plug-in known to the host, which from here on owns the way to it: the object stays until the host calls
  /// its PrepareForUnload. Throws TZELTException when the host will not have it.
  void RegisterPlugin(IPluginCallbacks* plugin);

 protected:
  /// The provider to give to plug-ins, or null for none.
  explicit TPluginManagerNamespace(TPluginManagerProvider* provider);

  /// Takes in a plug-in whose provider has been set.
  virtual void Accept(IPluginCallbacks* plugin) = 0;

 private:
  TPluginManagerProvider* m_provider;
};

}  // namespace NQRXZELT20
