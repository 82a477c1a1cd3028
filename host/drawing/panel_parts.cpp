#include "host/drawing/panel_parts.h"

#include <qcustomplot.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

#include "host/drawing/graph_extent.h"
#include "host/drawing/panel_words.h"
#include "host/drawing/text_fitting.h"
#include "host/drawing/thinning.h"

namespace brenvolt {
namespace {

// Cells of a pixel, so that what is drawn at twice the size loses nothing.
constexpr std::size_t kCellsOfPixel = 2;
// Of more points than these a pixel has one at most, or several pixels share one.
constexpr std::size_t kSomePoints = 1000;
constexpr std::size_t kManyPoints = 20000;
// A denser line is drawn thin, which is faster by far and covers the same pixels.
constexpr std::size_t kDenseLine = 3000;
constexpr std::size_t kMostStems = 60;

bool IsReference(const Graph& graph, const GraphSeries& series) {
  return series.style == SeriesStyle::kLine &&
         (graph.kind == GraphKind::kProbabilityPlot || graph.kind == GraphKind::kQuantilePlot);
}

QVector<double> Chosen(std::span<const double> values, const std::vector<std::size_t>& indexes) {
  QVector<double> chosen;
  chosen.reserve(static_cast<qsizetype>(indexes.size()));
  for (const std::size_t index : indexes) chosen.push_back(values[index]);
  return chosen;
}

class Parts {
 public:
  Parts(const PanelContent& content, const Theme& theme, const QSize& size, bool small, QCustomPlot& plot)
      : content_(content), theme_(theme), size_(size), isSmall_(small), plot_(plot) {}

  void AddAll() {
    if (content_.graph.kind == GraphKind::kTornado) return AddTornado();
    for (const GraphRegion& region : content_.graph.regions) AddRegion(region);
    for (const GraphBand& band : content_.graph.bands) AddBand(band);
    for (const GraphBars& bars : content_.graph.bars) AddBars(bars);
    for (const GraphSeries& series : content_.graph.series) AddSeries(series);
    for (const GraphSeries& curve : content_.curves) AddCurve(curve);
    AddBoxes();
  }

 private:
  // What the plot makes of its own belongs to it.
  template <class Part, class... Arguments>
  Part& Add(Arguments&&... arguments) {
    return *new Part(std::forward<Arguments>(arguments)...);
  }

  void AddRegion(const GraphRegion& region) {
    const QCPRange x = plot_.xAxis->range();
    const QCPRange y = plot_.yAxis->range();
    const double from = std::max(region.from, x.lower);
    const double to = std::min(region.to, x.upper);
    auto& bar = Add<QCPBars>(plot_.xAxis, plot_.yAxis);
    bar.setName(Shown(region.name));
    if (&region != &content_.graph.regions.front() && region.name == (&region - 1)->name)
      bar.removeFromLegend();
    bar.setPen(Qt::NoPen);
    bar.setBrush(theme_.region);
    bar.setBaseValue(y.lower);
    if (!(from < to)) return;
    bar.setWidth(to - from);
    bar.addData((from + to) / 2, y.upper - y.lower);
  }

  void AddBand(const GraphBand& band) {
    const std::vector<std::size_t> shown = ThinLine(band.x, band.upper, Grid());
    QColor fill = theme_.lines[1];
    fill.setAlpha(56);
    auto& lower = Add<QCPGraph>(plot_.xAxis, plot_.yAxis);
    auto& upper = Add<QCPGraph>(plot_.xAxis, plot_.yAxis);
    for (auto* edge : {&lower, &upper}) {
      edge->setPen(Qt::NoPen);
      edge->setAdaptiveSampling(false);
    }
    lower.setData(Chosen(band.x, shown), Chosen(band.lower, shown));
    upper.setData(Chosen(band.x, shown), Chosen(band.upper, shown));
    lower.removeFromLegend();
    upper.setName(Shown(band.name));
    upper.setBrush(fill);
    upper.setChannelFillGraph(&lower);
  }

  // Classes of one width are drawn together.
  void AddBars(const GraphBars& bars) {
    constexpr double kSame = 1e-9;
    QCPBars* same = nullptr;
    const double pixel = plot_.xAxis->range().size() / std::max(1, size_.width() - 90);
    for (std::size_t i = 0; i < bars.heights.size(); ++i) {
      const double width = bars.bounds[i + 1] - bars.bounds[i];
      if (same == nullptr || std::abs(same->width() - width) > kSame * width) {
        const bool isFirst = same == nullptr;
        same = &Add<QCPBars>(plot_.xAxis, plot_.yAxis);
        if (!isFirst) same->removeFromLegend();
        same->setName(Shown(bars.name));
        same->setWidth(width);
        same->setPen(width > 4 * pixel ? QPen(theme_.barEdge, 1) : QPen(theme_.bar, 0.5));
        same->setBrush(theme_.bar);
      }
      same->addData(bars.bounds[i] + width / 2, bars.heights[i]);
    }
  }

