// Reading an EDID through the video BIOS: VBE/DDC function 0x4F15 of interrupt 0x10 (VESA VBE/DDC standard).
#include <sys/io.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "edid/layout.h"
#include "host/services.h"
#include "plugin/monitor/monitor_info.h"
#include "realmode/lrmi.h"

using NQRXZELT20::TOSSpecific;

namespace {

constexpr int kNativeSystem = 2;  // the only kind of system whose BIOS may be called

constexpr int kVideoInterrupt = 0x10;
constexpr unsigned int kDisplayDataChannel = 0x4F15;
constexpr unsigned int kReadEdid = 1;

constexpr unsigned long kPortCount = 1024;  // the I/O ports that ioperm can grant: 0 to 0x3FF
constexpr int kFullPrivilege = 3;

/// Reads the blocks of one EDID. All blocks share its registers and its real-mode buffer: each call finds what the one
/// before left there, except in the registers set here.
class TBlockReader {
 public:
  enum EResult { kRead, kCallFailed, kBiosError };

  /// `buffer`: a real-mode buffer of one block, which stays the caller's.
  TBlockReader(int unit, void* buffer) : m_unit(unit), m_buffer(buffer), m_registers() {
    std::memset(m_buffer, 0xFF, edid::kBlockSize);
  }

  EResult Read(unsigned int block) {
    m_registers.eax = kDisplayDataChannel;
    m_registers.ebx = kReadEdid;
    m_registers.ecx = static_cast<unsigned int>(m_unit);
    m_registers.edx = block;
    m_registers.es = static_cast<unsigned short>(reinterpret_cast<std::uintptr_t>(m_buffer) / 16);
    m_registers.edi = 0;
    if (LRMI_int(kVideoInterrupt, &m_registers) == 0) return kCallFailed;
    // Only AH decides. A test of AL, the function-supported byte, would lose the EDID of a BIOS that does not set it.
    const unsigned int status = (m_registers.eax >> 8) & 0xFF;
    return status == 0 ? kRead : kBiosError;
  }

 private:
  int m_unit;
  void* m_buffer;
  LRMI_regs m_registers;
};

const char* GetMessage(TBlockReader::EResult failure) {
  return failure == TBlockReader::kCallFailed ? "Lib call failed. Could not get Monitor info."
                                              : "Lib call returned an error. Could not get Monitor info.";
}

}  // namespace

bool TMonitorInfo::ReadEdid(int unit, unsigned char* edid, unsigned int* length) {
  edid[0] = 0;
  if (TOSSpecific::GetRunningTypeOnXen() != kNativeSystem) return true;
  if (!PrepareRealMode()) return false;
  void* const buffer = LRMI_alloc_real(edid::kBlockSize);
  if (buffer == nullptr) {
    WriteError("Could not allocate memory.");
    return false;
  }

  TBlockReader reader(unit, buffer);
  unsigned int blocks = 0;  // answered so far
  unsigned int last = 0;    // the last block of this EDID
  for (bool goOn = true; goOn;) {
    const TBlockReader::EResult result = reader.Read(blocks);
    if (result != TBlockReader::kRead) {
      if (blocks == 0 && unit == 0) WriteStatus(GetMessage(result));
      LRMI_free_real(buffer);  // LRMI ignores the second call, below
      break;
    }
    // The 16th block is asked for and counted but not stored, though it would fit: stored, it would be looked at for
    // the digital interface and change that property.
    const bool fits = (blocks + 1) * edid::kBlockSize <= edid::kBufferSize - 1;
    if (fits) std::memcpy(edid + blocks * edid::kBlockSize, buffer, edid::kBlockSize);
    if (blocks == 0 && edid[edid::kExtensionCount] != 0xFF) last = edid[edid::kExtensionCount];
    goOn = fits && blocks != last;
    ++blocks;
  }

  *length = static_cast<unsigned int>(blocks * edid::kBlockSize);
  LRMI_free_real(buffer);
  return *length == 0;
}

/// Reads the units in order, until one has no EDID or repeats the one before, or `take` returns false. Each gets a
/// buffer of zeros. Otherwise what an earlier unit left there would be taken for a later one's extension. And if real
/// mode cannot be set up, each unit must look like the one before, or the walk would not end.
void TMonitorInfo::WalkUnits(const TTakeEdid& take) {
  edid::TBuffer taken = {};
  for (int unit = 0; true; ++unit) {
    edid::TBuffer buffer = {};
    unsigned int length = edid::kBufferSize;
    const bool noEdid = ReadEdid(unit, buffer.data(), &length);
    // A BIOS that ignores the unit answers for the same monitor again.
    const bool isRepeat = unit > 0 && std::equal(buffer.begin(), buffer.begin() + edid::kBlockSize, taken.begin());
    if (isRepeat || noEdid) return;
    if (!take("Monitor " + std::to_string(unit + 1), buffer.data(), length)) return;
    std::copy_n(buffer.begin(), length, taken.begin());
  }
}

bool TMonitorInfo::PrepareRealMode() {
  if (m_lrmiReady) return true;
  if (LRMI_init() == 0) {
    WriteStatus("Lib not initialized. Cannot get monitor info.");
    return false;
  }
  m_lrmiReady = true;
  // Not checked: without the privilege the BIOS call is left to fail on its own.
  ioperm(0, kPortCount, 1);
  iopl(kFullPrivilege);
  return true;
}
