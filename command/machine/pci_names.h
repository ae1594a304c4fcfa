// Looks up the names of PCI vendors and devices in the PCI id database, by libpci (pciutils), which need not be
// installed.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

class TPciNames {
 public:
  /// `database`: its file; empty: the system's. If it does not exist, no name is known. Throws TUnusable if it is
  /// damaged or forbidden, or if it or libpci cannot be opened for a reason that tells nothing about them.
  explicit TPciNames(const std::string& database = "");
  ~TPciNames();
  TPciNames(const TPciNames&) = delete;
  TPciNames& operator=(const TPciNames&) = delete;

  /// False if libpci is missing: then no name is known.
  bool IsAvailable() const;

  /// The name, or the number in hexadecimal digits ("0x1af4") if the database does not know it.
  std::string GetVendor(std::uint16_t vendor) const;
  std::string GetDevice(std::uint16_t vendor, std::uint16_t device) const;

 private:
  struct TLibrary;

  std::unique_ptr<TLibrary> m_library;  // null if libpci is missing
};
