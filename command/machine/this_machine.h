// The machine that the command runs on.
#pragma once

#include "command/machine/drm_cards.h"
#include "command/machine/machine.h"
#include "command/machine/xconfig_files.h"

/// Where the EDIDs of this machine come from: the kernel's graphics drivers, the video BIOS, or the drivers if
/// anything is connected to them and else the BIOS.
enum class EEdidSource { kAuto, kBios, kDrm };

/// This machine, with its own files.
TMachine MakeThisMachine(EEdidSource edidSource, EXconfigSource xconfigSource, const TKernelFolders& folders = {});
