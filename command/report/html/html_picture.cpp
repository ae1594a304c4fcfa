#include "command/report/html/html_picture.h"

#include <algorithm>

namespace {

constexpr int kWidth = 360;  // of a picture: what a phone shows without shrinking it
constexpr int kLine = 16;    // from one line of text to the next
constexpr int kGap = 12;

// Boxes of controllers and heads.
constexpr int kBoxWidth = 164;
constexpr int kPad = 8;  // between a box and its text
constexpr int kHeadX = kWidth - kBoxWidth - 1;
constexpr std::size_t kBoxColumns = 20;

// Monitors are in rows.
constexpr std::ptrdiff_t kPerRow = 2;
constexpr int kCellWidth = kWidth / kPerRow;
constexpr int kScreenSide = 150;  // of the largest monitor, its longer side
constexpr std::size_t kCellColumns = 26;
constexpr unsigned int kNeutralWidth = 40;  // cm
constexpr unsigned int kNeutralHeight = 30;

typedef std::vector<std::string> TLines;

int GetBoxHeight(const TLines& lines) { return 2 * kPad + kLine * static_cast<int>(lines.size()); }

/// The lines below each other, the first in bold. A line of wide letters is cut off at the width.
TMarkup MakeLines(TPoint corner, int width, const TLines& lines, std::size_t columns) {
  TMarkup markup;
  int bottom = 0;
  for (const std::string& line : lines) {
    const char* look = bottom == 0 ? "name" : "";
    bottom += kLine;
    markup += MakeSvgText({0, bottom - 4}, line, columns, look);
  }
  return MakeSvgClip(corner, width, bottom, markup);
}

TMarkup MakeBox(TPoint corner, const TLines& lines, const char* look) {
  return MakeSvgBox(corner, kBoxWidth, GetBoxHeight(lines), look) +
         MakeLines({corner.x + kPad, corner.y + kPad}, kBoxWidth - 2 * kPad, lines, kBoxColumns);
}

TLines DropEmpty(TLines lines) {
  lines.erase(std::remove(lines.begin(), lines.end(), std::string()), lines.end());
  return lines;
}

/// The name of a device, unless it only repeats the id.
std::string GetOwnName(const TInstanceView& device) {
  const std::string name = device.Text("Name");
  return name == device.Text("DeviceID") ? std::string() : name;
}

TLines DescribeController(const TInstanceView& controller) {
  return DropEmpty({controller.Text("DeviceID"), GetOwnName(controller), controller.Text("DisplayId")});
}

TLines DescribeHead(const TInstanceView& head) {
  const std::string depth =
      head.Has("CurrentBitsPerPixel") ? head.TextWithUnit("CurrentBitsPerPixel") + " per pixel" : "";
  return DropEmpty({"Head " + head.Text("HeadNumber"), head.Text("DeviceID"),
                    head.Size("CurrentHorizontalResolution", "CurrentVerticalResolution"), depth});
}

/// Draws the heads below each other from `top` on, and gives where they end. `from` is the side of their controller.
int DrawHeads(TMarkup& picture, const TInstances& heads, int top, const TPoint* from) {
  for (const TInstanceView& head : heads) {
    const TLines lines = DescribeHead(head);
    const TPoint side = {kHeadX, top + GetBoxHeight(lines) / 2};
    if (from != nullptr) picture += MakeSvgLine(*from, side, "link");
    picture += MakeBox({kHeadX, top}, lines, "head");
    top += GetBoxHeight(lines) + kGap;
  }
  return top;
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

TLines DescribeMonitor(const TMonitorView& view) {
  const TSize size = GetPhysicalSize(view);
  const std::string text = std::to_string(size.width) + " x " + std::to_string(size.height) + " cm";
  TLines lines = DropEmpty({view.id, view.monitor ? GetOwnName(*view.monitor) : std::string()});
  if (!size.isKnown) lines.emplace_back("size not known, drawn as");
  lines.push_back(text);
  return lines;
}

unsigned int GetLongestSide(const std::vector<TMonitorView>& monitors) {
  unsigned int longest = 1;
  for (const TMonitorView& monitor : monitors) {
    const TSize size = GetPhysicalSize(monitor);
    longest = std::max({longest, size.width, size.height});
  }
  return longest;
}

/// The picture's units for that number of cm.
int Scale(unsigned int length, unsigned int longest) {
  return std::max(2, static_cast<int>(length * kScreenSide / longest));
}

/// Draws the monitors beside each other from `top` on, upon a common floor, and gives where they end.
int DrawRow(TMarkup& picture, const std::vector<TMonitorView>& monitors, int top, unsigned int longest) {
  int floor = top;
  for (const TMonitorView& monitor : monitors) {
    floor = std::max(floor, top + Scale(GetPhysicalSize(monitor).height, longest));
  }
  int left = 1;
  int bottom = floor;
  for (const TMonitorView& monitor : monitors) {
    const TSize size = GetPhysicalSize(monitor);
    const int height = Scale(size.height, longest);
    const TLines lines = DescribeMonitor(monitor);
    picture += MakeSvgBox({left, floor - height}, Scale(size.width, longest), height,
                          size.isKnown ? "monitor" : "monitor unknown");
    picture += MakeLines({left, floor + 2}, kCellWidth - kPad, lines, kCellColumns);
    bottom = std::max(bottom, floor + 2 + kLine * static_cast<int>(lines.size()));
    left += kCellWidth;
  }
  return bottom + kGap;
}

}  // namespace

TMarkup MakeVideoPicture(const TRequestView& view) {
  TMarkup picture;
  int top = 1;
  for (const auto& [controller, heads] : view.GetControllers()) {
    const TLines lines = DescribeController(controller);
    const TPoint side = {1 + kBoxWidth, top + GetBoxHeight(lines) / 2};
    const int bottom = DrawHeads(picture, heads, top, &side);
    picture += MakeBox({1, top}, lines, "controller");
    top = std::max(bottom, top + GetBoxHeight(lines) + kGap);
  }
  top = DrawHeads(picture, view.GetLooseHeads(), top, nullptr);
  return MakeSvg(kWidth, top - kGap + 1, "The video controllers with their heads", picture);
}

TMarkup MakeMonitorsPicture(const TRequestView& view) {
  const std::vector<TMonitorView>& monitors = view.GetMonitors();
  const unsigned int longest = GetLongestSide(monitors);
  TMarkup picture;
  int top = 1;
  for (auto first = monitors.begin(); first != monitors.end();) {
    const auto end = first + std::min(kPerRow, monitors.end() - first);
    top = DrawRow(picture, {first, end}, top, longest);
    first = end;
  }
  return MakeSvg(kWidth, top - kGap + 1, "The monitors, to the scale of their pictures", picture);
}
