#include "command/cim_server/enumerations.h"

#include <sys/random.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <utility>

namespace {

std::size_t Measure(const TEnumeration& enumeration) {
  return std::accumulate(enumeration.objects.begin(), enumeration.objects.end(), std::size_t{0},
                         [](std::size_t sum, const std::string& object) { return sum + object.size(); });
}

/// A random text; empty if the system has no random numbers.
std::string MakeContext() {
  std::uint64_t number[2] = {};
  if (getrandom(number, sizeof number, 0) != static_cast<ssize_t>(sizeof number)) return "";
  char text[2 * sizeof number + 1];
  std::snprintf(text, sizeof text, "%016llx%016llx", static_cast<unsigned long long>(number[0]),
                static_cast<unsigned long long>(number[1]));
  return text;
}

}  // namespace

std::string TEnumerations::Open(TEnumeration enumeration) {
  ForgetExpired();
  if (m_kept.size() >= kMaxCount || GetSize() + Measure(enumeration) > kMaxSize) return "";
  std::string context = MakeContext();
  const TTime end = m_now() + enumeration.timeout;
  if (!context.empty()) m_kept.emplace(context, TKept{std::move(enumeration), end});
  return context;
}

TEnumeration* TEnumerations::Find(const std::string& context) {
  ForgetExpired();
  const auto found = m_kept.find(context);
  if (found == m_kept.end()) return nullptr;
  found->second.end = m_now() + found->second.enumeration.timeout;
  return &found->second.enumeration;
}

void TEnumerations::ForgetExpired() {
  for (auto kept = m_kept.begin(); kept != m_kept.end();) {
    kept = kept->second.end < m_now() ? m_kept.erase(kept) : std::next(kept);
  }
}

std::size_t TEnumerations::GetSize() const {
  return std::accumulate(m_kept.begin(), m_kept.end(), std::size_t{0},
                         [](std::size_t sum, const auto& kept) { return sum + Measure(kept.second.enumeration); });
}
