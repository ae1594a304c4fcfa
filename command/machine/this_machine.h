// Makes the machine that the command runs on.
#pragma once

#include "command/machine/drm_cards.h"
#include "command/machine/machine.h"
#include "command/machine/xconfig_files.h"

/// Where the EDIDs of this machine come from: the video BIOS, or the kernel's graphics drivers (DRM). kAuto: the
/// drivers if anything is connected to them, otherwise the BIOS.
enum class EEdidSource { kAuto, kBios, kDrm };

/// This machine, with its own files.
TMachine MakeThisMachine(EEdidSource edidSource, EXconfigSource xconfigSource, const TKernelFolders& folders = {});
