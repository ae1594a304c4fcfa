// Reads the graphics cards and their outputs, which the kernel's drivers (DRM) show below /sys/class/drm, and the cards
// without a driver. This needs no privilege.
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
  std::vector<std::uint8_t> edid;  // whole 128-byte blocks; empty if the driver has none or cannot read it
  std::string edidFault = {};      // such as "cannot be read: No such device"; empty if there is none
  std::string path = {};           // where it is, such as "0000:01:00.0/DP-1"; empty if that is unknown
  bool isBehindHub = false;        // DisplayPort multi-stream transport: only the card's device knows its path
};

/// Off: no connector is switched on. Asleep: at least one that is switched on saves power, as with a blank console.
enum class ECardPower { kOff, kAsleep, kOn };

struct TDrmCard {
  std::string name;                          // such as "card0"; its address if it has no driver
  std::optional<TPciDevice> pci;             // nothing for a card on another bus
  std::optional<std::uint64_t> videoMemory;  // kilobytes, if the driver shows it
  std::vector<TDrmOutput> outputs;           // sorted by name; numbers in names compare as numbers
  ECardPower power = ECardPower::kOff;
  std::string address = {};  // on its bus, such as "0000:01:00.0"; the name of a platform device
};

/// Where the kernel shows what it knows of the graphics. The folders need not exist.
struct TKernelFolders {
  std::filesystem::path cards = "/sys/class/drm";  // the cards that have a graphics driver
  std::filesystem::path devices = "/dev/dri";      // their devices
  std::filesystem::path pci = "/sys/bus/pci/devices";
};

/// All cards in the order of their names, then the PCI bus's display controllers without a graphics driver.
std::vector<TDrmCard> ReadDrmCards(const TKernelFolders& folders);

/// Where an output of the card is, independent of the card's number: "0000:01:00.0/DP-1". Empty if the card's address
/// or the connector is unknown. `connector`: without its card.
std::string MakeOutputPath(const TDrmCard& card, const std::string& connector);

/// The EDID of an output, as the kernel shows it. At least one member is empty; both are if the driver has no EDID.
struct TDrmEdid {
  std::vector<std::uint8_t> bytes;  // whole 128-byte blocks
  std::string fault;                // why it cannot be read, such as "cannot be read: No such device"
};

/// Reads as pread() does: into `buffer`, at most `size` bytes from `offset` on. Returns -1 and sets errno if it fails.
typedef std::function<ssize_t(void* buffer, std::size_t size, off_t offset)> TReadAt;

/// The kernel gives at most a page of an EDID in one read, and may replace the EDID between two reads. So an EDID that
/// does not have as many blocks as it says is read again, but only a few times: some monitors always give a wrong
/// number.
TDrmEdid ReadDrmEdid(const TReadAt& readAt);

/// `file`: such as /sys/class/drm/card0-DP-1/edid.
TDrmEdid ReadDrmEdid(const std::filesystem::path& file);
