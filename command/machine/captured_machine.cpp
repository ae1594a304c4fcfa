#include "command/machine/captured_machine.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>

#include "command/base/unusable.h"
#include "command/machine/folder_files.h"
#include "command/machine/forms/forms.h"
#include "command/machine/host_name.h"
#include "command/machine/memory_files.h"
#include "command/machine/rooted_folder.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kPackedEndings[] = {".tar.gz", ".tgz"};

bool EndsWith(const std::string& text, const std::string& ending) {
  return text.size() >= ending.size() && text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

/// The whole content of an open regular file.
std::string ReadWhole(const TDescriptor& file, const std::string& place, std::size_t maxSize) {
  std::string content = ReadContent(file, maxSize, place);
  if (content.size() <= maxSize) return content;
  throw TUnusable(place + ": is larger than " + std::to_string(maxSize) + " bytes, which no such file needs");
}

bool IsForbidden(int error) { return error == EACCES || error == EPERM; }

/// Reads the folder of a captured machine.
class TMachineFolder {
 public:
  TMachineFolder(TDescriptor folder, const fs::path& path)
      : m_path(path.string()), m_folder(std::move(folder), m_path) {}

  TMachineDocument Read(TMachineDocument machine) {
    const bool hasJson = m_folder.Has(kMachineJson);
    const bool hasEdids = m_folder.Has(kEdids);
    const bool hasFiles = m_folder.Has(kRoot);
    if (!hasJson && !hasEdids && !hasFiles) {
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

  /// Call it after Read.
  void DescribeFiles(TMachine& machine) const {
    if (m_files == nullptr) return;
    machine.getFileFailures = [files = m_files] { return files->GetFailures(); };
    machine.filesPlace = At(kRoot);
  }

 private:
  /// The path of `name` in the folder, for messages.
  std::string At(const std::string& name) const { return m_path + "/" + name; }

  [[noreturn]] void FailAsFolder(const std::string& name) const {
    if (IsForbidden(errno)) FailToRead(At(name), errno);
    throw TUnusable(At(name) + ": must be a folder inside the machine's folder");
  }

  std::string ReadFile(const std::string& name, std::size_t maxSize) const {
    const TDescriptor file = m_folder.OpenFile(name);
    if (!file.IsOpen() && IsForbidden(errno)) FailToRead(At(name), errno);
    if (!file.IsOpen()) throw TUnusable(At(name) + ": must be a regular file inside the machine's folder");
    return ReadWhole(file, At(name), maxSize);
  }

  void ReadEdids(TMachineDocument& machine) const {
    const TRootedFolder folder = m_folder.OpenFolder(kEdids);
    if (!folder.IsOpen()) FailAsFolder(kEdids);
    folder.ForEachName([&](const std::string& name) {
      if (EndsWith(name, kEdidEnding) && name != kEdidEnding) ReadEdid(name, machine);
    });
  }

  void ReadEdid(const std::string& fileName, TMachineDocument& machine) const {
    const std::string name = std::string(kEdids) + "/" + fileName;
    const std::string place = At(name) + ":";
    const std::string stem = fileName.substr(0, fileName.size() - std::strlen(kEdidEnding));
    const std::optional<unsigned int> unit = ParseUnit(stem);
    if (!unit) throw TUnusable(place + " is not named after a unit; call it 0.bin, 1.bin, ...");
    const TDescriptor file = m_folder.OpenFile(name);
    if (file.IsOpen()) return AddEdid(machine, *unit, ReadContent(file, kMaxEdidSize, At(name)), place);
    AddDamagedEdid(machine, *unit,
                   IsForbidden(errno) ? TDamagedEdid{place, std::string("cannot be read: ") + std::strerror(errno),
                                                     "check its permissions"}
                                      : TDamagedEdid{place, "is not a regular file inside the machine's folder"});
  }

  const std::string m_path;
  const TRootedFolder m_folder;
  std::shared_ptr<TFolderFiles> m_files;  // null for a machine without files
};

/// The values of a captured machine that does not give its own.
TMachineDocument MakeDefaults() {
  TMachineDocument machine;
  machine.host.systemName = GetHostName();
  return machine;
}

TMachineDocument ReadText(const std::string& text, const std::string& name) {
  TMachineDocument machine = MakeDefaults();
  if (IsMachineDocument(text, name)) {
    ReadMachineDocument(text, name, machine);
  } else {
    ReadForm(text, name, machine);
  }
  return machine;
}

TMachineDocument ReadFile(const TDescriptor& found, const fs::path& path) {
  if (IsPackedName(path)) {
    throw TUnusable(path.string() + ": is a packed folder, which is not read; unpack it (tar -xzf FILE) and name the " +
                    "folder: --machine DIR");
  }
  const TDescriptor file = OpenFound(found, path);
  if (!file.IsOpen()) FailToRead(path.string(), errno);
  return ReadText(ReadWhole(file, path.string(), kMaxDocumentSize), path.string());
}

TMachine MakeMachine(TMachineDocument document) {
  TMachine machine;
  machine.host = std::move(document.host);
  machine.bios = std::make_shared<TVirtualVideoBios>(document.bios);
  machine.getUnits = [bios = std::move(document.bios)] { return bios; };
  machine.connectors = std::move(document.connectors);
  machine.paths = std::move(document.paths);
  machine.collected = std::move(document.collected);
  machine.damagedEdids = std::move(document.damagedEdids);
  machine.edidOrigin.describe = [connectors = machine.connectors](std::size_t unit) {
    const auto connector = connectors.find(static_cast<unsigned int>(unit));
    return connector == connectors.end() ? std::string() : connector->second;
  };
  return machine;
}

TMachine ReadFolder(TDescriptor found, const fs::path& path) {
  TMachineFolder folder(std::move(found), path);
  TMachine machine = MakeMachine(folder.Read(MakeDefaults()));
  folder.DescribeFiles(machine);
  return machine;
}

}  // namespace

TMachine ReadCapturedMachine(const fs::path& path) {
  if (path.native().find('\0') != std::string::npos) {
    throw TUnusable(path.string() + ": is not a captured machine: no file's name has a zero byte");
  }
  TDescriptor found = FindPath(path);
  if (!found.IsOpen()) {
    if (IsForbidden(errno)) FailToRead(path.string(), errno);
    throw TUnusable(path.string() + ": is not a captured machine: " + std::strerror(errno) +
                    "; --machine takes a folder or a file that exists");
  }
  if (IsFolder(found, path.string())) return ReadFolder(std::move(found), path);
  if (IsRegularFile(found, path.string())) return MakeCapturedMachine(ReadFile(found, path));
  throw TUnusable(path.string() + ": is not a captured machine: it is neither a folder nor a regular file");
}

TMachine ReadStandardInput() {
  const std::string name = "standard input";
  const TDescriptor input(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0));
  if (!input.IsOpen()) throw TUnusable(name + ": is closed; --machine - reads a machine from it");
  const std::string content = ReadWhole(input, name, kMaxDocumentSize);
  // An empty file means a connector without an EDID; an empty pipe means that a program failed.
  if (content.empty()) throw TUnusable(name + ": is empty; --machine - reads a machine from it");
  return ReadCapturedText(content, name);
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
