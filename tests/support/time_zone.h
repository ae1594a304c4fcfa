// Sets the time zone of a test.
#pragma once

#include <cstdlib>
#include <ctime>

/// Sets the time zone while it lives, and restores the machine's own afterwards.
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
