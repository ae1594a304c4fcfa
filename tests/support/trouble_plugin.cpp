// The trouble plug-in: a library in place of the plug-in that makes the trouble for which the machine's files ask,
// while it is loaded or when it is asked for a class.
#include <unistd.h>

#include <csignal>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/logger.h"
#include "tests/support/stand_in_plugin.h"

using namespace NQRXZELT20;

namespace {

bool IsAskedFor(const char* trouble) { return TOSSpecific::FileExists(trouble); }

/// Takes memory until it runs out, and ignores that, like a plug-in that catches every exception.
void TakeAllMemory() try {
  std::vector<std::unique_ptr<char[]>> taken;
  while (true) taken.emplace_back(new char[std::size_t{16} * 1024 * 1024]);
} catch (const std::bad_alloc&) {
}

void TakeMuchMemory() { std::vector<char>(std::size_t{300} * 1024 * 1024, 'x'); }

/// Whatever may be caught is ignored.
[[noreturn]] void NeverReturn() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, SIG_IGN);
  while (true) pause();
}

/// Waits for a signal. It ignores SIGUSR1 to show that it waits.
void Wait() {
  std::signal(SIGUSR1, SIG_IGN);
  pause();
}

void Log(std::size_t count, const std::string& message) {
  for (std::size_t written = 0; written < count; ++written)
    TRootObject::GetCoreLogger()->Write(ILogger::kDebug, message);
}

class TTroublePlugin : public TStandInPlugin {
 public:
  TTroublePlugin() {
    if (IsAskedFor("/throws")) throw std::runtime_error("no \x1Bwish to live");
    if (IsAskedFor("/throws-a-number")) throw 7;
    Register();
  }

  void GetData(boost::shared_ptr<ICIMNamespace>, std::vector<boost::shared_ptr<ICIMClass>>&) override {
    if (IsAskedFor("/takes-all-memory")) TakeAllMemory();
    if (IsAskedFor("/takes-much-memory")) TakeMuchMemory();
    if (IsAskedFor("/names-its-process")) Log(1, "process " + std::to_string(getpid()));
    if (IsAskedFor("/never-returns")) NeverReturn();
    if (IsAskedFor("/waits")) Wait();
    if (IsAskedFor("/stops")) raise(SIGSTOP);
    if (IsAskedFor("/logs-much")) Log(1'000'010, "again");
    if (IsAskedFor("/logs-half")) Log(3, std::string(std::size_t{8} * 1024 * 1024, 'x'));
    if (IsAskedFor("/logs-long")) Log(10, std::string(std::size_t{8} * 1024 * 1024, 'x'));
  }
};

TTroublePlugin* const gPlugin = new TTroublePlugin;

}  // namespace
