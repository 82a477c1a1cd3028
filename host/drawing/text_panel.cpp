#include "host/drawing/text_panel.h"

#include <qcustomplot.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/drawing/text_fitting.h"

namespace brenvolt {
namespace {

constexpr int kPadding = 8;

// A line in the size at which it fits, if need be in several lines of a word each.
struct FittedLine {
  QString text;
  QFont font;

  FittedLine(const QString& line, int size, bool isBold, int width) : text(line) {
    constexpr int kLeastSize = 8;
    if (WidthOf(line, TextFont(kSmallSize, isBold)) > width && line.count(QLatin1Char(' ')) == 1)
      text.replace(QLatin1Char(' '), QLatin1Char('\n'));
    font = TextFont(size, isBold);
    while (size > kLeastSize && Widest() > width) font = TextFont(--size, isBold);
    if (Widest() > width) text = Elided(line, font, width);
  }
  int Widest() const {
    int widest = 0;
    for (const QString& part : text.split(QLatin1Char('\n'))) widest = std::max(widest, WidthOf(part, font));
    return widest;
  }
  int Height() const {
    const auto breaks = static_cast<int>(text.count(QLatin1Char('\n')));
    return breaks == 0 ? LineHeightOf(TextFont()) + 2 : (breaks + 1) * LineHeightOf(font);
  }
};

}  // namespace

void PaintText(const Graph& graph, const Theme& theme, const QRect& area, QCPPainter& painter) {
  std::vector<std::string> notes = graph.notes;
  if (notes.empty()) notes.push_back(graph.title.empty() ? "no values" : graph.title + ": no values");
  std::vector<FittedLine> lines;
  int height = 0;
  for (std::size_t i = 0; i < notes.size(); ++i) {
    lines.emplace_back(Shown(notes[i]), i == 0 ? kTitleSize : kSmallSize, i == 0, area.width() - kPadding);
    height += lines.back().Height();
  }
  int top = area.center().y() - height / 2;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    painter.setFont(lines[i].font);
    painter.setPen(i == 0 ? theme.text : theme.faintText);
    painter.drawText(QRect(area.left(), top, area.width(), lines[i].Height()), Qt::AlignCenter,
                     lines[i].text);
    top += lines[i].Height();
  }
}

}  // namespace brenvolt
