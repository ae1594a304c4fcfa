#include "command/collection/reasons.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <optional>
#include <string_view>

#include "host/exception.h"

namespace {

/// What an X server's configuration has of Device sections, from which the plug-in makes its controllers.
struct TDeviceSections {
  bool isEmpty = false;        // the file is empty
  std::size_t begun = 0;       // sections that begin
  std::size_t ended = 0;       // those that also end
  std::size_t identified = 0;  // those that also have an identifier
  bool hasBadVideoRam = false;
};

/// A cause of an empty answer; the first that applies counts. "%" stands for the file.
struct TConfigurationCause {
  bool (*applies)(const TDeviceSections& sections);
  const char* sentence;
};

constexpr TConfigurationCause kConfigurationCauses[] = {
    {[](const TDeviceSections& sections) { return sections.isEmpty; }, "% is empty"},
    {[](const TDeviceSections& sections) { return sections.begun == 0; }, "% has no Device section"},
    {[](const TDeviceSections& sections) { return sections.ended == 0; },
     "no Device section in % has an EndSection after it"},
    {[](const TDeviceSections& sections) { return sections.identified == 0; },
     "no Device section in % has an Identifier"},
    {[](const TDeviceSections& sections) { return sections.hasBadVideoRam; },
     "a Device section in % has a VideoRam that is no whole number, at which the plug-in gives up; write it in "
     "kilobytes"},
    {[](const TDeviceSections&) { return true; }, "% yields none"},
};

/// Takes the next word from the text. Quotes and blanks separate words.
std::string_view TakeWord(std::string_view& text) {
  constexpr std::string_view kSeparators = " \t\r\f\v\"";
  text.remove_prefix(std::min(text.find_first_not_of(kSeparators), text.size()));
  const std::string_view word = text.substr(0, text.find_first_of(kSeparators));
  text.remove_prefix(word.size());
  return word;
}

bool IsNumber(std::string_view word) {
  return !word.empty() &&
         std::all_of(word.begin(), word.end(), [](unsigned char digit) { return std::isdigit(digit); });
}

TDeviceSections FindDeviceSections(std::string_view text) {
  TDeviceSections sections;
  sections.isEmpty = text.empty();
  bool isInside = false;
  bool isIdentified = false;
  while (!text.empty()) {
    const std::size_t lineEnd = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, lineEnd);
    text.remove_prefix(std::min(lineEnd + 1, text.size()));
    const std::string_view key = TakeWord(line);
    const std::string_view value = TakeWord(line);
    if (key == "Section" && (value == "Device" || value == "device")) {
      ++sections.begun;
      isInside = true;
    } else if (isInside && key == "EndSection") {
      ++sections.ended;
      if (isIdentified) ++sections.identified;
      isInside = isIdentified = false;
    } else if (isInside && key == "Identifier") {
      isIdentified = isIdentified || !value.empty();
    } else if (isInside && key == "VideoRam") {
      sections.hasBadVideoRam = sections.hasBadVideoRam || !IsNumber(value);
    }
  }
  return sections;
}

/// The file that the plug-in read: the last one that it found, since it stops there.
std::optional<std::string> FindReadFile(const TMachine& machine, const std::vector<TFileQuery>& queries) {
  const auto found =
      std::find_if(queries.rbegin(), queries.rend(), [](const TFileQuery& query) { return query.exists; });
  if (found == queries.rend()) return std::nullopt;
  const std::vector<TFileFailure> failures = machine.getFileFailures();
  const bool hasFailed = std::any_of(failures.begin(), failures.end(),
                                     [&](const TFileFailure& failure) { return failure.path == found->path; });
  return hasFailed ? std::nullopt : std::optional<std::string>(found->path);
}

std::string ExplainConfiguration(const std::string& path, const std::string& text) {
  const TDeviceSections sections = FindDeviceSections(text);
  const auto* const cause =
      std::find_if(std::begin(kConfigurationCauses), std::end(kConfigurationCauses),
                   [&](const TConfigurationCause& candidate) { return candidate.applies(sections); });
  const std::string sentence = cause->sentence;
  return std::string(sentence).replace(sentence.find('%'), 1, path);
}

std::string ExplainNoControllers(const TMachine& machine, const std::vector<TFileQuery>& queries) {
  if (queries.empty()) return TReasons().noControllers;
  std::string unreadable = ExplainUnreadableFiles(machine, queries);
  if (!unreadable.empty()) return unreadable;
  const std::optional<std::string> path = FindReadFile(machine, queries);
  if (!path) return machine.explainNoXconfig(queries.size());
  try {
    return ExplainConfiguration(*path, machine.host.files->Read(*path)) + machine.xconfigCure;
  } catch (const NQRXZELT20::TZELTException& failure) {
    return failure.what();
  }
}

std::string ExplainNoMonitors(const TMachine& machine, const std::vector<TOutput>& outputs) {
  const bool hasFirst = !outputs.empty() && outputs.front().unit == 0;
  const bool hasEdid = hasFirst && (outputs.front().facts || machine.damagedEdids.count(0) != 0);
  if (hasEdid && IsUnlisted(outputs.front())) return ExplainUnlisted(outputs.front());
  const TVirtualBiosConfiguration bios = machine.getUnits();
  std::string failure = machine.getBiosFailure();
  std::string none = ExplainNoMonitor(bios, machine.host.systemType);
  if (machine.host.systemType == kNativeSystem && !failure.empty()) return failure;
  if (!none.empty()) return none;
  const auto unit = bios.units.find(0);
  const bool fails = unit != bios.units.end() && (unit->second.failAtBlock == 0U);
  return fails ? "the video BIOS does not return from the call for unit 0" : machine.edidOrigin.none;
}

std::string ExplainNoModes(const std::vector<TOutput>& outputs, const std::string& noMonitors) {
  const auto hasModes = [](const TOutput& output) { return output.facts && !IsUnlisted(output); };
  if (std::none_of(outputs.begin(), outputs.end(), hasModes)) return noMonitors;
  return "no EDID declares an established or a standard timing, and the plug-in lists no other modes";
}

}  // namespace

TReasons FindReasons(const TMachine& machine, const std::vector<TFileQuery>& queries,
                     const std::vector<TOutput>& outputs) {
  TReasons reasons;
  reasons.noControllers = ExplainNoControllers(machine, queries);
  reasons.noMonitors = ExplainNoMonitors(machine, outputs);
  reasons.noModes = ExplainNoModes(outputs, reasons.noMonitors);
  return reasons;
}

std::string ExplainUnreadableFiles(const TMachine& machine, const std::vector<TFileQuery>& queries) {
  if (FindReadFile(machine, queries)) return std::string();
  const std::vector<TFileFailure> failures = machine.getFileFailures();
  const auto failed = [&](const TFileQuery& query) {
    return std::find_if(failures.begin(), failures.end(),
                        [&](const TFileFailure& failure) { return failure.path == query.path; });
  };
  std::size_t count = 0;
  std::optional<TFileFailure> first;
  for (const TFileQuery& query : queries) {
    const auto failure = failed(query);
    if (failure == failures.end()) continue;
    ++count;
    if (!first || (first->isLookUp && !failure->isLookUp)) first = *failure;  // a file that exists says more
  }
  if (!first) return std::string();
  const std::string cure = "; " + first->cure;
  if (!first->isLookUp) return machine.filesPlace + first->path + " " + first->reason + cure;
  return std::to_string(count) + " of the " + std::to_string(queries.size()) +
         " X server configuration files could not be looked for" +
         (machine.filesPlace.empty() ? "" : " in " + machine.filesPlace) + ": " + first->reason + cure;
}
