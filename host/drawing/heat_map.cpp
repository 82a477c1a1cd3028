#include "host/drawing/heat_map.h"

#include <qcustomplot.h>

#include <algorithm>
#include <cmath>

#include "host/base/number_text.h"
#include "host/drawing/text_fitting.h"

namespace brenvolt {
namespace {

constexpr int kMargin = 8;
constexpr int kTallestCell = 44;
constexpr int kLeastCell = 3;
constexpr int kTallestNames = 110;
constexpr int kKeyHeight = 12;
constexpr int kKeySteps = 40;

QString NumberOf(double value) {
  std::string text = FormatNumber("%.2f", std::abs(value) < 0.005 ? 0 : value);
  if (text.starts_with('-')) text.replace(0, 1, "−");
  return Shown(text);
}

int WidestOf(const std::vector<std::string>& names) {
  int widest = 0;
  for (const std::string& name : names) widest = std::max(widest, WidthOf(Shown(name), TextFont(kSmallSize)));
  return widest;
}

QColor Mixed(const QColor& from, const QColor& to, double share) {
  const auto part = [share](int a, int b) { return static_cast<int>(std::lround(std::lerp(a, b, share))); };
  return {part(from.red(), to.red()), part(from.green(), to.green()), part(from.blue(), to.blue())};
}

// Where everything goes. Names of columns stand upright where they are wider than a column.
struct Layout {
  Layout(const Graph& graph, int width) : cells(graph.cells.front()) {
    const auto columns = std::max<int>(1, static_cast<int>(cells.columns.size()));
    left = kMargin + std::min(WidestOf(cells.rows) + 2 * kMargin, width * 3 / 10);
    cellWidth = std::max(1.0, static_cast<double>(width - left - 2 * kMargin) / columns);
    cellHeight =
        std::clamp(std::floor(cellWidth), static_cast<double>(kLeastCell), static_cast<double>(kTallestCell));
    const int widest = WidestOf(cells.columns);
    isUpright = widest + 6 > cellWidth;
    namesHeight = isUpright ? std::min(widest, kTallestNames) + 8 : line + 4;
    title = Wrapped(Shown(graph.title), TextFont(kTitleSize, true), width - 4 * kMargin, 2);
    top = kMargin + (title.isEmpty() ? 0 : Lines(title) * LineHeightOf(TextFont(kTitleSize, true)) + kMargin);
    std::string all;
    for (const std::string& note : graph.notes) all += (all.empty() ? "" : "; ") + note;
    notes = Wrapped(Shown(all), TextFont(kSmallSize), width - 4 * kMargin, 4);
    bottom = top + static_cast<int>(cellHeight * static_cast<double>(cells.rows.size()));
  }

  static int Lines(const QString& text) {
    return text.isEmpty() ? 0 : static_cast<int>(text.count(QLatin1Char('\n'))) + 1;
  }
  int KeyTop() const { return bottom + namesHeight + kMargin; }
  int NotesTop() const { return KeyTop() + kKeyHeight + line + kMargin; }
  int Height() const { return NotesTop() + Lines(notes) * line + kMargin; }
  QRectF Cell(std::size_t row, std::size_t column) const {
    return {left + static_cast<double>(column) * cellWidth, top + static_cast<double>(row) * cellHeight,
            cellWidth, cellHeight};
  }
  // Every so many names are shown, so that they do not touch.
  std::size_t Stride(double room) const {
    return static_cast<std::size_t>(std::max(1.0, std::ceil(line / room)));
  }

  const GraphCells& cells;
  const int line = LineHeightOf(TextFont(kSmallSize));
  int left = 0;
  int top = 0;
  int bottom = 0;
  double cellWidth = 1;
  double cellHeight = 1;
  bool isUpright = false;
  int namesHeight = 0;
  QString title;
  QString notes;
};

class HeatMap {
 public:
  HeatMap(const Graph& graph, const Theme& theme, const QRect& area, QCPPainter& painter)
      : layout_(graph, area.width()), theme_(theme), area_(area), painter_(painter) {}

  void Paint() {
    painter_.save();
    painter_.translate(area_.topLeft());
    PaintTexts();
    PaintCells();
    PaintRowNames();
    PaintColumnNames();
    PaintKey();
    painter_.restore();
  }

  PictureFrame Frame() const {
    const auto rows = layout_.cells.rows.size();
    const auto columns = layout_.cells.columns.size();
    const QPointF begin = layout_.Cell(0, 0).topLeft() + area_.topLeft();
    const QPointF end = layout_.Cell(rows, columns).topLeft() + area_.topLeft();
    PictureFrame frame;
    frame.x = {0, static_cast<double>(columns), begin.x(), end.x()};
    frame.y = {0, static_cast<double>(rows), begin.y(), end.y()};
    return frame;
  }

 private:
  QColor ColourOf(double value) const {
    if (!std::isfinite(value)) return theme_.grid;
    return Mixed(theme_.background, value < 0 ? theme_.lines[0] : theme_.lines[1],
                 std::min(1.0, std::abs(value)));
  }

