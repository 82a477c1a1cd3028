#include "apps/desktop/views/picture_values.h"

#include <QStringList>
#include <algorithm>
#include <cmath>
#include <utility>

#include "apps/desktop/base/shown_number.h"
#include "apps/desktop/base/text.h"
#include "host/base/error.h"
#include "host/formula/curve.h"

namespace brenvolt::desktop {
namespace {

// So near is near, in pixels.
constexpr double kNearMarker = 5;
constexpr double kNearPoint = 9;
// More lines hide the picture.
constexpr qsizetype kMostLines = 14;

bool IsMarker(const GraphSeries& series) {
  return series.style == SeriesStyle::kLine && series.x.size() == 2 && series.x[0] == series.x[1];
}

QString Titled(const std::string& title, const QString& text) {
  return title.empty() ? text : Shown(title) + QStringLiteral(": ") + text;
}

bool HoldsNames(const Graph& plot) {
  return plot.kind == GraphKind::kTornado || !plot.boxes.empty();
}

void AddCell(const GraphCells& cells, double x, double y, QStringList& lines) {
  const auto column = static_cast<std::size_t>(std::max(0.0, std::floor(x)));
  const auto row = static_cast<std::size_t>(std::max(0.0, std::floor(y)));
  if (row >= cells.rows.size() || column >= cells.columns.size()) return;
  const double value = cells.values[row * cells.columns.size() + column];
  lines << Shown(cells.rows[row]) + QStringLiteral(", ") + Shown(cells.columns[column]);
  lines << (std::isfinite(value) ? ShownNumber(value) : QStringLiteral("–"));
}

void AddBox(const GraphBox& box, QStringList& lines) {
  lines << Shown(box.name);
  for (const auto& [name, value] : {std::pair("Upper whisker", box.upperWhisker),
                                    {"Upper quartile", box.upperQuartile},
                                    {"Median", box.median},
                                    {"Mean", box.mean},
                                    {"Lower quartile", box.lowerQuartile},
                                    {"Lower whisker", box.lowerWhisker}})
    lines << Titled(name, ShownNumber(value));
}

// Named bars and boxes count from 0.
void AddNamed(const Graph& plot, double y, QStringList& lines) {
  if (y < 0) return;
  const auto place = static_cast<std::size_t>(y);
  if (plot.kind == GraphKind::kTornado) {
    if (place < plot.bars.size())
      lines << Titled(plot.bars[place].name, ShownNumber(plot.bars[place].heights.front()));
  } else if (place < plot.boxes.size()) {
    AddBox(plot.boxes[place], lines);
  }
}

void AddBar(const GraphBars& bars, double x, QStringList& lines) {
  const auto above = std::ranges::upper_bound(bars.bounds, x);
  if (above == bars.bounds.begin() || above == bars.bounds.end()) return;
  const auto place = static_cast<std::size_t>(above - bars.bounds.begin()) - 1;
  lines << Titled(bars.name, QStringLiteral("%1 (%2 – %3)")
                                 .arg(ShownNumber(bars.heights[place]), ShownNumber(bars.bounds[place]),
                                      ShownNumber(bars.bounds[place + 1])));
}

// The value of a line or of steps over ascending x.
std::optional<double> HeightAt(const GraphSeries& series, double x) {
  const auto above = std::ranges::upper_bound(series.x, x);
  if (above == series.x.begin()) return std::nullopt;
  const auto i = static_cast<std::size_t>(above - series.x.begin());
  if (series.style == SeriesStyle::kSteps) return series.y[i - 1];
  if (above == series.x.end()) return std::nullopt;
  return std::lerp(series.y[i - 1], series.y[i], (x - series.x[i - 1]) / (series.x[i] - series.x[i - 1]));
}

void AddLine(const GraphSeries& series, double x, QStringList& lines) {
  if (!std::ranges::is_sorted(series.x)) return;
  if (const auto height = HeightAt(series, x)) lines << Titled(series.name, ShownNumber(*height));
}

void AddPoint(const GraphSeries& series, const PictureFrame& frame, QPointF place, QStringList& lines) {
  double nearest = kNearPoint;
  std::size_t found = series.x.size();
  for (std::size_t i = 0; i < series.x.size(); ++i) {
    const double distance =
        std::hypot(frame.x.PixelOf(series.x[i]) - place.x(), frame.y.PixelOf(series.y[i]) - place.y());
    if (!(distance < nearest)) continue;
    nearest = distance;
    found = i;
  }
  if (found == series.x.size()) return;
  lines << Titled(series.name,
                  QStringLiteral("(%1; %2)").arg(ShownNumber(series.x[found]), ShownNumber(series.y[found])));
}

void AddCurve(const GraphCurve& curve, double x, QStringList& lines) {
  const double at = curve.wholeNumbers ? std::round(x) : x;
  if (at < curve.from || at > curve.to) return;
  try {
    lines << Titled(curve.name, ShownNumber(Curve(curve.formula, curve.name).At(at)));
  } catch (const Error&) {
    // A formula that cannot be drawn has no values either.
  }
}

void AddBand(const GraphBand& band, double x, QStringList& lines) {
  const auto lower = HeightAt({{}, SeriesStyle::kLine, band.x, band.lower}, x);
  const auto upper = HeightAt({{}, SeriesStyle::kLine, band.x, band.upper}, x);
  if (lower && upper)
    lines << Titled(band.name, ShownNumber(*lower) + QStringLiteral(" – ") + ShownNumber(*upper));
}

bool IsBetween(double pixel, const PictureAxis& axis) {
  return pixel >= std::min(axis.fromPixel, axis.toPixel) && pixel <= std::max(axis.fromPixel, axis.toPixel);
}

}  // namespace

const Graph& PlotOf(const Graph& graph, const PictureFrame& frame) {
  return graph.panels.empty() ? graph : graph.panels[frame.panel];
}

const PictureFrame* FrameAt(const std::vector<PictureFrame>& frames, QPointF place) {
  const auto found = std::ranges::find_if(frames, [&](const PictureFrame& frame) {
    return IsBetween(place.x(), frame.x) && IsBetween(place.y(), frame.y);
  });
  return found != frames.end() ? &*found : nullptr;
}

QString ValuesAt(const Graph& plot, const PictureFrame& frame, QPointF place) {
  QStringList lines;
  const double x = frame.x.ValueAt(place.x());
  const double y = frame.y.ValueAt(place.y());
  if (!plot.cells.empty()) {
    AddCell(plot.cells.front(), x, y, lines);
  } else if (HoldsNames(plot)) {
    AddNamed(plot, y, lines);
  } else {
    if (const auto marker = MarkerAt(plot, frame, place))
      lines << Titled(plot.series[*marker].name, ShownNumber(plot.series[*marker].x.front()));
    for (const GraphBars& bars : plot.bars) AddBar(bars, x, lines);
    for (const GraphSeries& series : plot.series) {
      if (series.style == SeriesStyle::kPoints) AddPoint(series, frame, place, lines);
      if (series.style != SeriesStyle::kPoints && !IsMarker(series)) AddLine(series, x, lines);
    }
    for (const GraphBand& band : plot.bands) AddBand(band, x, lines);
    for (const GraphCurve& curve : plot.curves) AddCurve(curve, x, lines);
    if (!lines.isEmpty()) lines.prepend(Titled(plot.xTitle.empty() ? "x" : plot.xTitle, ShownNumber(x)));
  }
  return QStringList(lines.mid(0, kMostLines)).join(u'\n');
}

std::optional<std::size_t> MarkerAt(const Graph& plot, const PictureFrame& frame, QPointF place) {
  std::optional<std::size_t> found;
  double nearest = kNearMarker;
  for (std::size_t i = 0; i < plot.series.size(); ++i) {
    if (!IsMarker(plot.series[i])) continue;
    const double distance = std::abs(frame.x.PixelOf(plot.series[i].x.front()) - place.x());
    if (!(distance <= nearest)) continue;
    nearest = distance;
    found = i;
  }
  return found;
}

}  // namespace brenvolt::desktop
