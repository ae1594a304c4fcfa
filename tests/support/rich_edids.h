// EDIDs that have much to say: one for each kind of extension, for tests that need many kinds of blocks at once.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// By what they are.
std::map<std::string, std::vector<std::uint8_t>> MakeRichEdids();
