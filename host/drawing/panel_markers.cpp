#include "host/drawing/panel_markers.h"

#include <qcustomplot.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "host/base/number_text.h"
#include "host/drawing/panel_words.h"
#include "host/drawing/text_fitting.h"

namespace brenvolt {
namespace {

// With the minus sign that the labels of the axes have.
std::string MarkerText(const GraphSeries& marker) {
  const double value = marker.x[0];
  return marker.name + (value < 0 ? " −" : " ") + FormatNumber("%.6g", std::abs(value));
}

struct MarkerLabel {
  QString text;
  double centre;
  std::size_t row;  // from the plot up
};

// Labels of markers stand above the plot, in rows where they are close to each other.
std::vector<MarkerLabel> MarkerLabels(const Graph& graph, const QCustomPlot& plot) {
  const QCPAxisRect& rect = *plot.axisRect();
  const QFont font = TextFont(kSmallSize);
  std::vector<const GraphSeries*> markers;
  for (const GraphSeries& series : graph.series) {
    if (IsMarker(series)) markers.push_back(&series);
  }
  std::ranges::sort(markers, {}, [](const GraphSeries* marker) { return marker->x[0]; });
  std::vector<double> rowEnds;  // where the last label of each row ends
  std::vector<MarkerLabel> labels;
  for (const GraphSeries* marker : markers) {
    const QString text = Elided(Shown(MarkerText(*marker)), font, rect.width());
    const double half = WidthOf(text, font) / 2.0 + 3;
    const double centre =
        std::clamp(plot.xAxis->coordToPixel(marker->x[0]), rect.left() - 20 + half, rect.right() + 10 - half);
    const auto row = std::ranges::find_if(rowEnds, [&](double end) { return end <= centre - half; });
    const auto place = static_cast<std::size_t>(row - rowEnds.begin());
    if (row == rowEnds.end()) rowEnds.push_back(0);
    rowEnds[place] = centre + half;
    labels.push_back({text, centre, place});
  }
  return labels;
}

void AddText(const QString& text, const QPointF& at, const Theme& theme, QCustomPlot& plot) {
  auto& label = *new QCPItemText(&plot);  // belongs to the plot
  label.setClipToAxisRect(false);
  label.setFont(TextFont(kSmallSize));
  label.setColor(theme.marker);
  label.setText(text);
  label.setPositionAlignment(Qt::AlignBottom | Qt::AlignHCenter);
  label.position->setType(QCPItemPosition::ptAbsolute);
  label.position->setCoords(at);
}

}  // namespace

std::size_t MarkerRows(const Graph& graph, const QCustomPlot& plot) {
  std::size_t rows = 0;
  for (const MarkerLabel& label : MarkerLabels(graph, plot)) rows = std::max(rows, label.row + 1);
  return rows;
}

void PlaceMarkers(const Graph& graph, const Theme& theme, QCustomPlot& plot) {
  const int line = LineHeightOf(TextFont(kSmallSize));
  for (const MarkerLabel& label : MarkerLabels(graph, plot))
    AddText(label.text,
            QPointF(label.centre, plot.axisRect()->top() - 2 - static_cast<int>(label.row) * line), theme,
            plot);
}

}  // namespace brenvolt
