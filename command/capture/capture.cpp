#include "command/capture/capture.h"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "command/base/unusable.h"
#include "command/capture/document_text.h"
#include "command/capture/edid_serials.h"
#include "command/capture/new_target.h"
#include "command/collection/collection.h"
#include "command/machine/captured_machine.h"
#include "command/machine/machine.h"
#include "command/report/json_report.h"
#include "host/exception.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kDocumentEnding = ".json";

std::vector<TRequest> AskForAll() {
  TRequest all;
  for (const TClassDeclaration& declaration : GetSchema()) all.emplace_back(declaration.name);
  return {all};
}

TAnswer Ask(const TMachine& machine, const fs::path& plugin) { return Collect(machine, plugin, AskForAll(), {}); }

/// The content of the files that were found, by their paths without whatever dots the plug-in asked with.
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

void MakeAnonymous(TMachineDocument& machine) {
  machine.host.systemName = "anonymous";
  for (auto& [number, unit] : machine.bios.units) {
    std::string bytes(unit.edid.begin(), unit.edid.end());
    BlankSerials(bytes);
    unit.edid.assign(bytes.begin(), bytes.end());
  }
}

/// Collects from the captured machine to see that it answers the same.
void RequireAnswer(const TMachine& captured, const TAnswer& answer, const fs::path& plugin) {
  if (MakeJsonReport(Ask(captured, plugin)) == MakeJsonReport(answer)) return;
  throw TUnusable("what was captured does not answer as the machine did, which may have changed meanwhile; try again");
}

/// `isRight` throws when what was written must not be kept.
template <typename TCheck>
void WriteFolder(const TMachineDocument& machine, const fs::path& target, TCheck isRight) {
  TNewFolder folder(target);
  folder.Write(kMachineJson, MakeMachineJson(machine));
  for (const auto& [path, content] : machine.files) folder.Write(kRoot + path, content);
  for (const auto& [number, unit] : machine.bios.units) {
    if (unit.edid.empty()) continue;
    folder.Write(std::string(kEdids) + "/" + std::to_string(number) + kEdidEnding,
                 std::string(unit.edid.begin(), unit.edid.end()));
  }
  isRight();
  folder.Keep();
}

template <typename TCheck>
void WriteDocument(const TMachineDocument& machine, const fs::path& target, TCheck isRight) {
  const std::string text = MakeDocumentText(machine);
  if (text.size() > kMaxDocumentSize) {
    throw TUnusable(target.string() + ": would have " + std::to_string(text.size()) +
                    " bytes, and a captured machine " + "in one file has " + std::to_string(kMaxDocumentSize) +
                    " at most; capture to a folder");
  }
  TNewFile file(target, text);
  isRight();
  file.Keep();
}

void RequireTarget(const fs::path& target) {
  if (!IsPackedName(target)) return;
  throw TUnusable(target.string() + ": packed folders are not written; capture to one file, FILE.json, or to a folder");
}

}  // namespace

void CaptureMachine(TMachine machine, const fs::path& plugin, const fs::path& target, bool isAnonymous) {
  RequireTarget(target);
  machine.damagedEdids.clear();  // they are not written, so the capture knows nothing of them
  TAnswer answer = Ask(machine, plugin);
  TMachineDocument document = {machine.host,       machine.getUnits(),
                               machine.connectors, ReadFiles(machine.host, answer.fileQueries),
                               machine.collected,  {}};
  if (isAnonymous) {
    // What is to be blanked is never written, so the capture is checked in memory first, still with it. The check of
    // what was written then compares with the answer of the blanked one.
    RequireAnswer(MakeCapturedMachine(document), answer, plugin);
    MakeAnonymous(document);
    answer = Ask(MakeCapturedMachine(document), plugin);
  }
  const auto requireAnswer = [&] { RequireAnswer(ReadCapturedMachine(target), answer, plugin); };
  if (target.extension() == kDocumentEnding) return WriteDocument(document, target, requireAnswer);
  WriteFolder(document, target, requireAnswer);
}
