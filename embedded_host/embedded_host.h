// The embedded host: stands in for a closed host, in the command's own process.
#pragma once

#include <boost/shared_ptr.hpp>

#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "embedded_host/cim_store.h"
#include "embedded_host/host_services.h"
#include "embedded_host/log.h"
#include "embedded_host/machine_files.h"

namespace NQRXZELT20 {
class IPluginCallbacks;
}
class TPluginManager;

/// How the host presents the machine to its plug-ins.
struct THostConfiguration {
  std::string systemName;
  std::string systemCreationClassName = "CIM_UnitaryComputerSystem";
  int systemType = 2;                    // the answer to GetRunningTypeOnXen
  bool provider = true;                  // plug-ins are given a provider pointer
  std::shared_ptr<IMachineFiles> files;  // null: the machine has no files
};

/// A file that a plug-in asked for, and whether it existed.
struct TFileQuery {
  std::string path;
  bool exists;
};

/// Implements the static services from its construction to its destruction. A process may have only one at a time.
class HOST_API TEmbeddedHost : private IHostServices {
 public:
  /// `logListener` is called for each log message as it is written; it may be empty.
  TEmbeddedHost(THostConfiguration configuration, std::function<void(const TLogEntry&)> logListener);
  ~TEmbeddedHost() override;
  TEmbeddedHost(const TEmbeddedHost&) = delete;
  TEmbeddedHost& operator=(const TEmbeddedHost&) = delete;

  /// The CIM model that plug-ins fill.
  boost::shared_ptr<TCimStore> GetStore();

  const TLog& GetLog() const;

  /// Moves out every message so far, since a log can be long. The log is empty afterwards.
  std::vector<TLogEntry> TakeLog();

  /// Every question for a file's existence so far, in order.
  const std::vector<TFileQuery>& GetFileQueries() const;

  /// Throws again the first exception of looking for a file or reading it that was no TZELTException. The plug-in may
  /// have caught it, and its answer is then incomplete.
  void RethrowFailure() const;

  /// The plug-ins that registered since the last call, in that order. They live until PrepareForUnload.
  std::vector<NQRXZELT20::IPluginCallbacks*> TakeRegistered();

 private:
  NQRXZELT20::ILogger* GetCoreLogger() override;
  boost::shared_ptr<NQRXZELT20::ICIMNamespace> GetPluginManager() override;
  std::string GetSystemName(boost::shared_ptr<NQRXZELT20::ICIMNamespace> ns) override;
  std::string GetSystemCreationClassName(boost::shared_ptr<NQRXZELT20::ICIMNamespace> ns) override;
  bool FileExists(const std::string& path) override;
  std::string CaptureFile(const std::string& path) override;
  int GetRunningTypeOnXen() override;

  template <typename TLook>
  auto NoteFailure(const TLook& look);

  THostConfiguration m_configuration;
  std::vector<TFileQuery> m_fileQueries;
  std::exception_ptr m_failure;
  TLog m_log;
  boost::shared_ptr<TCimStore> m_store;
  boost::shared_ptr<TPluginManager> m_pluginManager;
};
