#include "host/drawing/page.h"

#include <qcustomplot.h>

#include <algorithm>
#include <cmath>

#include "host/drawing/panel_plot.h"
#include "host/drawing/text_fitting.h"

namespace brenvolt {
namespace {

constexpr int kSingleWidth = 720;
constexpr int kPanelWidth = 400;
constexpr int kLeastPanelWidth = 150;
constexpr int kUsualMostWidth = 2400;
// Panels narrower than this are cells of a matrix.
constexpr int kNarrowest = 230;
constexpr int kCellWidth = 130;
constexpr int kMargin = 8;
constexpr int kTitleHeight = 32;
constexpr int kNoteSize = 11;
constexpr double kCellRatio = 0.85;
static_assert(kMatrixFrame == kCellAxisWidth + kMargin);

bool IsMatrix(const Graph& graph) {
  return graph.kind == GraphKind::kScatterMatrix;
}

std::size_t ColumnsOf(const Graph& graph, int width) {
  if (graph.panelColumns > 0) return graph.panelColumns;
  const std::size_t count = graph.panels.size();
  if (count <= 1) return 1;
  const auto square = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(count))));
  if (width == 0) return square;
  return std::clamp<std::size_t>(static_cast<std::size_t>(width / 300), 1, square);
}

// What the columns and the rows of a matrix cover: their points, and of a row not the counts of its histogram.
std::vector<GraphExtent> SharedExtents(const Graph& graph, std::size_t columns) {
  std::vector<GraphExtent> ofColumns(columns);
  std::vector<GraphExtent> ofRows((graph.panels.size() + columns - 1) / columns);
  const auto unite = [](const Extent& more, Extent& extent) {
    if (more.IsEmpty()) return;
    extent.Add(more.from);
    extent.Add(more.to);
  };
  for (std::size_t i = 0; i < graph.panels.size(); ++i) {
    const GraphExtent extent = ExtentOf(graph.panels[i], {});
    unite(extent.x, ofColumns[i % columns].x);
    if (graph.panels[i].bars.empty()) unite(extent.y, ofRows[i / columns].y);
  }
  std::vector<GraphExtent> shared;
  for (std::size_t i = 0; i < graph.panels.size(); ++i)
    shared.push_back({ofColumns[i % columns].x, ofRows[i / columns].y});
  return shared;
}

// Notes one a line where they fit, side by side in columns.
struct NoteColumns {
  int columns = 1;
  int rows = 0;
};

NoteColumns NotesIn(const Graph& graph, int width) {
  if (graph.notes.empty()) return {};
  int widest = 1;
  for (const std::string& note : graph.notes)
    widest = std::max(widest, WidthOf(Shown(note), TextFont(kNoteSize)) + 3 * kMargin);
  NoteColumns found;
  found.columns = std::clamp((width - 2 * kMargin) / widest, 1, static_cast<int>(graph.notes.size()));
  found.rows = (static_cast<int>(graph.notes.size()) + found.columns - 1) / found.columns;
  return found;
}

int NoteLine() {
  return LineHeightOf(TextFont(kNoteSize)) + 3;
}

}  // namespace

Page::Page(const Graph& graph, int width) : graph_(graph) {
  if (graph.panels.empty()) {
    const int whole = width > 0 ? width : kSingleWidth;
    size_ = QSize(whole, HeightOf(graph, whole));
    return;
  }
  columns_ = ColumnsOf(graph, width);
  if (IsMatrix(graph)) {
    LayOutCells(width);
  } else {
    LayOutPanels(width);
  }
  const NoteColumns notes = NotesIn(graph, size_.width());
  notesTop_ = size_.height();
  if (notes.rows > 0) size_.rheight() += notes.rows * NoteLine() + 2 * kMargin;
}

void Page::LayOutPanels(int width) {
  const auto columns = static_cast<int>(columns_);
  const int panel = width > 0 ? std::max(1, width / columns)
                              : std::clamp(kUsualMostWidth / columns, kLeastPanelWidth, kPanelWidth);
  const std::size_t rows = (graph_.panels.size() + columns_ - 1) / columns_;
  int top = graph_.title.empty() ? 0 : kTitleHeight;
  for (std::size_t row = 0; row < rows; ++row) {
    const std::size_t begin = row * columns_;
    const std::size_t end = std::min(begin + columns_, graph_.panels.size());
    int height = 0;
    for (std::size_t i = begin; i < end; ++i) {
      const int asked = HeightOf(graph_.panels[i], panel);
      height = std::max(height, panel < kNarrowest ? static_cast<int>(panel * kCellRatio) : asked);
    }
    for (std::size_t i = begin; i < end; ++i)
      areas_.emplace_back(static_cast<int>(i - begin) * panel, top, panel, height);
    top += height;
  }
  size_ = QSize(std::max(width, panel * columns), top);
}

