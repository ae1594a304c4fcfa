#include "command/capture/capture.h"

#include <algorithm>
#include <cctype>
#include <csignal>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "command/base/json.h"
#include "command/base/standard_output.h"
#include "command/base/unusable.h"
#include "command/capture/new_target.h"
#include "command/collection/budgets.h"
#include "command/collection/collection.h"
#include "command/collection/output_keys.h"
#include "command/collection/reasons.h"
#include "command/edid/edid_serials.h"
#include "command/machine/captured_machine.h"
#include "command/machine/machine.h"
#include "command/machine/machine_document.h"
#include "command/report/json_report.h"
#include "host/exception.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

constexpr const char* kDocumentEnding = ".json";
constexpr const char* kStandardOutput = "-";

/// Endings, in lower case, by which people mean a file. Any other ending is part of a folder's name, such as a host
/// name.
constexpr const char* kFileEndings[] = {".json", ".jsonl", ".tar", ".tgz",  ".gz",   ".xz",  ".zst",  ".bz2", ".zip",
                                        ".7z",   ".rar",   ".txt", ".text", ".log",  ".xml", ".html", ".htm", ".yaml",
                                        ".yml",  ".csv",   ".mof", ".bin",  ".edid", ".img", ".iso",  ".cpio"};

/// Throws if memory ran out, since the answer would then be incomplete.
TAnswer Ask(const TMachine& machine, const fs::path& plugin) {
  TAnswer answer = Collect(machine, plugin, {ListAllClasses()}, {});
  if (HasMemoryRunOut()) throw TUnusable(DescribeMemoryLimit());
  return answer;
}

/// The content of the files that were found, by path without "." and "..".
std::map<std::string, std::string> ReadFiles(const THostConfiguration& host,
                                             const std::vector<TFileQuery>& queries) try {
  std::map<std::string, std::string> files;
  for (const TFileQuery& query : queries) {
    const std::string path = (fs::path("/") / query.path).lexically_normal().string();
    if (query.exists) files[path] = host.files->Read(query.path);
  }
  return files;
} catch (const NQRXZELT20::TZELTException& failure) {
  throw TUnusable(failure.what() + std::string("; capture as a user who may read it"));
}

constexpr const char* kAnonymous = "anonymous";

TSerialFillers ReplaceSerials(TMachineDocument& machine) {
  TSerialFillers fillers;
  for (auto& [number, unit] : machine.bios.units) {
    std::string bytes(unit.edid.begin(), unit.edid.end());
    fillers.Replace(bytes);
    unit.edid.assign(bytes.begin(), bytes.end());
  }
  return fillers;
}

/// The answer as JSON without serial numbers.
json BlankSerials(const TAnswer& answer) {
  json blank = ParseJson(MakeJsonReport(answer));
  for (json& request : blank["requests"]) {
    for (json& instance : request["instances"]) {
      json& properties = instance["properties"];
      if (properties.contains("SerialNumber")) properties["SerialNumber"]["value"] = "";
    }
  }
  for (json& output : blank["outputs"]) {
    for (const TKeyGroup& group : GetKeyGroups()) {
      for (const TOutputKey* const key : group.keys) {
        if (key->hasSerial) output.erase(key->name);
      }
    }
  }
  return blank;
}

/// The remarks about a capture without serial numbers.
std::vector<std::string> DescribeReplaced(const TMachineDocument& machine, const std::string& systemName,
                                          const TSerialFillers& fillers) {
  constexpr std::size_t minLength = 4;  // a shorter text could be found by chance
  const std::string serials = fillers.Describe();
  std::vector<std::string> remarks = {
      "replaced by fillers: the system's name" +
      (serials.empty() ? "; no serial number was found in an EDID" : ", and serial numbers (" + serials + ")")};
  std::set<std::string> secrets = fillers.GetTexts();
  if (systemName != kAnonymous) secrets.insert(systemName);
  for (const auto& [path, content] : machine.files) {
    const bool holdsOne = std::any_of(secrets.begin(), secrets.end(), [&, &text = content](const std::string& secret) {
      return secret.size() >= minLength && text.find(secret) != std::string::npos;
    });
    if (holdsOne)
      remarks.push_back(
          path + " holds the system's name or a serial number; it is captured as it is; --no-xconfig leaves it out");
  }
  return remarks;
}

