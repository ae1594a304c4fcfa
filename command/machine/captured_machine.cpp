#include "command/machine/captured_machine.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>

#include "command/base/unusable.h"
#include "command/machine/folder_files.h"
#include "command/machine/host_name.h"
#include "command/machine/memory_files.h"
#include "command/machine/rooted_folder.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kPackedEndings[] = {".tar.gz", ".tgz"};

bool EndsWith(const std::string& text, const std::string& ending) {
  return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

[[noreturn]] void FailToRead(const std::string& place) {
  throw TUnusable(place + ": cannot be read: " + std::strerror(errno) + "; check its permissions");
}

/// The whole content of an open regular file.
std::string ReadWhole(const TDescriptor& file, const std::string& place, std::size_t maxSize) {
  std::optional<std::string> content = ReadContent(file, maxSize);
  if (!content) FailToRead(place);
  if (content->size() <= maxSize) return std::move(*content);
  throw TUnusable(place + ": is larger than " + std::to_string(maxSize) + " bytes, which no such file needs");
}

/// Whether that is how the look-up of a link fails that leads out of the folder, in a circle, or nowhere.
bool LeadsToNothing(int error) { return error == EXDEV || error == ELOOP || error == ENOENT || error == ENOTDIR; }

/// The folder of a captured machine.
class TMachineFolder {
 public:
  explicit TMachineFolder(const fs::path& path) : m_path(path.string()), m_folder(path) {
    if (!m_folder.IsOpen()) FailToRead(m_path);
  }

  TMachineDocument Read(TMachineDocument machine) {
    const bool hasJson = m_folder.Has(kMachineJson);
    const bool hasEdids = m_folder.Has(kEdids);
    const bool hasFiles = m_folder.Has(kRoot);
    if (!hasJson && !hasEdids && !hasFiles) {
      // A folder that may not be searched seems to be empty.
      if (faccessat(AT_FDCWD, m_path.c_str(), X_OK, AT_EACCESS) != 0) FailToRead(m_path);
      throw TUnusable(m_path + ": is not a captured machine: it has neither machine.json nor edid/ nor root/");
    }
    if (hasJson) ReadMachineJson(ReadFile(kMachineJson, kMaxMachineJsonSize), At(kMachineJson), machine);
    if (hasEdids) ReadEdids(machine);
    if (hasFiles) {
      TRootedFolder root = m_folder.OpenFolder(kRoot);
      if (!root.IsOpen()) FailAsFolder(kRoot);
      m_files = std::make_shared<TFolderFiles>(std::move(root));
      machine.host.files = m_files;
    }
    return machine;
  }

  /// What is known of the files, after Read.
  void DescribeFiles(TMachine& machine) const {
    if (m_files == nullptr) return;
    machine.getFileFailures = [files = m_files] { return files->GetFailures(); };
    machine.filesPlace = At(kRoot);
  }

 private:
  typedef std::unique_ptr<DIR, int (*)(DIR*)> TListing;

  /// Where that lies, for messages.
  std::string At(const std::string& name) const { return m_path + "/" + name; }

  [[noreturn]] void FailAsFolder(const std::string& name) const {
    if (errno == EACCES) FailToRead(At(name));
    throw TUnusable(At(name) + ": must be a folder inside the machine's folder");
  }

  std::string ReadFile(const std::string& name, std::size_t maxSize) const {
    const TDescriptor file = m_folder.Open(name, O_RDONLY);
    if (!file.IsOpen() && errno == EACCES) FailToRead(At(name));
    if (!IsRegularFile(file)) throw TUnusable(At(name) + ": must be a regular file inside the machine's folder");
    return ReadWhole(file, At(name), maxSize);
  }

  void ReadEdids(TMachineDocument& machine) const {
    TDescriptor folder = m_folder.Open(kEdids, O_RDONLY | O_DIRECTORY);
    if (!folder.IsOpen()) FailAsFolder(kEdids);
    const TListing listing(fdopendir(folder.Get()), closedir);
    if (!listing) FailToRead(At(kEdids));
    folder.Release();  // the listing closes it
    while (const dirent* const entry = readdir(listing.get())) {
      const std::string name = entry->d_name;
      if (EndsWith(name, kEdidEnding) && name != kEdidEnding) ReadEdid(name, machine);
    }
  }

  void ReadEdid(const std::string& fileName, TMachineDocument& machine) const {
    const std::string name = std::string(kEdids) + "/" + fileName;
    const std::string place = At(name) + ":";
    const std::string stem = fileName.substr(0, fileName.size() - std::strlen(kEdidEnding));
    const std::optional<unsigned int> unit = ParseUnit(stem);
    if (!unit) throw TUnusable(place + " is not named after a unit; call it 0.bin, 1.bin, ...");
    const TDescriptor file = m_folder.Open(name, O_RDONLY);
    if (file.IsOpen() ? !IsRegularFile(file) : LeadsToNothing(errno)) {
      return AddDamagedEdid(machine, *unit, {place, "is not a regular file inside the machine's folder"});
    }
    const std::optional<std::string> bytes = file.IsOpen() ? ReadContent(file, kMaxEdidSize) : std::nullopt;
    if (bytes) return AddEdid(machine, *unit, *bytes, place);
    AddDamagedEdid(machine, *unit,
                   {place, std::string("cannot be read: ") + std::strerror(errno), "check its permissions"});
  }

  const std::string m_path;
  const TRootedFolder m_folder;
  std::shared_ptr<TFolderFiles> m_files;  // null for a machine without files
};

/// What a captured machine is as far as it does not say otherwise.
TMachineDocument MakeDefaults() {
  TMachineDocument machine;
  machine.host.systemName = GetHostName();
  return machine;
}

TMachineDocument ReadText(const std::string& text, const std::string& name) {
  TMachineDocument machine = MakeDefaults();
  ReadMachineDocument(text, name, machine);
  return machine;
}

TMachineDocument ReadFile(const fs::path& path) {
  if (IsPackedName(path)) {
    throw TUnusable(path.string() + ": is a packed folder, which is not read; unpack it (tar -xzf FILE) and name the " +
                    "folder: --machine DIR");
  }
  const TDescriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  if (!file.IsOpen()) FailToRead(path.string());
  if (!IsRegularFile(file)) throw TUnusable(path.string() + ": is no longer a file; try again");
  return ReadText(ReadWhole(file, path.string(), kMaxDocumentSize), path.string());
}

TMachine MakeMachine(TMachineDocument document) {
  TMachine machine;
  machine.host = std::move(document.host);
  machine.bios = std::make_shared<TVirtualVideoBios>(document.bios);
  machine.getUnits = [bios = std::move(document.bios)] { return bios; };
  machine.connectors = std::move(document.connectors);
  machine.collected = std::move(document.collected);
  machine.damagedEdids = std::move(document.damagedEdids);
  machine.edidOrigin.describe = [connectors = machine.connectors](std::size_t unit) {
    const auto connector = connectors.find(static_cast<unsigned int>(unit));
    return connector == connectors.end() ? std::string() : connector->second;
  };
  return machine;
}

TMachine ReadFolder(const fs::path& path) {
  TMachineFolder folder(path);
  TMachine machine = MakeMachine(folder.Read(MakeDefaults()));
  folder.DescribeFiles(machine);
  return machine;
}

}  // namespace

TMachine ReadCapturedMachine(const fs::path& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) {
    if (errno == EACCES) FailToRead(path.string());
    throw TUnusable(path.string() + ": is not a captured machine: " + std::strerror(errno) +
                    "; --machine takes a folder or a file that exists");
  }
  if (S_ISDIR(status.st_mode)) return ReadFolder(path);
  if (S_ISREG(status.st_mode)) return MakeCapturedMachine(ReadFile(path));
  throw TUnusable(path.string() + ": is not a captured machine: it is neither a folder nor a regular file");
}

TMachine ReadCapturedText(const std::string& text, const std::string& name) {
  return MakeCapturedMachine(ReadText(text, name));
}

TMachine MakeCapturedMachine(TMachineDocument document) {
  document.host.files = std::make_shared<TMemoryFiles>(std::move(document.files));
  return MakeMachine(std::move(document));
}

bool IsPackedName(const fs::path& path) {
  const std::string name = path.filename().string();
  return std::any_of(std::begin(kPackedEndings), std::end(kPackedEndings),
                     [&](const char* ending) { return EndsWith(name, ending); });
}
