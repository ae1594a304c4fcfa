#include "tests/support/pci_double.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>

extern "C" {
#include <pci/pci.h>  // declares its functions as if only C had them
}

extern "C" __attribute__((visibility("default"))) TPciDouble gPciDouble;
TPciDouble gPciDouble;

namespace {

pci_access gAccess;
char gUsualPath[] = "/usual/pci.ids";

}  // namespace

// These are libpci's own functions.
#pragma GCC visibility push(default)
extern "C" {

pci_access* pci_alloc() {
  if (!gPciDouble.hasMemory) return nullptr;
  ++gPciDouble.heldCount;
  gAccess = pci_access();
  gAccess.id_file_name = gUsualPath;
  return &gAccess;
}

void pci_cleanup(pci_access*) { --gPciDouble.heldCount; }

void pci_set_name_list_path(pci_access*, char* name, int) { gPciDouble.path = name; }

int pci_load_name_list(pci_access* access) {
  if (!gPciDouble.complaint.empty()) access->error(const_cast<char*>("%s\n"), gPciDouble.complaint.c_str());
  if (gPciDouble.loadError != 0) errno = gPciDouble.loadError;
  return gPciDouble.isLoaded ? 1 : 0;
}

char* pci_lookup_name(pci_access*, char* buffer, int size, int flags, ...) {
  va_list numbers;
  va_start(numbers, flags);
  const int vendor = va_arg(numbers, int);
  const bool isDevice = (flags & PCI_LOOKUP_DEVICE) != 0;
  const auto& names = isDevice ? gPciDouble.deviceNames : gPciDouble.vendorNames;
  const auto name = names.find(isDevice ? va_arg(numbers, int) : vendor);
  va_end(numbers);
  if (name == names.end()) return nullptr;
  std::snprintf(buffer, static_cast<std::size_t>(size), "%s", name->second.c_str());
  return buffer;
}

}  // extern "C"
#pragma GCC visibility pop
