// Writes the differences machine by machine, as text for people or as JSON (docs/compare.md describes it).
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "command/compare/difference.h"

/// What happened to a machine. Unknown: it could not be asked, then or now.
enum class EMachineState { kEqual, kCame, kGone, kChanged, kUnknown };
constexpr std::size_t kMachineStates = 5;

struct TMachineReport {
  std::string name;
  EMachineState state;
  TMachineDifference difference;           // if it has changed; also what moved to a machine that came
  std::optional<std::string> before = {};  // why it could not be asked then, ...
  std::optional<std::string> after = {};   // ... or now
};

/// A monitor whose serial number several machines of one side have.
struct TDoubtfulSerial {
  TMonitor monitor;
  std::size_t before;  // machines of the older side that have it
  std::size_t after;   // machines of the newer side that have it
};

/// The number of machines in each state.
typedef std::size_t TMachineCounts[kMachineStates];

/// Returns the consecutive texts of a report: the beginning, one for each machine, and the end with the doubtful serial
/// numbers.
class IDifferenceReport {
 public:
  virtual ~IDifferenceReport() = default;
  virtual std::string Begin() { return {}; }
  virtual std::string Add(const TMachineReport& machine) = 0;
  virtual std::string End(const TMachineCounts& counts, const std::vector<TDoubtfulSerial>& doubtful) = 0;
};

class TTextDifferenceReport : public IDifferenceReport {
 public:
  std::string Add(const TMachineReport& machine) override;
  std::string End(const TMachineCounts& counts, const std::vector<TDoubtfulSerial>& doubtful) override;
};

/// One JSON document with one line for each machine.
class TJsonDifferenceReport : public IDifferenceReport {
 public:
  std::string Begin() override;
  std::string Add(const TMachineReport& machine) override;
  std::string End(const TMachineCounts& counts, const std::vector<TDoubtfulSerial>& doubtful) override;

 private:
  bool m_isFirst = true;
};
