#include "command/report/html/html_picture.h"

#include <algorithm>

namespace {

constexpr int kWidth = 346;  // of a picture of controllers: what a phone shows without shrinking it
constexpr int kLine = 16;    // from one line of text to the next
constexpr int kGap = 12;
constexpr int kTop = 1;  // room for the stroke of the first box

// Boxes of controllers and heads.
constexpr int kBoxWidth = 164;
constexpr int kPad = 8;  // between a box and its text
constexpr int kHeadX = kWidth - kBoxWidth - 1;
constexpr std::size_t kBoxColumns = 20;

constexpr int kScreenSide = 150;  // of the largest monitor, its longer side
constexpr int kStroke = 2;        // of a monitor
constexpr std::size_t kNameColumns = 40;
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

/// Draws the heads below each other, and gives where they end. `from` is the side of their controller, or null.
int DrawHeads(TMarkup& picture, const TInstances& heads, const TPoint* from) {
  int top = kTop;
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
  return MakeSvg(kScreenSide + kStroke, height, "", box);
}

TMarkup DescribeMonitor(const TMonitorView& view, const TSize& size, const std::string& id) {
  const std::string name = view.monitor ? GetOwnName(*view.monitor) : std::string();
  TMarkup lines = MakeElement("p", "name", MakeLink(id, Shorten(view.id, kNameColumns)));
  if (!name.empty()) lines += MakeElement("p", MakeShortText(name, kNameColumns));
  if (!size.isKnown) lines += MakeElement("p", "size not known, drawn as");
  return lines + MakeElement("p", std::to_string(size.width) + " x " + std::to_string(size.height) + " cm");
}

TMarkup MakeVideoPicture(const TMarkup& picture, int bottom, const std::string& title) {
  return MakeSvg(kWidth, bottom - kGap + 1, title, picture);
}

}  // namespace

TMarkup MakeVideoPictures(const TRequestView& view) {
  TMarkup pictures;
  for (const auto& [controller, heads] : view.GetControllers()) {
    const TLines lines = DescribeController(controller);
    const int boxBottom = kTop + GetBoxHeight(lines) + kGap;
    const TPoint side = {1 + kBoxWidth, kTop + GetBoxHeight(lines) / 2};
    TMarkup picture;
    const int headsBottom = DrawHeads(picture, heads, &side);
    picture += MakeBox({1, kTop}, lines, "controller");
    pictures += MakeVideoPicture(picture, std::max(boxBottom, headsBottom), "A video controller with its heads");
  }
  if (view.GetLooseHeads().empty()) return pictures;
  TMarkup picture;
  const int bottom = DrawHeads(picture, view.GetLooseHeads(), nullptr);
  return pictures + MakeVideoPicture(picture, bottom, "Heads without a video controller");
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
