#include "command/machine/pci_names.h"

#include <pci/pci.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "command/base/unusable.h"
#include "realmode/shared_library.h"

namespace {

// Look up names only in the database. The caller writes numbers itself, and libpci's look-up in udev's database leaks
// memory on a machine without it.
constexpr int kHow = PCI_LOOKUP_NO_NUMBERS | PCI_LOOKUP_NO_HWDB;

/// Drops the library's messages: a name that it does not find is simply shown as a number.
void Ignore(char*, ...) {}

/// The library calls it if memory runs out or its database is damaged. It must not return.
__attribute__((noreturn)) void Fail(char* format, ...) {
  char text[512];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  std::string reason = text;
  reason.erase(reason.find_last_not_of('\n') + 1);
  throw TUnusable("the names of graphics cards cannot be read: " + reason + "; install the package pci.ids again");
}

std::string WriteNumber(std::uint16_t number) {
  std::array<char, 8> text = {};
  std::snprintf(text.data(), text.size(), "0x%04x", number);
  return text.data();
}

}  // namespace

struct TPciNames::TLibrary {
  TSharedLibrary library{"libpci.so.3"};
  decltype(pci_alloc)* alloc = library.Find<decltype(pci_alloc)>("pci_alloc");
  decltype(pci_cleanup)* cleanup = library.Find<decltype(pci_cleanup)>("pci_cleanup");
  decltype(pci_set_name_list_path)* setPath = library.Find<decltype(pci_set_name_list_path)>("pci_set_name_list_path");
  decltype(pci_load_name_list)* load = library.Find<decltype(pci_load_name_list)>("pci_load_name_list");
  decltype(pci_lookup_name)* lookUpName = library.Find<decltype(pci_lookup_name)>("pci_lookup_name");
  pci_access* access = nullptr;

  bool Open(std::string database) {
    RequireLoaded(library.GetFailure());
    if (alloc == nullptr || load == nullptr) return false;
    access = alloc();
    if (access == nullptr) return false;
    // pci_init would set these, but it also looks for access to the bus, and ends the process if there is none.
    access->error = Fail;
    access->warning = Ignore;
    access->debug = Ignore;
    if (!database.empty()) setPath(access, database.data(), 0);
    errno = 0;
    if (load(access) == 0 && (errno == EACCES || !DescribesFile(errno))) FailToRead(access->id_file_name, errno);
    return true;
  }
  ~TLibrary() {
    if (access != nullptr) cleanup(access);
  }

  /// The name, or `number` if the database has none.
  template <typename... TIds>
  std::string LookUp(int kind, std::uint16_t number, TIds... ids) const {
    std::array<char, 256> buffer = {};
    const char* const name = lookUpName(access, buffer.data(), buffer.size(), kind | kHow, ids...);
    return name == nullptr ? WriteNumber(number) : name;
  }
};

TPciNames::TPciNames(const std::string& database) : m_library(std::make_unique<TLibrary>()) {
  if (!m_library->Open(database)) m_library.reset();
}

TPciNames::~TPciNames() = default;

bool TPciNames::IsAvailable() const { return m_library != nullptr; }

std::string TPciNames::GetVendor(std::uint16_t vendor) const {
  return IsAvailable() ? m_library->LookUp(PCI_LOOKUP_VENDOR, vendor, int{vendor}) : WriteNumber(vendor);
}

std::string TPciNames::GetDevice(std::uint16_t vendor, std::uint16_t device) const {
  return IsAvailable() ? m_library->LookUp(PCI_LOOKUP_DEVICE, device, int{vendor}, int{device}) : WriteNumber(device);
}
