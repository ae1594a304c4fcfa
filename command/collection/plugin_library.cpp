#include "command/collection/plugin_library.h"

#include <dlfcn.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <exception>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "embedded_host/embedded_host.h"

namespace fs = std::filesystem;
using NQRXZELT20::IPluginBasicQueryCallbacks;
using NQRXZELT20::IPluginCallbacks;

namespace {

constexpr const char* kFileName = "libdisplayinfo.pi.so";
constexpr const char* kCure = "name another with --plugin FILE";

std::function<void(const std::string& reason)> gTell = [](const std::string& reason) {
  std::cerr << "displayinfo: " + ToPrintable(reason) + '\n';
};

/// The message of the exception that is being handled.
std::string DescribeException() try {
  if (std::current_exception() == nullptr) return "it ended the program";
  throw;
} catch (const std::exception& exception) {
  return exception.what();
} catch (...) {
  return "an exception that says nothing";
}

/// While it lives, std::terminate says what was thrown. An exception thrown within dlopen cannot leave it and ends
/// there.
class TLastWords {
 public:
  explicit TLastWords(std::string file) : m_before(std::set_terminate(End)) { s_file = std::move(file); }
  ~TLastWords() { std::set_terminate(m_before); }
  TLastWords(const TLastWords&) = delete;
  TLastWords& operator=(const TLastWords&) = delete;

 private:
  [[noreturn]] static void End() {
    gTell(s_file + ": the plug-in failed while it was loaded: " + DescribeException() + "; " + kCure);
    _exit(1);
  }

  static std::string s_file;
  std::terminate_handler m_before;
};
std::string TLastWords::s_file;

void* Load(const fs::path& file) {
  RequirePlugin(file);
  const TLastWords lastWords(file.string());
  // dlopen would search other folders for a path without a slash.
  void* library = dlopen(fs::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    throw TUnusable(std::string("the plug-in cannot be loaded: ") + dlerror() + "; " + kCure);
  }
  return library;
}

}  // namespace

void TPluginLibrary::TClose::operator()(void* library) const { dlclose(library); }

TPluginLibrary::TPluginLibrary(const fs::path& file, TEmbeddedHost& host) : m_library(Load(file)) {
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
}

void OnThrowingPlugin(std::function<void(const std::string& reason)> tell) { gTell = std::move(tell); }

TPluginLibrary::~TPluginLibrary() { m_callbacks->PrepareForUnload(); }

void RequirePlugin(const fs::path& file) {
  if (!fs::exists(file)) {
    throw TUnusable(file.string() + ": no such plug-in; build it, or " + kCure);
  }
}

fs::path FindPlugin() {
  std::error_code error;
  fs::path command = fs::read_symlink("/proc/self/exe", error);
  // Without /proc, the command is found by the name under which it was started.
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the kernel hands its address over as a number
  if (error) command = fs::canonical(reinterpret_cast<const char*>(getauxval(AT_EXECFN)), error);
  if (error) {
    throw TUnusable("the plug-in beside the command cannot be found: /proc/self/exe: " + error.message() +
                    "; mount /proc (mount -t proc proc /proc), or " + kCure);
  }
  const fs::path folder = command.parent_path();
  const fs::path beside = folder / kFileName;
  const fs::path installed = folder / DISPLAYINFO_PLUGIN_FOLDER / kFileName;
  return fs::exists(beside) || !fs::exists(installed) ? beside : installed;
}
