#include "command/report/monitor_facts.h"

#include <cstdio>
#include <utility>

#include "command/base/text_encoding.h"
#include "command/report/output_view.h"

namespace {

std::string WriteSerialNumber(const TEdidFacts& facts) {
  if (!facts.serialText.empty()) return ToPrintable(facts.serialText);
  return facts.serialNumber ? std::to_string(*facts.serialNumber) : std::string();
}

std::string WriteProductCode(const TEdidFacts& facts) {
  char text[32];
  std::snprintf(text, sizeof text, "%u (0x%04X)", facts.productCode, facts.productCode);
  return text;
}

std::string WriteMade(const TEdidFacts& facts) {
  if (!facts.made) return std::string();
  const std::string year = std::to_string(facts.made->year);
  if (facts.made->isModelYear) return "model of " + year;
  return facts.made->week ? "week " + std::to_string(*facts.made->week) + " of " + year : year;
}

std::string WriteYear(const TEdidFacts& facts) { return facts.made ? std::to_string(facts.made->year) : std::string(); }

std::string WriteSize(const TEdidFacts& facts) {
  if (!facts.imageSize) return std::string();
  const auto write = [](unsigned int millimetres) { return std::to_string((millimetres + 5) / 10); };
  return write(facts.imageSize->width) + " x " + write(facts.imageSize->height) + " cm";
}

std::string WriteInches(const TEdidFacts& facts) {
  return facts.diagonalInches ? WriteDiagonal(*facts.diagonalInches) + " inches" : std::string();
}

std::string WriteInput(const TEdidFacts& facts) {
  if (!facts.input.isDigital) return "analogue";
  std::string text = "digital";
  std::string separator = ": ";
  if (*facts.input.interface != '\0') text += std::exchange(separator, ", ") + facts.input.interface;
  if (facts.input.colourBits) text += separator + std::to_string(*facts.input.colourBits) + " bits per colour";
  return text;
}

/// Nothing for the rates of monitors that give only zeros.
std::string WriteRates(const TRates& rates, const char* unit) {
  if (rates.max == 0) return std::string();
  return std::to_string(rates.min) + " to " + std::to_string(rates.max) + unit;
}

std::string WriteClock(const std::string& clock) { return clock.empty() ? clock : clock + " at most"; }

std::string WriteLineRate(const TEdidFacts& facts) {
  return facts.limits ? WriteRates(facts.limits->lines, " kHz") : std::string();
}

std::string WriteFieldRate(const TEdidFacts& facts) {
  return facts.limits ? WriteRates(facts.limits->fields, " Hz") : std::string();
}

std::string WritePixelClock(const TEdidFacts& facts) {
  const bool isKnown = facts.limits && facts.limits->pixelClock;
  return WriteClock(isKnown ? std::to_string(*facts.limits->pixelClock) + " MHz" : "");
}

std::string WritePreferredMode(const TEdidFacts& facts) {
  if (!facts.preferredMode) return std::string();
  return std::to_string(facts.preferredMode->width) + " x " + std::to_string(facts.preferredMode->height) + " at " +
         WriteRefresh(*facts.preferredMode) + " Hz";
}

std::string Range(const TInstanceView& monitor, const char* min, const char* max) {
  return monitor.Number(max) != 0 ? monitor.Text(min) + " to " + monitor.TextWithUnit(max) : std::string();
}

std::string ReadSize(const TInstanceView& monitor) {
  const std::string size = monitor.Size("HorizontalImageSize", "VerticalImageSize");
  return size.empty() ? size : size + " " + monitor.Unit("HorizontalImageSize");
}

/// Of the filler that year 2245 is in an EDID, the plug-in makes a date all the same.
std::string ReadYear(const TInstanceView& monitor) {
  constexpr const char* filler = "2245";
  const std::string year = monitor.Text("ManufacturingDate").substr(0, 4);
  return year < filler ? year : std::string();
}

std::string ReadDate(const TInstanceView& monitor) {
  const std::string text = monitor.Text("ManufacturingDate");
  return ReadYear(monitor).empty() ? std::string()
                                   : "week of " + text.substr(0, 4) + "-" + text.substr(4, 2) + "-" + text.substr(6, 2);
}

/// A fact, and how its text comes out of an EDID and out of an instance; null where it is in one of them only.
struct TSource {
  std::string TMonitorFacts::*fact;
  std::string (*fromEdid)(const TEdidFacts&);
  std::string (*fromInstance)(const TInstanceView&);
};

const TSource kSources[] = {
    {&TMonitorFacts::makerCode, [](const TEdidFacts& facts) { return facts.maker; },
     [](const TInstanceView& i) { return i.Text("MonitorManufacturer"); }},
    {&TMonitorFacts::model, [](const TEdidFacts& facts) { return ToPrintable(facts.name); },
     [](const TInstanceView& i) { return i.Text("Name"); }},
    {&TMonitorFacts::serialNumber, WriteSerialNumber, [](const TInstanceView& i) { return i.Text("SerialNumber"); }},
    {&TMonitorFacts::productCode, WriteProductCode, nullptr},
    {&TMonitorFacts::made, WriteMade, ReadDate},
    {&TMonitorFacts::year, WriteYear, ReadYear},
    {&TMonitorFacts::size, WriteSize, ReadSize},
    {&TMonitorFacts::diagonal, WriteInches, nullptr},
    {&TMonitorFacts::input, WriteInput, nullptr},
    {&TMonitorFacts::lineRate, WriteLineRate,
     [](const TInstanceView& i) { return Range(i, "MinHorizFreq", "MaxHorizFreq"); }},
    {&TMonitorFacts::fieldRate, WriteFieldRate,
     [](const TInstanceView& i) { return Range(i, "MinVertFreq", "MaxVertFreq"); }},
    {&TMonitorFacts::pixelClock, WritePixelClock,
     [](const TInstanceView& i) { return WriteClock(i.TextWithUnit("Bandwidth")); }},
    {&TMonitorFacts::preferredMode, WritePreferredMode, nullptr},
};

}  // namespace

TMonitorFacts DescribeMonitor(const TOutput* output, const TInstanceView* monitor, const TMakerNames& makers) {
  const bool hasEdid = output != nullptr && output->facts && output->facts->isVersion1;
  TMonitorFacts result;
  for (const auto& [fact, fromEdid, fromInstance] : kSources) {
    std::string& text = result.*fact;
    if (hasEdid) text = fromEdid(*output->facts);
    if (text.empty() && monitor != nullptr && fromInstance != nullptr) text = fromInstance(*monitor);
  }
  result.makerName = makers.Find(result.makerCode);
  return result;
}
