// Looks up the names of monitors' makers by their three letters in hwdata's list (pnp.ids), which need not be
// installed.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

class TMakerNames {
 public:
  /// Knows no name.
  TMakerNames() = default;

  /// `list`: has a line for each maker: its three letters, a tab and its name. It is read when the first name is asked
  /// for. If it cannot be read, no name is known.
  explicit TMakerNames(std::filesystem::path list) : m_list(std::move(list)) {}

  /// True if there should be a list, but it is missing or unreadable.
  bool IsListMissing() const;

  /// The name as printable text; empty if it is unknown.
  std::string Find(const std::string& letters) const;

 private:
  const std::string& GetText() const;

  std::filesystem::path m_list;
  mutable std::optional<std::string> m_text;
};

/// The path of this system's list: the environment variable DISPLAYINFO_PNP_IDS, or else hwdata's place for it.
std::filesystem::path FindMakerList();
