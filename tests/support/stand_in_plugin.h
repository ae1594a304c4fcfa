// The base of every library that stands in for the plug-in: a plug-in that answers requests with nothing.
#pragma once

#include <string>
#include <vector>

#include "host/plugin_callbacks.h"
#include "host/plugin_manager.h"
#include "host/services.h"

class TStandInPlugin : public NQRXZELT20::IPluginCallbacks, public NQRXZELT20::IPluginBasicQueryCallbacks {
 public:
  int GetType() override { return 0; }
  std::string GetName() override { return "stand-in"; }
  std::string GetVersion() override { return "1"; }
  std::string GetInterfaceVersion() override { return "1.0"; }
  void PrepareForUnload() override { delete this; }
  void Init() override {}
  void DeInit() override {}

 protected:
  void Register() {
    boost::dynamic_pointer_cast<NQRXZELT20::TPluginManagerNamespace>(NQRXZELT20::TRootObject::GetPluginManager())
        ->RegisterPlugin(this);
  }
};
