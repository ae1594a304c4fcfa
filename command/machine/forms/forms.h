// Reads files in which other programs have written EDIDs down as captured machines.
//
// docs/captured-machines.md shows the forms. They are recognised by their content, never by their names. Anybody may
// have written them: the readers take what they know, skip everything else, and keep only as much as a machine can
// have.
#pragma once

#include <string>

#include "command/machine/machine_document.h"

/// Reads a file of another program into `machine`, whose values are the defaults. `name`: the file's; it also names the
/// machine if the content does not, and the output if the file is a copy of the kernel's. Throws TUnusable, which names
/// the file, if the form is unknown or nothing in it could be an EDID. A damaged EDID loses only its unit. Units
/// without an EDID come last, since the plug-in stops at the first of them.
void ReadForm(const std::string& content, const std::string& name, TMachineDocument& machine);
