// TDisplay: the abstract base of the collectors.
//
// A collector is made for one CIM class of one request. The dispatch asks it once, through GetCIMInstances(), and then
// deletes it. A collector builds one PropertyMap per instance and hands each to GenerateCIMInstance.
#pragma once

#include <boost/shared_ptr.hpp>

#include <string>
#include <vector>

#include "host/cim_objects.h"
#include "host/logger.h"
#include "plugin/collector/property_map.h"

namespace NQRXZELT20 {
class TPluginManagerProvider;
}

class TDisplay {
 public:
  /// A collector with neither class nor provider.
  TDisplay();

  /// A collector for that class, without a provider: its log functions stay silent. Only the raw pointer is kept, so
  /// the caller keeps the class alive as long as the collector lives.
  explicit TDisplay(boost::shared_ptr<NQRXZELT20::ICIMClass> cimClass);

  /// The same with a provider, which is not owned and never called; a null one keeps the log functions silent.
  TDisplay(boost::shared_ptr<NQRXZELT20::ICIMClass> cimClass, NQRXZELT20::TPluginManagerProvider* provider);

  TDisplay(const TDisplay&) = delete;
  TDisplay& operator=(const TDisplay&) = delete;

  /// The class this collector serves.
  virtual NQRXZELT20::ICIMClass* GetCIMClass();

  virtual ~TDisplay();

  /// Builds, commits and returns the instances of the collector's class. The host owns them. Whatever the host or the
  /// collector throws passes through.
  virtual std::vector<NQRXZELT20::ICIMInstance*> GetCIMInstances();

  /// The same for a class by name; an empty vector for a class the collector does not serve.
  virtual std::vector<NQRXZELT20::ICIMInstance*> GetCIMInstances(std::string className) = 0;

  NQRXZELT20::TPluginManagerProvider* GetInfoHandle();

  /// Makes an instance of the collector's class with every entry of `properties`, in the map's order, and commits it if
  /// `className` is the collector's own. The pointer is valid as long as the host holds the instance. A TZELTException
  /// of the host passes through; the instance is then not committed.
  NQRXZELT20::ICIMInstance* GenerateCIMInstance(PropertyMap properties, std::string className);

  /// True if the host holds an instance of the same class with an equal object path; a committed instance finds itself.
  /// A TZELTException of the host passes through.
  bool IsDuplicateInstance(NQRXZELT20::ICIMInstance* instance);

  /// Writes to the host's log if the collector has a provider and the message is not empty; otherwise does nothing.
  void Write(const std::string& message, NQRXZELT20::ILogger::EZELTLogSeverity severity) const;
  void WriteError(const std::string& message) const;
  void WriteWarning(const std::string& message) const;
  void WriteStatus(const std::string& message) const;
  void WriteDebug(const std::string& message) const;
  void WriteVerbose(const std::string& message) const;

 private:
  NQRXZELT20::ICIMClass* m_cimClass;
  NQRXZELT20::TPluginManagerProvider* m_provider;
};
