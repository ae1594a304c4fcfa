// A folder for one test, which removes itself.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

class TTemporaryFolder {
 public:
  TTemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "displayinfo-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    m_path = name;
  }
  ~TTemporaryFolder() { std::filesystem::remove_all(m_path); }
  TTemporaryFolder(const TTemporaryFolder&) = delete;
  TTemporaryFolder& operator=(const TTemporaryFolder&) = delete;

  const std::filesystem::path& GetPath() const { return m_path; }

  /// Writes a file below the folder, with the folders on its way.
  void Write(const std::string& name, const std::string& content) const {
    std::filesystem::create_directories((m_path / name).parent_path());
    std::ofstream(m_path / name, std::ios::binary) << content;
  }

 private:
  std::filesystem::path m_path;
};
