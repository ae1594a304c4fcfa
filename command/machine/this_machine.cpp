#include "command/machine/this_machine.h"

#include <map>
#include <memory>
#include <utility>

#include "command/base/utc_time.h"
#include "command/machine/bios_recorder.h"
#include "command/machine/drm_cards.h"
#include "command/machine/drm_modes.h"
#include "command/machine/folder_files.h"
#include "command/machine/host_name.h"
#include "command/machine/kernel_configuration.h"
#include "command/machine/output_order.h"
#include "command/machine/pci_names.h"
#include "realmode/real_video_bios.h"
#include "realmode/virtual_video_bios.h"

namespace {

/// What the kernel knows, and what the command could not learn of it.
struct TKernel {
  TKernelFolders folders;
  TKernelGraphics graphics;
  std::vector<std::string> notes;
};

void ReadNames(TKernel& kernel) {
  const TPciNames names;
  if (!names.IsAvailable()) {
    kernel.notes.emplace_back("graphics cards are named by their numbers: libpci.so.3 is missing; install libpci3");
  }
  for (const TDrmCard& card : kernel.graphics.cards) {
    if (!card.pci) continue;
    kernel.graphics.names[card.name] = {names.GetVendor(card.pci->vendorId),
                                        names.GetDevice(card.pci->vendorId, card.pci->deviceId)};
  }
}

void ReadModes(TKernel& kernel) {
  if (!CanReadDrmModes()) {
    kernel.notes.emplace_back("the modes that are set now are not known: libdrm.so.2 is missing; install libdrm2");
  }
  for (const TDrmCard& card : kernel.graphics.cards) {
    for (const auto& [connector, mode] : ReadDrmModes(kernel.folders.devices / card.name)) {
      kernel.graphics.modes[card.name + "-" + connector] = mode;
    }
  }
}

/// Empty when the kernel knows no card.
std::string MakeConfiguration(TKernel& kernel) {
  if (kernel.graphics.cards.empty()) return std::string();
  ReadNames(kernel);
  ReadModes(kernel);
  return MakeKernelConfiguration(kernel.graphics);
}

void UseXconfig(TMachine& machine, EXconfigSource source, const std::shared_ptr<TKernel>& kernel) {
  const auto files = std::make_shared<TXconfigFiles>(std::make_shared<TFolderFiles>(TRootedFolder("/", ELinks::kAll)),
                                                     source, [kernel] { return MakeConfiguration(*kernel); });
  machine.host.files = files;
  machine.getXconfigOrigin = [files, kernel] {
    return files->HasServedMade() ? "made from what the kernel knows in " + kernel->folders.cards.string()
                                  : std::string();
  };
  machine.getNotes = [kernel] { return kernel->notes; };
}

/// Serves the EDIDs of the graphics drivers as those of BIOS units 0, 1, ... The outputs without one follow.
void UseDrm(TMachine& machine, const TKernel& kernel) {
  TVirtualBiosConfiguration bios;
  unsigned int unit = 0;
  for (const TDrmOutput& output : kernel.graphics.units) {
    bios.units[unit].edid = output.edid;
    machine.connectors[unit++] = output.connector;
  }
  for (const TDrmCard& card : kernel.graphics.cards) {
    for (const TDrmOutput& output : card.outputs) {
      if (output.edid.empty()) machine.connectors[unit++] = output.connector;
    }
  }
  machine.bios = std::make_shared<TVirtualVideoBios>(bios);
  machine.getUnits = [bios = std::move(bios)] { return bios; };
  machine.getBiosFailure = [] { return std::string(); };
  const std::string folder = kernel.folders.cards.string();
  machine.edidOrigin.none = "no connected output in " + folder + " has an EDID.";
  machine.edidOrigin.describe = [connectors = machine.connectors, folder](std::size_t asked) {
    const auto connector = connectors.find(static_cast<unsigned int>(asked));
    return connector == connectors.end() ? std::string() : connector->second + " in " + folder;
  };
}

/// A real BIOS often answers as unit 0 for every unit. What repeats the unit before is no further output.
TVirtualBiosConfiguration DropRepeats(TVirtualBiosConfiguration bios) {
  const std::map<unsigned int, TVirtualBiosConfiguration::TUnit> units = bios.units;
  for (const auto& [number, unit] : units) {
    const auto before = units.find(number - 1);
    if (before != units.end() && !unit.edid.empty() && unit.edid == before->second.edid) bios.units.erase(number);
  }
  return bios;
}

void UseBios(TMachine& machine, const std::string& failurePrefix) {
  const auto bios = std::make_shared<TRealVideoBios>();
  const auto recorder = std::make_shared<TBiosRecorder>(bios);
  machine.bios = recorder;
  machine.getUnits = [recorder] { return DropRepeats(recorder->GetRecord()); };
  machine.getBiosFailure = [bios, failurePrefix] {
    const std::string failure = bios->GetFailure();
    return failure.empty() ? failure
                           : failurePrefix + failure + "; a captured machine (--machine PATH) does without it";
  };
  machine.edidOrigin.describe = [](std::size_t unit) { return "video BIOS, unit " + std::to_string(unit); };
}

}  // namespace

TMachine MakeThisMachine(EEdidSource edidSource, EXconfigSource xconfigSource, const TKernelFolders& folders) {
  const auto kernel = std::make_shared<TKernel>();
  kernel->folders = folders;
  kernel->graphics.cards = ReadDrmCards(folders.cards);
  kernel->graphics.units = OrderOutputs(kernel->graphics.cards);
  TMachine machine;
  machine.host.systemName = GetHostName();
  machine.collected = WriteUtcTime(std::time(nullptr));
  UseXconfig(machine, xconfigSource, kernel);
  if (edidSource == EEdidSource::kDrm || (edidSource == EEdidSource::kAuto && !kernel->graphics.units.empty())) {
    UseDrm(machine, *kernel);
  } else if (edidSource == EEdidSource::kAuto) {
    UseBios(machine, "no connected output in " + folders.cards.string() + " has an EDID, and ");
  } else {
    UseBios(machine, "");
  }
  return machine;
}
