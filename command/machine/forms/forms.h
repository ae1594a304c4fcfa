// Files in which other programs have written EDIDs down, as captured machines.
//
// docs/captured-machines.md shows the forms. They are told from each other by their content, never by their names.
// Anybody may have written them: the readers take what they know and skip all else, and no more is kept than a machine
// can have.
#pragma once

#include <string>

#include "command/machine/machine_document.h"

/// Reads a file of another program into `machine`, whose values are the defaults. `name`: of the file, which also names
/// the machine where the content does not, and the output of a copy of the kernel's file. Throws TUnusable, naming the
/// file, for a content in no known form, and for one without anything that could be an EDID. A damaged EDID costs its
/// unit only. Units without an EDID come last, since the plug-in stops at the first of them.
void ReadForm(const std::string& content, const std::string& name, TMachineDocument& machine);
