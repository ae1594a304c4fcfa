// A double of the LRMI calls and of the I/O permission calls: answers from EDIDs that the test sets, and notes each
// call. A test program that links it does not link liblrmi.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "edid/layout.h"
#include "realmode/lrmi.h"

struct TLrmiDouble {
  /// The double that the calls go to: the newest one alive.
  static TLrmiDouble* current;

  TLrmiDouble();
  ~TLrmiDouble();

  // What the calls answer.
  bool initWorks = true;
  bool allocationWorks = true;
  std::map<unsigned int, std::vector<std::uint8_t>> edids;  // whole blocks by unit; others answer AX = 0x014F
  /// If set, answers an interrupt instead of the EDIDs: returns the result, and fills `registers` and `block`.
  std::function<int(LRMI_regs& registers, std::uint8_t* block)> interrupt;

  // What was seen: "init", "ioperm 0 1024 1", "iopl 3", "alloc 128", "int 10 unit 0 block 0", "free", "deInit".
  std::vector<std::string> calls;

  alignas(16) std::uint8_t buffer[edid::kBlockSize] = {};
};