/// Replaces what identifies the machine, and checks that its answer differs in nothing else.
std::vector<std::string> MakeAnonymous(TMachineDocument& machine, const fs::path& plugin) {
  const std::string systemName = std::exchange(machine.host.systemName, kAnonymous);
  const json before = BlankSerials(Ask(MakeCapturedMachine(machine), plugin));
  const TSerialFillers fillers = ReplaceSerials(machine);
  if (BlankSerials(Ask(MakeCapturedMachine(machine), plugin)) != before) {
    throw TUnusable("the answer without serial numbers would differ in more than these; capture without --anonymous");
  }
  return DescribeReplaced(machine, systemName, fillers);
}

/// Collects from the captured machine, and throws unless it gives the same answer.
void RequireAnswer(const TMachine& captured, const TAnswer& answer, const fs::path& plugin) {
  if (MakeJsonReport(Ask(captured, plugin)) == MakeJsonReport(answer)) return;
  throw TUnusable("what was captured does not answer as the machine did, which may have changed meanwhile; try again");
}

bool IsDocument(const fs::path& target) { return target == kStandardOutput || target.extension() == kDocumentEnding; }

std::string MakeDocument(const TMachineDocument& machine, const fs::path& target) {
  std::string text = MakeDocumentText(machine);
  if (text.size() <= kMaxDocumentSize) return text;
  const std::string name = target == kStandardOutput ? "standard output" : target.string();
  throw TUnusable(name + ": would have " + std::to_string(text.size()) + " bytes, and a captured machine " +
                  "in one file has " + std::to_string(kMaxDocumentSize) + " at most; capture to a folder");
}

std::map<std::string, std::string> MakeFiles(const TMachineDocument& machine, const fs::path& target) {
  if (IsDocument(target)) return {{"", MakeDocument(machine, target)}};
  std::map<std::string, std::string> files = {{kMachineJson, MakeMachineJson(machine)}};
  for (const auto& [path, content] : machine.files) files[kRoot + path] = content;
  for (const auto& [number, unit] : machine.bios.units) {
    if (unit.edid.empty()) continue;
    files[std::string(kEdids) + "/" + std::to_string(number) + kEdidEnding] =
        std::string(unit.edid.begin(), unit.edid.end());
  }
  return files;
}

/// The machine in the files.
TMachine ReadBack(std::map<std::string, std::string> files) {
  const auto document = files.find("");
  if (document != files.end()) return ReadCapturedText(document->second, "the capture");
  TMachineDocument machine;
  for (auto& [name, content] : files) {
    const fs::path path(name);
    const std::string folder = path.begin()->string();
    if (folder == kMachineJson) ReadMachineJson(content, name, machine);
    if (folder == kEdids) AddEdid(machine, ParseUnit(path.stem().string()).value(), content, name);
    if (folder == kRoot) machine.files[name.substr(std::string(kRoot).size())] = std::move(content);
  }
  return MakeCapturedMachine(std::move(machine));
}

/// Blocks the signals that end a process while it lives, so that nothing is left half written.
class TPostponedSignals {
 public:
  TPostponedSignals() {
    sigemptyset(&m_signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGXCPU, SIGALRM}) {
      struct sigaction action = {};
      if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) sigaddset(&m_signals, signal);
    }
    sigprocmask(SIG_BLOCK, &m_signals, &m_before);
  }
  ~TPostponedSignals() { sigprocmask(SIG_SETMASK, &m_before, nullptr); }
  TPostponedSignals(const TPostponedSignals&) = delete;
  TPostponedSignals& operator=(const TPostponedSignals&) = delete;

  /// Throws if one has come. It takes effect when this object is destroyed.
  void RequireNone() const {
    sigset_t pending;
    sigpending(&pending);
    for (int signal = 1; signal < NSIG; ++signal) {
      if (sigismember(&m_signals, signal) == 1 && sigismember(&pending, signal) == 1) throw TUnusable("interrupted");
    }
  }

 private:
  sigset_t m_signals;
  sigset_t m_before;
};

