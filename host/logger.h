// The host's log.
#pragma once

#include <string>

#include "host/visibility.h"

namespace NQRXZELT20 {

class HOST_API ILogger {
 public:
  enum EZELTLogSeverity { kError = 0, kWarning = 1, kStatus = 2, kDebug = 3, kVerbose = 4 };

  virtual ~ILogger();

  /// Records one message. The host adds prefixes, time stamps and line ends.
  virtual void Write(EZELTLogSeverity severity, const std::string& message) = 0;
};

}  // namespace NQRXZELT20
