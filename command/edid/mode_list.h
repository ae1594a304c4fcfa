// Collects the modes of an EDID.
#pragma once

#include <vector>

#include "command/edid/edid_facts.h"
#include "edid/timings.h"

/// The sampling for which an EDID declares a mode.
enum class ESampling : std::uint8_t { Any = 1, Ycbcr420 = 2 };

class TModeList {
 public:
  TModeList();

  /// Ignores a mode without pixels or without a rate.
  void Add(const TEdidMode& mode, EModeSource source, ESampling sampling = ESampling::Any);

  /// Ignores null, which stands for a code that names no timing.
  void Add(const edid::TTiming* timing, EModeSource source, ESampling sampling = ESampling::Any);

  /// Each mode once, in the order of TEdidFacts::modes. The list is empty afterwards.
  std::vector<TListedMode> Take();

 private:
  /// A mode as numbers that compare fast: sorting takes up to half of the time of reading an EDID.
  struct TEntry {
    bool IsSameMode(const TEntry& other) const;
    bool ComesBefore(const TEntry& other) const;
    TEdidMode MakeMode() const;

    std::uint32_t pixels;
    std::uint32_t shape;  // the width; the lowest bit is set if the mode is progressive
    std::uint64_t rate;  // in thousandths of a hertz; in its lowest bits the source (the best is highest), the sampling
    std::uint32_t height;
  };

  /// `rate`: in thousandths of a hertz.
  void Add(unsigned int width, unsigned int height, bool isInterlaced, std::uint64_t rate, EModeSource source,
           ESampling sampling);

  std::vector<TEntry> m_entries;
};

/// Makes a mode from its clock in kHz and its totals. `fieldLines`: all lines of a field, blank ones included; they end
/// in a half line if the mode is interlaced. The rate is 0 if a total is 0.
TEdidMode MakeMode(unsigned int width, unsigned int height, double clock, double totalWidth, double fieldLines,
                   bool isInterlaced);
