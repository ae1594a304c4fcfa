// A captured machine: a folder with machine.json, edid/ and root/, or one packed into a file.
#pragma once

#include <filesystem>

#include "command/machine/machine.h"

/// The machine that a folder holds, or a file that a folder was packed into (see machine_archive.h). Throws TUnusable,
/// naming file and key, when the folder or anything in it that the collection would use is not as it must be, or leads
/// out of the folder.
TMachine ReadCapturedMachine(const std::filesystem::path& path);
