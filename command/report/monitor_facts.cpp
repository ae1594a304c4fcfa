#include "command/report/monitor_facts.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <utility>

#include "command/base/text_encoding.h"
#include "command/edid/serial_rules.h"
#include "command/report/answer_view.h"

namespace {

typedef const TEdidFacts& TFacts;

std::string Write(unsigned int number) { return std::to_string(number); }

/// A panel often has no name but two texts: its maker and its part number. The part number has digits.
std::string WriteModel(const TEdidFacts& facts) {
  if (!facts.name.empty() || facts.texts.empty()) return ToPrintable(facts.name);
  const auto hasDigit = [](const std::string& text) {
    return std::any_of(text.begin(), text.end(), [](unsigned char character) { return std::isdigit(character) != 0; });
  };
  const auto part = std::find_if(facts.texts.begin(), facts.texts.end(), hasDigit);
  return ToPrintable(part == facts.texts.end() ? facts.texts.front() : *part);
}

std::string WriteSerialNumber(const TEdidFacts& facts) {
  return facts.serial ? ToPrintable(facts.serial->serial) : std::string();
}

std::string ReadSerialNumber(const TInstanceView& monitor) {
  const std::string text = monitor.Text("SerialNumber");
  return IsFillerSerial(text) ? std::string() : text;
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
  if (facts.imageSize) {
    return std::to_string(facts.imageSize->width) + " x " + std::to_string(facts.imageSize->height) + " mm";
  }
  return facts.aspectRatio ? "aspect ratio " + WriteNumber(*facts.aspectRatio) : std::string();
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

/// Empty if the monitor gives only zeros.
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

std::string WriteResolution(const TEdidMode& mode) {
  return std::to_string(mode.width) + " x " + std::to_string(mode.height);
}

std::string WriteMode(const TEdidMode& mode) {
  return WriteResolution(mode) + " at " + WriteRefresh(mode) + " Hz" + (mode.isInterlaced ? ", interlaced" : "");
}

std::string WritePreferredMode(const TEdidFacts& facts) {
  return facts.preferredMode ? WriteMode(*facts.preferredMode) : std::string();
}

std::string WriteLargestMode(const TEdidFacts& facts) {
  return facts.modes.empty() ? std::string() : WriteMode(facts.modes.front());
}

double GetRate(const TEdidMode& mode) { return mode.refresh; }

/// The rate as it is shown: 75.029 Hz is no more than 75 Hz.
long GetWholeRate(const TEdidMode& mode) { return std::lround(mode.refresh); }

/// The size is that of the largest mode with that rate.
std::string WriteHighestRate(const TEdidFacts& facts) {
  if (facts.modes.empty()) return std::string();
  const TEdidMode& mode = FindFastest(facts.modes, GetWholeRate);
  return std::to_string(GetWholeRate(mode)) + " Hz (" + WriteResolution(mode) +
         (mode.isInterlaced ? ", interlaced)" : ")");
}

/// Not every block of HDR metadata means HDR: all of them have SDR's transfer function.
bool HasHdr(const TEdidFacts& facts) {
  if (!facts.hdr) return false;
  const auto isHdr = [](const std::string& transfer) { return transfer != "SDR"; };
  return !facts.hdr->hdr10Plus.empty() || !facts.hdr->dolbyVision.empty() ||
         std::any_of(facts.hdr->transfers.begin(), facts.hdr->transfers.end(), isHdr);
}

std::string WriteHdr(const TEdidFacts& facts) {
  if (!HasHdr(facts)) return std::string();
  std::vector<std::string> texts;
  for (const std::string transfer : facts.hdr->transfers) {
    if (transfer != "SDR") texts.push_back(transfer);
  }
  if (!facts.hdr->hdr10Plus.empty()) texts.push_back("HDR10+ " + facts.hdr->hdr10Plus);
  if (!facts.hdr->dolbyVision.empty()) texts.push_back("Dolby Vision " + facts.hdr->dolbyVision);
  if (facts.hdr->maxLuminance) texts.push_back("up to " + WriteNumber(*facts.hdr->maxLuminance) + " cd/m2");
  return Join(texts);
}

std::string WriteVariableRate(const TEdidFacts& facts) {
  if (!facts.refreshRange) return std::string();
  const auto& [min, max, from] = *facts.refreshRange;
  const std::string rates = max ? std::to_string(min) + " to " + std::to_string(*max) : "from " + std::to_string(min);
  return rates + " Hz (" + from + ")";
}

std::string WriteLink(const TEdidFacts& facts) {
  if (!facts.hdmi) return std::string();
  std::vector<std::string> texts;
  const THdmi& hdmi = *facts.hdmi;
  if (hdmi.maxTmdsClock) texts.push_back("TMDS up to " + std::to_string(*hdmi.maxTmdsClock) + " MHz");
  if (*hdmi.fixedRateLink != '\0') texts.push_back("FRL of " + std::string(hdmi.fixedRateLink));
  if (hdmi.hasCompression) texts.emplace_back("DSC");
  std::vector<std::string> bits;
  for (const unsigned int depth : hdmi.deepColourBits) bits.push_back(std::to_string(depth));
  if (!bits.empty()) texts.push_back(Join(bits, " or ") + " bits per colour");
  return texts.empty() ? "HDMI" : "HDMI: " + Join(texts);
}

std::string WriteSound(const TEdidFacts& facts) {
  std::vector<std::string> texts;
  for (const TAudioFormat& format : facts.audio) {
    texts.push_back(format.name + (format.channels ? " (" + std::to_string(*format.channels) + " channels)" : ""));
  }
  return Join(texts);
}

std::string Range(const TInstanceView& monitor, const char* min, const char* max) {
  return monitor.Number(max) != 0 ? monitor.Text(min) + " to " + monitor.TextWithUnit(max) : std::string();
}

/// Empty unless both sides are known: one alone is an aspect ratio.
std::string ReadSize(const TInstanceView& monitor) {
  if (!monitor.Has("HorizontalImageSize") || !monitor.Has("VerticalImageSize")) return std::string();
  return monitor.Size("HorizontalImageSize", "VerticalImageSize") + " " + monitor.Unit("HorizontalImageSize");
}

/// Empty for year 2245, a filler in the EDID that the plug-in turns into a date.
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

/// A fact, and how its text is made from an EDID and from an instance; null if one of them does not have it.
struct TSource {
  std::string TMonitorFacts::*fact;
  std::string (*fromEdid)(const TEdidFacts&);
  std::string (*fromInstance)(const TInstanceView&);
};

const TSource kSources[] = {
    {&TMonitorFacts::makerCode, [](const TEdidFacts& facts) { return facts.maker; },
     [](const TInstanceView& i) { return i.Text("MonitorManufacturer"); }},
    {&TMonitorFacts::model, WriteModel, [](const TInstanceView& i) { return i.Text("Name"); }},
    {&TMonitorFacts::serialNumber, WriteSerialNumber, ReadSerialNumber},
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
    {&TMonitorFacts::largestMode, WriteLargestMode, nullptr},
    {&TMonitorFacts::highestRate, WriteHighestRate, nullptr},
    {&TMonitorFacts::hdr, WriteHdr, nullptr},
    {&TMonitorFacts::variableRate, WriteVariableRate, nullptr},
    {&TMonitorFacts::link, WriteLink, nullptr},
    {&TMonitorFacts::sound, WriteSound, nullptr},
    {&TMonitorFacts::preferredWidth, [](TFacts f) { return f.preferredMode ? Write(f.preferredMode->width) : ""; },
     nullptr},
    {&TMonitorFacts::preferredHeight, [](TFacts f) { return f.preferredMode ? Write(f.preferredMode->height) : ""; },
     nullptr},
    {&TMonitorFacts::preferredRefresh,
     [](TFacts f) { return f.preferredMode ? WriteNumber(f.preferredMode->refresh) : ""; }, nullptr},
    {&TMonitorFacts::largestWidth, [](TFacts f) { return f.modes.empty() ? "" : Write(f.modes.front().width); },
     nullptr},
    {&TMonitorFacts::largestHeight, [](TFacts f) { return f.modes.empty() ? "" : Write(f.modes.front().height); },
     nullptr},
    {&TMonitorFacts::highestRefresh,
     [](TFacts f) { return f.modes.empty() ? "" : WriteNumber(FindFastest(f.modes, GetRate).refresh); }, nullptr},
    {&TMonitorFacts::hasHdr, [](TFacts f) { return std::string(HasHdr(f) ? "yes" : "no"); }, nullptr},
    {&TMonitorFacts::variableMin, [](TFacts f) { return f.refreshRange ? Write(f.refreshRange->min) : ""; }, nullptr},
    {&TMonitorFacts::variableMax,
     [](TFacts f) { return f.refreshRange && f.refreshRange->max ? Write(*f.refreshRange->max) : ""; }, nullptr},
    {&TMonitorFacts::width, [](TFacts f) { return f.imageSize ? Write(f.imageSize->width) : ""; }, nullptr},
    {&TMonitorFacts::height, [](TFacts f) { return f.imageSize ? Write(f.imageSize->height) : ""; }, nullptr},
    {&TMonitorFacts::inches, [](TFacts f) { return f.diagonalInches ? WriteDiagonal(*f.diagonalInches) : ""; },
     nullptr},
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
