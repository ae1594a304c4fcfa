// read_edid EDID: reads what an EDID says, ROUNDS times, for bench/instructions to count what that takes.
#include <fstream>
#include <iostream>
#include <iterator>

#include "command/edid/edid_facts.h"
#include "command/edid/sha256.h"

int main(int argumentCount, char** arguments) {
  constexpr int rounds = 10;
  if (argumentCount != 2) {
    std::cerr << "usage: read_edid EDID\n";
    return 2;
  }
  std::ifstream file(arguments[1], std::ios::binary);
  const std::vector<std::uint8_t> edid(std::istreambuf_iterator<char>(file), {});
  std::size_t read = 0;
  for (int round = 0; round < rounds; ++round) read += ReadEdidFacts(edid).modes.size() + HashSha256(edid).size();
  std::cout << read << '\n';
  return 0;
}
