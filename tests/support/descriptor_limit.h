// How many files a test may have open.
#pragma once

#include <sys/resource.h>

/// Lets this process open no descriptor of `count` and above until it is destroyed; then as many as before.
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
