#include "command/machine/bios_recorder.h"

#include "edid/layout.h"
#include "realmode/real_mode_memory.h"

namespace {

bool HasRoom(TRealModeMemory& memory) {
  void* const buffer = memory.Allocate(edid::kBlockSize);
  memory.Release(buffer);
  return buffer != nullptr;
}

}  // namespace

TBiosRecorder::TBiosRecorder(std::shared_ptr<IVideoBios> bios) : m_bios(std::move(bios)) {}

bool TBiosRecorder::Start(TRealModeMemory& memory) try {
  const bool isPresent = m_bios->Start(memory);
  if (!m_isPresent) m_isPresent = isPresent;
  if (isPresent && !m_hasMemory) m_hasMemory = HasRoom(memory);
  return isPresent;
} catch (...) {
  m_failure = std::current_exception();
  throw;
}

void TBiosRecorder::RethrowFailure() {
  if (m_failure) std::rethrow_exception(std::exchange(m_failure, nullptr));
}

bool TBiosRecorder::Interrupt(int number, LRMI_regs& registers, TRealModeMemory& memory) {
  const LRMI_regs asked = registers;
  const bool hasReturned = m_bios->Interrupt(number, registers, memory);
  std::vector<TBlock>& blocks = m_units[asked.ecx];
  if ((asked.edx & 0xFFFF) != blocks.size()) return hasReturned;  // already noted
  // AH is 0 if a VBE function succeeded.
  if (!hasReturned || (registers.eax & 0xFF00) != 0) {
    blocks.push_back({hasReturned ? EResult::kError : EResult::kNoReturn, {}});
  } else {
    const std::uint8_t* const bytes = memory.At(asked.es * 16U + (asked.edi & 0xFFFF));
    blocks.push_back({EResult::kRead, {bytes, bytes + edid::kBlockSize}});
  }
  return hasReturned;
}

void TBiosRecorder::Stop() { m_bios->Stop(); }

TVirtualBiosConfiguration TBiosRecorder::GetRecord() const {
  TVirtualBiosConfiguration record;
  record.present = m_isPresent.value_or(true);
  record.memory = m_hasMemory.value_or(true);
  for (const auto& [unit, blocks] : m_units) record.units[unit] = MakeUnit(blocks);
  return record;
}

/// Does not note an error after the last block: a virtual BIOS answers so by itself.
TVirtualBiosConfiguration::TUnit TBiosRecorder::MakeUnit(const std::vector<TBlock>& blocks) {
  TVirtualBiosConfiguration::TUnit unit;
  for (std::size_t block = 0; block < blocks.size(); ++block) {
    if (blocks[block].result == EResult::kNoReturn) unit.failAtBlock = static_cast<unsigned int>(block);
    unit.edid.insert(unit.edid.end(), blocks[block].bytes.begin(), blocks[block].bytes.end());
  }
  return unit;
}
