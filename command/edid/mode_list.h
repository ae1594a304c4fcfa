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
  void Add(const TEdidMode& mode, EModeSource source, ESampling sampling = ESampling::Any);

  /// Null adds nothing: a code that names no timing.
  void Add(const edid::TTiming* timing, EModeSource source, ESampling sampling = ESampling::Any);

  /// Each mode once, in the order of TEdidFacts::modes. The list is empty afterwards.
  std::vector<TListedMode> Take();

 private:
  /// A mode as numbers that compare fast, since sorting is up to half of what it takes to read an EDID.
  struct TEntry {
    bool IsSameMode(const TEntry& other) const;
    bool ComesBefore(const TEntry& other) const;
    TEdidMode MakeMode() const;

    std::uint32_t pixels;
    std::uint32_t shape;  // its width, and in the lowest bit whether it is progressive
    std::uint64_t rate;   // in thousandths of a hertz, and below it its source, the best the highest, and sampling
    std::uint32_t height;
  };

  /// `rate`: in thousandths of a hertz.
  void Add(unsigned int width, unsigned int height, bool isInterlaced, std::uint64_t rate, EModeSource source,
           ESampling sampling);

  std::vector<TEntry> m_entries;
};

/// A mode from its clock in kHz and its totals. `fieldLines`: the lines of a field, with those that are blank, which
/// have a half one when it is interlaced. The rate is 0 when a total is.
TEdidMode MakeMode(unsigned int width, unsigned int height, double clock, double totalWidth, double fieldLines,
                   bool isInterlaced);
