/* The LRMI calls: the Linux Real-Mode Interface, by which a 32-bit process calls BIOS interrupts.
 *
 * The names, the results and the layout of the register record are lrmi's, so that a deployment may put another library
 * with the same calls in place of liblrmi.so. This one works on the machine's own video BIOS, or on one chosen by the
 * program that loads the caller (realmode/choose_bios.h).
 *
 * Call order: LRMI_init, then any number of the other calls, then LRMI_deInit; any number of such rounds in one
 * process. The calls are not guarded: one thread at a time. */
#pragma once

#include "realmode/api.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The processor's registers before and after an interrupt. */
struct LRMI_regs {
  unsigned int edi;
  unsigned int esi;
  unsigned int ebp;
  unsigned int reserved;
  unsigned int ebx;
  unsigned int edx;
  unsigned int ecx;
  unsigned int eax;
  unsigned short flags;
  unsigned short es;
  unsigned short ds;
  unsigned short fs;
  unsigned short gs;
  unsigned short ip;
  unsigned short cs;
  unsigned short sp;
  unsigned short ss;
};

/* Sets up real mode. 1: ready; 0: there is no BIOS that can be called. A second call before LRMI_deInit changes
 * nothing. */
REALMODE_API int LRMI_init(void);

/* A buffer of `size` bytes that real-mode code can reach, aligned to 16 bytes: its segment is the low 16 bits of its
 * address divided by 16. A null pointer when there is no room. The caller releases it; LRMI_deInit releases the rest.
 */
REALMODE_API void* LRMI_alloc_real(int size);

/* Releases such a buffer. A null pointer, and a buffer that was released before, are ignored. */
REALMODE_API void LRMI_free_real(void* buffer);

/* Calls a BIOS interrupt with these registers, and stores their values afterwards. 1: it returned; 0: it did not, or
 * the registers are a null pointer. */
REALMODE_API int LRMI_int(int interrupt, struct LRMI_regs* registers);

/* Ends real mode and releases everything that it took. Without a preceding LRMI_init it does nothing. */
REALMODE_API void LRMI_deInit(void);

#ifdef __cplusplus
}
#endif
