// Points in time as text: UTC in ISO 8601, to the second, such as "2026-11-21T21:30:00Z". Such texts sort by time.
#pragma once

#include <ctime>
#include <string>

/// The text of a time in the years 1000 to 9999.
std::string WriteUtcTime(std::time_t time);

/// True for a text that WriteUtcTime writes: in its format, with a day and a time that exist.
bool IsUtcTime(const std::string& text);

/// The same for people: "2026-11-21 21:30:00 UTC". `text`: as WriteUtcTime writes it.
std::string ShowUtcTime(const std::string& text);
