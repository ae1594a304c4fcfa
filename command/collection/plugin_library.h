// The plug-in as a loaded library.
#pragma once

#include <filesystem>
#include <memory>

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

/// Throws TUnusable when there is no such file.
void RequirePlugin(const std::filesystem::path& file);

/// The plug-in to load when none is named: the one beside the command, else the installed one.
std::filesystem::path FindPlugin();