// The left column and the last row have the axes of all.
void Page::LayOutCells(int width) {
  const auto columns = static_cast<int>(columns_);
  const int rows = (static_cast<int>(graph_.panels.size()) + columns - 1) / columns;
  const int room = width > 0 ? width - kMatrixFrame : columns * std::max(kCellWidth, 480 / columns);
  const int cell = std::max(kLeastCellWidth, room / columns);
  const int height = static_cast<int>(cell * kCellRatio);
  const int top = graph_.title.empty() ? kMargin : kTitleHeight;
  for (std::size_t i = 0; i < graph_.panels.size(); ++i) {
    const int column = static_cast<int>(i % columns_);
    const int row = static_cast<int>(i / columns_);
    areas_.emplace_back(column == 0 ? 0 : kCellAxisWidth + column * cell, top + row * height,
                        column == 0 ? kCellAxisWidth + cell : cell,
                        row == rows - 1 ? height + kCellAxisHeight : height);
  }
  size_ = QSize(std::max(width, kCellAxisWidth + columns * cell + kMargin),
                top + rows * height + kCellAxisHeight);
}

std::vector<PictureFrame> Page::Paint(const Theme& theme, QCPPainter& painter) const {
  std::vector<PictureFrame> frames;
  const auto paint = [&](std::size_t place, const Graph& graph, const PanelStyle& style) {
    auto frame = PaintPanel(graph, theme, style, painter);
    if (!frame) return;
    frame->panel = place;
    frames.push_back(*frame);
  };
  painter.fillRect(QRect(QPoint(0, 0), size_), theme.background);
  if (graph_.panels.empty()) {
    PanelStyle style;
    style.area = QRect(QPoint(0, 0), size_);
    paint(0, graph_, style);
    return frames;
  }
  PaintTitle(theme, painter);
  const std::vector<GraphExtent> shared =
      IsMatrix(graph_) ? SharedExtents(graph_, columns_) : std::vector<GraphExtent>(areas_.size());
  for (std::size_t i = 0; i < areas_.size(); ++i) {
    PanelStyle style;
    style.area = areas_[i];
    style.x = shared[i].x;
    style.y = shared[i].y;
    style.isCell = IsMatrix(graph_) || areas_[i].width() < kNarrowest;
    if (IsMatrix(graph_)) {
      style.showsYAxis = i % columns_ == 0;
      style.showsXAxis = i + columns_ >= areas_.size();
    }
    paint(i, graph_.panels[i], style);
  }
  PaintNotes(theme, painter);
  return frames;
}

void Page::PaintTitle(const Theme& theme, QCPPainter& painter) const {
  if (graph_.title.empty()) return;
  const QFont font = TextFont(kTitleSize + 2, true);
  painter.setFont(font);
  painter.setPen(theme.text);
  painter.drawText(QRect(kMargin, 0, size_.width() - 2 * kMargin, kTitleHeight), Qt::AlignCenter,
                   Elided(Shown(graph_.title), font, size_.width() - 2 * kMargin));
}

void Page::PaintNotes(const Theme& theme, QCPPainter& painter) const {
  const NoteColumns notes = NotesIn(graph_, size_.width());
  const QFont font = TextFont(kNoteSize);
  painter.setFont(font);
  painter.setPen(theme.text);
  const int width = (size_.width() - 2 * kMargin) / notes.columns;
  for (int i = 0; i < static_cast<int>(graph_.notes.size()); ++i) {
    const QRect area(kMargin + i / notes.rows * width, notesTop_ + kMargin + i % notes.rows * NoteLine(),
                     width - kMargin, NoteLine());
    painter.drawText(area, Qt::AlignLeft | Qt::AlignVCenter,
                     Elided(Shown(graph_.notes[static_cast<std::size_t>(i)]), font, area.width()));
  }
}

}  // namespace brenvolt
