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
  std::map<std::string, std::string> files;  // content by name, such as "edid/0.bin"; if it is one file: by ""
  std::vector<std::string> remarks;          // for people: what was replaced, and which files still hold some of it
};

/// Collects all six classes from `machine` with that plug-in, and makes a captured machine. It holds only the files
/// that the plug-in looked for and found, what is known of the outputs, and how the host presents the machine. Then
/// collects from the captured machine. Throws TUnusable if there is nothing to capture, if a configuration could not be
/// looked for or read, or if the second answer differs.
///
/// `target`: where it will be written: a file that ends in .json, or a folder, or "-" for the file's text on standard
/// output. A folder's name must not end like a file's (such as .tar), unless a slash follows it.
///
/// A damaged EDID of `machine` is left out; the caller must say so.
///
/// `isAnonymous`: replaces the serial numbers in the EDIDs and the system's name by fillers. The files stay as they
/// are. Throws TUnusable if the answer differs in anything else.
///
/// `afterAsking` is called when everything has been read from the machine.
TCapture MakeCapture(
    TMachine machine, const std::filesystem::path& plugin, const std::filesystem::path& target, bool isAnonymous,
    const std::function<void()>& afterAsking = [] {});

/// Writes it to `target`, which must not exist, and reads it back. If that fails, throws TUnusable and leaves nothing.
/// A signal that would end the process is held back meanwhile; if one comes, nothing is left either.
void WriteCapture(const TCapture& capture, const std::filesystem::path& target);

/// Convert a capture to bytes and back, to pass it between two processes of this program.
std::string Pack(const TCapture& capture);
TCapture UnpackCapture(const std::string& bytes);
