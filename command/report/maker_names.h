// The names of the makers of monitors, from the list that the package hwdata has of their three letters (pnp.ids),
// which the command can do without.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

class TMakerNames {
 public:
  /// Knows no name.
  TMakerNames() = default;

  /// `list`: a line for each maker, which is its three letters, a tab and its name. It is read when the first name is
  /// asked for; one that cannot be read has no names.
  explicit TMakerNames(std::filesystem::path list) : m_list(std::move(list)) {}

  /// True when there should be a list, but it is not there, or not readable.
  bool IsListMissing() const;

  /// The name as printable text; empty when it is not known.
  std::string Find(const std::string& letters) const;

 private:
  const std::string& GetText() const;

  std::filesystem::path m_list;
  mutable std::optional<std::string> m_text;
};

/// The list of this system: what the environment variable DISPLAYINFO_PNP_IDS names, else where hwdata has it.
std::filesystem::path FindMakerList();
