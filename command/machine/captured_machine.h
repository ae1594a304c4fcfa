// Reads a captured machine: a folder with machine.json, edid/ and root/, one JSON document, or a file with EDIDs that
// another program wrote (forms/forms.h).
#pragma once

#include <filesystem>

#include "command/machine/machine.h"
#include "command/machine/machine_document.h"

// What is in the folder of a captured machine.
constexpr const char* kMachineJson = "machine.json";
constexpr const char* kEdids = "edid";
constexpr const char* kEdidEnding = ".bin";  // after the number of the unit
constexpr const char* kRoot = "root";

/// The machine in a folder or a file. Anybody may have made it: nothing outside it is read, and nothing is written or
/// run. Throws TUnusable, which names file and key, if anything that the collection would use is wrong or leads out of
/// the folder. A damaged EDID loses only its unit.
TMachine ReadCapturedMachine(const std::filesystem::path& path);

/// The machine in a file on standard input.
TMachine ReadStandardInput();

/// The machine in the text of such a file. `name`: for messages.
TMachine ReadCapturedText(const std::string& text, const std::string& name);

/// The machine of a document, with the document's files.
TMachine MakeCapturedMachine(TMachineDocument document);

/// True for the name of a packed folder (.tar.gz, .tgz), which is neither read nor written.
bool IsPackedName(const std::filesystem::path& path);
