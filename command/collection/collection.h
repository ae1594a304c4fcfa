// Collects from one machine: loads the plug-in, asks it for classes, unloads it, and joins what it answered.
#pragma once

#include <boost/shared_ptr.hpp>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "command/collection/outputs.h"
#include "command/collection/reasons.h"
#include "command/machine/machine.h"
#include "embedded_host/cim_store.h"
#include "embedded_host/log.h"
#include "embedded_host/schema.h"

/// The classes of one GetData call, in order.
typedef std::vector<std::string> TRequest;

/// All six classes, in the order of the schema.
inline TRequest ListAllClasses() {
  TRequest names;
  for (const TClassDeclaration& declaration : GetSchema()) names.emplace_back(declaration.name);
  return names;
}

/// True if the named class belongs to that part of the schema.
inline bool IsOf(const std::string& className, EPart part) {
  const TClassDeclaration* const declaration = FindClass(className);
  return declaration != nullptr && declaration->part == part;
}

struct TPluginIdentity {
  std::string name;
  std::string version;
  std::string interfaceVersion;
  int type;
};

struct TRequestAnswer {
  TRequest classes;
  /// Every instance committed during the request, in commit order.
  std::vector<boost::shared_ptr<TStoredInstance>> instances;
  std::vector<TLogEntry> log;  // of this request
};

/// Which system an answer is about, and when and by which version it was collected.
struct TAnswerIdentity {
  std::string systemName;  // as the host presents it
  std::string collected;   // the time, as utc_time.h writes it; empty if a capture does not give it
  std::string version;     // of the command that answers
};

/// Everything that a collection found out, and what its machine says of its EDIDs. Outlives the plug-in and the host.
struct TAnswer {
  TAnswerIdentity identity;
  TPluginIdentity plugin;
  std::vector<TRequestAnswer> requests;
  std::vector<TLogEntry> log;  // of the whole run
  std::vector<TFileQuery> fileQueries;
  TEdidOrigin edidOrigin;
  std::vector<TOutput> outputs;    // in the order of the units
  TReasons reasons;                // why parts of it are empty, if they are
  std::string xconfigOrigin;       // where a configuration comes from that is no file of the machine; otherwise empty
  std::vector<std::string> notes;  // what the command did without, a sentence each
};

/// Runs the requests in order. `logListener` is called for each log message as it is written. Throws TUnusable if the
/// plug-in cannot be used, or if a request throws.
TAnswer Collect(const TMachine& machine, const std::filesystem::path& plugin, const std::vector<TRequest>& requests,
                std::function<void(const TLogEntry&)> logListener);

/// What people should know besides the instances, a sentence each: what the command did without and, if a request asked
/// for monitors or their modes, which outputs are missing among the monitors and why. `machine`: the one that was
/// asked.
std::vector<std::string> ListRemarks(const TMachine& machine, const TAnswer& answer);
