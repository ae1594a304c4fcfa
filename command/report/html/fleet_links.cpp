#include "command/report/html/fleet_links.h"

#include "command/base/text_encoding.h"

namespace {

constexpr std::size_t kLinkColumns = 40;

/// The folder of a path, with its slash; empty if the path has none.
std::string GetParent(const std::string& path) {
  const std::size_t slash = path.size() < 2 ? std::string::npos : path.find_last_of('/', path.size() - 2);
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

/// The last `columns` characters of a printable text. A path differs from others at its end.
std::string KeepEnd(const std::string& text, std::size_t columns) {
  const std::size_t length = CountColumns(text);
  return length <= columns ? text : "\u2026" + text.substr(GetLength(text, length - columns + 1));
}

}  // namespace

TFleetLinks::TFleetLinks(const std::deque<TFleetMachine>& machines) : m_machines(machines) {
  if (machines.empty()) return;
  m_folder = GetParent(machines.front().name);
  for (const TFleetMachine& machine : machines) {
    while (GetParent(machine.name).compare(0, m_folder.size(), m_folder) != 0) m_folder = GetParent(m_folder);
  }
}

std::string TFleetLinks::GetName(std::size_t position) const {
  return m_machines[position].name.substr(m_folder.size());
}

TMarkup TFleetLinks::MakeLink(std::size_t position) const {
  const std::string name = GetName(position);
  const std::string shown = KeepEnd(name, kLinkColumns);
  return TMarkup::Element("a", {{"href", "#" + MakeId(position)}, {"title", shown == name ? "" : name}}, shown);
}

std::string TFleetLinks::MakeId(std::size_t position) { return "machine-" + std::to_string(position + 1); }
