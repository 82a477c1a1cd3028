#include "host/drawing/text_fitting.h"

#include <QFontMetrics>
#include <QStringList>

namespace brenvolt {

QString Shown(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size())).simplified();
}

int WidthOf(const QString& text, const QFont& font) {
  return QFontMetrics(font).horizontalAdvance(text);
}

int LineHeightOf(const QFont& font) {
  return QFontMetrics(font).height();
}

QString Elided(const QString& text, const QFont& font, int width) {
  return QFontMetrics(font).elidedText(text, Qt::ElideMiddle, width);
}

QString Wrapped(const QString& text, const QFont& font, int width, int mostLines) {
  QStringList lines;
  QString line;
  for (const QString& word : text.split(QLatin1Char(' '))) {
    const QString longer = line.isEmpty() ? word : line + QLatin1Char(' ') + word;
    if (line.isEmpty() || lines.size() + 1 == mostLines || WidthOf(longer, font) <= width) {
      line = longer;
      continue;
    }
    lines << line;
    line = word;
  }
  lines << line;
  for (QString& one : lines) one = Elided(one, font, width);
  return lines.join(QLatin1Char('\n'));
}

}  // namespace brenvolt
