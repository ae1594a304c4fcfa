#include "command/edid/cvt.h"

#include <algorithm>
#include <cmath>

#include "command/edid/mode_list.h"

namespace {

constexpr double kMicroseconds = 1e6;  // per second
constexpr double kCell = 8;            // pixels
constexpr double kFrontPorch = 3;      // lines
constexpr double kMinBackPorch = 7;    // lines

/// How a version of reduced blanking makes a timing [CVT 2.0, 3.4].
struct TReducedBlanking {
  double blankWidth;      // pixels
  double minBlankTime;    // microseconds
  double minBlankHeight;  // lines, without the vertical sync where that depends on the aspect ratio
  double clockStep;       // MHz
  bool isClockRoundedUp;
};

/// The lines of the vertical sync, which encode the aspect ratio [CVT 1.2, table 3-2].
double GetSyncHeight(unsigned int width, unsigned int height) {
  constexpr struct {
    unsigned int width, height, sync;
  } aspects[] = {{4, 3, 4}, {16, 9, 5}, {16, 10, 6}, {5, 4, 7}, {15, 9, 7}};
  constexpr double other = 10;
  for (const auto& aspect : aspects) {
    if (width == height * aspect.width / aspect.height) return aspect.sync;
  }
  return other;
}

/// [CVT 1.2, 5.3]
TEdidMode MakeStandard(const TCvtRequest& request) {
  constexpr double minSyncAndBackPorch = 550;  // microseconds
  constexpr double dutyOffset = 30;            // per cent
  constexpr double dutyGradient = 300;         // per cent of a millisecond
  constexpr double minDuty = 20;
  constexpr double clockStep = 0.25;  // MHz
  const double width = std::floor(request.width / kCell) * kCell;
  const double linePeriod =
      (kMicroseconds / request.refresh - minSyncAndBackPorch) / (request.height + kFrontPorch);  // microseconds
  if (linePeriod <= 0) return {};
  const double sync = GetSyncHeight(request.width, request.height);
  const double syncAndBackPorch = std::max(std::floor(minSyncAndBackPorch / linePeriod) + 1, sync + kMinBackPorch);
  const double duty = std::max(dutyOffset - dutyGradient * linePeriod / 1000, minDuty);
  const double blank = std::floor(width * duty / (100 - duty) / (2 * kCell)) * 2 * kCell;
  const double clock = std::floor((width + blank) / linePeriod / clockStep) * clockStep;  // MHz
  return MakeMode(request.width, request.height, clock * 1000, request.width + blank,
                  request.height + syncAndBackPorch + kFrontPorch, false);
}

TReducedBlanking GetBlanking(const TCvtRequest& request) {
  const double sync = GetSyncHeight(request.width, request.height);
  switch (request.blanking) {
    case EBlanking::Reduced2:
      return {80, 460, 15, 0.001, false};
    case EBlanking::Reduced3:
      return {static_cast<double>(request.blankWidth), static_cast<double>(request.minBlankTime), 15, 0.25, true};
    default:
      return {160, 460, kFrontPorch + sync + kMinBackPorch, 0.25, false};
  }
}

/// [CVT 1.2, 5.4]
TEdidMode MakeReduced(const TCvtRequest& request) {
  const TReducedBlanking blanking = GetBlanking(request);
  const double cell = request.blanking == EBlanking::Reduced2 ? 1 : kCell;
  const double width = std::floor(request.width / cell) * cell;
  const double linePeriod = (kMicroseconds / request.refresh - blanking.minBlankTime) / request.height;  // microseconds
  if (linePeriod <= 0) return {};
  const double blankHeight = std::max(std::floor(blanking.minBlankTime / linePeriod) + 1, blanking.minBlankHeight);
  const double totalHeight = request.height + blankHeight;
  const double refresh = request.isForVideo ? request.refresh * 1000 / 1001 : request.refresh;
  const double steps = refresh * totalHeight * (width + blanking.blankWidth) / kMicroseconds / blanking.clockStep;
  const double clock = (blanking.isClockRoundedUp ? std::ceil(steps) : std::floor(steps)) * blanking.clockStep;
  return MakeMode(request.width, request.height, clock * 1000, request.width + blanking.blankWidth, totalHeight, false);
}

}  // namespace

TEdidMode MakeCvtMode(const TCvtRequest& request) {
  if (request.width == 0 || request.height == 0 || request.refresh <= 0) return {};
  return request.blanking == EBlanking::Standard ? MakeStandard(request) : MakeReduced(request);
}