  // Of named bars and boxes, as a part of the room that each has.
  double Thickness() const {
    constexpr double kMostPixels = 56;
    return std::min(0.7, kMostPixels * static_cast<double>(content_.categories.size()) /
                             std::max(1, size_.height() - 90));
  }

  void AddTornado() {
    for (std::size_t i = 0; i < content_.categories.size(); ++i) {
      const double height = content_.graph.bars[i].heights.front();
      auto& bar = Add<QCPBars>(plot_.yAxis, plot_.xAxis);
      bar.setWidth(Thickness());
      bar.setPen(QPen(theme_.barEdge, 1));
      bar.setBrush(height < 0 ? theme_.negativeBar : theme_.bar);
      bar.addData(static_cast<double>(i) + 0.5, height);
    }
    auto& zero = Add<QCPItemStraightLine>(&plot_);
    zero.setPen(QPen(theme_.text, 1));
    zero.point1->setCoords(0, 0);
    zero.point2->setCoords(0, 1);
  }

  void AddSeries(const GraphSeries& series) {
    if (IsMarker(series)) {
      AddMarkerLine(series);
    } else if (series.style == SeriesStyle::kPoints) {
      AddPoints(series);
    } else if (series.style == SeriesStyle::kSteps) {
      AddSteps(series);
    } else if (IsReference(content_.graph, series)) {
      AddLine(series, QPen(theme_.reference, 1.5, Qt::DashLine));
    } else {
      AddLine(series, NextPen());
    }
  }

  void AddMarkerLine(const GraphSeries& series) {
    GraphSeries line = series;
    line.y = {plot_.yAxis->range().lower, plot_.yAxis->range().upper};
    AddLine(line, QPen(theme_.marker, 1.5, Qt::DashLine));
    plot_.plottable()->removeFromLegend();
  }

  void AddPoints(const GraphSeries& series) {
    CellGrid grid = Grid();
    const std::size_t coarser = series.x.size() <= kSomePoints   ? 1
                                : series.x.size() <= kManyPoints ? kCellsOfPixel
                                                                 : 2 * kCellsOfPixel;
    grid.columns /= coarser;
    grid.rows /= coarser;
    const std::vector<std::size_t> shown = ThinPoints(series.x, series.y, grid);
    const double size = isSmall_ ? 2 : shown.size() <= 150 ? 6 : shown.size() <= 1000 ? 4 : 3;
    auto& points = Add<QCPGraph>(plot_.xAxis, plot_.yAxis);
    points.setName(Shown(series.name));
    points.setLineStyle(QCPGraph::lsNone);
    points.setAdaptiveSampling(false);
    points.setScatterStyle(
        QCPScatterStyle(QCPScatterStyle::ssCircle, QPen(theme_.point, 0.5), theme_.point, size));
    points.setData(Chosen(series.x, shown), Chosen(series.y, shown));
  }

  // From zero at the first x; the last value holds to the end of the axis.
  void AddSteps(const GraphSeries& series) {
    const std::vector<std::size_t> shown = ThinLine(series.x, series.y, Grid());
    QVector<double> x = Chosen(series.x, shown);
    QVector<double> y = Chosen(series.y, shown);
    if (x.isEmpty()) return;
    x.prepend(x.front());
    y.prepend(0);
    x.push_back(plot_.xAxis->range().upper);
    y.push_back(y.back());
    auto& steps = Add<QCPGraph>(plot_.xAxis, plot_.yAxis);
    steps.setName(Shown(series.name));
    steps.setLineStyle(QCPGraph::lsStepLeft);
    steps.setAdaptiveSampling(false);
    steps.setPen(QPen(theme_.lines[1], 1.5));
    steps.setData(x, y, true);
  }

  void AddLine(const GraphSeries& series, const QPen& pen) {
    const std::vector<std::size_t> shown = ThinLine(series.x, series.y, Grid());
    auto& line = Add<QCPCurve>(plot_.xAxis, plot_.yAxis);
    line.setName(Shown(series.name));
    line.setPen(shown.size() > kDenseLine ? QPen(pen.color(), 1) : pen);
    line.setData(Chosen(series.x, shown), Chosen(series.y, shown));
  }

  void AddCurve(const GraphSeries& curve) {
    const QPen pen = NextPen();
    if (curve.style == SeriesStyle::kPoints) return AddWholeNumbers(curve, pen);
    bool isFirst = true;
    for (const GraphSeries& part : CutAbove(curve, plot_.yAxis->range().upper)) {
      AddLine(part, pen);
      if (!isFirst) plot_.plottable()->removeFromLegend();
      isFirst = false;
    }
  }

