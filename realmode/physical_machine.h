// Access to the hardware beneath a real video BIOS: physical memory, which is only read, and the I/O ports.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "realmode/api.h"

class IPhysicalMachine {
 public:
  virtual ~IPhysicalMachine() = default;

  /// Asks for the privilege to use memory and ports. Returns an empty text, or which privilege is missing and the cure.
  /// Throws std::runtime_error if the system fails in a way that tells nothing about the machine.
  virtual std::string Open() = 0;

  /// Copies `size` bytes of physical memory; false if they cannot be read.
  virtual bool Read(std::uint32_t address, std::uint8_t* target, std::size_t size) = 0;

  /// Port I/O of 1, 2 or 4 bytes.
  virtual std::uint32_t In(std::uint16_t port, unsigned int bytes) = 0;
  virtual void Out(std::uint16_t port, std::uint32_t value, unsigned int bytes) = 0;

  /// Closes the memory. The I/O privilege level stays as it is.
  virtual void Close() = 0;
};

/// This machine, through its memory device and its I/O privilege level.
class REALMODE_API TThisPhysicalMachine : public IPhysicalMachine {
 public:
  /// Raises the I/O privilege to that level. Returns 0, or -1 with the reason in errno, as iopl does.
  typedef std::function<int(int level)> TRaisePrivilege;

  /// Uses /dev/mem and iopl.
  TThisPhysicalMachine();
  TThisPhysicalMachine(std::string memoryDevice, TRaisePrivilege raisePrivilege);
  ~TThisPhysicalMachine() override;

  std::string Open() override;
  bool Read(std::uint32_t address, std::uint8_t* target, std::size_t size) override;
  std::uint32_t In(std::uint16_t port, unsigned int bytes) override;
  void Out(std::uint16_t port, std::uint32_t value, unsigned int bytes) override;
  void Close() override;

 private:
  const std::string m_memoryDevice;
  const TRaisePrivilege m_raisePrivilege;
  int m_memory = -1;  // file descriptor
};