void WriteFolder(const std::map<std::string, std::string>& files, const fs::path& target,
                 const TPostponedSignals& signals) {
  TNewFolder folder(target);
  for (const auto& [name, content] : files) {
    folder.Write(name, content);
    signals.RequireNone();
  }
  folder.Keep();
}

void WriteDocument(const std::string& text, const fs::path& target, const TPostponedSignals& signals) {
  TNewFile file(target, text);
  signals.RequireNone();
  file.Keep();
}

bool HasFileEnding(const fs::path& path) {
  std::string ending = path.extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(), [](unsigned char byte) { return std::tolower(byte); });
  return std::find(std::begin(kFileEndings), std::end(kFileEndings), ending) != std::end(kFileEndings);
}

void RequireTarget(const fs::path& target) {
  if (target.extension() == kDocumentEnding || !HasFileEnding(target)) return;
  fs::path stem = target;
  while (HasFileEnding(stem)) stem.replace_extension();  // .tar.gz is two endings
  throw TUnusable(target.string() + ": has the ending of a file that is not written; capture to one file, " +
                  stem.string() + kDocumentEnding + ", or to a folder: " + target.string() + "/");
}

/// Throws if a file could not be looked for or read: the capture would make it seem not to exist.
void RequireReadable(const TMachine& machine, const TAnswer& answer) {
  const std::string unreadable = ExplainUnreadableFiles(machine, answer.fileQueries);
  if (!unreadable.empty()) throw TUnusable(unreadable);
}

void RequireContent(const TMachineDocument& machine) {
  const auto& units = machine.bios.units;
  const bool hasEdid =
      std::any_of(units.begin(), units.end(), [](const auto& unit) { return !unit.second.edid.empty(); });
  if (hasEdid || !machine.files.empty()) return;
  throw TUnusable(
      "there is nothing to capture: no X configuration and no usable EDID was found; displayinfo says where it looked");
}

}  // namespace

TCapture MakeCapture(TMachine machine, const fs::path& plugin, const fs::path& target, bool isAnonymous,
                     const std::function<void()>& afterAsking) {
  RequireTarget(target);
  machine.damagedEdids.clear();  // they are not written, so the capture will not know them
  TAnswer answer = Ask(machine, plugin);
  RequireReadable(machine, answer);
  TMachineDocument document = {machine.host,
                               machine.getUnits(),
                               machine.connectors,
                               machine.paths,
                               ReadFiles(machine.host, answer.fileQueries),
                               machine.collected,
                               {}};
  afterAsking();
  RequireContent(document);
  TCapture capture;
  if (isAnonymous) {
    RequireAnswer(MakeCapturedMachine(document), answer, plugin);
    capture.remarks = MakeAnonymous(document, plugin);
    answer = Ask(MakeCapturedMachine(document), plugin);
  }
  capture.files = MakeFiles(document, target);
  RequireAnswer(ReadBack(capture.files), answer, plugin);
  return capture;
}

void WriteCapture(const TCapture& capture, const fs::path& target) {
  if (target == kStandardOutput) {
    WriteStandardOutput(capture.files.at(""));
    return;
  }
  const TPostponedSignals signals;
  if (IsDocument(target)) {
    WriteDocument(capture.files.at(""), target, signals);
  } else {
    WriteFolder(capture.files, target, signals);
  }
}

std::string Pack(const TCapture& capture) { return PackJson({{"files", capture.files}, {"remarks", capture.remarks}}); }

TCapture UnpackCapture(const std::string& bytes) {
  const json capture = UnpackJson(bytes);
  return {capture.at("files").get<std::map<std::string, std::string>>(),
          capture.at("remarks").get<std::vector<std::string>>()};
}
