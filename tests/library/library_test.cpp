// Tests the plug-in as a loaded library, with the LRMI calls and a virtual BIOS.
#include <gmock/gmock.h>
#include <pthread.h>

#include <functional>
#include <memory>
#include <string>

#include "realmode/choose_bios.h"
#include "realmode/virtual_video_bios.h"
#include "tests/support/edid_builder.h"
#include "tests/support/loaded_plugin.h"

using testing::ElementsAre;
using testing::SizeIs;

namespace {

constexpr std::size_t kSmallStack = std::size_t{64} * 1024;  // bytes

class PluginLibrary : public testing::Test {
 protected:
  PluginLibrary() {
    TVirtualBiosConfiguration configuration;
    configuration.units[0].edid = TEdidBuilder().Name(0, "A").Established(0x21, 0).Build();
    ChooseVideoBios(std::make_shared<TVirtualVideoBios>(configuration));
    plugin = std::make_unique<TLoadedPlugin>(host, PLUGIN_FILE);
  }

  ~PluginLibrary() override {
    plugin.reset();
    ChooseVideoBios(nullptr);
  }

  /// The names of the monitors that a request commits.
  std::vector<std::string> CollectNames() {
    std::vector<std::string> names;
    for (TDescribed& monitor : plugin->Ask({"QRXSG_DesktopMonitor"})) names.push_back(monitor["Name"]);
    return names;
  }

  static bool IsLoaded() {
    void* const library = dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_NOLOAD);
    if (library != nullptr) dlclose(library);
    return library != nullptr;
  }

  TTestHost host;
  std::unique_ptr<TLoadedPlugin> plugin;
};

/// Runs an action on a thread whose stack has that many bytes, to its end.
void RunOnSmallStack(std::size_t stackSize, std::function<void()> action) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, stackSize), 0);
  const auto run = [](void* given) -> void* {
    (*static_cast<std::function<void()>*>(given))();
    return nullptr;
  };
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &action), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

const std::vector<std::string> kAll = {"QRXSG_VideoController",       "QRXSG_VideoHead",
                                       "QRXSG_HeadOfVideoController", "QRXSG_DesktopMonitor",
                                       "QRXSG_MonitorResolution",     "QRXSG_MonitorSetting"};

}  // namespace

TEST_F(PluginLibrary, RegistersOneCallbackObjectAtLoad) {
  ASSERT_THAT(TLoadedPlugin::GetRegistered(host), SizeIs(1));
  EXPECT_EQ(plugin->GetCallbacks().GetName(), "Display Information Collector");
}

TEST_F(PluginLibrary, AnswersARequestThroughTheBios) { EXPECT_THAT(CollectNames(), ElementsAre("string A")); }

TEST_F(PluginLibrary, IsGoneAfterItWasClosedAndRegistersAfreshWhenLoadedAgain) {
  EXPECT_THAT(CollectNames(), ElementsAre("string A"));
  plugin.reset();
  EXPECT_FALSE(IsLoaded());
  plugin = std::make_unique<TLoadedPlugin>(host, PLUGIN_FILE);
  EXPECT_THAT(TLoadedPlugin::GetRegistered(host), SizeIs(2));
  EXPECT_THAT(CollectNames(), ElementsAre("string A"));
}

TEST_F(PluginLibrary, ShowsStartedAsAZeroInteger) {
  const void* const started = dlsym(plugin->GetLibrary(), "_ZN10NQRXZELT208gStartedE");
  ASSERT_NE(started, nullptr);
  EXPECT_EQ(*static_cast<const int*>(started), 0);
}

TEST_F(PluginLibrary, AnswersAllSixClassesInOneCallAsInSix) {
  host.files["/etc/X11/xorg.conf"] = "Section \"Device\"\nIdentifier \"Card0\"\nEndSection\n";
  const std::vector<TDescribed> together = plugin->Ask(kAll);
  EXPECT_THAT(together, SizeIs(1 + 1 + 1 + 1 + 2 + 2));
  std::vector<TDescribed> apart;
  for (const std::string& name : kAll) {
    for (const TDescribed& instance : plugin->Ask({name})) apart.push_back(instance);
  }
  EXPECT_EQ(apart, together);
}

TEST_F(PluginLibrary, AnswersARepeatedRequestAsBefore) {
  host.files["/etc/X11/xorg.conf"] = "Section \"Device\"\nIdentifier \"Card0\"\nEndSection\n";
  const std::vector<TDescribed> first = plugin->Ask(kAll);
  for (int count = 0; count < 5; ++count) EXPECT_EQ(plugin->Ask(kAll), first);
}

TEST_F(PluginLibrary, NeedsLittleOfTheCallersStackHoweverLongALineIs) {
  host.files["/etc/X11/xorg.conf"] =
      "Section \"Device\"\nIdentifier \"Card0\"\nBoardName \"" + std::string(1'000'000, 'x') + "\"\nX\nEndSection\n";
  std::vector<TDescribed> answer;
  RunOnSmallStack(kSmallStack, [&] { answer = plugin->Ask(kAll); });
  EXPECT_THAT(answer, SizeIs(1 + 1 + 1 + 1 + 2 + 2));
}

TEST_F(PluginLibrary, MakesNoAssociationBeforeWhatItAssociates) {
  const std::vector<std::string> backwards(kAll.rbegin(), kAll.rend());
  host.files["/etc/X11/xorg.conf"] = "Section \"Device\"\nIdentifier \"Card0\"\nEndSection\n";
  EXPECT_THAT(plugin->Ask(backwards), SizeIs(2 + 1 + 1 + 1));
  EXPECT_THAT(plugin->Ask(backwards), SizeIs(2 + 2 + 1 + 1 + 1 + 1));
}

TEST(PluginLibraryDeathTest, StopsTheLoadAtAPluginManagerOfAnotherType) {
  TTestHost host;
  host.pluginManager = host.store;
  EXPECT_DEATH(dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL), "px != 0");
}
