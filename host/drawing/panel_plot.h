// One graph without panels, drawn into a rectangle.
#pragma once

#include <QRect>
#include <optional>

#include "host/drawing/graph_extent.h"
#include "host/drawing/theme.h"
#include "host/graphs/framed_picture.h"
#include "host/graphs/graph.h"

class QCPPainter;

namespace brenvolt {

struct PanelStyle {
  QRect area;
  bool isCell = false;     // of a matrix, whose cells share their axes: no title and no legend
  bool showsXAxis = true;  // of a cell
  bool showsYAxis = true;
  Extent x;  // of a cell: what its column and its row cover; empty where they share nothing
  Extent y;
};

// Room for the axes that a cell shows, in pixels.
inline constexpr int kCellAxisWidth = 64;
inline constexpr int kCellAxisHeight = 44;

// How many pixels of height the graph asks for at this width, by its legend, its notes and its named bars.
int HeightOf(const Graph& graph, int width);

// Where the axes of the graph lie in what is painted on; nothing for words alone. Throws Error if a curve has an
// invalid formula.
std::optional<PictureFrame> PaintPanel(const Graph& graph, const Theme& theme, const PanelStyle& style,
                                       QCPPainter& painter);

}  // namespace brenvolt
