// Asks for all six classes of a machine made by the fuzzer, with the embedded host, the plug-in's objects and the
// virtual BIOS in this process. Rules check the instances and the four reports: the JSON parses, the text keeps to its
// width, none of them has a hidden character, and the page has no script.
//
// Input: a byte of bits for how the host and the BIOS behave, a byte for the block at which units fail, the
// configuration, a zero byte, EDIDs (fuzz/input.h).
#include <algorithm>
#include <nlohmann/json.hpp>

#include "command/base/text_encoding.h"
#include "command/machine/machine.h"
#include "command/machine/memory_files.h"
#include "command/report/html/html_report.h"
#include "command/report/json_report.h"
#include "command/report/mof_report.h"
#include "command/report/text_report.h"
#include "embedded_host/schema.h"
#include "fuzz/collect.h"
#include "fuzz/input.h"
#include "fuzz/instances.h"
#include "fuzz/require.h"
#include "realmode/virtual_video_bios.h"

namespace {

// The bits of the first byte. None: everything works.
constexpr unsigned int kNoProvider = 1;
constexpr unsigned int kNoBios = 2;
constexpr unsigned int kNoMemory = 4;
constexpr unsigned int kIgnoresUnit = 8;
constexpr unsigned int kInterruptFails = 16;
constexpr unsigned int kBiosErrs = 32;
constexpr unsigned int kOtherSystem = 64;

TMachine MakeMachine(TInput& input) {
  const unsigned int bits = input.TakeByte();
  const unsigned int block = input.TakeByte();
  const std::string configuration = input.TakeText();

  TVirtualBiosConfiguration bios;
  bios.present = (bits & kNoBios) == 0;
  bios.memory = (bits & kNoMemory) == 0;
  bios.ignoresUnit = (bits & kIgnoresUnit) != 0;
  for (const auto& [number, edid] : input.TakeEdids()) {
    TVirtualBiosConfiguration::TUnit& unit = bios.units[number];
    unit.edid = edid;
    if ((bits & kInterruptFails) != 0) unit.failAtBlock = block;
    if ((bits & kBiosErrs) != 0) unit.errorAtBlock = block;
  }

  TMachine machine;
  machine.host.systemName = "fuzzed";
  machine.host.systemType = (bits & kOtherSystem) != 0 ? 1 : 2;
  machine.host.provider = (bits & kNoProvider) == 0;
  machine.host.files =
      std::make_shared<TMemoryFiles>(std::map<std::string, std::string>{{"/etc/X11/xorg.conf", configuration}});
  machine.bios = std::make_shared<TVirtualVideoBios>(bios);
  machine.getUnits = [bios = std::move(bios)] { return bios; };
  return machine;
}

TInstances Select(const TInstances& instances, const std::string& className) {
  TInstances selected;
  std::copy_if(instances.begin(), instances.end(), std::back_inserter(selected),
               [&](const auto& instance) { return className == instance->GetDeclaration().name; });
  return selected;
}

void RequireInstances(const TInstances& instances) {
  RequireValues(instances);
  const TInstances heads = Select(instances, kVideoHeadClass);
  const TInstances controllers = Select(instances, kVideoControllerClass);
  Require(controllers.size() <= heads.size(), "each controller has a head");
  std::vector<std::string> numbers;
  while (numbers.size() < heads.size()) numbers.push_back(std::to_string((numbers.size() + 1) % 256));
  Require(GetTexts(heads, "HeadNumber") == numbers, "heads are numbered without a gap");

  const TInstances pairs = Select(instances, kHeadOfVideoControllerClass);
  RequireReferences(pairs, "Antecedent", controllers);
  RequireReferences(pairs, "Dependent", heads);
  const TInstances settings = Select(instances, kMonitorSettingClass);
  RequireReferences(settings, "Element", Select(instances, kDesktopMonitorClass));
  RequireReferences(settings, "Setting", Select(instances, kMonitorResolutionClass));
}

void RequireText(const std::string& report, std::size_t maxWidth) {
  std::size_t width = 0;
  for (const char character : report) {
    const auto byte = static_cast<unsigned char>(character);
    width = byte == '\n' ? 0 : width + ((byte & 0xC0) != 0x80 ? 1 : 0);
    Require(width <= maxWidth, "no line is wider than it may be");
  }
}

/// Returns the report.
std::string RequirePrintable(const std::string& report) {
  std::string line = report;
  std::replace(line.begin(), line.end(), '\n', ' ');
  Require(ToPrintable(line) == line, "no report holds a hidden character");
  return report;
}

/// The page's own markup has neither.
void RequireInert(const std::string& page) {
  Require(page.find("<script") == std::string::npos, "nothing becomes a script on the page");
  Require(page.find("<img") == std::string::npos, "nothing becomes a picture on the page");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  TInput input(data, size);
  const TAnswer answer = CollectHere(MakeMachine(input));
  RequireInstances(answer.requests[0].instances);
  Require(nlohmann::json::accept(RequirePrintable(MakeJsonReport(answer))), "the JSON report parses");
  for (const std::size_t width : {kMinTextWidth, kMaxTextWidth}) {
    RequireText(RequirePrintable(MakeTextReport(answer, TMakerNames(), width)), width);
  }
  RequirePrintable(MakeMofReport(answer));
  RequireInert(RequirePrintable(MakeHtmlReport(answer)));
  return 0;
}
