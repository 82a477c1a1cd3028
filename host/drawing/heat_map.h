// A table of numbers in colours, drawn into a rectangle: blue above zero, orange below, and the number where it fits.
#pragma once

#include <QRect>

#include "host/drawing/theme.h"
#include "host/graphs/framed_picture.h"
#include "host/graphs/graph.h"

class QCPPainter;

namespace brenvolt {

// How many pixels of height the table asks for at this width.
int HeatMapHeight(const Graph& graph, int width);

// The axes of what is painted count columns and rows.
PictureFrame PaintHeatMap(const Graph& graph, const Theme& theme, const QRect& area, QCPPainter& painter);

}  // namespace brenvolt
