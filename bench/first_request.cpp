// first_request MACHINE: the time, in microseconds, of the first request for all six classes in a new process: the
// plug-in's part of a run of the command, with the host's answers to it.
#include <chrono>
#include <iostream>

#include "command/collection/plugin_library.h"
#include "command/machine/captured_machine.h"
#include "command/machine/machine.h"
#include "embedded_host/schema.h"
#include "realmode/choose_bios.h"

int main(int argumentCount, char** arguments) try {
  if (argumentCount != 2) {
    std::cerr << "usage: first_request MACHINE\n";
    return 2;
  }
  const TMachine machine = ReadCapturedMachine(arguments[1]);
  ChooseVideoBios(machine.bios);
  TEmbeddedHost host(machine.host, {});
  TPluginLibrary plugin(FindPlugin(), host);
  plugin.GetCallbacks().Init();
  std::vector<boost::shared_ptr<NQRXZELT20::ICIMClass>> classes;
  for (const TClassDeclaration& declaration : GetSchema()) {
    classes.push_back(host.GetStore()->GetClass(declaration.name, {}));
  }
  const auto begin = std::chrono::steady_clock::now();
  plugin.GetQueryCallbacks().GetData(host.GetStore(), classes);
  const auto end = std::chrono::steady_clock::now();
  std::cout << std::chrono::duration_cast<std::chrono::microseconds>(end - begin).count() << '\n';
  return 0;
} catch (const std::exception& error) {
  std::cerr << "first_request: " << error.what() << '\n';
  return 1;
}
