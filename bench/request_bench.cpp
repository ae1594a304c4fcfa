// Measures one request of a host to the loaded plug-in, over the virtual BIOS, and loading the plug-in.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>

#include "command/machine/captured_machine.h"
#include "command/machine/folder_files.h"
#include "embedded_host/schema.h"
#include "realmode/choose_bios.h"
#include "tests/support/loaded_plugin.h"

namespace {

constexpr const char* kConfiguration = "/etc/X11/xorg.conf";

/// A host with the example's two panels on one card with two heads.
class TOffice {
 public:
  TOffice() {
    ChooseVideoBios(ReadCapturedMachine(OFFICE_FOLDER).bios);
    host.files[kConfiguration] = TFolderFiles(TRootedFolder(OFFICE_FOLDER "/root")).Read(kConfiguration);
  }
  ~TOffice() { ChooseVideoBios(nullptr); }
  TOffice(const TOffice&) = delete;
  TOffice& operator=(const TOffice&) = delete;

  TTestHost host;
};

void Request(benchmark::State& state, const std::vector<std::string>& names) {
  TOffice office;
  TLoadedPlugin plugin(office.host, PLUGIN_FILE);
  plugin.Ask({kVideoControllerClass, kVideoHeadClass, kDesktopMonitorClass, kMonitorResolutionClass});
  std::vector<boost::shared_ptr<NQRXZELT20::ICIMClass>> classes;
  for (const std::string& name : names) classes.push_back(office.host.GetClass(name));
  auto& callbacks = dynamic_cast<NQRXZELT20::IPluginBasicQueryCallbacks&>(plugin.GetCallbacks());
  std::size_t instances = 0;
  for (auto unused : state) {
    static_cast<void>(unused);
    callbacks.GetData(office.host.store, classes);
    instances = office.host.store->TakeCommits().size();
    office.host.Forget();
  }
  state.counters["instances"] = static_cast<double>(instances);
}

void LoadAndUnload(benchmark::State& state) {
  for (auto unused : state) {
    static_cast<void>(unused);
    TTestHost host;
    const TLoadedPlugin plugin(host, PLUGIN_FILE);
    benchmark::DoNotOptimize(plugin);
  }
}

/// A benchmark for each class, and one for all six in one request.
const bool kRegistered = [] {
  std::vector<std::string> all;
  for (const TClassDeclaration& declaration : GetSchema()) {
    const std::string name = declaration.name;
    all.push_back(name);
    benchmark::RegisterBenchmark(("Request/" + name).c_str(), Request, std::vector<std::string>{name})
        ->Unit(benchmark::kMicrosecond);
  }
  benchmark::RegisterBenchmark("Request/all", Request, all)->Unit(benchmark::kMicrosecond);
  return true;
}();

}  // namespace

BENCHMARK(LoadAndUnload)->Unit(benchmark::kMicrosecond);
