// A plug-in that lists two monitors whatever the machine has: the one named C first, then the one named A.
#include "tests/support/stand_in_plugin.h"

using namespace NQRXZELT20;

namespace {

class TListingPlugin : public TStandInPlugin {
 public:
  TListingPlugin() { Register(); }

  void GetData(boost::shared_ptr<ICIMNamespace>, std::vector<boost::shared_ptr<ICIMClass>>& classes) override {
    for (const auto& cimClass : classes) {
      if (cimClass->GetName({}) != "QRXSG_DesktopMonitor") continue;
      Commit(*cimClass, "Screen 7", "C");
      Commit(*cimClass, "Screen 8", "A");
    }
  }

 private:
  static void Commit(ICIMClass& cimClass, const std::string& id, const std::string& name) {
    const auto monitor = cimClass.CreateInstance({});
    monitor->SetProperty("DeviceID", TCIMValue(id), {});
    monitor->SetProperty("MonitorManufacturer", TCIMValue("TST"), {});
    monitor->SetProperty("Name", TCIMValue(name), {});
    monitor->Commit({});
  }
};

TListingPlugin* const gPlugin = new TListingPlugin;

}  // namespace