  void AddWholeNumbers(const GraphSeries& curve, const QPen& pen) {
    auto& points = Add<QCPGraph>(plot_.xAxis, plot_.yAxis);
    points.setName(Shown(curve.name));
    points.setAdaptiveSampling(false);
    points.setPen(QPen(pen.color(), curve.x.size() > kMostStems ? 2 : 1, pen.style(), Qt::FlatCap));
    if (curve.x.size() <= kMostStems)
      points.setScatterStyle(QCPScatterStyle(ShapeOf(pen.style()), QPen(pen.color(), 1), pen.color(), 5));
    points.setData(QVector<double>(curve.x.begin(), curve.x.end()),
                   QVector<double>(curve.y.begin(), curve.y.end()), true);
  }

  // Points differ as the patterns of their lines do.
  static QCPScatterStyle::ScatterShape ShapeOf(Qt::PenStyle pattern) {
    switch (pattern) {
      case Qt::DashLine:
        return QCPScatterStyle::ssSquare;
      case Qt::DotLine:
        return QCPScatterStyle::ssTriangle;
      case Qt::DashDotLine:
        return QCPScatterStyle::ssDiamond;
      default:
        return QCPScatterStyle::ssCircle;
    }
  }

  void AddBoxes() {
    const double thickness = Thickness();
    for (std::size_t i = 0; i < content_.categories.size(); ++i) {
      const GraphBox& box = content_.graph.boxes[i];
      auto& drawn = Add<QCPStatisticalBox>(plot_.yAxis, plot_.xAxis);
      drawn.setWidth(thickness);
      drawn.setWhiskerWidth(thickness / 2);
      drawn.setBrush(theme_.bar);
      drawn.setPen(QPen(theme_.barEdge, 1));
      drawn.setWhiskerPen(QPen(theme_.faintText, 1));
      drawn.setWhiskerBarPen(QPen(theme_.faintText, 1));
      drawn.setMedianPen(Qt::NoPen);  // the line is clipped away in PDF
      drawn.setOutlierStyle(
          QCPScatterStyle(QCPScatterStyle::ssCircle, QPen(theme_.point, 0.5), theme_.point, 5));
      const double at = static_cast<double>(i) + 0.5;
      drawn.addData(at, box.lowerWhisker, box.lowerQuartile, box.median, box.upperQuartile, box.upperWhisker,
                    OutliersOf(box));
      AddMedian(at, thickness / 2, box.median);
      AddMean(at, box.mean);
    }
  }

  void AddMedian(double at, double half, double median) {
    auto& line = Add<QCPCurve>(plot_.yAxis, plot_.xAxis);
    line.setPen(QPen(theme_.text, 2, Qt::SolidLine, Qt::FlatCap));
    line.setData(QVector<double>{at - half, at + half}, QVector<double>{median, median});
  }

  QVector<double> OutliersOf(const GraphBox& box) const {
    const std::vector<double> level(box.outliers.size(), 0);
    CellGrid grid = Grid();
    grid.rows = 1;
    grid.yFrom = 0;
    grid.yTo = 1;
    return Chosen(box.outliers, ThinPoints(box.outliers, level, grid));
  }

  void AddMean(double at, double mean) {
    if (!std::isfinite(mean)) return;
    auto& point = Add<QCPGraph>(plot_.yAxis, plot_.xAxis);
    point.setLineStyle(QCPGraph::lsNone);
    point.setScatterStyle(
        QCPScatterStyle(QCPScatterStyle::ssDiamond, QPen(theme_.lines[0], 1), theme_.lines[0], 8));
    point.addData(at, mean);
  }

  QPen NextPen() {
    static constexpr Qt::PenStyle kPatterns[] = {Qt::SolidLine, Qt::DashLine, Qt::DotLine, Qt::DashDotLine,
                                                 Qt::DashDotDotLine};
    const QPen pen(theme_.lines[pens_ % theme_.lines.size()], 2, kPatterns[pens_ % std::size(kPatterns)],
                   Qt::FlatCap);
    ++pens_;
    return pen;
  }

  CellGrid Grid() const {
    const QCPRange x = plot_.xAxis->range();
    const QCPRange y = plot_.yAxis->range();
    return {x.lower,
            x.upper,
            y.lower,
            y.upper,
            kCellsOfPixel * static_cast<std::size_t>(size_.width()),
            kCellsOfPixel * static_cast<std::size_t>(size_.height())};
  }

  const PanelContent& content_;
  const Theme& theme_;
  QSize size_;
  bool isSmall_;
  QCustomPlot& plot_;
  std::size_t pens_ = 0;
};

}  // namespace

void AddParts(const PanelContent& content, const Theme& theme, const QSize& size, bool small,
              QCustomPlot& plot) {
  Parts(content, theme, size, small, plot).AddAll();
}

}  // namespace brenvolt
