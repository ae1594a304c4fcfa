// The modes of an EDID, while they are collected.
#pragma once

#include <vector>

#include "command/edid/edid_facts.h"
#include "edid/timings.h"

/// What sampling a declaration of a mode is about.
enum class ESampling : std::uint8_t { Any = 1, Ycbcr420 = 2 };

class TModeList {
 public:
  TModeList();

  /// A mode without pixels or without a rate is none.
  void Add(const TMode& mode, EModeSource source, ESampling sampling = ESampling::Any);

  /// Null adds nothing: a code that names no timing.
  void Add(const edid::TTiming* timing, EModeSource source, ESampling sampling = ESampling::Any);

  /// Each mode once, in the order of TEdidFacts::modes. The list is empty afterwards.
  std::vector<TListedMode> Take();

 private:
  struct TEntry {
    std::uint64_t sizeKey;
    std::uint64_t rateKey;
    unsigned int height;
    unsigned int samplings;  // bits of ESampling
  };

  static TMode MakeMode(const TEntry& entry);

  std::vector<TEntry> m_entries;
};

/// A mode from its clock in kHz and its totals. `fieldLines`: the lines of a field, with those that are blank, which
/// have a half one when it is interlaced. The rate is 0 when a total is.
TMode MakeMode(unsigned int width, unsigned int height, double clock, double totalWidth, double fieldLines,
               bool isInterlaced);

TMode MakeMode(const edid::TTiming& timing);
