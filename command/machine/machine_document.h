// Reads (machine_document.cpp) and writes (document_writer.cpp) a captured machine as JSON: its machine.json, or a
// whole machine in one file. docs/captured-machines.md describes both.
//
// Strangers send captured machines. They are read piece by piece, the first error ends the reading, and only as much is
// kept as a machine can have.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "command/machine/failures.h"
#include "edid/layout.h"
#include "embedded_host/embedded_host.h"
#include "realmode/virtual_video_bios.h"

// The limits of a captured machine.
constexpr std::size_t kMaxMachineJsonSize = std::size_t{1} * 1024 * 1024;  // bytes
constexpr std::size_t kMaxDocumentSize = std::size_t{64} * 1024 * 1024;    // bytes
constexpr std::size_t kMaxUnits = 256;                                     // units with a fault or an EDID
constexpr std::size_t kMaxEdidSize = 256 * edid::kBlockSize;  // a base block and as many as its count byte can give

/// The format of a captured machine in one file: the value of "captured".
constexpr int kDocumentVersion = 1;

/// A captured machine before it is used, and after it was captured.
struct TMachineDocument {
  THostConfiguration host;                            // without files
  TVirtualBiosConfiguration bios;                     // with the EDIDs
  std::map<unsigned int, std::string> connectors;     // the output of each unit, if it is known
  std::map<unsigned int, std::string> paths;          // where that output is, if that is known
  std::map<std::string, std::string> files;           // content by absolute path
  std::string collected;                              // the time, as utc_time.h writes it; empty if it is unknown
  std::map<unsigned int, TDamagedEdid> damagedEdids;  // by unit; such a unit has no EDID in `bios`
};

/// True if the text begins as a JSON object does, and not as a list in C.
bool BeginsLikeObject(std::string_view text);

/// True if the text is a machine in one file: a JSON object that has a version. Throws TUnusable, which names the file,
/// if the object is not well-formed.
bool IsMachineDocument(const std::string& text, const std::string& name);

/// Reads the text of a machine.json into `machine`, whose values are the defaults. `name`: the file's, for messages.
/// Throws TUnusable, which names file and key, if anything is wrong.
void ReadMachineJson(const std::string& text, const std::string& name, TMachineDocument& machine);

/// The same for the text of a machine in one file.
void ReadMachineDocument(const std::string& text, const std::string& name, TMachineDocument& machine);

/// The unit of that name. Nothing if the name is no number, or is written in an unusual way, such as "01": two names of
/// one unit would give it two EDIDs.
std::optional<unsigned int> ParseUnit(std::string_view name);

/// Finds a unit, or adds it. Throws TUnusable, which begins with `place`, if there are already kMaxUnits.
TVirtualBiosConfiguration::TUnit& AddUnit(TVirtualBiosConfiguration& bios, unsigned int unit, const std::string& place);

/// Adds a unit with its EDID, or with the EDID's fault: it must have whole blocks, at least one, and at most
/// kMaxEdidSize bytes. Throws TUnusable, which begins with `place`, if there are already kMaxUnits.
void AddEdid(TMachineDocument& machine, unsigned int unit, const std::string& bytes, const std::string& place);

/// Adds a unit whose EDID cannot be used. The unit then counts as one without an EDID.
void AddDamagedEdid(TMachineDocument& machine, unsigned int unit, const TDamagedEdid& damage);

/// True if a machine in one file can have a file of that path: absolute, without ".", ".." or repeated slashes.
bool IsPlainPath(std::string_view path);

/// The text of the machine's machine.json: everything except its files and EDIDs. It ends with a newline.
std::string MakeMachineJson(const TMachineDocument& machine);

/// The text of the machine in one file. Throws TUnusable if the path of a file is not UTF-8, since JSON cannot hold it.
std::string MakeDocumentText(const TMachineDocument& machine);
