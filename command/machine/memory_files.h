// Serves a machine's files from memory: those of a captured machine in one file, or made ones.
#pragma once

#include <map>
#include <string>

#include "embedded_host/machine_files.h"

class TMemoryFiles : public IMachineFiles {
 public:
  /// `files`: content by absolute path. A file is found by exactly that path.
  explicit TMemoryFiles(std::map<std::string, std::string> files);

  bool Exists(const std::string& path) const override;
  std::string Read(const std::string& path) const override;

 private:
  const std::map<std::string, std::string> m_files;
};
