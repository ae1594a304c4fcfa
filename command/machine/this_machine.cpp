#include "command/machine/this_machine.h"

#include <algorithm>
#include <map>
#include <memory>
#include <utility>

#include "command/base/text_encoding.h"
#include "command/base/utc_time.h"
#include "command/machine/bios_recorder.h"
#include "command/machine/drm_cards.h"
#include "command/machine/drm_device.h"
#include "command/machine/folder_files.h"
#include "command/machine/host_name.h"
#include "command/machine/kernel_configuration.h"
#include "command/machine/output_order.h"
#include "command/machine/pci_names.h"
#include "realmode/real_video_bios.h"
#include "realmode/virtual_video_bios.h"

namespace {

/// What the kernel knows, and notes about what the command could not learn.
struct TKernel {
  TKernelFolders folders;
  TKernelGraphics graphics;
  std::map<std::string, TDrmDevice> devices;  // those that were asked, by card
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

/// Asks the device of a card, once. A card that is off is not asked, since it has no modes to tell; one that is asleep
/// is not either, since asking would wake it.
const TDrmDevice& AskDevice(TKernel& kernel, const TDrmCard& card) {
  const auto [asked, isNew] = kernel.devices.try_emplace(card.name);
  TDrmDevice& device = asked->second;
  if (isNew && card.power == ECardPower::kOn) device = ReadDrmDevice(kernel.folders.devices / card.name);
  if (isNew && card.power == ECardPower::kAsleep) {
    device.fault = card.name + " is asleep, and asking its driver would wake it";
  }
  return device;
}

/// Adds the paths of outputs that only the devices know.
void FindPortsBehindHubs(TKernel& kernel) {
  for (TDrmCard& card : kernel.graphics.cards) {
    for (TDrmOutput& output : card.outputs) {
      if (!output.isBehindHub) continue;
      const std::map<std::string, std::string>& ports = AskDevice(kernel, card).ports;
      const auto port = ports.find(output.connector.substr(card.name.size() + 1));
      if (port != ports.end()) output.path = MakeOutputPath(card, port->second);
    }
  }
}

void ReadModes(TKernel& kernel) {
  std::vector<std::string> unasked;
  std::string fault;
  for (const TDrmCard& card : kernel.graphics.cards) {
    const TDrmDevice& device = AskDevice(kernel, card);
    for (const auto& [connector, mode] : device.modes) kernel.graphics.modes[card.name + "-" + connector] = mode;
    if (device.fault.empty()) continue;
    unasked.push_back(card.name);
    if (fault.empty()) fault = device.fault;
  }
  if (!fault.empty())
    kernel.notes.push_back("the modes that are set now on " + Join(unasked) + " are not known: " + fault);
}

/// The configuration made from what the kernel knows; empty if it knows no card.
std::string MakeConfiguration(TKernel& kernel) {
  if (kernel.graphics.cards.empty()) return std::string();
  ReadNames(kernel);
  ReadModes(kernel);
  return MakeKernelConfiguration(kernel.graphics);
}

/// `folder`: where the kernel shows the graphics cards.
std::string ExplainNoXconfig(EXconfigSource source, std::size_t count, const std::string& folder) {
  const std::string noCard = "the kernel shows no graphics card in " + folder;
  if (source == EXconfigSource::kKernel) return noCard + ", so no X server configuration could be made";
  const std::string noFile = TMachine().explainNoXconfig(count);
  if (source == EXconfigSource::kAuto) return noFile + ", and " + noCard + " to make one from";
  return noFile + "; --xconfig-source kernel makes one from what the kernel knows";
}

void UseXconfig(TMachine& machine, EXconfigSource source, const std::shared_ptr<TKernel>& kernel) {
  const auto own = std::make_shared<TFolderFiles>(TRootedFolder("/", ELinks::kAll));
  const auto files = std::make_shared<TXconfigFiles>(own, source, [kernel] { return MakeConfiguration(*kernel); });
  machine.host.files = files;
  machine.getFileFailures = [own] { return own->GetFailures(); };
  machine.explainNoXconfig = [source, folder = kernel->folders.cards.string()](std::size_t count) {
    return ExplainNoXconfig(source, count, folder);
  };
  machine.getXconfigOrigin = [files, kernel] {
    return files->HasServedMade() ? "made from what the kernel knows in " + kernel->folders.cards.string()
                                  : std::string();
  };
  if (source != EXconfigSource::kKernel && !kernel->graphics.cards.empty()) {
    machine.xconfigCure = "; --xconfig-source kernel tells what the kernel knows instead";
  }
  machine.getNotes = [kernel] { return kernel->notes; };
}

/// Why no output of the graphics drivers has an EDID.
std::string ExplainNoEdid(const TKernel& kernel) {
  const std::string folder = kernel.folders.cards.string();
  if (kernel.graphics.cards.empty()) return "the kernel shows no graphics card in " + folder;
  std::vector<std::string> connected;
  for (const TDrmCard& card : kernel.graphics.cards) {
    for (const TDrmOutput& output : card.outputs) connected.push_back(output.connector);
  }
  if (connected.empty()) return "no output in " + folder + " has a monitor connected";
  return "no connected output in " + folder + " has an EDID (connected: " + Join(connected) + ")";
}

/// True if anything is connected, even without an EDID.
bool HasOutput(const TKernelGraphics& graphics) {
  return std::any_of(graphics.cards.begin(), graphics.cards.end(),
                     [](const TDrmCard& card) { return !card.outputs.empty(); });
}

/// Serves the EDIDs of the graphics drivers as those of BIOS units 0, 1, ... Outputs without an EDID follow.
void UseDrm(TMachine& machine, const TKernel& kernel) {
  const std::string folder = kernel.folders.cards.string();
  TVirtualBiosConfiguration bios;
  unsigned int unit = 0;
  const auto name = [&](const TDrmOutput& output) {
    if (!output.path.empty()) machine.paths[unit] = output.path;
    machine.connectors[unit++] = output.connector;
  };
  for (const TDrmOutput& output : kernel.graphics.units) {
    bios.units[unit].edid = output.edid;
    name(output);
  }
  for (const TDrmCard& card : kernel.graphics.cards) {
    for (const TDrmOutput& output : card.outputs) {
      if (!output.edid.empty()) continue;
      if (!output.edidFault.empty()) {
        machine.damagedEdids[unit] = {folder + "/" + output.connector + "/edid", output.edidFault, "try again"};
      }
      name(output);
    }
  }
  machine.bios = std::make_shared<TVirtualVideoBios>(bios);
  machine.getUnits = [bios = std::move(bios)] { return bios; };
  machine.edidOrigin.none = ExplainNoEdid(kernel);
  machine.edidOrigin.describe = [connectors = machine.connectors, folder](std::size_t asked) {
    const auto connector = connectors.find(static_cast<unsigned int>(asked));
    return connector == connectors.end() ? std::string() : connector->second + " in " + folder;
  };
}

/// Removes units that repeat the unit before: a real BIOS often answers as unit 0 for every unit.
TVirtualBiosConfiguration DropRepeats(TVirtualBiosConfiguration bios) {
  const std::map<unsigned int, TVirtualBiosConfiguration::TUnit> units = bios.units;
  for (const auto& [number, unit] : units) {
    const auto before = units.find(number - 1);
    if (before != units.end() && !unit.edid.empty() && unit.edid == before->second.edid) bios.units.erase(number);
  }
  return bios;
}

/// `before`: why the source that was tried before the BIOS was of no use; may be empty.
void UseBios(TMachine& machine, const std::string& before) {
  const auto bios = std::make_shared<TRealVideoBios>();
  const auto recorder = std::make_shared<TBiosRecorder>(bios);
  machine.bios = recorder;
  machine.getUnits = [recorder] { return DropRepeats(recorder->GetRecord()); };
  machine.edidOrigin.none = before + "the video BIOS has no EDID of unit 0: it reaches no monitor that has one";
  machine.getBiosFailure = [bios, recorder, before] {
    recorder->RethrowFailure();
    const std::string failure = bios->GetFailure();
    return failure.empty() ? failure : before + failure + "; a captured machine (--machine PATH) does without it";
  };
  machine.edidOrigin.describe = [](std::size_t unit) { return "video BIOS, unit " + std::to_string(unit); };
}

}  // namespace

TMachine MakeThisMachine(EEdidSource edidSource, EXconfigSource xconfigSource, const TKernelFolders& folders) {
  const auto kernel = std::make_shared<TKernel>();
  kernel->folders = folders;
  kernel->graphics.cards = ReadDrmCards(folders);
  FindPortsBehindHubs(*kernel);
  kernel->graphics.units = OrderOutputs(kernel->graphics.cards);
  TMachine machine;
  machine.host.systemName = GetHostName();
  machine.collected = WriteUtcTime(std::time(nullptr));
  UseXconfig(machine, xconfigSource, kernel);
  if (edidSource == EEdidSource::kDrm || (edidSource == EEdidSource::kAuto && HasOutput(kernel->graphics))) {
    UseDrm(machine, *kernel);
  } else if (edidSource == EEdidSource::kAuto) {
    UseBios(machine, ExplainNoEdid(*kernel) + ", and ");
  } else {
    UseBios(machine, "");
  }
  return machine;
}
