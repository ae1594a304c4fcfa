#include "realmode/lrmi.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <utility>

#include "realmode/choose_bios.h"
#include "realmode/real_mode_memory.h"
#include "realmode/real_video_bios.h"
#include "realmode/video_bios.h"

namespace {

/// What LRMI_init opens and LRMI_deInit closes: a started BIOS and its memory.
struct TSession {
  std::shared_ptr<IVideoBios> bios;
  TRealModeMemory memory;
};

std::shared_ptr<IVideoBios> g_chosen;
std::optional<TSession> g_session;

void OpenSession() {
  g_session.emplace();
  g_session->bios = g_chosen != nullptr ? g_chosen : std::make_shared<TRealVideoBios>();
  if (!g_session->bios->Start(g_session->memory)) g_session.reset();
}

}  // namespace

void ChooseVideoBios(std::shared_ptr<IVideoBios> bios) {
  LRMI_deInit();
  g_chosen = std::move(bios);
}

// Each call turns an exception into its own failure result: the caller may be C, and an exception that reached C code
// would end the process.

int LRMI_init() try {
  if (!g_session) OpenSession();
  return g_session ? 1 : 0;
} catch (...) {
  g_session.reset();
  return 0;
}

void* LRMI_alloc_real(int size) try {
  return g_session && size > 0 ? g_session->memory.Allocate(static_cast<std::size_t>(size)) : nullptr;
} catch (...) {
  return nullptr;
}

void LRMI_free_real(void* buffer) {
  if (g_session) g_session->memory.Release(buffer);
}

int LRMI_int(int interrupt, LRMI_regs* registers) try {
  if (registers == nullptr) return 0;
  return g_session && g_session->bios->Interrupt(interrupt, *registers, g_session->memory) ? 1 : 0;
} catch (...) {
  return 0;
}

void LRMI_deInit() try {
  if (!g_session) return;
  g_session->bios->Stop();
  g_session.reset();
} catch (...) {
  g_session.reset();
}
