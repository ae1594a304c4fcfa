// Where plug-ins register with the embedded host.
#pragma once

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

#include "embedded_host/cim_store.h"
#include "host/plugin_manager.h"

class TPluginManager : public NQRXZELT20::TPluginManagerNamespace {
 public:
  /// `hasProvider`: whether plug-ins are given a provider pointer. `store`: has the classes of this namespace.
  TPluginManager(bool hasProvider, boost::shared_ptr<TCimStore> store);

  boost::shared_ptr<NQRXZELT20::ICIMClass> GetClass(const std::string& className,
                                                    NQRXZELT20::TCIMQueryContext context) override;

  /// The plug-ins that registered since the last call, in that order.
  std::vector<NQRXZELT20::IPluginCallbacks*> TakeRegistered();

 protected:
  void Accept(NQRXZELT20::IPluginCallbacks* plugin) override;

 private:
  boost::shared_ptr<TCimStore> m_store;
  std::vector<NQRXZELT20::IPluginCallbacks*> m_registered;
};
