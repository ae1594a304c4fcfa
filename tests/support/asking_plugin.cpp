// A plug-in that only asks for one file, by a path with dots.
#include "tests/support/stand_in_plugin.h"

using namespace NQRXZELT20;

namespace {

class TAskingPlugin : public TStandInPlugin {
 public:
  TAskingPlugin() { Register(); }

  void GetData(boost::shared_ptr<ICIMNamespace>, std::vector<boost::shared_ptr<ICIMClass>>&) override {
    TOSSpecific::FileExists("/../../etc/passwd");
  }
};

TAskingPlugin* const gPlugin = new TAskingPlugin;

}  // namespace
