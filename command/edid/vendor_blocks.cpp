#include <algorithm>
#include <cmath>
#include <iterator>

#include "command/edid/edid_draft.h"
#include "edid/cta_layout.h"
#include "edid/timings.h"

namespace cta = edid::cta;

namespace {

// HDMI.

void RaiseMaxTmds(unsigned int clock, THdmi& hdmi) {
  if (clock != 0) hdmi.maxTmdsClock = std::max(hdmi.maxTmdsClock.value_or(0), clock);
}

/// The video codes come after the latencies, which may be missing.
void ReadHdmiVideo(TBytes payload, TEdidDraft& draft) {
  const unsigned int fields = payload[cta::kHdmiFields];
  if ((fields & cta::kHdmiHasVideo) == 0) return;
  std::size_t position = cta::kHdmiFields + 1;
  const bool hasLatency = (fields & cta::kHdmiHasLatency) != 0;
  if (hasLatency) position += cta::kLatencySize;
  // Those of interlaced video exist only after the others.
  if (hasLatency && (fields & cta::kHdmiHasInterlacedLatency) != 0) position += cta::kLatencySize;
  const TBytes video = payload.From(position);
  const std::size_t count = video[cta::kHdmiVideoCodeCount] >> cta::kHdmiVideoCodeShift;
  for (const std::uint8_t code : video.Part(cta::kHdmiVideoCodes, count)) {
    draft.modes.Add(edid::FindHdmiVic(code), EModeSource::HdmiVic);
  }
}

void ReadHdmi(TBytes payload, TEdidDraft& draft) {
  THdmi& hdmi = draft.Hdmi();
  RaiseMaxTmds(payload[cta::kHdmiMaxTmds] * cta::kTmdsUnit, hdmi);
  for (const cta::TDeepColour& colour : cta::kDeepColours) {
    const bool isKnown = std::count(hdmi.deepColourBits.begin(), hdmi.deepColourBits.end(), colour.bits) != 0;
    if ((payload[cta::kHdmiColour] & colour.bit) != 0 && !isKnown) hdmi.deepColourBits.push_back(colour.bits);
  }
  std::sort(hdmi.deepColourBits.begin(), hdmi.deepColourBits.end());
  ReadHdmiVideo(payload, draft);
}

// FreeSync, HDR10+ and Dolby Vision.

void ReadAmd(TBytes payload, TEdidDraft& draft) {
  draft.OfferRange(ERangeSource::FreeSync, payload[cta::kFreeSyncMin], payload[cta::kFreeSyncMax]);
}

void ReadHdr10Plus(TBytes payload, TEdidDraft& draft) {
  if (payload.GetSize() > 0) draft.Hdr().hdr10Plus = std::to_string(payload[cta::kHdr10PlusVersion]);
}

void ReadDolby(TBytes payload, TEdidDraft& draft) {
  if (payload.GetSize() == 0) return;
  std::string& version = draft.Hdr().dolbyVision = "V";
  version += std::to_string(payload[cta::kDolbyVersion] >> cta::kDolbyVersionShift);
}

struct TVendorReader {
  unsigned int oui;
  void (*read)(TBytes payload, TEdidDraft& draft);
};

constexpr TVendorReader kVendorReaders[] = {
    {cta::kHdmi, ReadHdmi}, {cta::kHdmiForum, ReadForumBlock}, {cta::kAmd, ReadAmd}};
constexpr TVendorReader kVendorVideoReaders[] = {{cta::kHdr10Plus, ReadHdr10Plus}, {cta::kDolby, ReadDolby}};

template <std::size_t kCount>
void ReadByVendor(const TVendorReader (&readers)[kCount], TBytes payload, TEdidDraft& draft) {
  if (payload.GetSize() < cta::kOuiSize) return;
  const unsigned int oui = payload.Number(0, cta::kOuiSize);
  for (const TVendorReader& reader : readers) {
    if (reader.oui == oui) reader.read(payload.From(cta::kOuiSize), draft);
  }
}

constexpr unsigned int kLuminanceDecimals = 1000;

/// A code of 0 means unknown [CTA-861-I, 7.5.13].
std::optional<double> ReadLuminance(unsigned int code) {
  constexpr double lowest = 50;  // cd/m2
  constexpr double octave = 32;
  return code == 0 ? std::nullopt : std::optional<double>(lowest * std::exp2(code / octave));
}

}  // namespace

void ReadVendorBlock(TBytes payload, TEdidDraft& draft) { ReadByVendor(kVendorReaders, payload, draft); }

void ReadVendorVideoBlock(TBytes payload, TEdidDraft& draft) { ReadByVendor(kVendorVideoReaders, payload, draft); }

void ReadForumBlock(TBytes payload, TEdidDraft& draft) {
  THdmi& hdmi = draft.Hdmi();
  RaiseMaxTmds(payload[cta::kForumMaxTmds] * cta::kTmdsUnit, hdmi);
  const std::size_t link = payload[cta::kForumLink] >> cta::kForumLinkShift;
  if (link < std::size(cta::kFixedRateLinks)) draft.fixedRateLink = std::max(draft.fixedRateLink, link);
  hdmi.fixedRateLink = cta::kFixedRateLinks[draft.fixedRateLink];
  hdmi.hasCompression = hdmi.hasCompression || (payload[cta::kForumDsc] & cta::kForumDscBit) != 0;
  const unsigned int min = payload[cta::kForumVrrMin];
  const unsigned int upperBits = min & ~cta::kForumVrrMinBits;
  // A block that ends before the lower bits says nothing of the upper end.
  const unsigned int max = payload.GetSize() > cta::kForumVrrMax ? payload[cta::kForumVrrMax] | upperBits << 2 : 0;
  draft.OfferRange(ERangeSource::Hdmi, min & cta::kForumVrrMinBits, max);
}

void ReadHdrStatic(TBytes payload, TEdidDraft& draft) {
  if (payload.GetSize() <= cta::kTransfers + 1) return;
  THdr& hdr = draft.Hdr();
  AddNames(cta::kTransferNames, payload[cta::kTransfers], hdr.transfers);
  const std::optional<double> max = ReadLuminance(payload[cta::kMaxLuminance]);
  const std::optional<double> average = ReadLuminance(payload[cta::kMaxFrameAverageLuminance]);
  if (max) hdr.maxLuminance = RoundTo(*max, kLuminanceDecimals);
  if (average) hdr.maxFrameAverageLuminance = RoundTo(*average, kLuminanceDecimals);
  if (!max || payload.GetSize() <= cta::kMinLuminance) return;
  const double share = payload[cta::kMinLuminance] / 255.0;
  hdr.minLuminance = RoundTo(*max * share * share / 100, kLuminanceDecimals);
}
