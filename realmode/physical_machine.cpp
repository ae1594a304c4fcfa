#include "realmode/physical_machine.h"

#include <fcntl.h>
#include <sys/io.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace {

constexpr int kFullPrivilege = 3;
/// True if the error tells something about the device. Others, such as that no descriptor is left, do not.
bool IsOfTheDevice(int error) {
  return error == ENOENT || error == ENXIO || error == ENODEV || error == EPERM || error == EACCES;
}

/// What helps against the error. Does not tell root to become root.
std::string GetCure(int error) {
  if (error == ENOENT) return "this system has no such device, as in a container; run outside of it";
  if (error == ENXIO || error == ENODEV) return "this kernel was built without it";
  if (!IsOfTheDevice(error)) return "see what the kernel says of it (dmesg)";
  if (geteuid() != 0) return "run as root (CAP_SYS_RAWIO), on a kernel that is not locked down";
  return "root needs CAP_SYS_RAWIO for it, and a kernel that is not locked down";
}

}  // namespace

TThisPhysicalMachine::TThisPhysicalMachine() : TThisPhysicalMachine("/dev/mem", iopl) {}

TThisPhysicalMachine::TThisPhysicalMachine(std::string memoryDevice, TRaisePrivilege raisePrivilege)
    : m_memoryDevice(std::move(memoryDevice)), m_raisePrivilege(std::move(raisePrivilege)) {}

TThisPhysicalMachine::~TThisPhysicalMachine() { TThisPhysicalMachine::Close(); }

std::string TThisPhysicalMachine::Open() {
  Close();
  m_memory = open(m_memoryDevice.c_str(), O_RDONLY | O_CLOEXEC);
  if (m_memory < 0) {
    const int error = errno;
    std::string failure =
        "the video BIOS cannot be read from " + m_memoryDevice + ": " + std::strerror(error) + "; " + GetCure(error);
    if (!IsOfTheDevice(error)) throw std::runtime_error(failure);
    return failure;
  }
  // Without the privilege, the first IN or OUT of the BIOS would end the process.
  if (m_raisePrivilege(kFullPrivilege) != 0) {
    const int error = errno;
    Close();
    return std::string("the video BIOS cannot use the I/O ports: ") + std::strerror(error) + "; " + GetCure(error);
  }
  return std::string();
}

bool TThisPhysicalMachine::Read(std::uint32_t address, std::uint8_t* target, std::size_t size) {
  while (size > 0) {
    const ssize_t count = pread(m_memory, target, size, static_cast<off_t>(address));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    address += static_cast<std::uint32_t>(count);
    target += count;
    size -= static_cast<std::size_t>(count);
  }
  return true;
}

std::uint32_t TThisPhysicalMachine::In(std::uint16_t port, unsigned int bytes) {
  switch (bytes) {
    case 1:
      return inb(port);
    case 2:
      return inw(port);
    default:
      return inl(port);
  }
}

void TThisPhysicalMachine::Out(std::uint16_t port, std::uint32_t value, unsigned int bytes) {
  switch (bytes) {
    case 1:
      return outb(static_cast<std::uint8_t>(value), port);
    case 2:
      return outw(static_cast<std::uint16_t>(value), port);
    default:
      return outl(value, port);
  }
}

void TThisPhysicalMachine::Close() {
  if (m_memory >= 0) close(m_memory);
  m_memory = -1;
}
