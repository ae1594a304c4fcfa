#include "command/report/html/html_picture.h"

#include <algorithm>
#include <utility>

#include "command/report/device_rows.h"
#include "command/report/monitor_facts.h"

namespace {

constexpr int kScreenSide = 150;  // the longer side of the largest monitor
constexpr int kStroke = 2;        // a monitor's outline
constexpr std::size_t kPictureColumns = 64;
constexpr int kHalfLetter = 4;               // half the height of a letter in a picture
constexpr unsigned int kNeutralWidth = 400;  // mm, for a monitor of unknown size
constexpr unsigned int kNeutralHeight = 300;

/// The names that are not empty, one below the other, the first in bold; then the rows.
TMarkup MakeLines(const std::vector<std::string>& names, const std::vector<TOutputRow>& rows) {
  TMarkup lines;
  for (const std::string& name : names) {
    if (!name.empty()) lines += MakeElement("p", lines.IsEmpty() ? "name" : "", MakeShortText(name, kPictureColumns));
  }
  for (const TOutputRow& row : rows) {
    lines += MakeElement("p", MakeElement("span", "soft", row.label) + " " +
                                  MakeElement("span", MakeShortText(row.text, kPictureColumns)));
  }
  return lines;
}

/// The name of a device; empty if it only repeats the id.
std::string GetOwnName(const TInstanceView& device) {
  const std::string name = device.Text("Name");
  return name == device.Text("DeviceID") ? std::string() : name;
}

TMarkup MakeController(const TInstanceView& controller) {
  return MakeElement("div", "controller",
                     MakeLines({controller.Text("DeviceID"), GetOwnName(controller)}, DescribeController(controller)));
}

TMarkup MakeHead(const TInstanceView& head) {
  return MakeElement("li", MakeLines({"Head " + head.Text("HeadNumber"), head.Text("DeviceID")}, DescribeHead(head)));
}

TMarkup MakeHeads(const TInstances& heads) {
  TMarkup items;
  for (const TInstanceView& head : heads) items += MakeHead(head);
  return heads.empty() ? items : MakeElement("ul", "heads", std::move(items));
}

/// A physical size in mm.
struct TSize {
  unsigned int width, height;
  bool isKnown;
};

/// A monitor, and what the picture shows of it.
struct TScreen {
  const TMonitorView& view;
  std::string name;
  TMonitorFacts facts;
  TSize size;
};

/// The size from the EDID, or else from the instance.
TSize GetPhysicalSize(const TOutput* output, const TInstanceView* monitor) {
  if (output != nullptr && output->facts && output->facts->imageSize) {
    return {output->facts->imageSize->width, output->facts->imageSize->height, true};
  }
  if (monitor != nullptr) {
    const TSize size = {10 * monitor->Number("HorizontalImageSize"), 10 * monitor->Number("VerticalImageSize"), true};
    if (size.width > 0 && size.height > 0) return size;
  }
  return {kNeutralWidth, kNeutralHeight, false};
}

std::vector<TScreen> GetScreens(const TAnswer& answer, const TRequestView& view) {
  std::vector<TScreen> screens;
  for (const TMonitorView& monitor : view.GetMonitors()) {
    const TOutput* const output = FindOutput(answer, monitor.id);
    const TInstanceView* const instance = monitor.monitor ? &*monitor.monitor : nullptr;
    const TMonitorFacts facts = DescribeMonitor(output, instance, TMakerNames());
    screens.push_back({monitor, instance == nullptr ? "" : facts.model, facts, GetPhysicalSize(output, instance)});
  }
  return screens;
}

/// Converts mm to the picture's units. `longest`: the longest side of all monitors, in mm.
int Scale(unsigned int length, unsigned int longest) {
  return std::max(2, static_cast<int>(length * kScreenSide / longest));
}

/// The screen at the bottom of a picture that is `height` high.
TMarkup MakeScreen(const TScreen& screen, unsigned int longest, int height) {
  const int width = Scale(screen.size.width, longest);
  const int top = height - Scale(screen.size.height, longest) - kStroke / 2;
  const char* const look = screen.size.isKnown ? "monitor" : "monitor unknown";
  const std::string diagonal = screen.facts.inches.empty() ? "?" : screen.facts.inches + "\u2033";
  return MakeSvg(kScreenSide + kStroke, height,
                 MakeSvgBox({kStroke / 2, top}, width, Scale(screen.size.height, longest), look) +
                     MakeSvgText({kStroke / 2 + width / 2, (top + height) / 2 + kHalfLetter}, diagonal, "middle"));
}

TMarkup DescribeScreen(const TScreen& screen, const std::string& id) {
  const std::string neutral = std::to_string(kNeutralWidth) + " x " + std::to_string(kNeutralHeight) + " mm";
  TMarkup lines = MakeElement("p", "name", MakeLink(id, Shorten(screen.view.id, kPictureColumns)));
  const bool hasOwnName = !screen.name.empty() && screen.name != screen.view.id;
  if (hasOwnName) lines += MakeElement("p", MakeShortText(screen.name, kPictureColumns));
  if (!screen.size.isKnown) return lines + MakeElement("p", "size not known, drawn as " + neutral);
  return lines + MakeElement("p", screen.facts.size);
}

}  // namespace

TMarkup MakeVideoPictures(const TRequestView& view) {
  TMarkup pictures;
  for (const auto& [controller, heads] : view.GetControllers()) {
    pictures += MakeElement("div", "card", MakeController(controller) + MakeHeads(heads));
  }
  return pictures + MakeHeads(view.GetLooseHeads());
}

TMarkup MakeMonitorPictures(const TAnswer& answer, const TRequestView& view, const std::string& id) {
  const std::vector<TScreen> screens = GetScreens(answer, view);
  unsigned int longest = 1;
  unsigned int highest = 1;
  for (const TScreen& screen : screens) {
    longest = std::max({longest, screen.size.width, screen.size.height});
    highest = std::max(highest, screen.size.height);
  }
  const int height = Scale(highest, longest) + kStroke;
  TMarkup items;
  std::size_t number = 0;
  for (const TScreen& screen : screens) {
    items +=
        MakeElement("li", MakeScreen(screen, longest, height) + DescribeScreen(screen, id + std::to_string(++number)));
  }
  return MakeElement("ul", "monitors", std::move(items));
}
