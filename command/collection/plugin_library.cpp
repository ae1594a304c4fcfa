#include "command/collection/plugin_library.h"

#include <dlfcn.h>

#include <string>
#include <vector>

#include "command/base/unusable.h"
#include "embedded_host/embedded_host.h"
#include "host/exception.h"

namespace fs = std::filesystem;
using NQRXZELT20::IPluginBasicQueryCallbacks;
using NQRXZELT20::IPluginCallbacks;

namespace {

constexpr const char* kFileName = "libdisplayinfo.pi.so";
constexpr const char* kCure = "name another with --plugin FILE";

void* Load(const fs::path& file) {
  RequirePlugin(file);
  // A path without a slash would be looked for elsewhere.
  void* library = dlopen(fs::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    throw TUnusable(std::string("the plug-in cannot be loaded: ") + dlerror() + "; " + kCure);
  }
  return library;
}

}  // namespace

void TPluginLibrary::TClose::operator()(void* library) const { dlclose(library); }

TPluginLibrary::TPluginLibrary(const fs::path& file, TEmbeddedHost& host) try : m_library(Load(file)) {
  const std::vector<IPluginCallbacks*> registered = host.TakeRegistered();
  if (registered.size() != 1) {
    throw TUnusable(file.string() + ": registered " + std::to_string(registered.size()) +
                    " plug-ins when it was loaded, not one; " + kCure);
  }
  m_callbacks = registered.front();
  m_queryCallbacks = dynamic_cast<IPluginBasicQueryCallbacks*>(m_callbacks);
  if (m_queryCallbacks == nullptr) {
    throw TUnusable(file.string() + ": its plug-in answers no requests; " + kCure);
  }
} catch (const NQRXZELT20::TZELTException& exception) {
  throw TUnusable(file.string() + ": the plug-in failed while it was loaded: " + exception.what() + "; " + kCure);
}

TPluginLibrary::~TPluginLibrary() { m_callbacks->PrepareForUnload(); }

void RequirePlugin(const fs::path& file) {
  if (!fs::exists(file)) {
    throw TUnusable(file.string() + ": no such plug-in; build it, or " + kCure);
  }
}

fs::path FindPlugin() {
  const fs::path folder = fs::read_symlink("/proc/self/exe").parent_path();
  const fs::path beside = folder / kFileName;
  const fs::path installed = folder / DISPLAYINFO_PLUGIN_FOLDER / kFileName;
  return fs::exists(beside) || !fs::exists(installed) ? beside : installed;
}
