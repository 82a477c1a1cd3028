// Graphs as pictures. What draws them is a library of its own (host/drawing), which is loaded when the first
// picture is drawn, so that programs start without its toolkit and run where it is not installed.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "host/graphs/graph.h"

namespace brenvolt {

class DynamicLibrary;

enum class PictureFormat : std::uint8_t { kPng, kSvg, kPdf };
enum class PictureTheme : std::uint8_t {
  kLight,
  kDark,
  kReader  // of an SVG: light, and dark on a screen whose reader prefers that
};

struct PictureStyle {
  PictureFormat format = PictureFormat::kPng;
  PictureTheme theme = PictureTheme::kLight;
  int width = 0;  // in pixels of 1/96 inch; 0: what the graph needs
};

inline constexpr int kLeastPictureWidth = 320;
// What a matrix needs beside its cells, and each of these.
inline constexpr int kMatrixFrame = 72;
inline constexpr int kLeastCellWidth = 56;
inline constexpr int kGreatestPictureWidth = 8000;

// The bytes of a file: of one graph, or, as PDF, of one graph a page. The height follows from the graph and the
// width. Throws Error if pictures cannot be drawn here, or if the curve of a graph has an invalid formula.
std::string DrawPictures(std::span<const Graph> graphs, const PictureStyle& style);

// The least width in which the cells of a matrix can be told apart; of another graph 0.
int LeastWidthOf(const Graph& graph);

// Why no picture can be drawn here, and which packages bring what is missing; empty where pictures can be drawn.
std::string WhyNoPictures();
// The library, which may have more to offer than pictures. Throws Error with the reason where there is none.
const DynamicLibrary& DrawingLibrary();

// What the library does, and the name of its function that returns this one.
using PictureFunction = std::string(std::span<const Graph> graphs, const PictureStyle& style);
inline constexpr const char* kPictureSymbol = "BrenvoltPictures";

}  // namespace brenvolt
