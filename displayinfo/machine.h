// A machine to collect from: how the host presents it, and the video BIOS that answers for its monitors.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

#include "embedded_host/embedded_host.h"

class IVideoBios;

/// The machine or the plug-in cannot be used: one line that names the thing and the cure.
class TUnusable : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct TMachine {
  THostConfiguration host;
  std::shared_ptr<IVideoBios> bios;
  /// Why the BIOS could not be called, asked after a collection; empty when it could, or was not needed.
  std::function<std::string()> getBiosFailure;
};

/// This machine, with its own files and its own video BIOS.
TMachine MakeThisMachine();

/// The machine that a folder holds. Throws TUnusable, naming file and key, when the folder or anything in it that the
/// collection would use is not as it must be, or leads out of the folder.
TMachine ReadCapturedMachine(const std::filesystem::path& path);
