#include <algorithm>

#include "command/machine/forms/readers.h"

namespace {

constexpr std::string_view kNode = "+-o ";
constexpr std::string_view kEdid = "\"IODisplayEDID\" = <";
constexpr std::string_view kOriginal = "\"IODisplayEDIDOriginal\" = <";

/// The output with the bytes after the sign; nothing for a line without it.
std::optional<TFoundOutput> ReadOutput(std::string_view line, std::string_view sign) {
  const std::size_t place = line.find(sign);
  if (place == std::string_view::npos) return std::nullopt;
  std::string_view value = line.substr(place + sign.size());
  TFoundOutput output;
  if (!AppendHex(output.edid, TakeUntil(value, ">"))) output.fault = "is not in hex";
  return output;
}

}  // namespace

std::optional<TFoundMachine> ReadIoreg(std::string_view text) {
  if (text.find(kEdid) == std::string_view::npos && text.find(kOriginal) == std::string_view::npos) return std::nullopt;
  TFoundMachine machine;
  std::optional<TFoundOutput> edid;
  std::optional<TFoundOutput> original;
  const auto endNode = [&] {
    if (original) {
      machine.Add(*original);
    } else if (edid) {
      machine.Add(*edid);
    }
    edid.reset();
    original.reset();
  };
  TLines lines(text);
  for (std::string_view line; lines.Take(line);) {
    if (line.find(kNode) != std::string_view::npos) endNode();
    if (std::optional<TFoundOutput> found = ReadOutput(line, kEdid)) {
      if (edid) endNode();  // excerpts lack the lines that begin a node
      edid = std::move(found);
    }
    if (std::optional<TFoundOutput> found = ReadOutput(line, kOriginal)) {
      if (original) endNode();
      original = std::move(found);
    }
  }
  endNode();
  return machine;
}
