// What a graph shows at a place of its picture, in words.
#pragma once

#include <QPointF>
#include <QString>
#include <optional>

#include "host/graphs/framed_picture.h"

namespace brenvolt::desktop {

// One of the plots of a picture: the graph itself, or one of its panels.
const Graph& PlotOf(const Graph& graph, const PictureFrame& frame);

// The frame that holds a place, given in pixels of the picture; null if none does.
const PictureFrame* FrameAt(const std::vector<PictureFrame>& frames, QPointF place);

// The values at a place inside a frame, a line for each thing shown there; empty where nothing is.
QString ValuesAt(const Graph& plot, const PictureFrame& frame, QPointF place);

// The limit or target near a place: the index of its series.
std::optional<std::size_t> MarkerAt(const Graph& plot, const PictureFrame& frame, QPointF place);

}  // namespace brenvolt::desktop
