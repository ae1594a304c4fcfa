#include "tests/support/lrmi_double.h"

#include <sys/io.h>

#include <algorithm>
#include <cstdio>

TLrmiDouble* TLrmiDouble::current = nullptr;

TLrmiDouble::TLrmiDouble() { current = this; }
TLrmiDouble::~TLrmiDouble() { current = nullptr; }

namespace {

TLrmiDouble& Note(const std::string& call) {
  TLrmiDouble::current->calls.push_back(call);
  return *TLrmiDouble::current;
}

int AnswerFromEdids(const TLrmiDouble& lrmi, LRMI_regs& registers, std::uint8_t* buffer) {
  const auto edid = lrmi.edids.find(registers.ecx);
  const std::size_t begin = std::size_t{registers.edx} * edid::kBlockSize;
  if (edid == lrmi.edids.end() || begin >= edid->second.size()) {
    registers.eax = 0x014F;
    return 1;
  }
  std::copy_n(edid->second.begin() + static_cast<std::ptrdiff_t>(begin), edid::kBlockSize, buffer);
  registers.eax = 0x004F;
  return 1;
}

}  // namespace

int LRMI_init() { return Note("init").initWorks ? 1 : 0; }

void* LRMI_alloc_real(int size) {
  TLrmiDouble& lrmi = Note("alloc " + std::to_string(size));
  return lrmi.allocationWorks ? lrmi.buffer : nullptr;
}

void LRMI_free_real(void*) { Note("free"); }

int LRMI_int(int interrupt, LRMI_regs* registers) {
  char call[64];
  std::snprintf(call, sizeof call, "int %x unit %u block %u", static_cast<unsigned int>(interrupt), registers->ecx,
                registers->edx);
  TLrmiDouble& lrmi = Note(call);
  if (lrmi.interrupt) return lrmi.interrupt(*registers, lrmi.buffer);
  return AnswerFromEdids(lrmi, *registers, lrmi.buffer);
}

void LRMI_deInit() { Note("deInit"); }

// These replace the C library's own.

int ioperm(unsigned long from, unsigned long count, int on) {
  Note("ioperm " + std::to_string(from) + " " + std::to_string(count) + " " + std::to_string(on));
  return -1;
}

int iopl(int level) {
  Note("iopl " + std::to_string(level));
  return -1;
}
