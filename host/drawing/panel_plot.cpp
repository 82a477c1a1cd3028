#include "host/drawing/panel_plot.h"

#include <qcustomplot.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include "host/base/number_text.h"
#include "host/drawing/axis_scale.h"
#include "host/drawing/graph_extent.h"
#include "host/drawing/heat_map.h"
#include "host/drawing/text_fitting.h"
#include "host/drawing/text_panel.h"
#include "host/drawing/thinning.h"

namespace brenvolt {
namespace {

constexpr int kPadding = 8;
constexpr int kLegendIcon = 22;
constexpr int kLeastPlotHeight = 120;
constexpr int kUsualPlotHeight = 300;
constexpr int kCategoryHeight = 18;
// A picture of more named bars or boxes would be too long to read.
constexpr std::size_t kMostCategories = 200;
// Cells of a pixel, so that what is drawn at twice the size loses nothing.
constexpr std::size_t kCellsOfPixel = 2;
// Of more points than these a pixel has one at most, or several pixels share one.
constexpr std::size_t kSomePoints = 1000;
constexpr std::size_t kManyPoints = 20000;
// A denser line is drawn thin, which is faster by far and covers the same pixels.
constexpr std::size_t kDenseLine = 3000;
constexpr std::size_t kMostStems = 60;
constexpr int kSmallCell = 150;  // is narrower

bool IsMarker(const GraphSeries& series) {
  return series.style == SeriesStyle::kLine && series.x.size() == 2 && series.x[0] == series.x[1];
}

bool IsReference(const Graph& graph, const GraphSeries& series) {
  return series.style == SeriesStyle::kLine &&
         (graph.kind == GraphKind::kProbabilityPlot || graph.kind == GraphKind::kQuantilePlot);
}

// With the minus sign that the labels of the axes have.
std::string MarkerText(const GraphSeries& marker) {
  const double value = marker.x[0];
  return marker.name + (value < 0 ? " −" : " ") + FormatNumber("%.6g", std::abs(value));
}

// The names on the vertical axis of a graph that has such.
std::vector<std::string> CategoriesOf(const Graph& graph) {
  std::vector<std::string> names;
  if (graph.kind == GraphKind::kTornado) {
    for (const GraphBars& bars : graph.bars) names.push_back(bars.name);
  } else {
    for (const GraphBox& box : graph.boxes) names.push_back(box.name);
  }
  if (names.size() > kMostCategories) names.resize(kMostCategories);
  return names;
}

bool HasValues(const Graph& graph) {
  return !graph.bars.empty() || !graph.boxes.empty() || !graph.curves.empty() || !graph.bands.empty() ||
         std::ranges::any_of(graph.series, [](const GraphSeries& series) { return !series.x.empty(); });
}

// The names that need a legend: all if there are several things to tell apart.
std::vector<std::string> LegendOf(const Graph& graph) {
  std::vector<std::string> names;
  if (!CategoriesOf(graph).empty()) return names;
  for (const GraphRegion& region : graph.regions) {
    if (&region == &graph.regions.front() || region.name != names.back()) names.push_back(region.name);
  }
  for (const GraphBand& band : graph.bands) names.push_back(band.name);
  for (const GraphBars& bars : graph.bars) names.push_back(bars.name);
  for (const GraphSeries& series : graph.series) {
    if (!IsMarker(series) && !series.x.empty()) names.push_back(series.name);
  }
  for (const GraphCurve& curve : graph.curves) names.push_back(curve.name);
  if (names.size() < 2) names.clear();
  return names;
}

constexpr int kMostNameLines = 2;

int NameRoom(int width, int columns) {
  return (width - 2 * kPadding) / columns - kLegendIcon - 3 * kPadding;
}

int LegendColumns(const std::vector<std::string>& names, int width) {
  int widest = 1;
  for (const std::string& name : names)
    widest = std::max(widest, WidthOf(Shown(name), TextFont(kSmallSize)) + kLegendIcon + 3 * kPadding);
  return std::clamp((width - 2 * kPadding) / widest, 1, static_cast<int>(names.size()));
}

// A name that is wider than the legend takes two lines.
int LegendLines(const std::vector<std::string>& names, int width) {
  if (names.empty()) return 0;
  const int columns = LegendColumns(names, width);
  if (columns > 1) return (static_cast<int>(names.size()) + columns - 1) / columns;
  int lines = 0;
  for (const std::string& name : names) {
    const QString text = Wrapped(Shown(name), TextFont(kSmallSize), NameRoom(width, 1), kMostNameLines);
    lines += static_cast<int>(text.count(QLatin1Char('\n'))) + 1;
  }
  return lines;
}

QString NotesText(const Graph& graph, int width) {
  constexpr int kMostLines = 6;
  std::vector<std::string> notes = graph.notes;
  const std::size_t categories = graph.kind == GraphKind::kTornado ? graph.bars.size() : graph.boxes.size();
  if (categories > kMostCategories)
    notes.push_back("the first " + std::to_string(kMostCategories) + " of " + std::to_string(categories) +
                    " are shown");
  QString all;
  for (const std::string& note : notes) all += (all.isEmpty() ? "" : "; ") + Shown(note);
  return all.isEmpty() ? all : Wrapped(all, TextFont(kSmallSize), width - 4 * kPadding, kMostLines);
}

// As many labels as stand beside each other without touching.
AxisScale HorizontalScale(const Extent& extent, int pixels) {
  constexpr int kGap = 10;
  AxisScale scale;
  for (int most = std::clamp(pixels / 45, 2, 12); most >= 2; --most) {
    scale = ScaleAxis(extent.from, extent.to, most);
    int widest = 0;
    for (const AxisTick& tick : scale.ticks)
      widest = std::max(widest, WidthOf(Shown(tick.label), TextFont(kSmallSize)));
    const double room = pixels / std::max<double>(1, static_cast<double>(scale.ticks.size()));
    if (widest + kGap <= room) break;
  }
  return scale;
}

// Labels that would touch each other or those of the neighbouring cell are left out; their ticks stay.
void ThinLabels(AxisScale& scale, int pixels) {
  constexpr double kGap = 4;
  constexpr double kBeyond = 3;  // the frame
  double end = -kBeyond - kGap;
  for (AxisTick& tick : scale.ticks) {
    const double half = WidthOf(Shown(tick.label), TextFont(kSmallSize)) / 2.0;
    const double centre = pixels * (tick.at - scale.from) / (scale.to - scale.from);
    const bool hasRoom = centre - half >= end + kGap && centre + half <= pixels + kBeyond;
    if (hasRoom) {
      end = centre + half;
    } else {
      tick.label.clear();
    }
  }
}

AxisScale VerticalScale(const Extent& extent, int pixels) {
  return ScaleAxis(extent.from, extent.to, std::clamp(pixels / 36, 2, 10));
}

QVector<double> Chosen(std::span<const double> values, const std::vector<std::size_t>& indexes) {
  QVector<double> chosen;
  chosen.reserve(static_cast<qsizetype>(indexes.size()));
  for (const std::size_t index : indexes) chosen.push_back(values[index]);
  return chosen;
}

class PanelPlot {
 public:
  PanelPlot(const Graph& graph, const Theme& theme, const PanelStyle& style)
      : graph_(graph), theme_(theme), style_(style), categories_(CategoriesOf(graph)) {
    for (const GraphCurve& curve : graph.curves) curves_.push_back(SampleCurve(curve));
    extent_ = ExtentOf(graph, curves_);
    if (!style.x.IsEmpty()) extent_.x = style.x;
    if (!style.y.IsEmpty() && graph.bars.empty()) extent_.y = style.y;
    if (IsHorizontal()) AdoptCategories();
    plot_.setBackground(QBrush(Qt::NoBrush));
    plot_.setAntialiasedElements(QCP::aeAll);
    plot_.plotLayout()->setRowSpacing(2);
    rect_ = plot_.axisRect();
    plot_.setViewport(QRect(QPoint(0, 0), style.area.size()));
    StyleAxes();
    ScaleAxes(style.area.size() - QSize(90, 90));
  }

