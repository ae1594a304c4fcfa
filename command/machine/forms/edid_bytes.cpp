#include "command/machine/forms/readers.h"

std::optional<TFoundMachine> ReadEdidBytes(std::string_view content) {
  if (!LooksLikeEdid(content)) return std::nullopt;
  TFoundMachine machine;
  machine.AddEdids(content);
  return machine;
}
