// This machine's files, with a configuration of the X server for a machine that has none.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "embedded_host/machine_files.h"

/// Where the X server's configuration of this machine comes from: its file, what the kernel knows, or the file if there
/// is one and else the kernel.
enum class EXconfigSource { kAuto, kFile, kKernel };

/// Serves what the kernel knows as /etc/X11/xorg.conf, where the source says so; then no other file exists, since the
/// plug-in looks for nothing but configurations.
class TXconfigFiles : public IMachineFiles {
 public:
  typedef std::function<std::string()> TMakeConfiguration;

  /// `files`: those of the machine. `make` is called once at most, when a file is first asked for. It gives the empty
  /// text for a kernel that knows no graphics card; that is not served.
  TXconfigFiles(std::shared_ptr<IMachineFiles> files, EXconfigSource source, TMakeConfiguration make);

  /// Whether the made configuration was served.
  bool HasServedMade() const { return m_made && !m_made->empty(); }

  bool Exists(const std::string& path) const override;
  std::string Read(const std::string& path) const override;

 private:
  bool ServesKernel() const;
  const std::string& GetMade() const;

  const std::shared_ptr<IMachineFiles> m_files;
  const EXconfigSource m_source;
  const TMakeConfiguration m_make;
  mutable std::optional<std::string> m_made;  // empty when the files are served
};
