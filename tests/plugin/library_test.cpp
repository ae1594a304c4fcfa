// The plug-in as a loaded library, over the LRMI calls and a virtual BIOS.
#include <dlfcn.h>
#include <gmock/gmock.h>

#include <memory>
#include <string>

#include "host/plugin_callbacks.h"
#include "realmode/choose_bios.h"
#include "realmode/virtual_video_bios.h"
#include "tests/support/edid_builder.h"
#include "tests/support/properties.h"
#include "tests/support/test_host.h"

using NQRXZELT20::ICIMClass;
using NQRXZELT20::IPluginBasicQueryCallbacks;
using NQRXZELT20::IPluginCallbacks;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

class PluginLibrary : public testing::Test {
 protected:
  PluginLibrary() {
    TVirtualBiosConfiguration configuration;
    configuration.units[0].edid = TEdidBuilder().Name(0, "A").Build();
    ChooseVideoBios(std::make_shared<TVirtualVideoBios>(configuration));
    Load();
  }

  ~PluginLibrary() override {
    if (library != nullptr) Unload();
    ChooseVideoBios(nullptr);
  }

  void Load() {
    library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
  }

  void Unload() {
    Registered().back()->PrepareForUnload();
    dlclose(library);
    library = nullptr;
  }

  const std::vector<IPluginCallbacks*>& Registered() const {
    return boost::dynamic_pointer_cast<TTestPluginManager>(host.pluginManager)->registered;
  }

  /// The names of the monitors that a request commits.
  std::vector<std::string> CollectNames() {
    std::vector<boost::shared_ptr<ICIMClass>> classes = {host.GetClass("QRXSG_DesktopMonitor")};
    dynamic_cast<IPluginBasicQueryCallbacks&>(*Registered().back()).GetData(host.store, classes);
    std::vector<std::string> names;
    for (const auto& instance : host.store->TakeCommits()) names.push_back(Describe(*instance)["Name"]);
    return names;
  }

  static bool IsLoaded() {
    void* const library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_NOLOAD);
    if (library != nullptr) dlclose(library);
    return library != nullptr;
  }

  TTestHost host;
  void* library = nullptr;
};

}  // namespace

TEST_F(PluginLibrary, RegistersOneCallbackObjectAtLoad) {
  ASSERT_THAT(Registered(), SizeIs(1));
  EXPECT_EQ(Registered()[0]->GetName(), "Display Information Collector");
}

TEST_F(PluginLibrary, AnswersARequestThroughTheBios) { EXPECT_THAT(CollectNames(), ElementsAre("string A")); }

TEST_F(PluginLibrary, IsGoneAfterItWasClosedAndRegistersAfreshWhenLoadedAgain) {
  EXPECT_THAT(CollectNames(), ElementsAre("string A"));
  Unload();
  EXPECT_FALSE(IsLoaded());
  Load();
  EXPECT_THAT(Registered(), SizeIs(2));
  EXPECT_THAT(CollectNames(), ElementsAre("string A"));
}

TEST_F(PluginLibrary, ShowsStartedAsAZeroInteger) {
  const void* const started = dlsym(library, "_ZN10NQRXZELT208gStartedE");
  ASSERT_NE(started, nullptr);
  EXPECT_EQ(*static_cast<const int*>(started), 0);
}

TEST(PluginLibraryDeathTest, StopsTheLoadAtAPluginManagerOfAnotherType) {
  TTestHost host;
  host.pluginManager = host.store;
  EXPECT_DEATH(dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL), "px != 0");
}
