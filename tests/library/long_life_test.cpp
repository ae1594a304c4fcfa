// Tests the plug-in in a host that runs for years: a hundred thousand requests, and ten thousand loads, leak nothing.
#include <gtest/gtest.h>

#include <memory>

#include "realmode/choose_bios.h"
#include "realmode/virtual_video_bios.h"
#include "tests/support/edid_builder.h"
#include "tests/support/loaded_plugin.h"
#include "tests/support/process_resources.h"

namespace {

class LongLife : public testing::Test {
 protected:
  LongLife() {
    TVirtualBiosConfiguration configuration;
    configuration.units[0].edid = TEdidBuilder().Name(0, "A").Established(0x21, 0).Build();
    ChooseVideoBios(std::make_shared<TVirtualVideoBios>(configuration));
    host.files["/etc/X11/xorg.conf"] = "Section \"Device\"\nIdentifier \"Card0\"\nEndSection\n";
    host.pluginManager = boost::make_shared<TTestPluginManager>(TTestHost::Provider());
  }
  ~LongLife() override { ChooseVideoBios(nullptr); }

  void Ask(TLoadedPlugin& plugin) {
    std::vector<std::string> names;
    for (const TClassDeclaration& declaration : GetSchema()) names.emplace_back(declaration.name);
    ASSERT_EQ(plugin.Ask(names).size(), 8U);
    host.Forget();
  }

  TTestHost host;
};

}  // namespace

TEST_F(LongLife, LeavesNothingBehindInAHundredThousandRequests) {
  TLoadedPlugin plugin(host, PLUGIN_FILE);
  ExpectNothingLeftBehind([&] { Ask(plugin); }, 1000, 100'000);
}

TEST_F(LongLife, LeavesNothingBehindInTenThousandLoads) {
  ExpectNothingLeftBehind(
      [&] {
        host.pluginManager = boost::make_shared<TTestPluginManager>(TTestHost::Provider());
        TLoadedPlugin plugin(host, PLUGIN_FILE);
        Ask(plugin);
      },
      1000, 10'000);
}
