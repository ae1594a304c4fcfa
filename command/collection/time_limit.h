// What the collection from one machine may take of the time.
#pragma once

#include <chrono>
#include <string>

/// "took longer than 60 s; --timeout SECONDS gives it longer".
std::string DescribeTimeout(std::chrono::seconds limit);

/// While it lives, the process ends with that status and `line` on standard error when the time is over: the plug-in,
/// or a file system that does not answer, cannot be asked to stop. One at a time in a process.
class TTimeLimit {
 public:
  TTimeLimit(std::chrono::milliseconds limit, std::string line, int status = 1);
  ~TTimeLimit();
  TTimeLimit(const TTimeLimit&) = delete;
  TTimeLimit& operator=(const TTimeLimit&) = delete;
};