  // Whether values lie where QCustomPlot, which ends at 1e250, has no axis.
  bool IsBeyondAxes() const {
    constexpr double kLargest = 1e249;
    return std::ranges::any_of(std::array{extent_.x, extent_.y}, [](const Extent& one) {
      return !one.IsEmpty() && std::max(std::abs(one.from), std::abs(one.to)) > kLargest;
    });
  }

  void Paint(QCPPainter& painter) {
    AddParts();
    if (style_.isCell) {
      LayOutCell();
    } else {
      AddTitle();
      AddLegend();
      AddNotes();
    }
    ReserveMarkerRows(0);
    LayOut();
    // The room is known only now.
    ScaleAxes(rect_->size());
    LayOut();
    ReserveMarkerRows(MarkerRows());
    LayOut();
    PlaceMarkers();
    painter.save();
    painter.translate(style_.area.topLeft());
    plot_.toPainter(&painter, style_.area.width(), style_.area.height());
    painter.restore();
  }

  // Where the axes lie, once it is painted.
  PictureFrame Frame() const {
    const auto axis = [](const QCPAxis& shown, int offset) {
      const QCPRange range = shown.range();
      return PictureAxis{range.lower, range.upper, shown.coordToPixel(range.lower) + offset,
                         shown.coordToPixel(range.upper) + offset};
    };
    PictureFrame frame;
    frame.x = axis(*plot_.xAxis, style_.area.left());
    frame.y = axis(*plot_.yAxis, style_.area.top());
    return frame;
  }

