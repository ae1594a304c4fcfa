#include "embedded_host/host_services.h"

#include "host/cim_objects.h"
#include "host/exception.h"
#include "host/services.h"

namespace {

IHostServices* g_installed = nullptr;

IHostServices& Services() {
  if (g_installed == nullptr) throw NQRXZELT20::TZELTException("no host services are installed");
  return *g_installed;
}

}  // namespace

void InstallHostServices(IHostServices* services) { g_installed = services; }

namespace NQRXZELT20 {

ILogger* TRootObject::GetCoreLogger() { return Services().GetCoreLogger(); }
boost::shared_ptr<ICIMNamespace> TRootObject::GetPluginManager() { return Services().GetPluginManager(); }

std::string TCIMSchemaHelper::GetSystemName(boost::shared_ptr<ICIMNamespace> ns) {
  return Services().GetSystemName(ns);
}
std::string TCIMSchemaHelper::GetSystemCreationClassName(boost::shared_ptr<ICIMNamespace> ns) {
  return Services().GetSystemCreationClassName(ns);
}
const char* const TCIMSchemaHelper::kContextName = "ContextName";
const char* const TCIMSchemaHelper::kPluginNSPName = "PluginNSP";

bool TOSSpecific::FileExists(std::string path) { return Services().FileExists(path); }
std::string TOSSpecific::CaptureFile(std::string path) { return Services().CaptureFile(path); }
int TOSSpecific::GetRunningTypeOnXen() { return Services().GetRunningTypeOnXen(); }

}  // namespace NQRXZELT20
