#include "host/drawing/panel_plot.h"

#include <qcustomplot.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include "host/drawing/axis_scale.h"
#include "host/drawing/graph_extent.h"
#include "host/drawing/heat_map.h"
#include "host/drawing/panel_markers.h"
#include "host/drawing/panel_parts.h"
#include "host/drawing/panel_words.h"
#include "host/drawing/text_fitting.h"
#include "host/drawing/text_panel.h"

namespace brenvolt {
namespace {

constexpr int kLeastPlotHeight = 120;
constexpr int kUsualPlotHeight = 300;
constexpr int kCategoryHeight = 18;
constexpr int kSmallCell = 150;  // is narrower

bool HasValues(const Graph& graph) {
  return !graph.bars.empty() || !graph.boxes.empty() || !graph.curves.empty() || !graph.bands.empty() ||
         std::ranges::any_of(graph.series, [](const GraphSeries& series) { return !series.x.empty(); });
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
    AddParts({graph_, categories_, curves_}, theme_, style_.area.size(), IsSmallCell(), plot_);
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
    ReserveMarkerRows(MarkerRows(graph_, plot_));
    LayOut();
    if (!style_.isCell) PlaceMarkers(graph_, theme_, plot_);
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
    StyleLegend(names, style_.area.width(), theme_, plot_);
    AddRow(*plot_.legend);
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

  const Graph& graph_;
  const Theme& theme_;
  const PanelStyle style_;
  std::vector<std::string> categories_;
  std::vector<GraphSeries> curves_;
  GraphExtent extent_;
  QCustomPlot plot_;
  QCPAxisRect* rect_ = nullptr;
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
