#include "host/drawing/graph_extent.h"

#include <algorithm>
#include <cmath>

namespace brenvolt {
namespace {

// How many times as high as the tallest bar a curve may be.
constexpr double kMostHeight = 1.5;
// The tallest bar stays below the frame.
constexpr double kHeadroom = 1.02;

Extent CurveHeights(std::span<const GraphSeries> curves, const Extent& bars) {
  Extent heights;
  for (const GraphSeries& curve : curves) heights.Add(curve.y);
  if (!bars.IsEmpty() && bars.to > 0) heights.to = std::min(heights.to, kMostHeight * bars.to);
  return heights;
}

void AddBox(const GraphBox& box, Extent& values) {
  values.Add(box.lowerWhisker);
  values.Add(box.upperWhisker);
  values.Add(box.mean);
  values.Add(box.outliers);
}

}  // namespace

void Extent::Add(double value) {
  if (!std::isfinite(value)) return;
  from = std::min(from, value);
  to = std::max(to, value);
}

void Extent::Add(std::span<const double> values) {
  for (const double value : values) Add(value);
}

// Points at the very edge would be cut in half.
void Extent::Widen() {
  constexpr double kMargin = 0.02;
  if (IsEmpty()) return;
  const double margin = kMargin * (to - from);
  if (!std::isfinite(margin)) return;
  from -= margin;
  to += margin;
}

GraphExtent ExtentOf(const Graph& graph, std::span<const GraphSeries> curves) {
  GraphExtent extent;
  for (const GraphBars& bars : graph.bars) {
    extent.x.Add(bars.bounds);
    extent.y.Add(0);
    extent.y.Add(bars.heights);
  }
  extent.y.to *= kHeadroom;
  const Extent heights = CurveHeights(curves, extent.y);
  if (!heights.IsEmpty()) {
    extent.y.Add(heights.from);
    extent.y.Add(heights.to);
  }
  for (const GraphSeries& curve : curves) extent.x.Add(curve.x);
  for (const GraphSeries& series : graph.series) {
    extent.x.Add(series.x);
    extent.y.Add(series.y);
    if (series.style == SeriesStyle::kSteps) extent.y.Add(0);
  }
  for (const GraphBand& band : graph.bands) {
    extent.x.Add(band.x);
    extent.y.Add(band.lower);
    extent.y.Add(band.upper);
  }
  for (const GraphRegion& region : graph.regions) {
    extent.x.Add(region.from);
    extent.x.Add(region.to);
  }
  for (const GraphBox& box : graph.boxes) AddBox(box, extent.x);
  const bool hasPoints = std::ranges::any_of(
      graph.series, [](const GraphSeries& series) { return series.style == SeriesStyle::kPoints; });
  if (graph.kind != GraphKind::kProbabilityPlot && graph.bars.empty() &&
      (hasPoints || !graph.boxes.empty())) {
    extent.x.Widen();
    extent.y.Widen();
  }
  return extent;
}

std::vector<GraphSeries> CutAbove(const GraphSeries& line, double ceiling) {
  std::vector<GraphSeries> parts;
  GraphSeries part{line.name, line.style, {}, {}};
  const auto finish = [&] {
    if (!part.x.empty()) parts.push_back(part);
    part.x.clear();
    part.y.clear();
  };
  const auto crossing = [&](std::size_t below, std::size_t above) {
    if (!std::isfinite(line.y[above])) return line.x[above];
    return std::lerp(line.x[below], line.x[above],
                     (ceiling - line.y[below]) / (line.y[above] - line.y[below]));
  };
  for (std::size_t i = 0; i < line.x.size(); ++i) {
    const bool isBelow = line.y[i] <= ceiling;
    if (isBelow && part.x.empty() && i > 0 && line.y[i - 1] > ceiling) {
      part.x.push_back(crossing(i, i - 1));
      part.y.push_back(ceiling);
    }
    if (isBelow) {
      part.x.push_back(line.x[i]);
      part.y.push_back(line.y[i]);
    } else {
      if (!part.x.empty() && line.y[i] > ceiling) {
        part.x.push_back(crossing(i - 1, i));
        part.y.push_back(ceiling);
      }
      finish();
    }
  }
  finish();
  return parts;
}

}  // namespace brenvolt
