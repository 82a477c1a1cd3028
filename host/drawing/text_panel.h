// A graph of words alone, drawn into a rectangle.
#pragma once

#include <QRect>

#include "host/drawing/theme.h"
#include "host/graphs/graph.h"

class QCPPainter;

namespace brenvolt {

// The notes of the graph in the middle, of which the first stands out; without notes it says that the graph has no
// values.
void PaintText(const Graph& graph, const Theme& theme, const QRect& area, QCPPainter& painter);

}  // namespace brenvolt
