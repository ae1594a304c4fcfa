// Every LRMI call that can fail fails once. The monitors that it would have read are lost, and the log says so if it
// was the first block of the first unit. Other classes are served, and the next request is complete.
#include <gmock/gmock.h>

#include <stdexcept>

#include "realmode/real_mode_memory.h"
#include "tests/faults/faulty_session.h"

using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

/// How the call fails.
enum class EFault { kInit, kAllocation, kInterrupt, kException };

struct TFaultKind {
  EFault fault;
  bool isOfSession;  // strikes when real mode is set up, else at an interrupt
  const char* complaint;
};

const TFaultKind kKinds[] = {
    {EFault::kInit, true, "Lib not initialized. Cannot get monitor info."},
    {EFault::kAllocation, true, "Could not allocate memory."},
    {EFault::kInterrupt, false, "Lib call failed. Could not get Monitor info."},
    {EFault::kException, false, "Lib call failed. Could not get Monitor info."},
};

/// The virtual BIOS; its call of that number and kind fails.
class TFaultyBios : public IVideoBios {
 public:
  TFaultyBios(const TFaultKind& kind, std::size_t number) : m_kind(kind), m_number(number) {}

  bool Start(TRealModeMemory& memory) override {
    if (!m_kind.isOfSession || !Strikes(true)) return m_bios->Start(memory);
    // A BIOS that started and granted no memory lets every allocation fail.
    return m_kind.fault == EFault::kAllocation;
  }

  bool Interrupt(int number, LRMI_regs& registers, TRealModeMemory& memory) override {
    const bool isFirst = (registers.ecx & 0xFFFF) == 0 && (registers.edx & 0xFFFF) == 0;
    if (m_kind.isOfSession || !Strikes(isFirst)) return m_bios->Interrupt(number, registers, memory);
    if (m_kind.fault == EFault::kException) throw std::runtime_error("the BIOS is lost");
    return false;
  }

  void Stop() override { m_bios->Stop(); }

  bool HasStruck() const { return m_calls >= m_number; }
  /// True if it failed before anything was read.
  bool HasStruckFirst() const { return m_hasStruckFirst; }

 private:
  bool Strikes(bool isFirst) {
    if (++m_calls != m_number) return false;
    m_hasStruckFirst = isFirst;
    return true;
  }

  const TFaultKind m_kind;
  const std::size_t m_number;
  std::shared_ptr<IVideoBios> m_bios = TFaultySession::MakeBios();
  std::size_t m_calls = 0;
  bool m_hasStruckFirst = false;
};

class BiosFaults : public testing::TestWithParam<TFaultKind> {
 protected:
  BiosFaults() {
    TFaultySession session;
    whole = session.AskForAll();
  }

  /// True if the request made that many calls.
  bool FailCall(std::size_t number) {
    const auto bios = std::make_shared<TFaultyBios>(GetParam(), number);
    TFaultySession session(bios);
    session.Ask();
    if (!bios->HasStruck()) return false;
    EXPECT_LE(session.TakeInstances().size(), whole.size());
    EXPECT_EQ(session.GetLog().back().message, "TDisplayInfoCallbacks::GetData - Normal exit from plugin.");
    EXPECT_THAT(session.GetComplaints(), Each(Not(HasSubstr("exception"))));
    if (bios->HasStruckFirst()) {
      EXPECT_THAT(session.GetComplaints(), testing::Contains(GetParam().complaint));
    } else {
      EXPECT_THAT(session.GetComplaints(), Each(Not(HasSubstr(GetParam().complaint))));
    }
    EXPECT_EQ(session.AskForAll(), whole);
    EXPECT_THAT(session.GetComplaints(), IsEmpty());
    return true;
  }

  std::set<TDescribed> whole;
};

}  // namespace

TEST_P(BiosFaults, CostMonitorsAndNothingElse) {
  std::size_t failures = 0;
  while (FailCall(failures + 1) && !HasFailure()) ++failures;
  EXPECT_GE(failures, 2U);
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, BiosFaults, testing::ValuesIn(kKinds),
                         [](const auto& kind) { return "Kind" + std::to_string(kind.index); });
