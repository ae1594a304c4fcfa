// Runs a command in a shell, and returns what it writes.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/support/temporary_folder.h"

struct TProcessResult {
  int status;  // as in the shell's $?
  std::string output;
  std::string errors;
};

/// Runs a line of shell. Its standard input is empty.
inline TProcessResult RunShell(const std::string& line) {
  const TTemporaryFolder folder;
  const auto read = [&](const char* name) {
    std::ifstream stream(folder.GetPath() / name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
  };
  const std::string path = folder.GetPath().string();
  const int status = std::system(("{ " + line + "\n} </dev/null >" + path + "/out 2>" + path + "/err").c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read("out"), read("err")};
}