 private:
  bool IsHorizontal() const { return !categories_.empty(); }
  bool IsSmallCell() const {
    return style_.isCell && style_.area.width() - (style_.showsYAxis ? kCellAxisWidth : 0) < kSmallCell;
  }

  // What the plot makes of its own belongs to it.
  template <class Part, class... Arguments>
  Part& Add(Arguments&&... arguments) {
    return *new Part(std::forward<Arguments>(arguments)...);
  }

  // Named bars and boxes lie on their side.
  void AdoptCategories() {
    if (graph_.kind == GraphKind::kTornado) extent_.x = extent_.y;
    extent_.y = {};
    extent_.y.Add(0);
    extent_.y.Add(static_cast<double>(categories_.size()));
  }

  void StyleAxes() {
    rect_->setupFullAxesBox(false);
    for (QCPAxis* axis : rect_->axes()) {
      axis->setTickLabelFont(TextFont(kSmallSize));
      axis->setLabelFont(TextFont());
      axis->setTickLabelColor(theme_.text);
      axis->setLabelColor(theme_.text);
      axis->setBasePen(QPen(theme_.faintText, 1));
      axis->setTickPen(QPen(theme_.faintText, 1));
      axis->setSubTicks(false);
      axis->setTickLength(0, 4);
      axis->grid()->setPen(QPen(theme_.grid, 1));
      axis->grid()->setZeroLinePen(QPen(theme_.grid, 1));
    }
    plot_.xAxis2->setTicks(false);
    plot_.yAxis2->setTicks(false);
    if (!style_.isCell) return;
    plot_.xAxis->setTickLabels(style_.showsXAxis);
    // Counts of a histogram have another scale than the row.
    plot_.yAxis->setTickLabels(style_.showsYAxis && graph_.bars.empty());
    if (!graph_.bars.empty()) plot_.yAxis->setTicks(false);
  }

