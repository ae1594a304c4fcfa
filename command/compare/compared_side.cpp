#include "command/compare/compared_side.h"

#include <utility>

#include "command/base/json.h"
#include "command/base/unusable.h"
#include "command/machine/captured_machine.h"

namespace fs = std::filesystem;

namespace {

bool BeginsWith(const std::string& text, const std::string& beginning) {
  return text.compare(0, beginning.size(), beginning) == 0;
}

/// True if a file with that beginning may be JSON, as every answer is. Otherwise it can only be a captured machine.
bool MayBeAnswer(const std::string& beginning) {
  const std::size_t first = beginning.find_first_not_of(" \t\r\n");
  return first == std::string::npos || beginning[first] == '{';
}

/// True if the first line of a file is one answer of many, even one that was cut off; false if it is the beginning of
/// an indented document.
bool IsWholeLine(const std::string& line) { return BeginsWith(line, "{\"machine\":") || IsJson(line); }

constexpr std::size_t kMaxSize = std::size_t{64} * 1024 * 1024;  // bytes of a line, or of a file that is one answer

/// The next line that is not blank; nothing at the end of the file.
std::optional<std::string> TakeAnswer(TLineReader& file) {
  while (std::optional<TLine> line = file.TakeNext()) {
    if (line->text.find_first_not_of(" \t\r") != std::string::npos) return std::move(line->text);
  }
  return std::nullopt;
}

std::string TakeRest(TLineReader& file) {
  std::string rest = file.TakeRest(kMaxSize);
  if (rest.size() <= kMaxSize) return rest;
  throw TUnusable(file.GetName() + ": is larger than " + std::to_string(kMaxSize) +
                  " bytes; an answer without its log is smaller: --no-log");
}

void RequirePlain(const std::string& text, const std::string& name) {
  constexpr const char* packed[] = {"\x1F\x8B", "\xFD\x37zXZ", "BZh", "\x28\xB5\x2F\xFD"};
  for (const char* const beginning : packed) {
    if (!BeginsWith(text, beginning)) continue;
    throw TUnusable(name +
                    ": is compressed, and compare reads plain files; give it - and the unpacked text, as in "
                    "zcat FILE | displayinfo compare OLD -");
  }
}

}  // namespace

TComparedSide::TComparedSide(const fs::path& path, const TAsk& ask) {
  std::error_code ignored;
  if (!fs::is_directory(path, ignored) && !IsPackedName(path)) {
    ReadFile(path, ask);
    return;
  }
  m_hasBytes = true;
  m_next = {path.string(), ask(path.string(), [&] { return ReadCapturedMachine(path); })};
}

TComparedMachine TComparedSide::TakeNext() {
  TComparedMachine machine = std::move(*m_next);
  m_next.reset();
  if (m_lines) TakeLine();
  return machine;
}

void TComparedSide::LoseBytes() { m_next->answer = AsWritten(std::move(m_next->answer)); }

void TComparedSide::ReadFile(const fs::path& path, const TAsk& ask) {
  TLineReader file = TLineReader::Open(path, kMaxSize, ELongLine::kRefused, kCompareTakes);
  const std::string name = file.GetName();
  RequirePlain(file.GetBeginning(), name);
  if (!MayBeAnswer(file.GetBeginning())) return AskMachine(TakeRest(file), name, ask);
  std::optional<std::string> first = TakeAnswer(file);
  if (!first) throw TUnusable(name + ": is empty, so there is nothing to compare");
  std::string text = std::move(*first);
  const bool isLine = IsWholeLine(text);
  // Put back the empty lines before it, so that the parser counts lines as the file does.
  if (!isLine) text = std::string(file.GetNumber() - 1, '\n') + text + "\n" + TakeRest(file);
  const std::string place = isLine ? name + ", line " + std::to_string(file.GetNumber()) : name;
  TReadAnswer answer = ReadAnswer(text, place);
  if (answer.isCapturedMachine) {
    if (isLine && TakeAnswer(file)) {
      throw TUnusable(place + ": is a captured machine, after which nothing may follow");
    }
    return AskMachine(text, name, ask);
  }
  m_hasNames = answer.machine.has_value();
  const std::string machine = answer.machine.value_or(name);
  m_next = {machine, std::move(answer)};
  if (!isLine) return;
  m_lines = std::move(file);
  if (m_hasNames) return;
  if (TakeAnswer(*m_lines)) throw TUnusable(place + ": names no \"machine\", which each of several lines does");
  m_lines.reset();
}

void TComparedSide::AskMachine(const std::string& text, const std::string& name, const TAsk& ask) {
  m_hasBytes = true;
  m_next = {name, ask(name, [&] { return ReadCapturedText(text, name); })};
}

void TComparedSide::TakeLine() {
  const std::optional<std::string> line = TakeAnswer(*m_lines);
  if (!line) return;
  const std::string place = m_lines->GetName() + ", line " + std::to_string(m_lines->GetNumber());
  TReadAnswer answer = ReadAnswer(*line, place);
  if (!answer.machine) throw TUnusable(place + ": names no \"machine\", which each of several lines does");
  const std::string machine = *answer.machine;
  m_next = {machine, std::move(answer)};
}
