#include "command/base/utc_time.h"

namespace {

constexpr const char* kFormat = "%Y-%m-%dT%H:%M:%SZ";
constexpr std::size_t kLength = 20;  // with a year of four digits

}  // namespace

std::string WriteUtcTime(std::time_t time) {
  std::tm parts = {};
  if (gmtime_r(&time, &parts) == nullptr) return std::string();
  char text[64];
  return std::string(text, std::strftime(text, sizeof text, kFormat, &parts));
}

bool IsUtcTime(const std::string& text) {
  std::tm parts = {};
  if (strptime(text.c_str(), kFormat, &parts) == nullptr) return false;
  // strptime accepts blanks, short numbers and the 31st of any month. None of these gives the same text when written.
  return text.size() == kLength && WriteUtcTime(timegm(&parts)) == text;
}

std::string ShowUtcTime(const std::string& text) {
  const std::size_t separator = text.find('T');
  return text.substr(0, separator) + " " + text.substr(separator + 1, text.size() - separator - 2) + " UTC";
}
