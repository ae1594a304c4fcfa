#include "command/machine/machine_archive.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "command/base/unusable.h"
#include "embedded_host/machine_files.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kEndings[] = {".tar.gz", ".tgz"};

/// A file that is open; -1 when it could not be opened, with errno set.
class TDescriptor {
 public:
  TDescriptor(const fs::path& file, int flags) : m_descriptor(open(file.c_str(), flags | O_CLOEXEC, 0666)) {}
  ~TDescriptor() {
    if (m_descriptor >= 0) close(m_descriptor);
  }
  TDescriptor(const TDescriptor&) = delete;
  TDescriptor& operator=(const TDescriptor&) = delete;

  int Get() const { return m_descriptor; }

 private:
  int m_descriptor;
};

/// The system's program with these arguments, in the new process. No file that it writes gets longer than a machine's
/// may.
[[noreturn]] void Execute(const std::vector<std::string>& command, int input, int output) {
  const rlimit limit = {kMaxMachineFileSize, kMaxMachineFileSize};
  setrlimit(RLIMIT_FSIZE, &limit);
  for (const char* const options : {"TAR_OPTIONS", "GZIP"}) unsetenv(options);
  const int silence = open("/dev/null", O_WRONLY | O_CLOEXEC);
  dup2(input, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(silence, STDERR_FILENO);
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  _exit(127);
}

/// Runs it to its end, from and into these files; whether it did its work. Throws TUnusable when it is not there.
bool RunProgram(const std::vector<std::string>& command, int input, int output) {
  const pid_t process = fork();
  if (process == 0) Execute(command, input, output);
  int status = 0;
  while (process > 0 && waitpid(process, &status, 0) < 0 && errno == EINTR) continue;
  if (process < 0 || (WIFEXITED(status) && WEXITSTATUS(status) == 127)) {
    throw TUnusable(command[0] + ": cannot be run; install it to read and write captured machines in one file");
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

[[noreturn]] void FailToRead(const fs::path& file, const std::string& reason) {
  throw TUnusable(file.string() + ": " + reason + "; displayinfo capture FILE.tar.gz makes one that can be read");
}

/// A link would lead elsewhere, and reading a device may do anything.
void RequirePlainContent(const fs::path& file, const fs::path& folder) {
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
    const fs::file_type type = entry.symlink_status().type();
    if (type == fs::file_type::regular || type == fs::file_type::directory) continue;
    FailToRead(file,
               "holds " + entry.path().lexically_relative(folder).string() + ", which is neither file nor folder");
  }
}

}  // namespace

bool IsMachineArchive(const fs::path& file) { return GetArchivedName(file) != file.filename(); }

fs::path GetArchivedName(const fs::path& file) {
  const std::string name = file.filename().string();
  for (const std::string ending : kEndings) {
    if (name.size() <= ending.size() || name.compare(name.size() - ending.size(), ending.size(), ending) != 0) continue;
    const std::string stem = name.substr(0, name.size() - ending.size());
    if (stem != "." && stem != "..") return stem;
  }
  return name;
}

void PackMachine(const fs::path& folder, const fs::path& file) {
  const TDescriptor output(file, O_WRONLY | O_CREAT | O_EXCL);
  if (output.Get() < 0) {
    throw TUnusable(file.string() + ": cannot be made: " + std::strerror(errno) + "; name a file that can be");
  }
  try {
    const std::vector<std::string> command = {"tar",       "-C",        folder.parent_path().string(),
                                              "--owner=0", "--group=0", "-czf",
                                              "-",         "--",        folder.filename().string()};
    if (RunProgram(command, TDescriptor("/dev/null", O_RDONLY).Get(), output.Get())) return;
    throw TUnusable(file.string() + ": cannot be written whole; is there room?");
  } catch (const TUnusable&) {
    fs::remove(file);
    throw;
  }
}

fs::path UnpackMachine(const fs::path& file, const fs::path& folder) {
  const TDescriptor input(file, O_RDONLY);
  if (input.Get() < 0) FailToRead(file, std::string("cannot be read: ") + std::strerror(errno));
  const fs::path archive = folder / "archive.tar";
  const fs::path content = folder / "content";
  fs::create_directory(content);
  // In two steps: the size of the archive bounds that of all that comes out of it.
  if (!RunProgram({"gzip", "-dc"}, input.Get(), TDescriptor(archive, O_WRONLY | O_CREAT | O_EXCL).Get())) {
    FailToRead(file, fs::file_size(archive) < kMaxMachineFileSize ? "is damaged, or not packed by gzip"
                                                                  : "unpacks to more than 256 MiB");
  }
  if (!RunProgram({"tar", "-C", content.string(), "--no-same-owner", "--no-same-permissions", "-xf", "-"},
                  TDescriptor(archive, O_RDONLY).Get(), STDERR_FILENO)) {
    FailToRead(file, "is damaged, or holds what must not be unpacked");
  }
  RequirePlainContent(file, content);
  const std::vector<fs::path> entries{fs::directory_iterator(content), fs::directory_iterator()};
  const bool isWrapped = entries.size() == 1 && fs::is_directory(entries[0]) && entries[0].filename() != "root" &&
                         entries[0].filename() != "edid";
  return isWrapped ? entries[0] : content;
}
