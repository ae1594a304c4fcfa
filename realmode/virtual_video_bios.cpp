#include "realmode/virtual_video_bios.h"

#include <algorithm>
#include <utility>

#include "edid/layout.h"
#include "realmode/real_mode_memory.h"

namespace {

constexpr int kVideoInterrupt = 0x10;
constexpr unsigned int kDisplayDataChannel = 0x4F15;
constexpr unsigned int kReadEdid = 1;
constexpr unsigned int kSuccess = 0x004F;
constexpr unsigned int kFailure = 0x014F;

void SetAx(LRMI_regs& registers, unsigned int value) { registers.eax = (registers.eax & 0xFFFF0000U) | value; }

bool IsReadEdid(int interrupt, const LRMI_regs& registers) {
  return interrupt == kVideoInterrupt && (registers.eax & 0xFFFF) == kDisplayDataChannel &&
         (registers.ebx & 0xFF) == kReadEdid;
}

}  // namespace

TVirtualVideoBios::TVirtualVideoBios(TVirtualBiosConfiguration configuration)
    : m_configuration(std::move(configuration)) {}

bool TVirtualVideoBios::Start(TRealModeMemory& memory) {
  if (m_configuration.memory) memory.GrantPool(TRealModeMemory::kPoolBegin, TRealModeMemory::kPoolEnd);
  return m_configuration.present;
}

bool TVirtualVideoBios::Interrupt(int number, LRMI_regs& registers, TRealModeMemory& memory) {
  const unsigned int block = registers.edx & 0xFFFF;
  const auto unit = m_configuration.units.find(m_configuration.ignoresUnit ? 0 : registers.ecx);
  if (!IsReadEdid(number, registers) || unit == m_configuration.units.end()) {
    SetAx(registers, kFailure);
    return true;
  }
  const auto& [edid, failAtBlock, errorAtBlock] = unit->second;
  if (failAtBlock == block) return false;

  const std::size_t begin = block * edid::kBlockSize;
  const std::size_t target = registers.es * std::size_t{16} + (registers.edi & 0xFFFF);
  const bool canAnswer = begin + edid::kBlockSize <= edid.size() && target + edid::kBlockSize <= TRealModeMemory::kSize;
  if (!canAnswer || errorAtBlock == block) {
    SetAx(registers, kFailure);
    return true;
  }
  std::copy_n(edid.begin() + static_cast<std::ptrdiff_t>(begin), edid::kBlockSize,
              memory.At(static_cast<std::uint32_t>(target)));
  SetAx(registers, kSuccess);
  return true;
}

void TVirtualVideoBios::Stop() {}
