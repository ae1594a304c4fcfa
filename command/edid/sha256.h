#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The SHA-256 hash (FIPS 180-4) of the bytes: 64 hex digits in lower case.
std::string HashSha256(const std::vector<std::uint8_t>& bytes);
