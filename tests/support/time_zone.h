// The time zone of a test.
#pragma once

#include <cstdlib>
#include <ctime>

/// Sets the time zone until it is destroyed; then the machine's own is back.
class TTimeZone {
 public:
  explicit TTimeZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
  }
  ~TTimeZone() {
    unsetenv("TZ");
    tzset();
  }
  TTimeZone(const TTimeZone&) = delete;
  TTimeZone& operator=(const TTimeZone&) = delete;
};
