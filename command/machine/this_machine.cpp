#include "command/machine/this_machine.h"

#include <utility>

#include "command/machine/drm_edids.h"
#include "command/machine/folder_files.h"
#include "command/machine/host_name.h"
#include "realmode/real_video_bios.h"
#include "realmode/virtual_video_bios.h"

namespace {

/// Serves the EDIDs of the graphics drivers as those of BIOS units 0, 1, ...
void UseDrm(TMachine& machine, std::vector<TDrmEdid> edids, const std::filesystem::path& folder) {
  TVirtualBiosConfiguration bios;
  for (std::size_t unit = 0; unit < edids.size(); ++unit) {
    bios.units[static_cast<unsigned int>(unit)].edid = edids[unit].bytes;
    machine.connectors[static_cast<unsigned int>(unit)] = edids[unit].connector;
  }
  machine.bios = std::make_shared<TVirtualVideoBios>(std::move(bios));
  machine.getBiosFailure = [] { return std::string(); };
  machine.edidOrigin.none = "no connected output in " + folder.string() + " has an EDID.";
  machine.edidOrigin.describe = [edids = std::move(edids), folder](std::size_t unit) {
    return unit < edids.size() ? edids[unit].connector + " in " + folder.string() : std::string();
  };
}

void UseBios(TMachine& machine, const std::string& failurePrefix) {
  const auto bios = std::make_shared<TRealVideoBios>();
  machine.bios = bios;
  machine.getBiosFailure = [bios, failurePrefix] {
    const std::string failure = bios->GetFailure();
    return failure.empty() ? failure : failurePrefix + failure + "; a captured machine (--machine DIR) does without it";
  };
  machine.edidOrigin.describe = [](std::size_t unit) { return "video BIOS, unit " + std::to_string(unit); };
}

}  // namespace

TMachine MakeThisMachine(EEdidSource source, const std::filesystem::path& drmFolder) {
  TMachine machine;
  machine.host.systemName = GetHostName();
  machine.host.files = std::make_shared<TFolderFiles>(TRootedFolder("/", ELinks::kAll));
  std::vector<TDrmEdid> edids;
  if (source != EEdidSource::kBios) edids = ReadDrmEdids(drmFolder);
  if (source == EEdidSource::kDrm || !edids.empty()) {
    UseDrm(machine, std::move(edids), drmFolder);
  } else if (source == EEdidSource::kAuto) {
    UseBios(machine, "no connected output in " + drmFolder.string() + " has an EDID, and ");
  } else {
    UseBios(machine, "");
  }
  return machine;
}
