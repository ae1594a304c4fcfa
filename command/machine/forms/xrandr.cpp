#include <algorithm>
#include <iterator>
#include <utility>

#include "command/machine/forms/readers.h"

namespace {

constexpr std::string_view kProperties[] = {"EDID:", "EDID_DATA:"};  // xrandr before 1.2.99 prints the second

/// The name of the output that the line introduces; nothing for any other line.
std::optional<std::string_view> ReadOutputName(std::string_view line) {
  if (line.empty() || IsBlank(line.front())) return std::nullopt;
  const std::string_view name = TakeUntil(line, " ");
  for (const std::string_view state : {" connected", " disconnected", " unknown connection"}) {
    if (BeginsWith(line, state)) return name;
  }
  return std::nullopt;
}

bool IsEdidProperty(std::string_view line) {
  if (line.empty() || !IsBlank(line.front())) return false;
  return std::find(std::begin(kProperties), std::end(kProperties), Trim(line)) != std::end(kProperties);
}

}  // namespace

std::optional<TFoundMachine> ReadXrandr(std::string_view text) {
  TLines lines(text);
  TFoundMachine machine;
  std::string_view connector;
  bool isInProperty = false;
  std::string bytes;  // of the property that is being read
  const auto endProperty = [&] {
    if (isInProperty) machine.Add({std::string(connector), std::exchange(bytes, {})});
    isInProperty = false;
  };
  for (std::string_view line; lines.Take(line);) {
    if (isInProperty && !Trim(line).empty() && AppendHex(bytes, Trim(line))) continue;
    endProperty();
    if (const std::optional<std::string_view> name = ReadOutputName(line)) connector = *name;
    isInProperty = !connector.empty() && IsEdidProperty(line);
  }
  endProperty();
  if (machine.outputs.empty()) return std::nullopt;
  return machine;
}
