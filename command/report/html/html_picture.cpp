#include "command/report/html/html_picture.h"

#include <algorithm>
#include <utility>

#include "command/report/device_rows.h"

namespace {

constexpr int kScreenSide = 150;  // of the largest monitor, its longer side
constexpr int kStroke = 2;        // of a monitor
constexpr std::size_t kPictureColumns = 64;
constexpr unsigned int kNeutralWidth = 40;  // cm
constexpr unsigned int kNeutralHeight = 30;

/// The names below each other, the first in bold, without those that are empty; then the rows.
TMarkup MakeLines(const std::vector<std::string>& names, const std::vector<TOutputRow>& rows) {
  TMarkup lines;
  for (const std::string& name : names) {
    if (!name.empty()) lines += MakeElement("p", lines.IsEmpty() ? "name" : "", MakeShortText(name, kPictureColumns));
  }
  for (const auto& [label, text] : rows) {
    lines += MakeElement(
        "p", MakeElement("span", "soft", label) + " " + MakeElement("span", MakeShortText(text, kPictureColumns)));
  }
  return lines;
}

/// The name of a device, unless it only repeats the id.
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

struct TSize {
  unsigned int width, height;  // cm
  bool isKnown;
};

TSize GetPhysicalSize(const TMonitorView& view) {
  if (view.monitor) {
    const TSize size = {view.monitor->Number("HorizontalImageSize"), view.monitor->Number("VerticalImageSize"), true};
    if (size.width > 0 && size.height > 0) return size;
  }
  return {kNeutralWidth, kNeutralHeight, false};
}

/// The picture's units for that number of cm.
int Scale(unsigned int length, unsigned int longest) {
  return std::max(2, static_cast<int>(length * kScreenSide / longest));
}

/// The screen on the floor of a picture that is `height` high.
TMarkup MakeScreen(const TSize& size, unsigned int longest, int height) {
  const int screen = Scale(size.height, longest);
  const char* const look = size.isKnown ? "monitor" : "monitor unknown";
  const TMarkup box =
      MakeSvgBox({kStroke / 2, height - screen - kStroke / 2}, Scale(size.width, longest), screen, look);
  return MakeSvg(kScreenSide + kStroke, height, box);
}

TMarkup DescribeMonitor(const TMonitorView& view, const TSize& size, const std::string& id) {
  const std::string name = view.monitor ? GetOwnName(*view.monitor) : std::string();
  TMarkup lines = MakeElement("p", "name", MakeLink(id, Shorten(view.id, kPictureColumns)));
  if (!name.empty()) lines += MakeElement("p", MakeShortText(name, kPictureColumns));
  if (!size.isKnown) lines += MakeElement("p", "size not known, drawn as");
  return lines + MakeElement("p", std::to_string(size.width) + " x " + std::to_string(size.height) + " cm");
}

}  // namespace

TMarkup MakeVideoPictures(const TRequestView& view) {
  TMarkup pictures;
  for (const auto& [controller, heads] : view.GetControllers()) {
    pictures += MakeElement("div", "card", MakeController(controller) + MakeHeads(heads));
  }
  return pictures + MakeHeads(view.GetLooseHeads());
}

TMarkup MakeMonitorPictures(const TRequestView& view, const std::string& id) {
  unsigned int longest = 1;
  unsigned int highest = 1;
  for (const TMonitorView& monitor : view.GetMonitors()) {
    const TSize size = GetPhysicalSize(monitor);
    longest = std::max({longest, size.width, size.height});
    highest = std::max(highest, size.height);
  }
  const int height = Scale(highest, longest) + kStroke;
  TMarkup items;
  std::size_t number = 0;
  for (const TMonitorView& monitor : view.GetMonitors()) {
    const TSize size = GetPhysicalSize(monitor);
    items += MakeElement(
        "li", MakeScreen(size, longest, height) + DescribeMonitor(monitor, size, id + std::to_string(++number)));
  }
  return MakeElement("ul", "monitors", std::move(items));
}
