// Texts made to fit the room that a picture has for them.
#pragma once

#include <QFont>
#include <QString>
#include <string>
#include <string_view>
#include <vector>

namespace brenvolt {

QString Shown(std::string_view utf8);
int WidthOf(const QString& text, const QFont& font);
int LineHeightOf(const QFont& font);
// The text, or its beginning and end with an ellipsis between them.
QString Elided(const QString& text, const QFont& font, int width);
// The text in lines that end between words; no more than `mostLines`, the last of which is elided.
QString Wrapped(const QString& text, const QFont& font, int width, int mostLines);

}  // namespace brenvolt
