// The colours and fonts of pictures.
#pragma once

#include <QColor>
#include <QFont>
#include <QList>
#include <array>

#include "host/graphs/picture.h"

namespace brenvolt {

// A palette in the form that the toolkit takes.
struct Theme {
  QColor background;
  QColor text;
  QColor faintText;
  QColor grid;
  QColor bar;
  QColor barEdge;
  QColor negativeBar;
  QColor point;
  QColor reference;
  QColor region;
  QColor marker;
  std::array<QColor, 6> lines;
};

const Theme& ThemeOf(PictureTheme theme);

// All colours of a theme, each at the same place in every theme.
QList<QColor> ColoursOf(const Theme& theme);

inline constexpr int kTextSize = 12;  // in pixels
inline constexpr int kTitleSize = 14;
inline constexpr int kSmallSize = 11;  // of axis numbers, legends and notes

QFont TextFont(int pixels = kTextSize, bool bold = false);

}  // namespace brenvolt
