// The graphics cards and their outputs, as the kernel's drivers (DRM) show them below /sys/class/drm, and the cards
// without a driver. Reading them needs no privilege.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Where a card is on the PCI bus, and what it is.
struct TPciDevice {
  unsigned int domain, bus, device, function;
  std::uint16_t vendorId, deviceId;
};

/// An output with something connected to it.
struct TDrmOutput {
  std::string connector;           // such as "card0-DP-1"
  std::vector<std::uint8_t> edid;  // whole 128-byte blocks; empty when the driver has none, or at a fault
  std::string edidFault = {};      // such as "cannot be read: No such device"; else empty
  std::string path = {};           // where it is, such as "0000:01:00.0/DP-1"; empty where that is not known
  bool isBehindHub = false;        // of DisplayPort's multi-stream transport: only the device knows its path
};

/// Off: none of its connectors is switched on. Asleep: one that is switched on saves power, such as a console's that is
/// blank.
enum class ECardPower { kOff, kAsleep, kOn };

struct TDrmCard {
  std::string name;                          // such as "card0"; without a driver its address
  std::optional<TPciDevice> pci;             // of a card on the PCI bus
  std::optional<std::uint64_t> videoMemory;  // kilobytes, if the driver shows it
  std::vector<TDrmOutput> outputs;           // in the order of their names, numbers counting as numbers
  ECardPower power = ECardPower::kOff;
  std::string address = {};  // on its bus, such as "0000:01:00.0"; of a platform device its name
};

/// Where the kernel shows what it knows of the graphics. The folders need not exist.
struct TKernelFolders {
  std::filesystem::path cards = "/sys/class/drm";  // those that a graphics driver serves
  std::filesystem::path devices = "/dev/dri";      // of these cards
  std::filesystem::path pci = "/sys/bus/pci/devices";
};

/// Every card in the order of their names, then the display controllers of the PCI bus that no graphics driver serves.
std::vector<TDrmCard> ReadDrmCards(const TKernelFolders& folders);

/// Where an output of the card is, whatever number the card has: "0000:01:00.0/DP-1". Empty when one of both is not
/// known. `connector`: without its card.
std::string MakeOutputPath(const TDrmCard& card, const std::string& connector);

/// The EDID of an output, as the kernel shows it. One of both is empty, or both are: a driver may have none.
struct TDrmEdid {
  std::vector<std::uint8_t> bytes;  // whole 128-byte blocks
  std::string fault;                // why it cannot be read, such as "cannot be read: No such device"
};

/// Reads as pread() does: into `buffer`, at most `size` bytes from `offset` on; -1, with errno set, when it fails.
typedef std::function<ssize_t(void* buffer, std::size_t size, off_t offset)> TReadAt;

/// The kernel shows an EDID in one read, up to a page of it, and may replace it between two. So it is read again when
/// it has not as many blocks as it says, a few times: there are monitors that never say so rightly.
TDrmEdid ReadDrmEdid(const TReadAt& readAt);

/// `file`: such as /sys/class/drm/card0-DP-1/edid.
TDrmEdid ReadDrmEdid(const std::filesystem::path& file);
