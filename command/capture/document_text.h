// A captured machine as text: what machine_document.h reads.
#pragma once

#include <string>

#include "command/machine/machine_document.h"

/// The text of its machine.json: all but its files and EDIDs. It ends with a newline.
std::string MakeMachineJson(const TMachineDocument& machine);

/// The text of the machine in one file. Throws TUnusable for a file whose path is not UTF-8, which JSON cannot name.
std::string MakeDocumentText(const TMachineDocument& machine);
