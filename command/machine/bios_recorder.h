// Notes what a video BIOS answers, so that a virtual one can answer the same again.
#pragma once

#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "realmode/video_bios.h"
#include "realmode/virtual_video_bios.h"

/// Wraps the BIOS and passes every call on. If a block is asked for more than once, the first answer counts.
class TBiosRecorder : public IVideoBios {
 public:
  explicit TBiosRecorder(std::shared_ptr<IVideoBios> bios);

  bool Start(TRealModeMemory& memory) override;
  bool Interrupt(int number, LRMI_regs& registers, TRealModeMemory& memory) override;
  void Stop() override;

  /// Throws again, once, what starting the BIOS threw, since the LRMI calls have caught it.
  void RethrowFailure();

  /// The configuration with which a virtual BIOS answers as this one did.
  TVirtualBiosConfiguration GetRecord() const;

 private:
  enum class EResult { kRead, kError, kNoReturn };
  struct TBlock {
    EResult result;
    std::vector<std::uint8_t> bytes;  // empty unless the block was read
  };

  static TVirtualBiosConfiguration::TUnit MakeUnit(const std::vector<TBlock>& blocks);

  std::shared_ptr<IVideoBios> m_bios;
  std::exception_ptr m_failure;
  std::optional<bool> m_isPresent;
  std::optional<bool> m_hasMemory;
  std::map<unsigned int, std::vector<TBlock>> m_units;  // blocks 0, 1, ... of each unit, as far as they were asked for
};
