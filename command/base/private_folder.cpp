#include "command/base/private_folder.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "command/base/unusable.h"

namespace fs = std::filesystem;

TPrivateFolder::TPrivateFolder() {
  std::error_code error;
  std::string name = (fs::temp_directory_path(error) / "displayinfo-XXXXXX").string();
  sigset_t held;
  sigemptyset(&held);
  for (const int signal : {SIGHUP, SIGINT, SIGTERM}) sigaddset(&held, signal);
  sigprocmask(SIG_BLOCK, &held, &m_signals);
  if (mkdtemp(name.data()) == nullptr) {
    const std::string reason = std::strerror(errno);
    sigprocmask(SIG_SETMASK, &m_signals, nullptr);
    throw TUnusable(name + ": no temporary folder can be made: " + reason + "; set TMPDIR to a folder with room");
  }
  m_path = name;
}

TPrivateFolder::~TPrivateFolder() {
  std::error_code error;
  fs::remove_all(m_path, error);
  sigprocmask(SIG_SETMASK, &m_signals, nullptr);
}
