// A graph with its panels, laid out as a page.
#pragma once

#include <QRect>
#include <QSize>
#include <vector>

#include "host/drawing/theme.h"
#include "host/graphs/framed_picture.h"
#include "host/graphs/graph.h"

class QCPPainter;

namespace brenvolt {

// Where everything of a graph goes.
class Page {
 public:
  // `width` 0 takes what the panels need.
  Page(const Graph& graph, int width);

  QSize Size() const { return size_; }
  // The frames of what has axes. Throws Error if a curve has an invalid formula.
  std::vector<PictureFrame> Paint(const Theme& theme, QCPPainter& painter) const;

 private:
  void LayOutPanels(int width);
  void LayOutCells(int width);
  void PaintTitle(const Theme& theme, QCPPainter& painter) const;
  void PaintNotes(const Theme& theme, QCPPainter& painter) const;

  const Graph& graph_;
  std::size_t columns_ = 1;
  QSize size_;
  std::vector<QRect> areas_;  // of the panels
  int notesTop_ = 0;
};

}  // namespace brenvolt
