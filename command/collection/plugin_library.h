// Loads and unloads the plug-in.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "host/plugin_callbacks.h"

class TEmbeddedHost;

/// The constructor loads the plug-in, which registers itself with `host`. The destructor lets it prepare for unloading
/// and unloads it.
class TPluginLibrary {
 public:
  /// Throws TUnusable, which names the file, if it cannot be loaded or does not register a plug-in that answers
  /// requests.
  TPluginLibrary(const std::filesystem::path& file, TEmbeddedHost& host);
  ~TPluginLibrary();
  TPluginLibrary(const TPluginLibrary&) = delete;
  TPluginLibrary& operator=(const TPluginLibrary&) = delete;

  NQRXZELT20::IPluginCallbacks& GetCallbacks() { return *m_callbacks; }
  NQRXZELT20::IPluginBasicQueryCallbacks& GetQueryCallbacks() { return *m_queryCallbacks; }

 private:
  struct TClose {
    void operator()(void* library) const;
  };

  std::unique_ptr<void, TClose> m_library;
  NQRXZELT20::IPluginCallbacks* m_callbacks;
  NQRXZELT20::IPluginBasicQueryCallbacks* m_queryCallbacks;
};

/// Sets what is called, instead of writing a line on standard error, if a plug-in throws while it is loaded. `tell`
/// gets the reason, which names the file. Afterwards the process ends with status 1, since an exception cannot pass
/// through the C library's dlopen.
void OnThrowingPlugin(std::function<void(const std::string& reason)> tell);

/// Throws TUnusable if there is no such file.
void RequirePlugin(const std::filesystem::path& file);

/// The plug-in to load if none is named: the one beside the command, or else the installed one.
std::filesystem::path FindPlugin();