  void PaintTexts() {
    painter_.setFont(TextFont(kTitleSize, true));
    painter_.setPen(theme_.text);
    painter_.drawText(QRect(0, kMargin, area_.width(), layout_.top), Qt::AlignHCenter | Qt::AlignTop,
                      layout_.title);
    painter_.setFont(TextFont(kSmallSize));
    painter_.setPen(theme_.faintText);
    painter_.drawText(QRect(0, layout_.NotesTop(), area_.width(), layout_.line * 4),
                      Qt::AlignHCenter | Qt::AlignTop, layout_.notes);
  }

  void PaintCells() {
    const GraphCells& cells = layout_.cells;
    const bool showsNumbers = layout_.cellWidth >= WidthOf(NumberOf(-0.88), TextFont(kSmallSize)) + 4 &&
                              layout_.cellHeight >= layout_.line;
    painter_.setFont(TextFont(kSmallSize));
    for (std::size_t row = 0; row < cells.rows.size(); ++row) {
      for (std::size_t column = 0; column < cells.columns.size(); ++column) {
        const double value = cells.values[row * cells.columns.size() + column];
        const QRectF cell = layout_.Cell(row, column);
        const QColor colour = ColourOf(value);
        painter_.setPen(layout_.cellWidth > 12 ? QPen(theme_.background, 1) : QPen(Qt::NoPen));
        painter_.setBrush(colour);
        painter_.drawRect(cell);
        if (!showsNumbers) continue;
        const bool isLight = colour.lightness() > 140;
        painter_.setPen(isLight ? QColor(Qt::black) : QColor(Qt::white));
        painter_.drawText(cell, Qt::AlignCenter, std::isfinite(value) ? NumberOf(value) : QString());
      }
    }
  }

  void PaintRowNames() {
    painter_.setPen(theme_.text);
    const GraphCells& cells = layout_.cells;
    for (std::size_t row = 0; row < cells.rows.size(); row += layout_.Stride(layout_.cellHeight)) {
      const QRectF cell = layout_.Cell(row, 0);
      const QRectF place(kMargin, cell.center().y() - layout_.line / 2.0, layout_.left - kMargin - 6,
                         layout_.line);
      painter_.drawText(
          place, Qt::AlignRight | Qt::AlignVCenter,
          Elided(Shown(cells.rows[row]), TextFont(kSmallSize), static_cast<int>(place.width())));
    }
  }

  void PaintColumnNames() {
    const GraphCells& cells = layout_.cells;
    const std::size_t stride = layout_.isUpright ? layout_.Stride(layout_.cellWidth) : 1;
    for (std::size_t column = 0; column < cells.columns.size(); column += stride) {
      const double centre = layout_.Cell(0, column).center().x();
      const int room = layout_.isUpright ? kTallestNames : static_cast<int>(layout_.cellWidth);
      const QString name = Elided(Shown(cells.columns[column]), TextFont(kSmallSize), room);
      painter_.save();
      painter_.translate(centre, layout_.bottom + 4);
      if (layout_.isUpright) {
        painter_.rotate(-90);
        painter_.drawText(QRectF(-kTallestNames, -layout_.line / 2.0, kTallestNames, layout_.line),
                          Qt::AlignRight | Qt::AlignVCenter, name);
      } else {
        painter_.drawText(QRectF(-room / 2.0, 0, room, layout_.line), Qt::AlignCenter, name);
      }
      painter_.restore();
    }
  }

  // What the colours stand for.
  void PaintKey() {
    const int width = std::min(220, (area_.width() - layout_.left) / 2);
    const double step = static_cast<double>(width) / kKeySteps;
    painter_.setPen(Qt::NoPen);
    for (int i = 0; i < kKeySteps; ++i) {
      painter_.setBrush(ColourOf(-1 + 2.0 * (i + 0.5) / kKeySteps));
      painter_.drawRect(QRectF(layout_.left + i * step, layout_.KeyTop(), step + 0.5, kKeyHeight));
    }
    painter_.setPen(theme_.text);
    for (const double value : {-1.0, 0.0, 1.0}) {
      const double centre = layout_.left + width * (value + 1) / 2;
      std::string text = FormatNumber("%.0f", value);
      if (value < 0) text.replace(0, 1, "−");
      painter_.drawText(QRectF(centre - 20, layout_.KeyTop() + kKeyHeight, 40, layout_.line), Qt::AlignCenter,
                        Shown(text));
    }
    painter_.drawText(
        QRectF(layout_.left + width + 2 * kMargin, layout_.KeyTop() - 2, area_.width(), layout_.line),
        Qt::AlignLeft | Qt::AlignVCenter, Shown(layout_.cells.name));
  }

  const Layout layout_;
  const Theme& theme_;
  const QRect area_;
  QCPPainter& painter_;
};

}  // namespace

int HeatMapHeight(const Graph& graph, int width) {
  return Layout(graph, width).Height();
}

PictureFrame PaintHeatMap(const Graph& graph, const Theme& theme, const QRect& area, QCPPainter& painter) {
  HeatMap map(graph, theme, area, painter);
  map.Paint();
  return map.Frame();
}

}  // namespace brenvolt
