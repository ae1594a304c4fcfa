// Serves this machine's files, and a made X server configuration if the machine has none.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "embedded_host/machine_files.h"

/// Where the X server's configuration of this machine comes from: its file, or what the kernel knows. kAuto: the file
/// if there is one, otherwise the kernel.
enum class EXconfigSource { kAuto, kFile, kKernel };

/// If the source says so, serves what the kernel knows as /etc/X11/xorg.conf, and no other file: the plug-in only looks
/// for configurations.
class TXconfigFiles : public IMachineFiles {
 public:
  typedef std::function<std::string()> TMakeConfiguration;

  /// `files`: the machine's. `make` is called at most once, when a file is first asked for. It returns an empty text if
  /// the kernel knows no graphics card; that is not served.
  TXconfigFiles(std::shared_ptr<IMachineFiles> files, EXconfigSource source, TMakeConfiguration make);

  /// True if the made configuration was served.
  bool HasServedMade() const { return m_made && !m_made->empty(); }

  bool Exists(const std::string& path) const override;
  std::string Read(const std::string& path) const override;

 private:
  bool ServesKernel() const;
  const std::string& GetMade() const;

  const std::shared_ptr<IMachineFiles> m_files;
  const EXconfigSource m_source;
  const TMakeConfiguration m_make;
  mutable std::optional<std::string> m_made;  // nothing until `make` is called; empty if the files are served
};
