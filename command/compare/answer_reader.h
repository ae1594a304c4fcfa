// Reads what displayinfo has written of a machine: the answer of --format json, or a line of --machines.
//
// The text comes from strangers. It is read piece by piece by tables of what is expected where, so that the first wrong
// thing ends the reading, and no more is kept than a comparison needs. Unknown keys are skipped: a later version may
// write more.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

struct TReadInstance {
  std::string className;
  std::string path;
  std::map<std::string, std::string> properties;  // values as JSON text; a datetime without its time zone
};

struct TReadOutput {
  std::string deviceId;            // empty when the plug-in reports no monitor for it
  std::string connector;           // empty when it is not known
  std::vector<std::uint8_t> edid;  // whole 128-byte blocks; empty when it has none
};

struct TReadAnswer {
  bool isCapturedMachine = false;      // it is no answer but a captured machine, and was read no further
  std::optional<std::string> machine;  // its name, which only a line has
  std::optional<std::string> error;    // why it could not be asked; then the rest is empty
  std::set<std::string> classes;       // that the requests asked for
  std::vector<TReadInstance> instances;
  std::vector<TReadOutput> outputs;
};

/// `place`: the file, or the file and the line, where a message begins. Throws TUnusable, naming place and key, for a
/// text that is no such answer.
TReadAnswer ReadAnswer(const std::string& text, const std::string& place);
