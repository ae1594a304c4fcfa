// The host's static services: its root objects, its schema helper and its view of the operating system.
#pragma once

#include <boost/shared_ptr.hpp>

#include <string>

#include "host/visibility.h"

namespace NQRXZELT20 {

class ICIMNamespace;
class ILogger;

class HOST_API TRootObject {
 public:
  /// The host's log; the host keeps it alive.
  static ILogger* GetCoreLogger();

  /// The plug-in manager's namespace; its dynamic type is TPluginManagerNamespace.
  static boost::shared_ptr<ICIMNamespace> GetPluginManager();
};

class HOST_API TCIMSchemaHelper {
 public:
  /// The value of the key property "SystemName" for instances in that namespace.
  static std::string GetSystemName(boost::shared_ptr<ICIMNamespace> ns);

  /// The value of the key property "SystemCreationClassName" for instances in that namespace.
  static std::string GetSystemCreationClassName(boost::shared_ptr<ICIMNamespace> ns);

  /// The key and the value of the query context that makes a look-up use the plug-ins' own namespace.
  static const char* const kContextName;
  static const char* const kPluginNSPName;
};

class HOST_API TOSSpecific {
 public:
  static bool FileExists(std::string path);

  /// The file's whole content.
  static std::string CaptureFile(std::string path);

  /// A code for the kind of system that the process runs on. 2: the video BIOS may be called.
  static int GetRunningTypeOnXen();
};

}  // namespace NQRXZELT20
