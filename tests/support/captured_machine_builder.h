// Writes a captured machine into a temporary folder piece by piece. It begins with an empty machine.json.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/temporary_folder.h"

class TCapturedMachineBuilder {
 public:
  TCapturedMachineBuilder() { Json("{}"); }

  const std::filesystem::path& GetPath() const { return m_folder.GetPath(); }

  const TCapturedMachineBuilder& Json(const std::string& text) const { return File("machine.json", text); }

  const TCapturedMachineBuilder& Edid(unsigned int unit, const std::vector<std::uint8_t>& bytes) const {
    return File("edid/" + std::to_string(unit) + ".bin", std::string(bytes.begin(), bytes.end()));
  }

  const TCapturedMachineBuilder& File(const std::string& name, const std::string& content) const {
    m_folder.Write(name, content);
    return *this;
  }

 private:
  TTemporaryFolder m_folder;
};
