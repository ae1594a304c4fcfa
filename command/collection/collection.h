// One collection: the plug-in loaded over a machine, asked for classes, and unloaded again.
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

/// All six, in the order of the schema.
inline TRequest ListAllClasses() {
  TRequest names;
  for (const TClassDeclaration& declaration : GetSchema()) names.emplace_back(declaration.name);
  return names;
}

/// True for the name of a class of that part.
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

/// Whose answer it is, and who collected it.
struct TAnswerIdentity {
  std::string systemName;  // as the host presents it
  std::string collected;   // when, as utc_time.h writes it; empty where a capture does not say
  std::string version;     // of the command that answers
};

/// All that a collection found out, and what its machine says of its EDIDs. It outlives the plug-in and the host.
struct TAnswer {
  TAnswerIdentity identity;
  TPluginIdentity plugin;
  std::vector<TRequestAnswer> requests;
  std::vector<TLogEntry> log;  // of the whole run
  std::vector<TFileQuery> fileQueries;
  TEdidOrigin edidOrigin;
  std::vector<TOutput> outputs;    // what the command knows of each, in the order of the units
  TReasons reasons;                // why parts of it are empty, where they are
  std::string xconfigOrigin;       // of a configuration that is no file of the machine; else empty
  std::vector<std::string> notes;  // what the command did without, a sentence each
};

/// Runs the requests in order. `logListener` hears of each log message when it is written. Throws TUnusable when the
/// plug-in cannot be used, or when a failure of the host gets out of a request.
TAnswer Collect(const TMachine& machine, const std::filesystem::path& plugin, const std::vector<TRequest>& requests,
                std::function<void(const TLogEntry&)> logListener);

/// What people should know of an answer beside its instances, a sentence each: what the command did without, and, where
/// a request asked for monitors or their modes, which outputs are not among the monitors and why. `machine`: that was
/// asked.
std::vector<std::string> ListRemarks(const TMachine& machine, const TAnswer& answer);
