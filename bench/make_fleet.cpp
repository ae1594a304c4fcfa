// make_fleet COUNT FOLDER [SEED]: writes COUNT made-up captured machines into FOLDER, and FOLDER/list with their
// names.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "tests/support/made_machine.h"

namespace fs = std::filesystem;

namespace {

/// Each thousand machines have a folder, so that none gets long.
fs::path MakeName(std::uint32_t number) {
  char name[64];
  std::snprintf(name, sizeof name, "%04u/machine-%07u", number / 1000, number);
  return name;
}

}  // namespace

int main(int argumentCount, char** arguments) try {
  if (argumentCount < 3 || argumentCount > 4) {
    std::cerr << "usage: make_fleet COUNT FOLDER [SEED]\n";
    return 2;
  }
  const auto count = static_cast<std::uint32_t>(std::stoul(arguments[1]));
  const fs::path folder = fs::absolute(arguments[2]);
  const auto seed = static_cast<std::uint32_t>(argumentCount > 3 ? std::stoul(arguments[3]) : 1);
  fs::create_directories(folder);
  std::ofstream list(folder / "list");
  for (std::uint32_t number = 0; number < count; ++number) {
    WriteMadeMachine(seed, number, folder / MakeName(number));
    list << (folder / MakeName(number)).string() << '\n';
  }
  if (!list.flush()) throw std::runtime_error((folder / "list").string() + " cannot be written");
  return 0;
} catch (const std::exception& error) {
  std::cerr << "make_fleet: " << error.what() << '\n';
  return 1;
}
