// Writes a machine down, so that it can be collected from again elsewhere.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "command/machine/machine.h"

/// A captured machine before it is written.
struct TCapture {
  std::map<std::string, std::string> files;  // content by name, such as "edid/0.bin"; of one file only, its name is ""
  std::vector<std::string> remarks;          // for people: what was replaced, and which files still hold some of it
};

/// Collects all six classes from `machine` with that plug-in, and makes, as a captured machine, the files that the
/// plug-in looked for and found, what is known of the outputs, and how the host presents the machine; no more. At the
/// end it collects from what it has made. Throws TUnusable when there is nothing to capture, when a configuration could
/// not be looked for or read, or when that answer differs.
///
/// `target`: where it is to be written: a file that ends in .json, or a folder; or "-" for the file's text on standard
/// output. A folder has no ending that is a file's (such as .tar), unless a slash follows it.
///
/// A damaged EDID of `machine` is left out; who calls this has to say so.
///
/// `isAnonymous`: puts fillers in the place of the serial numbers in the EDIDs, and of the system's name. The files
/// stay as they are. Throws TUnusable if the answer differs in anything else.
///
/// `afterAsking` is called once nothing more is read of the machine.
TCapture MakeCapture(
    TMachine machine, const std::filesystem::path& plugin, const std::filesystem::path& target, bool isAnonymous,
    const std::function<void()>& afterAsking = [] {});

/// Writes it to `target`, which must not exist, and reads it back. Throws TUnusable when that fails, and then leaves
/// nothing. A signal that would end the process waits meanwhile: when one comes, nothing is left either.
void WriteCapture(const TCapture& capture, const std::filesystem::path& target);

/// A capture as bytes, and back, for two processes of this program.
std::string Pack(const TCapture& capture);
TCapture UnpackCapture(const std::string& bytes);
