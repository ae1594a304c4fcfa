// The machine that the command runs on.
#pragma once

#include <filesystem>

#include "command/machine/machine.h"
#include "command/machine/xconfig_files.h"

/// Where the EDIDs of this machine come from: the kernel's graphics drivers, the video BIOS, or the drivers if they
/// have any and else the BIOS.
enum class EEdidSource { kAuto, kBios, kDrm };

/// Where the kernel shows what it knows of the graphics.
struct TKernelFolders {
  std::filesystem::path cards = "/sys/class/drm";
  std::filesystem::path devices = "/dev/dri";
};

/// This machine, with its own files.
TMachine MakeThisMachine(EEdidSource edidSource, EXconfigSource xconfigSource, const TKernelFolders& folders = {});
