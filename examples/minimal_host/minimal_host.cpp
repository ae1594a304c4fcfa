// A complete host for libdisplayinfo.pi.so and nothing more: loads it, asks it for classes, and prints their instances.
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

// ---- CIM: classes and their instances. Any class can be had, and any property be set.

class TClass;

class TInstance : public ICIMInstance, public boost::enable_shared_from_this<TInstance> {
 public:
  explicit TInstance(TClass& cimClass) : m_class(cimClass) {}
  void Commit(TCIMQueryContext) override;
  boost::shared_ptr<ICIMClass> GetClass(TCIMQueryContext) override;
  TCIMReference GetObjectPath(TCIMQueryContext) override;
  boost::shared_ptr<ICIMProperty> GetProperty(const std::string& name, TCIMQueryContext) override;
  void SetProperty(const std::string& name, const TCIMValue& value, TCIMQueryContext) override {
    m_properties[name] = value;
  }

  std::map<std::string, TCIMValue> m_properties;

 private:
  TClass& m_class;
};

struct TProperty : ICIMProperty {
  explicit TProperty(const TCIMValue& value) : m_value(value) {}
  const TCIMValue& GetValue(TCIMQueryContext) override { return m_value; }
  TCIMValue m_value;
};

class TClass : public ICIMClass, public boost::enable_shared_from_this<TClass> {
 public:
  TClass(const std::string& name, ICIMNamespace& owner) : m_name(name), m_owner(owner) {}
  const std::string& GetName(TCIMQueryContext) override { return m_name; }
  // The namespace lives as long as the program, so nobody owns it.
  boost::shared_ptr<ICIMNamespace> GetNamespace(TCIMQueryContext) override {
    return {&m_owner, [](ICIMNamespace*) {}};
  }
  boost::shared_ptr<ICIMInstance> CreateInstance(TCIMQueryContext) override {
    return boost::make_shared<TInstance>(*this);
  }
  void EnumerateInstances(boost::function<bool(boost::shared_ptr<ICIMInstance>)> callback, bool,
                          TCIMQueryContext) override {
    for (std::size_t i = 0; i < m_instances.size() && callback(m_instances[i]); ++i) continue;
  }

  std::vector<boost::shared_ptr<TInstance>> m_instances;

 private:
  std::string m_name;
  ICIMNamespace& m_owner;
};

void TInstance::Commit(TCIMQueryContext) { m_class.m_instances.push_back(shared_from_this()); }

boost::shared_ptr<ICIMClass> TInstance::GetClass(TCIMQueryContext) { return m_class.shared_from_this(); }

boost::shared_ptr<ICIMProperty> TInstance::GetProperty(const std::string& name, TCIMQueryContext) {
  return boost::make_shared<TProperty>(m_properties[name]);
}

// A host whose values may hold quotes escapes them here.
TCIMReference TInstance::GetObjectPath(TCIMQueryContext context) {
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

/// The plug-in manager, and the namespace of all classes.
class THost : public TPluginManagerNamespace {
 public:
  explicit THost(TPluginManagerProvider* provider) : TPluginManagerNamespace(provider) {}
  boost::shared_ptr<ICIMClass> GetClass(const std::string& name, TCIMQueryContext) override {
    boost::shared_ptr<TClass>& found = m_classes[name];
    if (!found) found = boost::make_shared<TClass>(name, *this);
    return found;
  }
  void Accept(IPluginCallbacks* plugin) override { m_plugin = plugin; }

  std::map<std::string, boost::shared_ptr<TClass>> m_classes;
  IPluginCallbacks* m_plugin = nullptr;
};

struct TStandardErrorLog : ILogger {
  void Write(EZELTLogSeverity severity, const std::string& message) override {
    std::cerr << "log " << severity << ": " << message << "\n";
  }
};

static boost::shared_ptr<THost> g_host;
static std::string g_folder;

// ---- The services.

namespace NQRXZELT20 {

// The plug-in only asks whether it has one. Without it, the collectors write nothing to the log.
class TPluginManagerProvider {};

TPluginManagerNamespace::TPluginManagerNamespace(TPluginManagerProvider* provider) : m_provider(provider) {}
void TPluginManagerNamespace::RegisterPlugin(IPluginCallbacks* plugin) {
  plugin->m_provider = m_provider;
  Accept(plugin);
}

ILogger* TRootObject::GetCoreLogger() {
  static TStandardErrorLog log;
  return &log;
}
boost::shared_ptr<ICIMNamespace> TRootObject::GetPluginManager() { return g_host; }
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
  TPluginManagerProvider provider;
  g_host = boost::make_shared<THost>(&provider);
  g_folder = arguments[2];
  void* const library = dlopen(arguments[1], RTLD_NOW);  // the plug-in registers itself
  if (library == nullptr) return std::cerr << "minimal_host: " << dlerror() << "\n", 1;
  IPluginCallbacks* const plugin = g_host->m_plugin;
  if (plugin == nullptr) return std::cerr << "minimal_host: no plug-in registered\n", 1;

  std::vector<boost::shared_ptr<ICIMClass>> classes;
  for (int i = 3; i < count; ++i) classes.push_back(g_host->GetClass(arguments[i], {}));
  plugin->Init();
  dynamic_cast<IPluginBasicQueryCallbacks&>(*plugin).GetData(g_host, classes);
  plugin->DeInit();

  for (const auto& [name, cimClass] : g_host->m_classes) {
    for (const boost::shared_ptr<TInstance>& instance : cimClass->m_instances) {
      std::cout << name << "\n";
      for (const auto& [key, value] : instance->m_properties)
        std::cout << "  " << key << ": " << std::string(value) << "\n";
    }
  }
  plugin->PrepareForUnload();
  dlclose(library);
}
