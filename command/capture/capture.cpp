#include "command/capture/capture.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

#include "command/base/private_folder.h"
#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/capture/bios_recorder.h"
#include "command/capture/edid_serials.h"
#include "command/collection/collection.h"
#include "command/machine/captured_machine.h"
#include "command/machine/machine.h"
#include "command/machine/machine_archive.h"
#include "command/report/json_report.h"
#include "embedded_host/machine_files.h"
#include "host/exception.h"

namespace fs = std::filesystem;
using nlohmann::ordered_json;

namespace {

/// A captured machine before it is written: content by the file's name in its folder.
typedef std::map<std::string, std::string> TContent;

constexpr const char* kMachineJson = "machine.json";

std::vector<TRequest> AskForAll() {
  TRequest all;
  for (const TClassDeclaration& declaration : GetSchema()) all.emplace_back(declaration.name);
  return {all};
}

std::string MakeMachineJson(const THostConfiguration& host, const TVirtualBiosConfiguration& bios) {
  ordered_json units = ordered_json::object();
  for (const auto& [number, unit] : bios.units) {
    if (unit.failAtBlock) units[std::to_string(number)] = {{"failAtBlock", *unit.failAtBlock}};
  }
  const ordered_json json = {{"systemName", ToUtf8(host.systemName)},
                             {"systemCreationClassName", ToUtf8(host.systemCreationClassName)},
                             {"systemType", host.systemType},
                             {"provider", host.provider},
                             {"bios", {{"present", bios.present}, {"memory", bios.memory}, {"units", units}}}};
  return json.dump(2) + "\n";
}

/// The file's name below root/, whatever dots the path has.
std::string MakeFileName(const std::string& path) {
  return (fs::path("root") / (fs::path("/") / path).lexically_normal().relative_path()).string();
}

TContent MakeContent(const THostConfiguration& host, const std::vector<TFileQuery>& queries,
                     const TVirtualBiosConfiguration& bios) try {
  TContent content = {{kMachineJson, MakeMachineJson(host, bios)}};
  const TMachineFiles files(host.root);
  for (const TFileQuery& query : queries) {
    if (query.exists) content[MakeFileName(query.path)] = files.Read(query.path);
  }
  for (const auto& [number, unit] : bios.units) {
    if (unit.edid.empty()) continue;
    content["edid/" + std::to_string(number) + ".bin"] = std::string(unit.edid.begin(), unit.edid.end());
  }
  return content;
} catch (const NQRXZELT20::TZELTException& failure) {
  throw TUnusable(failure.what() + std::string("; capture as a user who may read it"));
}

void MakeAnonymous(TContent& content) {
  for (auto& [name, bytes] : content) {
    if (name.compare(0, 5, "edid/") == 0) BlankSerials(bytes);
  }
  ordered_json json = ordered_json::parse(content[kMachineJson]);
  json["systemName"] = "anonymous";
  content[kMachineJson] = json.dump(2) + "\n";
}

void WriteContent(const fs::path& folder, const TContent& content) {
  for (const auto& [name, bytes] : content) {
    fs::create_directories((folder / name).parent_path());
    std::ofstream file(folder / name, std::ios::binary);
    file << bytes;
    if (!file.flush()) {
      throw TUnusable((folder / name).string() + ": cannot be written: " + std::strerror(errno) +
                      "; capture to where there is room");
    }
  }
}

/// A folder that was not there before, and is not there afterwards unless it is kept.
class TNewFolder {
 public:
  explicit TNewFolder(fs::path path) : m_path(std::move(path)) {
    if (mkdir(m_path.c_str(), 0777) == 0) return;
    const std::string reason = errno == EEXIST ? "is there already" : std::strerror(errno);
    throw TUnusable(m_path.string() + ": cannot be made: " + reason + "; name a folder that can be");
  }
  ~TNewFolder() {
    std::error_code error;
    if (!m_isKept) fs::remove_all(m_path, error);
  }
  TNewFolder(const TNewFolder&) = delete;
  TNewFolder& operator=(const TNewFolder&) = delete;

  void Keep() { m_isKept = true; }

 private:
  fs::path m_path;
  bool m_isKept = false;
};

/// Collects from the captured machine to see that it answers the same.
void RequireAnswer(const fs::path& folder, const TAnswer& answer, const fs::path& plugin) {
  const TAnswer again = Collect(ReadCapturedMachine(folder), plugin, AskForAll(), {});
  if (MakeJsonReport(again) == MakeJsonReport(answer)) return;
  throw TUnusable("what was captured does not answer as the machine did, which may have changed meanwhile; try again");
}

}  // namespace

void CaptureMachine(TMachine machine, const fs::path& plugin, const fs::path& target, bool isAnonymous) {
  const auto recorder = std::make_shared<TBiosRecorder>(machine.bios);
  machine.bios = recorder;
  const TAnswer answer = Collect(machine, plugin, AskForAll(), {});
  TContent content = MakeContent(machine.host, answer.fileQueries, recorder->GetRecord());
  const auto write = [&](const fs::path& path) {
    TNewFolder folder(path);
    WriteContent(path, content);
    RequireAnswer(path, answer, plugin);
    if (isAnonymous) {
      MakeAnonymous(content);
      WriteContent(path, content);
    }
    folder.Keep();
  };
  if (!IsMachineArchive(target)) return write(target);
  const TPrivateFolder parent;
  const fs::path folder = parent.GetPath() / GetArchivedName(target);
  write(folder);
  PackMachine(folder, target);
}
