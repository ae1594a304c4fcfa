#include "command/report/html/html_plot.h"

#include <algorithm>
#include <map>
#include <set>

namespace {

// The plot lies at the left, one label for each point at the right: so no two labels meet, however near the points are.
constexpr int kWidth = 360;
constexpr int kLeft = 40;
constexpr int kRight = 160;
constexpr int kTop = 22;
constexpr int kLabelX = 180;
constexpr int kLabelStep = 16;
constexpr int kLeastHeight = 180;
constexpr int kBelow = 36;  // the ticks' labels and the axis's
constexpr std::size_t kLabelColumns = 30;

struct TResolutionPoint {
  unsigned int width, height;
  std::set<unsigned int> rates;  // Hz
  bool isConfigured;
};

/// The modes of each resolution together, the highest first.
std::vector<TResolutionPoint> GetPoints(const TRequestView& view, const TInstances& modes) {
  std::map<std::pair<unsigned int, unsigned int>, TResolutionPoint> points;
  for (const TInstanceView& mode : modes) {
    const unsigned int width = mode.Number("HorizontalResolution");
    const unsigned int height = mode.Number("VerticalResolution");
    TResolutionPoint& point = points[{height, width}];
    if (point.rates.empty()) point = {width, height, {}, view.IsConfigured(mode)};
    point.rates.insert(mode.Number("RefreshRate"));
  }
  std::vector<TResolutionPoint> descending;
  for (auto point = points.rbegin(); point != points.rend(); ++point) descending.push_back(point->second);
  return descending;
}

std::string GetRates(const TResolutionPoint& point) {
  std::vector<std::string> rates;
  rates.reserve(point.rates.size());
  for (const unsigned int rate : point.rates) rates.push_back(std::to_string(rate));
  return JoinTexts(rates) + " Hz";
}

/// A round number of which `limit` holds no more than three.
unsigned int GetTickStep(unsigned int limit) {
  for (unsigned int power = 1;; power *= 10) {
    for (const unsigned int step : {power, 2 * power, 5 * power}) {
      if (limit / step <= 3) return step;
    }
  }
}

/// One axis: pixels to the picture's units.
class TAxis {
 public:
  TAxis(unsigned int limit, int origin, int end) : m_limit(std::max(1U, limit)), m_origin(origin), m_end(end) {}

  int Place(unsigned int pixels) const {
    return m_origin + static_cast<int>(static_cast<double>(pixels) / m_limit * (m_end - m_origin));
  }
  int GetOrigin() const { return m_origin; }
  int GetEnd() const { return m_end; }

  std::vector<unsigned int> GetTicks() const {
    std::vector<unsigned int> ticks;
    const unsigned int step = GetTickStep(m_limit);
    for (unsigned int count = 0; count <= m_limit / step; ++count) ticks.push_back(count * step);
    return ticks;
  }

 private:
  unsigned int m_limit;
  int m_origin, m_end;
};

TMarkup MakeGrid(const TAxis& across, const TAxis& up) {
  TMarkup grid;
  for (const unsigned int tick : across.GetTicks()) {
    const int x = across.Place(tick);
    grid += MakeSvgLine({x, up.GetOrigin()}, {x, up.GetEnd()}, "grid");
    grid += MakeSvgText({x, up.GetOrigin() + 14}, std::to_string(tick), kLabelColumns, "tick middle");
  }
  for (const unsigned int tick : up.GetTicks()) {
    const int y = up.Place(tick);
    grid += MakeSvgLine({across.GetOrigin(), y}, {across.GetEnd(), y}, "grid");
    grid += MakeSvgText({across.GetOrigin() - 5, y + 4}, std::to_string(tick), kLabelColumns, "tick end");
  }
  return grid + MakeSvgText({across.GetEnd(), up.GetOrigin() + 30}, "width in pixels", kLabelColumns, "tick end") +
         MakeSvgText({2, 10}, "height in pixels", kLabelColumns, "tick");
}

TMarkup MakeMark(TPoint at, bool isConfigured) {
  if (isConfigured) return MakeSvgBox({at.x - 5, at.y - 5}, 10, 10, "configured");
  return TMarkup::Element("circle",
                          {{"cx", std::to_string(at.x)}, {"cy", std::to_string(at.y)}, {"r", "4"}, {"class", "mode"}});
}

TMarkup MakePoint(const TResolutionPoint& point, TPoint at, int labelY) {
  const std::string resolution = std::to_string(point.width) + " x " + std::to_string(point.height);
  const std::string rates = GetRates(point);
  return TMarkup::Element("g", {},
                          TMarkup::Element("title", {}, resolution + " at " + rates) +
                              MakeSvgLine(at, {kLabelX - 4, labelY - 4}, "leader") + MakeMark(at, point.isConfigured) +
                              MakeSvgText({kLabelX, labelY}, resolution + ": " + rates, kLabelColumns,
                                          point.isConfigured ? "label name" : "label"));
}

TMarkup MakeLegend(int y) {
  return MakeMark({kLeft, y}, true) +
         MakeSvgText({kLeft + 12, y + 4}, "the resolution that the configuration names", 50, "label");
}

}  // namespace

TMarkup MakeModesPlot(const TRequestView& view, const TMonitorView& monitor) {
  const std::vector<TResolutionPoint> points = GetPoints(view, monitor.modes);
  TResolutionPoint limit = {};
  for (const TResolutionPoint& point : points) {
    limit.width = std::max(limit.width, point.width);
    limit.height = std::max(limit.height, point.height);
    limit.isConfigured = limit.isConfigured || point.isConfigured;
  }
  const int bottom = kTop + std::max(kLeastHeight, kLabelStep * static_cast<int>(points.size()));
  const TAxis across(limit.width, kLeft, kRight);
  const TAxis up(limit.height, bottom, kTop);
  TMarkup plot = MakeGrid(across, up);
  int labelY = kTop;
  for (std::size_t index = 0; index < points.size(); ++index) {
    const TPoint at = {across.Place(points[index].width), up.Place(points[index].height)};
    // As high as its point, but below the label before, and with room for those to come.
    const int lowest = bottom - kLabelStep * static_cast<int>(points.size() - 1 - index);
    labelY = std::min(std::max(labelY, at.y + 4), lowest);
    plot += MakePoint(points[index], at, labelY);
    labelY += kLabelStep;
  }
  const int legendY = bottom + kBelow + kLabelStep / 2;
  if (limit.isConfigured) plot += MakeLegend(legendY);
  return MakeSvg(kWidth, limit.isConfigured ? legendY + kLabelStep : bottom + kBelow, "The modes of " + monitor.id,
                 plot);
}
