// The interface behind the host's static services. A program that hosts the plug-in installs an implementation.
#pragma once

#include <boost/shared_ptr.hpp>

#include <string>

#include "host/visibility.h"

namespace NQRXZELT20 {
class ICIMNamespace;
class ILogger;
}  // namespace NQRXZELT20

/// Answers the calls of TRootObject, TCIMSchemaHelper and TOSSpecific. Any operation may throw TZELTException.
class IHostServices {
 public:
  virtual ~IHostServices() = default;

  virtual NQRXZELT20::ILogger* GetCoreLogger() = 0;
  virtual boost::shared_ptr<NQRXZELT20::ICIMNamespace> GetPluginManager() = 0;
  virtual std::string GetSystemName(boost::shared_ptr<NQRXZELT20::ICIMNamespace> ns) = 0;
  virtual std::string GetSystemCreationClassName(boost::shared_ptr<NQRXZELT20::ICIMNamespace> ns) = 0;
  virtual bool FileExists(const std::string& path) = 0;
  virtual std::string CaptureFile(const std::string& path) = 0;
  virtual int GetRunningTypeOnXen() = 0;
};

/// From now on, `services` answers; null removes the installed ones. The caller owns them and keeps them alive while
/// they are installed. Without services, every static service throws TZELTException.
HOST_API void InstallHostServices(IHostServices* services);
