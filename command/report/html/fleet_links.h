// Names each machine on the page of many machines, and links to its row.
#pragma once

#include <cstddef>
#include <deque>
#include <string>

#include "command/report/html/fleet_machine.h"
#include "command/report/html/html_markup.h"

class TFleetLinks {
 public:
  /// `machines`: the page's; they must outlive this.
  explicit TFleetLinks(const std::deque<TFleetMachine>& machines);

  /// The folder that all machines have in common, with its slash; empty if there is none.
  const std::string& GetFolder() const { return m_folder; }

  /// The machine's name in the list, without that folder.
  std::string GetName(std::size_t position) const;

  /// A link to the row of the machine.
  TMarkup MakeLink(std::size_t position) const;
  /// The id of that row.
  static std::string MakeId(std::size_t position);

 private:
  const std::deque<TFleetMachine>& m_machines;
  std::string m_folder;
};
