// A captured machine as JSON: machine.json, or a whole machine in one file, read (machine_document.cpp) and written
// (document_writer.cpp). docs/captured-machines.md describes both.
//
// What is read comes from strangers. It is read piece by piece by tables of what is allowed where, so that the first
// wrong thing ends the reading, and no more is kept than a machine can have.
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

// What a captured machine can have at most.
constexpr std::size_t kMaxMachineJsonSize = std::size_t{1} * 1024 * 1024;  // bytes
constexpr std::size_t kMaxDocumentSize = std::size_t{64} * 1024 * 1024;    // bytes
constexpr std::size_t kMaxUnits = 256;                                     // named by the BIOS's faults or by EDIDs
constexpr std::size_t kMaxEdidSize = 256 * edid::kBlockSize;  // a base block and as many as its count byte can say

/// The format of a captured machine in one file: the value of "captured".
constexpr int kDocumentVersion = 1;

/// A captured machine before it is used, and after it was captured.
struct TMachineDocument {
  THostConfiguration host;                            // without files
  TVirtualBiosConfiguration bios;                     // with the EDIDs
  std::map<unsigned int, std::string> connectors;     // the output that a unit's EDID was read from, where it is known
  std::map<unsigned int, std::string> paths;          // where that output is, where it is known
  std::map<std::string, std::string> files;           // content by absolute path
  std::string collected;                              // when, as utc_time.h writes it; empty where it is not known
  std::map<unsigned int, TDamagedEdid> damagedEdids;  // of units that have none in `bios` for this reason
};

/// Whether the text begins as a JSON object does, and not as a list in C.
bool BeginsLikeObject(std::string_view text);

/// Whether the text is a machine in one file: a JSON object that has a version. Throws TUnusable, naming the file, for
/// an object that is not well formed.
bool IsMachineDocument(const std::string& text, const std::string& name);

/// Reads the text of a machine.json into `machine`, whose values are the defaults. `name`: of the file, for messages.
/// Throws TUnusable, naming file and key, for what is not as it must be.
void ReadMachineJson(const std::string& text, const std::string& name, TMachineDocument& machine);

/// The same for the text of a machine in one file.
void ReadMachineDocument(const std::string& text, const std::string& name, TMachineDocument& machine);

/// The unit of that name. Nothing for a name that is no number, or not in the one way to write it: two names of one
/// unit would be two answers.
std::optional<unsigned int> ParseUnit(std::string_view name);

/// Adds a unit, or finds it. Throws TUnusable, beginning with `place`, for one more than kMaxUnits.
TVirtualBiosConfiguration::TUnit& AddUnit(TVirtualBiosConfiguration& bios, unsigned int unit, const std::string& place);

/// Adds a unit with its EDID, or with what is wrong with that: it must be whole blocks, one at least, kMaxEdidSize at
/// most. Throws TUnusable, beginning with `place`, for one unit more than kMaxUnits.
void AddEdid(TMachineDocument& machine, unsigned int unit, const std::string& bytes, const std::string& place);

/// Adds a unit whose EDID cannot be used. The unit is then like one without an EDID.
void AddDamagedEdid(TMachineDocument& machine, unsigned int unit, const TDamagedEdid& damage);

/// Whether a machine in one file can have a file of that path: absolute, and in the one way to write it.
bool IsPlainPath(std::string_view path);

/// The text of the machine's machine.json: everything except its files and EDIDs. It ends with a newline.
std::string MakeMachineJson(const TMachineDocument& machine);

/// The text of the machine in one file. Throws TUnusable for a file whose path is not UTF-8, which JSON cannot name.
std::string MakeDocumentText(const TMachineDocument& machine);
