#include "command/machine/output_order.h"

#include <algorithm>
#include <list>

#include "command/edid/edid_facts.h"
#include "edid/layout.h"

namespace {

typedef std::list<TDrmOutput> TOutputs;

bool AreEqual(const TDrmOutput& left, const TDrmOutput& right) {
  return std::equal(left.edid.begin(), left.edid.begin() + edid::kBlockSize, right.edid.begin());
}

std::size_t CountEqual(const TOutputs& outputs, const TDrmOutput& wanted) {
  return static_cast<std::size_t>(std::count_if(outputs.begin(), outputs.end(),
                                                [&](const TDrmOutput& output) { return AreEqual(output, wanted); }));
}

/// The next output: the first that differs from `last`, but an EDID that more than half of the rest have goes first,
/// since it needs every second place from here on. If none differs, the first.
TOutputs::iterator FindNext(TOutputs& rest, const TDrmOutput* last) {
  const auto differs = [&](const TDrmOutput& output) { return last == nullptr || !AreEqual(output, *last); };
  const auto urgent = std::find_if(rest.begin(), rest.end(), [&](const TDrmOutput& output) {
    return differs(output) && 2 * CountEqual(rest, output) > rest.size();
  });
  if (urgent != rest.end()) return urgent;
  const auto next = std::find_if(rest.begin(), rest.end(), differs);
  return next != rest.end() ? next : rest.begin();
}

}  // namespace

std::vector<TDrmOutput> OrderOutputs(const std::vector<TDrmCard>& cards) {
  TOutputs rest;
  std::vector<TDrmOutput> unreadable;
  for (const TDrmCard& card : cards) {
    for (const TDrmOutput& output : card.outputs) {
      if (output.edid.empty()) continue;
      if (ReadEdidFacts(output.edid).isVersion1) {
        rest.push_back(output);
      } else {
        unreadable.push_back(output);
      }
    }
  }
  std::vector<TDrmOutput> ordered;
  while (!rest.empty()) {
    const auto next = FindNext(rest, ordered.empty() ? nullptr : &ordered.back());
    ordered.push_back(std::move(*next));
    rest.erase(next);
  }
  ordered.insert(ordered.end(), unreadable.begin(), unreadable.end());
  return ordered;
}
