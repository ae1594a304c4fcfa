#include "command/collection/collection.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <utility>

#include "command/base/unusable.h"
#include "command/base/version.h"
#include "command/collection/plugin_library.h"
#include "command/machine/machine.h"
#include "embedded_host/schema.h"
#include "host/exception.h"
#include "realmode/choose_bios.h"

using NQRXZELT20::ICIMClass;
using NQRXZELT20::IPluginCallbacks;
using NQRXZELT20::TCIMQueryContext;

namespace {

TPluginIdentity Identify(IPluginCallbacks& plugin) {
  return {plugin.GetName(), plugin.GetVersion(), plugin.GetInterfaceVersion(), plugin.GetType()};
}

TRequestAnswer Ask(TPluginLibrary& plugin, TEmbeddedHost& host, const TRequest& request) {
  const boost::shared_ptr<TCimStore> store = host.GetStore();
  std::vector<boost::shared_ptr<ICIMClass>> classes;
  for (const std::string& name : request) classes.push_back(store->GetClass(name, TCIMQueryContext()));
  const TLog::TMark begin = host.GetLog().GetMark();
  plugin.GetQueryCallbacks().GetData(store, classes);
  return {request, store->TakeCommits(), host.GetLog().GetEntriesSince(begin)};
}

/// True if the answer has no instance of some class that it was asked for. Only then the reasons are looked for, which
/// takes time.
bool HasGap(const TAnswer& answer) {
  for (const TRequestAnswer& request : answer.requests) {
    for (const std::string& name : request.classes) {
      const auto isOfIt = [&](const auto& instance) { return instance->GetDeclaration().name == name; };
      if (std::none_of(request.instances.begin(), request.instances.end(), isOfIt)) return true;
    }
  }
  return false;
}

/// Keeps the system's time zone of now while it lives. Without TZ, the C library checks for every date whether the
/// zone's file has changed; with the file's name in TZ it does not.
class TTimeZone {
 public:
  TTimeZone() : m_isSet(std::getenv(kVariable) == nullptr) {
    if (!m_isSet) return;
    tzset();
    setenv(kVariable, ":/etc/localtime", 1);
  }
  ~TTimeZone() {
    if (m_isSet) unsetenv(kVariable);
  }
  TTimeZone(const TTimeZone&) = delete;
  TTimeZone& operator=(const TTimeZone&) = delete;

 private:
  static constexpr const char* kVariable = "TZ";
  bool m_isSet;
};

bool AsksForMonitors(const TRequestAnswer& request) {
  return std::any_of(request.classes.begin(), request.classes.end(),
                     [](const std::string& name) { return IsOf(name, EPart::kMonitors); });
}

}  // namespace

TAnswer Collect(const TMachine& machine, const std::filesystem::path& pluginFile, const std::vector<TRequest>& requests,
                std::function<void(const TLogEntry&)> logListener) try {
  ChooseVideoBios(machine.bios);
  const TTimeZone zone;
  TEmbeddedHost host(machine.host, std::move(logListener));
  TAnswer answer;
  answer.identity = {machine.host.systemName, machine.collected, kCommandVersion};
  {
    TPluginLibrary plugin(pluginFile, host);
    plugin.GetCallbacks().Init();
    answer.plugin = Identify(plugin.GetCallbacks());
    for (const TRequest& request : requests) answer.requests.push_back(Ask(plugin, host, request));
    plugin.GetCallbacks().DeInit();
  }
  host.RethrowFailure();
  answer.log = host.TakeLog();
  answer.fileQueries = host.GetFileQueries();
  answer.edidOrigin = machine.edidOrigin;
  answer.outputs = JoinOutputs(machine, answer.requests);
  answer.xconfigOrigin = machine.getXconfigOrigin();
  if (HasGap(answer)) answer.reasons = FindReasons(machine, answer.fileQueries, answer.outputs);
  answer.notes = machine.getNotes();
  const std::string unreadable = ExplainUnreadableFiles(machine, answer.fileQueries);
  if (!unreadable.empty()) answer.notes.push_back(unreadable);
  for (const auto& [unit, damage] : machine.damagedEdids) answer.notes.push_back(Describe(damage));
  return answer;
} catch (const NQRXZELT20::TZELTException& exception) {
  throw TUnusable(std::string("the host failed during a request: ") + exception.what());
}

std::vector<std::string> ListRemarks(const TMachine& machine, const TAnswer& answer) {
  std::vector<std::string> remarks = answer.notes;
  if (std::none_of(answer.requests.begin(), answer.requests.end(), AsksForMonitors)) return remarks;
  for (const TOutput& output : answer.outputs) {
    // The notes already say what is wrong with a damaged EDID, and name its file.
    if (IsUnlisted(output) && machine.damagedEdids.count(output.unit) == 0) remarks.push_back(ExplainUnlisted(output));
  }
  return remarks;
}
