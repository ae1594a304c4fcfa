#include "command/machine/memory_files.h"

#include <utility>

#include "host/exception.h"

TMemoryFiles::TMemoryFiles(std::map<std::string, std::string> files) : m_files(std::move(files)) {}

bool TMemoryFiles::Exists(const std::string& path) const { return m_files.count(path) != 0; }

std::string TMemoryFiles::Read(const std::string& path) const {
  const auto file = m_files.find(path);
  if (file == m_files.end()) throw NQRXZELT20::TZELTException(path + ": no such file");
  return file->second;
}