  void SetAxis(QCPAxis& axis, const AxisScale& scale, const std::string& title, int pixels) {
    const QSharedPointer<QCPAxisTickerText> ticker(new QCPAxisTickerText);
    for (const AxisTick& tick : scale.ticks) ticker->addTick(tick.at, Shown(tick.label));
    axis.setTicker(ticker);
    axis.setRange(scale.from, scale.to);
    SetTitle(axis, TitleWithUnit(title, scale.exponent), pixels);
  }

  void SetTitle(QCPAxis& axis, const std::string& title, int pixels) {
    if (style_.isCell && !(&axis == plot_.xAxis ? style_.showsXAxis : style_.showsYAxis)) return;
    axis.setLabel(Elided(Shown(title), TextFont(), pixels));
  }

  void SetCategories(const QSize& room) {
    const int line = LineHeightOf(TextFont(kSmallSize));
    const auto count = static_cast<int>(categories_.size());
    const int stride = std::max(1, (count * line + room.height() - 1) / std::max(1, room.height()));
    const QSharedPointer<QCPAxisTickerText> ticker(new QCPAxisTickerText);
    for (int i = 0; i < count; i += stride) {
      const QString name = Shown(categories_[static_cast<std::size_t>(i)]);
      ticker->addTick(i + 0.5, Elided(name, TextFont(kSmallSize), style_.area.width() * 3 / 10));
    }
    plot_.yAxis->setTicker(ticker);
    plot_.yAxis->setRange(0, count);
    plot_.yAxis->setRangeReversed(true);
    plot_.yAxis->grid()->setVisible(false);
    plot_.yAxis->setTickPen(Qt::NoPen);
  }

  void ScaleAxes(const QSize& room) {
    if (IsHorizontal()) {
      SetAxis(*plot_.xAxis, HorizontalScale(extent_.x, room.width()), graph_.yTitle, room.width());
      SetCategories(room);
      return;
    }
    AxisScale across = HorizontalScale(extent_.x, room.width());
    if (IsSmallCell()) ThinLabels(across, room.width());
    SetAxis(*plot_.xAxis, across, graph_.xTitle, room.width());
    SetAxis(*plot_.yAxis, VerticalScale(extent_.y, room.height()), graph_.yTitle, room.height());
  }

  void AddParts() {
    if (graph_.kind == GraphKind::kTornado) return AddTornado();
    for (const GraphRegion& region : graph_.regions) AddRegion(region);
    for (const GraphBand& band : graph_.bands) AddBand(band);
    for (const GraphBars& bars : graph_.bars) AddBars(bars);
    for (const GraphSeries& series : graph_.series) AddSeries(series);
    for (const GraphSeries& curve : curves_) AddCurve(curve);
    AddBoxes();
  }

  void AddRegion(const GraphRegion& region) {
    const QCPRange x = plot_.xAxis->range();
    const QCPRange y = plot_.yAxis->range();
    const double from = std::max(region.from, x.lower);
    const double to = std::min(region.to, x.upper);
    auto& bar = Add<QCPBars>(plot_.xAxis, plot_.yAxis);
    bar.setName(Shown(region.name));
    if (&region != &graph_.regions.front() && region.name == (&region - 1)->name) bar.removeFromLegend();
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
    const double pixel = plot_.xAxis->range().size() / std::max(1, style_.area.width() - 90);
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
    return std::min(
        0.7, kMostPixels * static_cast<double>(categories_.size()) / std::max(1, style_.area.height() - 90));
  }

