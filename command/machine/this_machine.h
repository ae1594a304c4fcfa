// The machine that the command runs on.
#pragma once

#include <filesystem>

#include "command/machine/machine.h"

/// Where the EDIDs of this machine come from: the kernel's graphics drivers, the video BIOS, or the drivers if they
/// have any and else the BIOS.
enum class EEdidSource { kAuto, kBios, kDrm };

/// This machine, with its own files. `drmFolder`: where the kernel shows its graphics outputs.
TMachine MakeThisMachine(EEdidSource source, const std::filesystem::path& drmFolder = "/sys/class/drm");
