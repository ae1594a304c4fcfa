// The plug-in as a loaded library.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "host/plugin_callbacks.h"

class TEmbeddedHost;

/// Loads the plug-in into `host` at construction, where it registers itself; lets it prepare and unloads it at
/// destruction.
class TPluginLibrary {
 public:
  /// Throws TUnusable, naming the file, when it cannot be loaded or does not register a plug-in that answers requests.
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

/// What to do, instead of a line on standard error, when a plug-in throws while it is loaded. An exception cannot pass
/// the C library's dlopen, so the process ends afterwards, with status 1. `tell` is given the reason, which names the
/// file.
void OnThrowingPlugin(std::function<void(const std::string& reason)> tell);

/// Throws TUnusable when there is no such file.
void RequirePlugin(const std::filesystem::path& file);

/// The plug-in to load when none is named: the one beside the command, else the installed one.
std::filesystem::path FindPlugin();
