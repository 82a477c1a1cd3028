// A graph as a picture with what a reader needs who points into it: where its axes lie, and what they cover.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/graphs/picture.h"

namespace brenvolt {

// One axis of a plot: the pixels at its two values. A vertical axis that rises has its first value below the second.
struct PictureAxis {
  double from = 0;
  double to = 0;
  double fromPixel = 0;
  double toPixel = 0;

  double ValueAt(double pixel) const {
    return from + (pixel - fromPixel) * (to - from) / (toPixel - fromPixel);
  }
  double PixelOf(double value) const {
    return fromPixel + (value - from) * (toPixel - fromPixel) / (to - from);
  }
};

// Where a graph without panels, or a panel, is drawn. Named bars and boxes lie on their side: the vertical axis then
// counts their names, from 0 above; so do both axes of a table of cells.
struct PictureFrame {
  std::size_t panel = 0;
  PictureAxis x;
  PictureAxis y;
};

struct FramedPicture {
  std::string bytes;
  std::vector<PictureFrame> frames;  // of what has axes
};

// As DrawPictures does it, of one graph as SVG.
FramedPicture DrawFramedPicture(const Graph& graph, const PictureStyle& style);

using FramedPictureFunction = FramedPicture(const Graph& graph, const PictureStyle& style);
inline constexpr const char* kFramedPictureSymbol = "BrenvoltFramedPicture";

}  // namespace brenvolt
