// EDIDs with much in them, one for each kind of extension, for tests that need many kinds of blocks.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// The EDIDs, by name.
std::map<std::string, std::vector<std::uint8_t>> MakeRichEdids();