  void AddTornado() {
    for (std::size_t i = 0; i < categories_.size(); ++i) {
      const double height = graph_.bars[i].heights.front();
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
    } else if (IsReference(graph_, series)) {
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
    const double size = IsSmallCell() ? 2 : shown.size() <= 150 ? 6 : shown.size() <= 1000 ? 4 : 3;
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
    for (std::size_t i = 0; i < categories_.size(); ++i) {
      const GraphBox& box = graph_.boxes[i];
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
            kCellsOfPixel * static_cast<std::size_t>(style_.area.width()),
            kCellsOfPixel * static_cast<std::size_t>(style_.area.height())};
  }

  void AddTitle() {
    const QFont font = TextFont(kTitleSize, true);
    const QString text = Wrapped(Shown(graph_.title), font, style_.area.width() - 4 * kPadding, 2);
    if (text.isEmpty()) return;
    plot_.plotLayout()->insertRow(0);
    auto& title = Add<QCPTextElement>(&plot_, text, font);
    title.setTextColor(theme_.text);
    plot_.plotLayout()->addElement(0, 0, &title);
  }

  void AddLegend() {
    const std::vector<std::string> names = LegendOf(graph_);
    if (names.empty()) return;
    QCPLegend& legend = *plot_.legend;
    legend.setFont(TextFont(kSmallSize));
    legend.setTextColor(theme_.text);
    legend.setBrush(Qt::NoBrush);
    legend.setBorderPen(Qt::NoPen);
    legend.setIconSize(kLegendIcon, 10);
    legend.setMargins(QMargins(2 * kPadding, 2, kPadding, 2));
    legend.setRowSpacing(0);
    const int columns = LegendColumns(names, style_.area.width());
    legend.setWrap(columns);
    legend.setFillOrder(QCPLegend::foColumnsFirst, true);
    legend.setVisible(true);
    const int room = NameRoom(style_.area.width(), columns);
    for (int i = 0; i < plot_.plottableCount(); ++i)
      plot_.plottable(i)->setName(
          Wrapped(plot_.plottable(i)->name(), TextFont(kSmallSize), room, kMostNameLines));
    // Letters reach below the line that the items are measured by. The last row may have empty places.
    for (int i = 0; i < legend.itemCount(); ++i) {
      if (legend.item(i) != nullptr) legend.item(i)->setMargins(QMargins(2, 0, 2, 3));
    }
    AddRow(legend);
  }

  void AddNotes() {
    const QString text = NotesText(graph_, style_.area.width());
    if (text.isEmpty()) return;
    auto& notes = Add<QCPTextElement>(&plot_, text, TextFont(kSmallSize));
    notes.setTextColor(theme_.faintText);
    AddRow(notes);
  }

  void AddRow(QCPLayoutElement& element) {
    const int row = plot_.plotLayout()->rowCount();
    plot_.plotLayout()->addElement(row, 0, &element);
    plot_.plotLayout()->setRowStretchFactor(row, 0.001);
  }

  void LayOutCell() {
    constexpr int kMargin = 3;
    rect_->setAutoMargins(QCP::msNone);
    rect_->setMargins(QMargins(style_.showsYAxis ? kCellAxisWidth : kMargin, kMargin, kMargin,
                               style_.showsXAxis ? kCellAxisHeight : kMargin));
    plot_.plotLayout()->setMargins(QMargins(0, 0, 0, 0));
  }

  void ReserveMarkerRows(std::size_t rows) {
    if (style_.isCell) return;
    const int line = LineHeightOf(TextFont(kSmallSize));
    rect_->setMinimumMargins(QMargins(kPadding, static_cast<int>(rows) * line + 4, 2 * kPadding, kPadding));
  }

  void LayOut() {
    for (const auto phase :
         {QCPLayoutElement::upPreparation, QCPLayoutElement::upMargins, QCPLayoutElement::upLayout})
      plot_.plotLayout()->update(phase);
  }

  struct MarkerLabel {
    QString text;
    double centre;
    std::size_t row;  // from the plot up
  };

  // Labels of markers stand above the plot, in rows where they are close to each other.
  std::vector<MarkerLabel> MarkerLabels() const {
    const QFont font = TextFont(kSmallSize);
    std::vector<const GraphSeries*> markers;
    for (const GraphSeries& series : graph_.series) {
      if (IsMarker(series)) markers.push_back(&series);
    }
    std::ranges::sort(markers, {}, [](const GraphSeries* marker) { return marker->x[0]; });
    std::vector<double> rowEnds;  // where the last label of each row ends
    std::vector<MarkerLabel> labels;
    for (const GraphSeries* marker : markers) {
      const QString text = Elided(Shown(MarkerText(*marker)), font, rect_->width());
      const double half = WidthOf(text, font) / 2.0 + 3;
      const double centre = std::clamp(plot_.xAxis->coordToPixel(marker->x[0]), rect_->left() - 20 + half,
                                       rect_->right() + 10 - half);
      const auto row = std::ranges::find_if(rowEnds, [&](double end) { return end <= centre - half; });
      const auto place = static_cast<std::size_t>(row - rowEnds.begin());
      if (row == rowEnds.end()) rowEnds.push_back(0);
      rowEnds[place] = centre + half;
      labels.push_back({text, centre, place});
    }
    return labels;
  }

  std::size_t MarkerRows() const {
    std::size_t rows = 0;
    for (const MarkerLabel& label : MarkerLabels()) rows = std::max(rows, label.row + 1);
    return rows;
  }

  void PlaceMarkers() {
    if (style_.isCell) return;
    const int line = LineHeightOf(TextFont(kSmallSize));
    for (const MarkerLabel& label : MarkerLabels())
      AddMarkerText(label.text, QPointF(label.centre, rect_->top() - 2 - static_cast<int>(label.row) * line));
  }

  void AddMarkerText(const QString& text, const QPointF& at) {
    auto& label = Add<QCPItemText>(&plot_);
    label.setClipToAxisRect(false);
    label.setFont(TextFont(kSmallSize));
    label.setColor(theme_.marker);
    label.setText(text);
    label.setPositionAlignment(Qt::AlignBottom | Qt::AlignHCenter);
    label.position->setType(QCPItemPosition::ptAbsolute);
    label.position->setCoords(at);
  }

  const Graph& graph_;
  const Theme& theme_;
  const PanelStyle style_;
  std::vector<std::string> categories_;
  std::vector<GraphSeries> curves_;
  GraphExtent extent_;
  QCustomPlot plot_;
  QCPAxisRect* rect_ = nullptr;
  std::size_t pens_ = 0;
};

}  // namespace

int HeightOf(const Graph& graph, int width) {
  if (!graph.cells.empty()) return HeatMapHeight(graph, width);
  const auto categories = static_cast<int>(CategoriesOf(graph).size());
  const int plot =
      categories > 0 ? std::max(kLeastPlotHeight, categories * kCategoryHeight) : kUsualPlotHeight;
  const int rows = LegendLines(LegendOf(graph), width);
  const QString notes = NotesText(graph, width);
  const int lines = rows + (notes.isEmpty() ? 0 : static_cast<int>(notes.count(QLatin1Char('\n'))) + 1);
  const auto markers = static_cast<int>(std::ranges::count_if(graph.series, IsMarker));
  constexpr int kAxisAndTitle = 84;
  return plot + kAxisAndTitle + (lines + markers) * (LineHeightOf(TextFont(kSmallSize)) + 2);
}

std::optional<PictureFrame> PaintPanel(const Graph& graph, const Theme& theme, const PanelStyle& style,
                                       QCPPainter& painter) {
  if (!graph.cells.empty()) return PaintHeatMap(graph, theme, style.area, painter);
  if (graph.kind == GraphKind::kText || !HasValues(graph)) {
    PaintText(graph, theme, style.area, painter);
    return std::nullopt;
  }
  PanelPlot plot(graph, theme, style);
  if (plot.IsBeyondAxes()) {
    Graph words;
    words.notes = {graph.title, "the values are too large for an axis, which ends at 1e249"};
    PaintText(words, theme, style.area, painter);
    return std::nullopt;
  }
  plot.Paint(painter);
  return plot.Frame();
}

}  // namespace brenvolt
