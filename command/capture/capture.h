// Writes a machine down, so that it can be collected from again elsewhere.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "command/machine/machine.h"

/// Collects all six classes from `machine` with that plug-in, and writes down, as a captured machine, the files that
/// the plug-in looked for and found, what is known of the outputs, and how the host presents the machine; no more.
/// `target`: a file that ends in .json, or a folder; it must not exist; or "-" for the file's text on standard output.
/// A folder has no ending that is a file's (such as .tar), unless a slash follows it. At the end it collects from what
/// it has written. Throws TUnusable when there is nothing to write, when a configuration could not be looked for or
/// read, when that answer differs, or when `target` exists or cannot be written, and then leaves nothing.
///
/// A damaged EDID of `machine` is not written; who calls this has to say so.
///
/// `isAnonymous`: puts fillers in the place of the serial numbers in the EDIDs, and of the system's name. The files
/// stay as they are. The answer must then be that of the machine but for these; else it throws TUnusable.
///
/// `beforeWriting` is called once the machine has been asked and before anything is written: a limit of time that ends
/// the process is to end there, since it would leave a capture in part.
///
/// Returns remarks for people: what was replaced, and which files still hold some of it.
std::vector<std::string> CaptureMachine(
    TMachine machine, const std::filesystem::path& plugin, const std::filesystem::path& target, bool isAnonymous,
    const std::function<void()>& beforeWriting = [] {});
