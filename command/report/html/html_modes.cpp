#include "command/report/html/html_modes.h"

#include <algorithm>
#include <utility>

namespace {

// In pixels of the screen. The plot is small, since the list beside it has the numbers.
constexpr int kWidth = 190;
constexpr int kHeight = 190;
constexpr int kLeft = 38;
constexpr int kRight = 176;
constexpr int kTop = 20;
constexpr int kBottom = 154;

constexpr std::size_t kMany = 40;  // a list of more resolutions takes the width of the page

struct TShownResolution {
  unsigned int width, height;
  std::vector<std::string> rates;
  std::string preferredRate;  // empty if the monitor prefers another resolution
  std::vector<std::string> listedRates;
  bool isConfigured;
};

/// The modes grouped by resolution, the largest first.
std::vector<TShownResolution> GetResolutions(const TInstanceView* head, const std::vector<TShownMode>& modes) {
  const bool areAllListed = AreAllInClasses(modes);
  std::vector<TShownResolution> resolutions;
  for (const TShownMode& mode : modes) {
    if (resolutions.empty() || resolutions.back().width != mode.width || resolutions.back().height != mode.height) {
      resolutions.push_back({mode.width, mode.height, {}, "", {}, IsConfigured(head, mode.width, mode.height)});
    }
    TShownResolution& resolution = resolutions.back();
    resolution.rates.push_back(WriteRate(mode));
    if (mode.isPreferred) resolution.preferredRate = WriteRate(mode);
    if (mode.isInClasses && !areAllListed) resolution.listedRates.push_back(WriteRate(mode));
  }
  return resolutions;
}

/// A round number that fits into `limit` at most three times.
unsigned int GetTickStep(unsigned int limit) {
  for (unsigned int power = 1;; power *= 10) {
    for (const unsigned int step : {power, 2 * power, 5 * power}) {
      if (limit / step <= 3) return step;
    }
  }
}

/// An axis of the plot: converts pixels to the picture's units.
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
    grid += MakeSvgText({x, up.GetOrigin() + 14}, std::to_string(tick), "middle");
  }
  for (const unsigned int tick : up.GetTicks()) {
    const int y = up.Place(tick);
    grid += MakeSvgLine({across.GetOrigin(), y}, {across.GetEnd(), y}, "grid");
    grid += MakeSvgText({across.GetOrigin() - 5, y + 4}, std::to_string(tick), "end");
  }
  return grid + MakeSvgText({kRight, up.GetOrigin() + 30}, "width in pixels", "end") +
         MakeSvgText({2, 10}, "height in pixels", "");
}

TMarkup MakeMark(TPoint at, bool isConfigured) {
  if (isConfigured) return MakeSvgBox({at.x - 5, at.y - 5}, 10, 10, "configured");
  return TMarkup::Element("circle",
                          {{"cx", std::to_string(at.x)}, {"cy", std::to_string(at.y)}, {"r", "4"}, {"class", "mode"}});
}

TMarkup MakePlot(const std::vector<TShownResolution>& resolutions) {
  unsigned int width = 0;
  unsigned int height = 0;
  for (const TShownResolution& resolution : resolutions) {
    width = std::max(width, resolution.width);
    height = std::max(height, resolution.height);
  }
  const TAxis across(width, kLeft, kRight);
  const TAxis up(height, kBottom, kTop);
  TMarkup plot = MakeGrid(across, up);
  for (const TShownResolution& resolution : resolutions) {
    plot += MakeMark({across.Place(resolution.width), up.Place(resolution.height)}, resolution.isConfigured);
  }
  return MakeSvg(kWidth, kHeight, plot);
}

/// "800 x 600: 75, 60 Hz (configured, preferred at 60 Hz, listed by the plug-in at 75 Hz)".
std::string Describe(const TShownResolution& resolution) {
  const bool areAllListed = resolution.listedRates.size() == resolution.rates.size();
  const std::string listed = Join(resolution.listedRates);
  const std::string marks =
      Join({resolution.isConfigured ? "configured" : "",
            resolution.preferredRate.empty() ? "" : "preferred at " + resolution.preferredRate + " Hz",
            listed.empty() ? "" : "listed by the plug-in" + (areAllListed ? std::string() : " at " + listed + " Hz")});
  return std::to_string(resolution.width) + " x " + std::to_string(resolution.height) + ": " + Join(resolution.rates) +
         " Hz" + (marks.empty() ? "" : " (" + marks + ")");
}

TMarkup MakeList(const std::vector<TShownResolution>& resolutions) {
  TMarkup items;
  for (const TShownResolution& resolution : resolutions) {
    items += MakeElement("li", resolution.isConfigured ? "name" : "", Describe(resolution));
  }
  return MakeElement("ul", resolutions.size() > kMany ? "modes many" : "modes", std::move(items));
}

}  // namespace

TMarkup MakeModes(const TInstanceView* head, const std::vector<TShownMode>& modes) {
  if (modes.empty()) return {};
  const std::vector<TShownResolution> resolutions = GetResolutions(head, modes);
  return MakeElement("div", "plot", MakePlot(resolutions) + MakeList(resolutions));
}
