// The differences for people, and for programs (docs/compare.md describes the JSON), machine by machine.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "command/compare/difference.h"

/// What became of a machine. Unknown: it could not be asked, then or now.
enum class EMachineState { kEqual, kCame, kGone, kChanged, kUnknown };
constexpr std::size_t kMachineStates = 5;

struct TMachineReport {
  std::string name;
  EMachineState state;
  TMachineDifference difference;           // of one that has changed; of one that came, what moved to it
  std::optional<std::string> before = {};  // why it could not be asked
  std::optional<std::string> after = {};
};

/// A monitor whose serial number several machines of one side have.
struct TDoubtfulSerial {
  TMonitor monitor;
  std::size_t before;  // machines of the older side
  std::size_t after;   // and of the newer
};

/// How many machines there are of each state.
typedef std::size_t TMachineCounts[kMachineStates];

/// The texts of a report, which follow each other: the beginning, one for each machine, the end with the doubtful
/// serial numbers.
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

/// One JSON document, each machine on a line of it.
class TJsonDifferenceReport : public IDifferenceReport {
 public:
  std::string Begin() override;
  std::string Add(const TMachineReport& machine) override;
  std::string End(const TMachineCounts& counts, const std::vector<TDoubtfulSerial>& doubtful) override;

 private:
  bool m_isFirst = true;
};
