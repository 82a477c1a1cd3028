// A table of numbers in colours, drawn into a rectangle: blue above zero, orange below, and the number where it fits.
#pragma once

#include <QRect>

#include "host/drawing/theme.h"
#include "host/graphs/graph.h"

class QCPPainter;

namespace brenvolt {

// How many pixels of height the table asks for at this width.
int HeatMapHeight(const Graph& graph, int width);

void PaintHeatMap(const Graph& graph, const Theme& theme, const QRect& area, QCPPainter& painter);

}  // namespace brenvolt
