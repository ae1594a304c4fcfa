// Makes up captured machines by the thousand, for trying, testing and measuring a fleet.
#pragma once

#include <cstdint>
#include <filesystem>

/// Writes machine `number` of the fleet of that seed into `folder`, which must not exist; the same machine each time.
/// The fleet has office machines of two decades: none to three monitors, one or two cards with one or two heads, or no
/// configuration at all. The last of each hundred is broken, in one way after the other.
void WriteMadeMachine(std::uint32_t seed, std::uint32_t number, const std::filesystem::path& folder);
