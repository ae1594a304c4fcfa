// The names of PCI vendors and devices, from the PCI id database (libpci of pciutils, which the command can do
// without).
#pragma once

#include <cstdint>
#include <memory>
#include <string>

class TPciNames {
 public:
  /// `database`: its file; that of the system when empty. One that does not exist knows no name. Throws TUnusable when
  /// it is damaged or forbidden, or when it or libpci cannot be opened for a reason that says nothing of them.
  explicit TPciNames(const std::string& database = "");
  ~TPciNames();
  TPciNames(const TPciNames&) = delete;
  TPciNames& operator=(const TPciNames&) = delete;

  /// False when libpci is missing: then no name is known.
  bool IsAvailable() const;

  /// The name, or the number in hexadecimal digits ("0x1af4") when the database does not know it.
  std::string GetVendor(std::uint16_t vendor) const;
  std::string GetDevice(std::uint16_t vendor, std::uint16_t device) const;

 private:
  struct TLibrary;

  std::unique_ptr<TLibrary> m_library;  // null when libpci is missing
};
