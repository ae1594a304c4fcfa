// Reads any text as a captured machine's machine.json. The host must then have what the document says, or it must be
// refused with one line that names the file.
//
// Input: the text of machine.json.
#include <nlohmann/json.hpp>

#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/machine/captured_machine.h"
#include "fuzz/input.h"
#include "fuzz/require.h"
#include "tests/support/captured_machine_builder.h"

namespace {

void RequireRead(const THostConfiguration& host, const std::string& text) {
  const nlohmann::json document = nlohmann::json::parse(text);
  const THostConfiguration defaults;
  Require(host.systemName == document.value("systemName", host.systemName), "the system's name is the given one");
  Require(host.systemCreationClassName == document.value("systemCreationClassName", defaults.systemCreationClassName),
          "the system's class is the given one");
  Require(host.systemType == document.value("systemType", defaults.systemType), "the system's type is the given one");
  Require(host.provider == document.value("provider", defaults.provider), "the provider is there as given");
}

/// As the command shows it.
void RequireMessage(const std::string& message, const std::string& file) {
  Require(message.find(file + ": ") == 0, "a message begins with the file");
  Require(message.size() > file.size() + 2, "a message says what is wrong");
  Require(message.find('\n') == std::string::npos, "a message is one line");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const TCapturedMachineBuilder machine;
  const std::string text = TInput(data, size).TakeRest();
  machine.Json(text);
  try {
    RequireRead(ReadCapturedMachine(machine.GetPath()).host, text);
  } catch (const TUnusable& failure) {
    RequireMessage(ToPrintable(failure.what()), machine.GetPath() / "machine.json");
  }
  return 0;
}
