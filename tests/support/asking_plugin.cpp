// A plug-in that asks for one file, by a path with dots, and has nothing else to say.
#include "host/plugin_callbacks.h"
#include "host/plugin_manager.h"
#include "host/services.h"

using namespace NQRXZELT20;

namespace {

class TAskingPlugin : public IPluginCallbacks, public IPluginBasicQueryCallbacks {
 public:
  TAskingPlugin() {
    boost::dynamic_pointer_cast<TPluginManagerNamespace>(TRootObject::GetPluginManager())->RegisterPlugin(this);
  }

  int GetType() override { return 0; }
  std::string GetName() override { return "asking"; }
  std::string GetVersion() override { return "1"; }
  std::string GetInterfaceVersion() override { return "1.0"; }
  void PrepareForUnload() override { delete this; }
  void Init() override {}
  void DeInit() override {}
  void GetData(boost::shared_ptr<ICIMNamespace>, std::vector<boost::shared_ptr<ICIMClass>>&) override {
    TOSSpecific::FileExists("/../../etc/passwd");
  }
};

TAskingPlugin* const gPlugin = new TAskingPlugin;

}  // namespace
