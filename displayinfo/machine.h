// A machine to collect from: how the host presents it, and the video BIOS that answers for its monitors.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "embedded_host/embedded_host.h"

class IVideoBios;

/// The machine or the plug-in cannot be used: one line that names the thing and the cure.
class TUnusable : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Where the EDIDs of this machine come from: the kernel's graphics drivers, the video BIOS, or the drivers if they
/// have any and else the BIOS.
enum class EEdidSource { kAuto, kBios, kDrm };

/// What a report can say of where the EDIDs came from.
struct TEdidOrigin {
  std::string none = "no EDID from unit 0 of the video BIOS.";  // why there is no monitor
  /// Whence the EDID of a unit was read; empty for a captured machine, of which only the folder is known.
  std::function<std::string(std::size_t unit)> describe;
};

struct TMachine {
  THostConfiguration host;
  std::shared_ptr<IVideoBios> bios;
  /// Why the BIOS could not be called, asked after a collection; empty when it could, or was not needed.
  std::function<std::string()> getBiosFailure;
  TEdidOrigin edidOrigin;
  std::shared_ptr<const void> folder;  // that a machine in one file was unpacked into; goes with the machine
};

/// This machine, with its own files. `drmFolder`: where the kernel shows its graphics outputs.
TMachine MakeThisMachine(EEdidSource source, const std::filesystem::path& drmFolder = "/sys/class/drm");

/// The machine that a folder holds, or a file that a folder was packed into (see machine_archive.h). Throws TUnusable,
/// naming file and key, when the folder or anything in it that the collection would use is not as it must be, or leads
/// out of the folder.
TMachine ReadCapturedMachine(const std::filesystem::path& path);
