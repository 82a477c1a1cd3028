#include "host/drawing/panel_words.h"

#include <qcustomplot.h>

#include <algorithm>
#include <cstddef>

#include "host/drawing/text_fitting.h"

namespace brenvolt {
namespace {

constexpr int kLegendIcon = 22;
// A picture of more named bars or boxes would be too long to read.
constexpr std::size_t kMostCategories = 200;
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

}  // namespace

bool IsMarker(const GraphSeries& series) {
  return series.style == SeriesStyle::kLine && series.x.size() == 2 && series.x[0] == series.x[1];
}

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

void StyleLegend(const std::vector<std::string>& names, int width, const Theme& theme, QCustomPlot& plot) {
  QCPLegend& legend = *plot.legend;
  legend.setFont(TextFont(kSmallSize));
  legend.setTextColor(theme.text);
  legend.setBrush(Qt::NoBrush);
  legend.setBorderPen(Qt::NoPen);
  legend.setIconSize(kLegendIcon, 10);
  legend.setMargins(QMargins(2 * kPadding, 2, kPadding, 2));
  legend.setRowSpacing(0);
  const int columns = LegendColumns(names, width);
  legend.setWrap(columns);
  legend.setFillOrder(QCPLegend::foColumnsFirst, true);
  legend.setVisible(true);
  const int room = NameRoom(width, columns);
  for (int i = 0; i < plot.plottableCount(); ++i)
    plot.plottable(i)->setName(
        Wrapped(plot.plottable(i)->name(), TextFont(kSmallSize), room, kMostNameLines));
  // Letters reach below the line that the items are measured by. The last row may have empty places.
  for (int i = 0; i < legend.itemCount(); ++i) {
    if (legend.item(i) != nullptr) legend.item(i)->setMargins(QMargins(2, 0, 2, 3));
  }
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

}  // namespace brenvolt
