// A complete but minimal host for libdisplayinfo.pi.so: loads it, asks it for classes, and prints their instances.
//
//   minimal_host PLUGIN FOLDER CLASS...     FOLDER: where the machine's files are, / for those of this machine
//
// host/ declares what the plug-in requires of a host. This program defines it, here and in values.cpp, and exports it.
// deploying.md says what else a host must know.
#include <dlfcn.h>

#include <boost/enable_shared_from_this.hpp>
#include <boost/make_shared.hpp>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>

#include "host/logger.h"
#include "host/plugin_callbacks.h"
#include "host/plugin_manager.h"
#include "host/services.h"

using namespace NQRXZELT20;

/// The host and its classes live as long as the program, so nobody owns them.
template <typename T>
static boost::shared_ptr<T> Share(T& object) {
  return {&object, [](T*) {}};
}

// ---- CIM: classes and their instances. Any class exists, and any property can be set.

typedef std::vector<boost::shared_ptr<ICIMInstance>> TInstances;

struct TProperty : ICIMProperty {
  explicit TProperty(const TCIMValue& value) : m_value(value) {}
  const TCIMValue& GetValue(TCIMQueryContext) override { return m_value; }
  TCIMValue m_value;
};

struct TInstance : ICIMInstance, boost::enable_shared_from_this<TInstance> {
  TInstance(ICIMClass& cimClass, TInstances& committed) : m_class(cimClass), m_committed(committed) {}
  void Commit(TCIMQueryContext context) override {
    m_committed.push_back(shared_from_this());
    std::cout << m_class.GetName(context) << "\n";
    for (const auto& [name, value] : m_properties) std::cout << "  " << name << ": " << std::string(value) << "\n";
  }
  boost::shared_ptr<ICIMClass> GetClass(TCIMQueryContext) override { return Share(m_class); }
  boost::shared_ptr<ICIMProperty> GetProperty(const std::string& name, TCIMQueryContext) override {
    return boost::make_shared<TProperty>(m_properties[name]);
  }
  void SetProperty(const std::string& name, const TCIMValue& value, TCIMQueryContext) override {
    m_properties[name] = value;
  }
  // A host whose values may hold quotes must escape them here.
  TCIMReference GetObjectPath(TCIMQueryContext context) override {
    static const std::set<std::string> keys = {"Antecedent", "CreationClassName", "Dependent",
                                               "DeviceID",   "ManagedElement",    "Setting",
                                               "SettingID",  "SystemName",        "SystemCreationClassName"};
    std::string path = m_class.GetName(context), separator = ".";
    for (const auto& [name, value] : m_properties) {
      if (keys.count(name) == 0) continue;
      path += separator + name + "=\"" + std::string(value) + "\"";
      separator = ",";
    }
    return TCIMReference(path);
  }

  ICIMClass& m_class;
  TInstances& m_committed;  // of the class
  std::map<std::string, TCIMValue> m_properties;
};

struct TClass : ICIMClass {
  TClass(const std::string& name, ICIMNamespace& owner) : m_name(name), m_owner(owner) {}
  const std::string& GetName(TCIMQueryContext) override { return m_name; }
  boost::shared_ptr<ICIMNamespace> GetNamespace(TCIMQueryContext) override { return Share(m_owner); }
  boost::shared_ptr<ICIMInstance> CreateInstance(TCIMQueryContext) override {
    return boost::make_shared<TInstance>(*this, m_committed);
  }
  void EnumerateInstances(boost::function<bool(boost::shared_ptr<ICIMInstance>)> callback, bool,
                          TCIMQueryContext) override {
    for (std::size_t i = 0; i < m_committed.size() && callback(m_committed[i]); ++i) continue;
  }

  std::string m_name;
  ICIMNamespace& m_owner;
  TInstances m_committed;
};

/// The plug-in manager, and the namespace of all classes.
struct THost : TPluginManagerNamespace {
  explicit THost(TPluginManagerProvider* provider) : TPluginManagerNamespace(provider) {}
  boost::shared_ptr<ICIMClass> GetClass(const std::string& name, TCIMQueryContext) override {
    return Share<ICIMClass>(m_classes.try_emplace(name, name, *this).first->second);
  }
  void Accept(IPluginCallbacks* plugin) override { m_plugin = plugin; }

  std::map<std::string, TClass> m_classes;
  IPluginCallbacks* m_plugin = nullptr;
};

struct TStandardErrorLog : ILogger {
  void Write(EZELTLogSeverity severity, const std::string& message) override {
    std::cerr << "log " << severity << ": " << message << "\n";
  }
};

// ---- The services.

namespace NQRXZELT20 {

// The plug-in only asks whether it has one. Without it, the collectors write nothing to the log.
class TPluginManagerProvider {};
static TPluginManagerProvider g_provider;
static THost g_host(&g_provider);
static TStandardErrorLog g_log;
static std::string g_folder;

TPluginManagerNamespace::TPluginManagerNamespace(TPluginManagerProvider* provider) : m_provider(provider) {}
void TPluginManagerNamespace::RegisterPlugin(IPluginCallbacks* plugin) {
  plugin->m_provider = m_provider;
  Accept(plugin);
}

ILogger* TRootObject::GetCoreLogger() { return &g_log; }
boost::shared_ptr<ICIMNamespace> TRootObject::GetPluginManager() { return Share<ICIMNamespace>(g_host); }
const char* const TCIMSchemaHelper::kContextName = "ContextName";
const char* const TCIMSchemaHelper::kPluginNSPName = "PluginNSP";
std::string TCIMSchemaHelper::GetSystemName(boost::shared_ptr<ICIMNamespace>) { return "minimal"; }
std::string TCIMSchemaHelper::GetSystemCreationClassName(boost::shared_ptr<ICIMNamespace>) { return "CIM_System"; }
int TOSSpecific::GetRunningTypeOnXen() { return 2; }  // the video BIOS may be called
bool TOSSpecific::FileExists(std::string path) { return std::ifstream(g_folder + path).good(); }
std::string TOSSpecific::CaptureFile(std::string path) {
  std::ifstream file(g_folder + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace NQRXZELT20

// ---- The life of a plug-in: load, Init, GetData, DeInit, PrepareForUnload, unload.

int main(int count, char** arguments) {
  if (count < 4) return std::cerr << "usage: minimal_host PLUGIN FOLDER CLASS...\n", 2;
  g_folder = arguments[2];
  void* const library = dlopen(arguments[1], RTLD_NOW);  // the plug-in registers itself
  if (library == nullptr) return std::cerr << "minimal_host: " << dlerror() << "\n", 1;
  IPluginCallbacks* const plugin = g_host.m_plugin;
  if (plugin == nullptr) return std::cerr << "minimal_host: no plug-in registered\n", 1;

  std::vector<boost::shared_ptr<ICIMClass>> classes;
  for (int i = 3; i < count; ++i) classes.push_back(g_host.GetClass(arguments[i], {}));
  plugin->Init();
  dynamic_cast<IPluginBasicQueryCallbacks&>(*plugin).GetData(Share<ICIMNamespace>(g_host), classes);  // commits them
  plugin->DeInit();
  plugin->PrepareForUnload();
  dlclose(library);
}
