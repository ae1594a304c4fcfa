// Limits how many files a test may open.
#pragma once

#include <sys/resource.h>

/// While it lives, this process may only open descriptors below `count`; afterwards as many as before.
class TDescriptorLimit {
 public:
  explicit TDescriptorLimit(rlim_t count) {
    getrlimit(RLIMIT_NOFILE, &m_before);
    const rlimit limit = {count, m_before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &limit);
  }
  ~TDescriptorLimit() { setrlimit(RLIMIT_NOFILE, &m_before); }
  TDescriptorLimit(const TDescriptorLimit&) = delete;
  TDescriptorLimit& operator=(const TDescriptorLimit&) = delete;

 private:
  rlimit m_before = {};
};
