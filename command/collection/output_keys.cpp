#include "command/collection/output_keys.h"

#include <cstring>
#include <optional>
#include <type_traits>

#include "command/base/base64.h"
#include "command/base/text_encoding.h"
#include "command/edid/serial_rules.h"
#include "command/edid/sha256.h"

namespace {

typedef const TOutput& TRef;

// Make the value of a key from a fact; an unknown fact has no value.

TNumber MakeNumber(unsigned int number) { return {std::to_string(number)}; }

/// With that many decimals.
TNumber MakeNumber(double number, int decimals) { return {WriteFixed(number, decimals)}; }

/// With as many decimals as it needs, at most three.
TNumber MakeNumber(double number) { return {WriteNumber(number)}; }

TKeyValue MakeValue(bool value) { return value; }
TKeyValue MakeValue(unsigned int number) { return MakeNumber(number); }
TKeyValue MakeValue(double number) { return MakeNumber(number); }
TKeyValue MakeValue(const std::string& text) { return text.empty() ? TKeyValue() : TKeyValue(text); }
TKeyValue MakeValue(const char* text) { return MakeValue(std::string(text)); }

TKeyValue MakeValue(ESerialSource source) { return MakeValue(GetName(source)); }

template <typename T>
TKeyValue MakeValue(const std::optional<T>& value) {
  return value ? MakeValue(*value) : TKeyValue();
}

template <typename T>
TKeyValue MakeValue(const std::vector<T>& values) {
  if (values.empty()) return TKeyValue();
  if constexpr (std::is_arithmetic_v<T>) {
    std::vector<TNumber> numbers;
    numbers.reserve(values.size());
    for (const T value : values) numbers.push_back(MakeNumber(value));
    return numbers;
  } else {
    return std::vector<std::string>(values.begin(), values.end());
  }
}

template <typename T>
struct TIsOptional : std::false_type {};

template <typename T>
struct TIsOptional<std::optional<T>> : std::true_type {};

/// The value of a member of an object, or of a member of that member, and so on; none if one of them is unknown.
template <auto member, auto... rest, typename T>
TKeyValue Reach(const T& object) {
  const auto& value = object.*member;
  if constexpr (sizeof...(rest) == 0) {
    return MakeValue(value);
  } else if constexpr (TIsOptional<std::decay_t<decltype(value)>>::value) {
    return value ? Reach<rest...>(*value) : TKeyValue();
  } else {
    return Reach<rest...>(value);
  }
}

const TEdidFacts* GetFacts(TRef output) { return output.facts && output.facts->isVersion1 ? &*output.facts : nullptr; }

template <auto... members>
TKeyValue Own(TRef output, std::size_t) {
  return Reach<members...>(output);
}

/// A fact of an EDID of any version.
template <auto... members>
TKeyValue OfAnyEdid(TRef output, std::size_t) {
  return output.facts ? Reach<members...>(*output.facts) : TKeyValue();
}

/// A fact of an EDID of version 1.
template <auto... members>
TKeyValue Fact(TRef output, std::size_t) {
  const TEdidFacts* const facts = GetFacts(output);
  return facts == nullptr ? TKeyValue() : Reach<members...>(*facts);
}

template <auto... members>
TKeyValue OfMode(TRef output, std::size_t element) {
  return Reach<members...>(output.facts->modes[element]);
}

template <auto... members>
TKeyValue OfAudio(TRef output, std::size_t element) {
  return Reach<members...>(output.facts->audio[element]);
}

TKeyValue Rate(const TEdidMode& mode) { return MakeNumber(mode.refresh, 3); }

template <auto member>
TKeyValue OfSerial(TRef output, std::size_t) {
  const TEdidFacts* const facts = GetFacts(output);
  return facts != nullptr && facts->serial ? Reach<member>(*facts->serial) : TKeyValue();
}

/// The year in which the monitor was made, or the model's year.
template <bool isModel>
TKeyValue GetYear(TRef output, std::size_t) {
  const TEdidFacts* const facts = GetFacts(output);
  const bool hasYear = facts != nullptr && facts->made && facts->made->isModelYear == isModel;
  return hasYear ? MakeValue(facts->made->year) : TKeyValue();
}

/// True, or no value.
TKeyValue IfTrue(bool value) { return value ? TKeyValue(true) : TKeyValue(); }

TKeyValue GetYcbcr420(const TListedMode& mode) {
  if (mode.ycbcr420 == EYcbcr420::No) return TKeyValue();
  return std::string(mode.ycbcr420 == EYcbcr420::Only ? "only" : "also");
}

std::size_t CountModes(TRef output) { return GetFacts(output) == nullptr ? 0 : output.facts->modes.size(); }
std::size_t CountAudio(TRef output) { return GetFacts(output) == nullptr ? 0 : output.facts->audio.size(); }

constexpr struct {
  const char* name;
  std::size_t (*count)(TRef output);
} kArrays[] = {{"modes", CountModes}, {"audio", CountAudio}};

constexpr const char* kDeviceId = "deviceID";

constexpr TOutputKey kKeys[] = {
    {"", "unit", EKeyType::kInteger, "", "The unit of the video BIOS that the output is served as.",
     Own<&TOutput::unit>},
    {"", "connector", EKeyType::kString, "", "The output that the EDID was read from, such as `card0-DP-1`.",
     Own<&TOutput::connector>},
    {"", "path", EKeyType::kString, "",
     "Where that output is: the bus address of its card and the connector, such as `0000:01:00.0/DP-1`.",
     Own<&TOutput::path>},
    {"", kDeviceId, EKeyType::kString, "",
     "The DeviceID of the instance in the answer that stands for the monitor; null when there is none.",
     [](TRef output, std::size_t) { return output.deviceId ? TKeyValue(*output.deviceId) : TKeyValue(); }},
    {"", "reason", EKeyType::kString, "", "Why there is no such instance.",
     [](TRef output, std::size_t) { return output.deviceId ? TKeyValue() : MakeValue(GetReason(output)); }},
    {"", "identity", EKeyType::kString, "",
     "Identifies the monitor: maker, product code, date and serial number, or the beginning of the hash if it has no "
     "serial number.",
     Own<&TOutput::identity, &TIdentity::text>, true},
    {"", "identityFrom", EKeyType::kString, "",
     "What decides the identity: `serial`, `number` (of the header), `edid` (the hash) or `connector` (of byte-equal "
     "EDIDs).",
     Own<&TOutput::identity, &TIdentity::from>, true},
    {"", "serial", EKeyType::kString, "",
     "The serial number of the monitor, as printed on its case where a rule for the maker is known.",
     OfSerial<&TSerial::serial>, true},
    {"", "serialFrom", EKeyType::kString, "", "Where it comes from: `rule`, `text` or `number` (of the header).",
     OfSerial<&TSerial::source>, true},
    {"", "alternativeSerial", EKeyType::kString, "", "Another serial number by which the same monitor may be known.",
     OfSerial<&TSerial::alternative>, true},
    {"", "maker", EKeyType::kString, "", "The three letters of the maker.", Fact<&TEdidFacts::maker>},
    {"", "productCode", EKeyType::kInteger, "", "The maker's own number of the model.", Fact<&TEdidFacts::productCode>},
    {"", "serialNumber", EKeyType::kInteger, "",
     "The serial number in the EDID's header, unless it is one of the fillers 0 and 0x01010101.",
     Fact<&TEdidFacts::serialNumber>, true},
    {"", "serialText", EKeyType::kString, "", "The serial number as a text.", Fact<&TEdidFacts::serialText>, true},
    {"", "name", EKeyType::kString, "", "The name of the model.", Fact<&TEdidFacts::name>},
    {"", "texts", EKeyType::kStrings, "", "Other texts, such as the part number of a panel.", Fact<&TEdidFacts::texts>},
    {"", "version", EKeyType::kString, "", "The version of the EDID.", Fact<&TEdidFacts::version>},
    {"made", "week", EKeyType::kInteger, "", "The week of manufacture, 1 to 53.",
     Fact<&TEdidFacts::made, &TMade::week>},
    {"made", "year", EKeyType::kInteger, "", "The year of manufacture.", GetYear<false>},
    {"made", "modelYear", EKeyType::kInteger, "",
     "The year of the model, where the EDID does not say when the monitor was made.", GetYear<true>},
    {"", "sha256", EKeyType::kString, "", "The SHA-256 hash of the whole EDID, hex in lower case.",
     [](TRef output, std::size_t) { return output.edid.empty() ? TKeyValue() : MakeValue(HashSha256(output.edid)); },
     true},
    {"", "checksums", EKeyType::kBoolean, "", "True when the checksum of every block is right.",
     OfAnyEdid<&TEdidFacts::hasValidChecksums>},
    {"", "extensions", EKeyType::kInteger, "", "How many blocks follow the first.", OfAnyEdid<&TEdidFacts::extensions>},
    {"", "interface", EKeyType::kString, "",
     "The digital interface: `DVI`, `HDMI-a`, `HDMI-b`, `MDDI` or `DisplayPort`.",
     Fact<&TEdidFacts::input, &TVideoInput::interface>},
    {"", "digital", EKeyType::kBoolean, "", "True for a digital input, false for an analogue one.",
     Fact<&TEdidFacts::input, &TVideoInput::isDigital>},
    {"", "bitsPerColour", EKeyType::kInteger, "bits", "The depth of each colour.",
     Fact<&TEdidFacts::input, &TVideoInput::colourBits>},
    {"imageMillimetres", "width", EKeyType::kInteger, "mm", "The width of the image.",
     Fact<&TEdidFacts::imageSize, &TImageSize::width>},
    {"imageMillimetres", "height", EKeyType::kInteger, "mm", "The height of the image.",
     Fact<&TEdidFacts::imageSize, &TImageSize::height>},
    {"", "aspectRatio", EKeyType::kReal, "", "The width of the image for each unit of its height, with two decimals.",
     Fact<&TEdidFacts::aspectRatio>},
    {"", "diagonalInches", EKeyType::kReal, "inches", "The diagonal of the image, with one decimal.",
     [](TRef output, std::size_t) {
       const TEdidFacts* const facts = GetFacts(output);
       return facts != nullptr && facts->diagonalInches ? TKeyValue(MakeNumber(*facts->diagonalInches, 1))
                                                        : TKeyValue();
     }},
    {"preferredMode", "width", EKeyType::kInteger, "pixels",
     "The width of the mode that the monitor prefers: its first detailed timing, where that comes first.",
     Fact<&TEdidFacts::preferredMode, &TEdidMode::width>},
    {"preferredMode", "height", EKeyType::kInteger, "pixels", "The height of its whole picture.",
     Fact<&TEdidFacts::preferredMode, &TEdidMode::height>},
    {"preferredMode", "refresh", EKeyType::kReal, "Hz",
     "Its rate with three decimals, of fields when it is interlaced.",
     [](TRef output, std::size_t) {
       const TEdidFacts* const facts = GetFacts(output);
       return facts != nullptr && facts->preferredMode ? Rate(*facts->preferredMode) : TKeyValue();
     }},
    {"preferredMode", "interlaced", EKeyType::kBoolean, "", "True when it is interlaced; else left out.",
     [](TRef output, std::size_t) {
       const TEdidFacts* const facts = GetFacts(output);
       return facts != nullptr && facts->preferredMode ? IfTrue(facts->preferredMode->isInterlaced) : TKeyValue();
     }},
    {"modes", "width", EKeyType::kInteger, "pixels",
     "The width of a mode. Each mode comes once: the largest first, then by rate.", OfMode<&TEdidMode::width>},
    {"modes", "height", EKeyType::kInteger, "pixels", "The height of its whole picture.", OfMode<&TEdidMode::height>},
    {"modes", "refresh", EKeyType::kReal, "Hz", "Its rate with three decimals, of fields when it is interlaced.",
     [](TRef output, std::size_t element) { return Rate(output.facts->modes[element]); }},
    {"modes", "interlaced", EKeyType::kBoolean, "", "True when it is interlaced; else left out.",
     [](TRef output, std::size_t element) { return IfTrue(output.facts->modes[element].isInterlaced); }},
    {"modes", "ycbcr420", EKeyType::kString, "",
     "`only` or `also`: works with YCbCr 4:2:0 sampling only, or with that too.",
     [](TRef output, std::size_t element) { return GetYcbcr420(output.facts->modes[element]); }},
    {"modes", "from", EKeyType::kString, "",
     "The best source that has it: `detailed`, `displayid`, `cta detailed`, `vic`, `hdmi vic`, `cvt`, `standard` or "
     "`established`.",
     [](TRef output, std::size_t element) { return MakeValue(GetName(output.facts->modes[element].source)); }},
    {"modes", "inClasses", EKeyType::kBoolean, "",
     "True when a resolution of the monitor in the answer has its size and its rate in whole Hz; left out where "
     "resolutions were not asked for.",
     [](TRef output, std::size_t element) {
       return output.resolutions ? TKeyValue(IsInClasses(output, output.facts->modes[element])) : TKeyValue();
     }},
    {"limits", "minHz", EKeyType::kInteger, "Hz", "The lowest rate of fields.",
     Fact<&TEdidFacts::limits, &TRangeLimits::fields, &TRates::min>},
    {"limits", "maxHz", EKeyType::kInteger, "Hz", "The highest rate of fields.",
     Fact<&TEdidFacts::limits, &TRangeLimits::fields, &TRates::max>},
    {"limits", "minKHz", EKeyType::kInteger, "kHz", "The lowest rate of lines.",
     Fact<&TEdidFacts::limits, &TRangeLimits::lines, &TRates::min>},
    {"limits", "maxKHz", EKeyType::kInteger, "kHz", "The highest rate of lines.",
     Fact<&TEdidFacts::limits, &TRangeLimits::lines, &TRates::max>},
    {"limits", "maxClockMHz", EKeyType::kInteger, "MHz", "The highest pixel clock.",
     Fact<&TEdidFacts::limits, &TRangeLimits::pixelClock>},
    {"refreshRange", "min", EKeyType::kInteger, "Hz", "The lowest rate at which the monitor can vary.",
     Fact<&TEdidFacts::refreshRange, &TRefreshRange::min>},
    {"refreshRange", "max", EKeyType::kInteger, "Hz", "The highest rate at which the monitor can vary.",
     Fact<&TEdidFacts::refreshRange, &TRefreshRange::max>},
    {"refreshRange", "from", EKeyType::kString, "", "Which block gives the range: `FreeSync`, `HDMI` or `DisplayID`.",
     Fact<&TEdidFacts::refreshRange, &TRefreshRange::from>},
    {"hdr", "transfers", EKeyType::kStrings, "", "The transfer functions: `SDR`, `HDR`, `PQ`, `HLG`.",
     Fact<&TEdidFacts::hdr, &THdr::transfers>},
    {"hdr", "maxLuminance", EKeyType::kReal, "cd/m2", "The desired maximum luminance.",
     Fact<&TEdidFacts::hdr, &THdr::maxLuminance>},
    {"hdr", "maxFrameAverageLuminance", EKeyType::kReal, "cd/m2",
     "The desired maximum of the average luminance of a frame.",
     Fact<&TEdidFacts::hdr, &THdr::maxFrameAverageLuminance>},
    {"hdr", "minLuminance", EKeyType::kReal, "cd/m2", "The desired minimum luminance.",
     Fact<&TEdidFacts::hdr, &THdr::minLuminance>},
    {"hdr", "hdr10Plus", EKeyType::kString, "", "The version of HDR10+.", Fact<&TEdidFacts::hdr, &THdr::hdr10Plus>},
    {"hdr", "dolbyVision", EKeyType::kString, "", "The version of Dolby Vision.",
     Fact<&TEdidFacts::hdr, &THdr::dolbyVision>},
    {"", "colorimetry", EKeyType::kStrings, "", "The colour spaces.", Fact<&TEdidFacts::colorimetry>},
    {"audio", "format", EKeyType::kString, "", "An audio format.", OfAudio<&TAudioFormat::name>},
    {"audio", "channels", EKeyType::kInteger, "", "How many channels it has at most.",
     OfAudio<&TAudioFormat::channels>},
    {"audio", "ratesKHz", EKeyType::kReals, "kHz", "Its sample rates.", OfAudio<&TAudioFormat::sampleRates>},
    {"audio", "bits", EKeyType::kIntegers, "bits", "Its sample sizes.", OfAudio<&TAudioFormat::sampleSizes>},
    {"", "speakers", EKeyType::kStrings, "", "The loudspeakers, such as `FL/FR`.", Fact<&TEdidFacts::speakers>},
    {"hdmi", "maxTmdsMHz", EKeyType::kInteger, "MHz", "The highest TMDS character rate.",
     Fact<&TEdidFacts::hdmi, &THdmi::maxTmdsClock>},
    {"hdmi", "frl", EKeyType::kString, "", "The fastest fixed rate link, such as `4 lanes at 12 Gbps`.",
     Fact<&TEdidFacts::hdmi, &THdmi::fixedRateLink>},
    {"hdmi", "dsc", EKeyType::kBoolean, "", "True with Display Stream Compression; else left out.",
     [](TRef output, std::size_t) {
       const TEdidFacts* const facts = GetFacts(output);
       return IfTrue(facts != nullptr && facts->hdmi && facts->hdmi->hasCompression);
     }},
    {"hdmi", "deepColourBits", EKeyType::kIntegers, "bits", "The depths of each colour beyond 8.",
     Fact<&TEdidFacts::hdmi, &THdmi::deepColourBits>},
    {"tile", "columns", EKeyType::kInteger, "",
     "How many columns of tiles the display has that this monitor is a part of.",
     Fact<&TEdidFacts::tile, &TTile::columns>},
    {"tile", "rows", EKeyType::kInteger, "", "How many rows of tiles that display has.",
     Fact<&TEdidFacts::tile, &TTile::rows>},
    {"tile", "column", EKeyType::kInteger, "", "The column of this tile, from 0.",
     Fact<&TEdidFacts::tile, &TTile::column>},
    {"tile", "row", EKeyType::kInteger, "", "The row of this tile, from 0.", Fact<&TEdidFacts::tile, &TTile::row>},
    {"tile", "width", EKeyType::kInteger, "pixels", "The width of this tile.", Fact<&TEdidFacts::tile, &TTile::width>},
    {"tile", "height", EKeyType::kInteger, "pixels", "The height of this tile.",
     Fact<&TEdidFacts::tile, &TTile::height>},
    {"", "contradictions", EKeyType::kStrings, "",
     "A sentence for each place where the EDID disagrees with itself or its standard.",
     Fact<&TEdidFacts::contradictions>},
    {"", "edid", EKeyType::kString, "", "The whole EDID in base64.",
     [](TRef output,
        std::size_t) { return MakeValue(EncodeBase64(std::string(output.edid.begin(), output.edid.end()))); },
     true},
};

/// Null if the group is no array.
auto FindCount(const char* group) -> std::size_t (*)(TRef) {
  for (const auto& array : kArrays) {
    if (std::strcmp(array.name, group) == 0) return array.count;
  }
  return nullptr;
}

std::vector<TKeyGroup> MakeKeyGroups() {
  std::vector<TKeyGroup> groups;
  for (const TOutputKey& key : kKeys) {
    const bool isMember = *key.group != '\0';
    const bool isNext = isMember && !groups.empty() && std::strcmp(groups.back().name, key.group) == 0;
    if (!isNext) groups.push_back({key.group, FindCount(key.group), {}});
    groups.back().keys.push_back(&key);
  }
  return groups;
}

}  // namespace

const std::vector<TKeyGroup>& GetKeyGroups() {
  static const std::vector<TKeyGroup> groups = MakeKeyGroups();
  return groups;
}

bool IsAlwaysThere(const TOutputKey& key) {
  return std::strcmp(key.name, "unit") == 0 || std::strcmp(key.name, kDeviceId) == 0;
}

std::string GetName(EKeyType type) {
  constexpr const char* names[] = {"boolean", "integer", "number", "string", "integer[]", "number[]", "string[]"};
  return names[static_cast<std::size_t>(type)];
}

std::string MakeKeyTable() {
  std::string table = "| key | type | unit | what |\n|---|---|---|---|\n";
  for (const TKeyGroup& group : GetKeyGroups()) {
    const std::string object =
        *group.name == '\0' ? "" : group.name + std::string(group.count != nullptr ? "[]." : ".");
    for (const TOutputKey* key : group.keys) {
      table +=
          "| `" + object + key->name + "` | " + GetName(key->type) + " | " + key->unit + " | " + key->meaning + " |\n";
    }
  }
  return table;
}
