#include "host/drawing/theme.h"

#include <algorithm>

#include "host/graphs/palette.h"

namespace brenvolt {
namespace {

QColor ColourOf(const Colour& colour) {
  QColor found(QRgb{colour.rgb});
  found.setAlpha(colour.alpha);
  return found;
}

Theme ThemeFrom(const Palette& palette) {
  Theme theme{ColourOf(palette.background),  ColourOf(palette.text),   ColourOf(palette.faintText),
              ColourOf(palette.grid),        ColourOf(palette.bar),    ColourOf(palette.barEdge),
              ColourOf(palette.negativeBar), ColourOf(palette.point),  ColourOf(palette.reference),
              ColourOf(palette.region),      ColourOf(palette.marker), {}};
  std::ranges::transform(palette.lines, theme.lines.begin(), ColourOf);
  return theme;
}

}  // namespace

const Theme& ThemeOf(PictureTheme theme) {
  static const Theme kLight = ThemeFrom(PaletteOf(PictureTheme::kLight));
  static const Theme kDark = ThemeFrom(PaletteOf(PictureTheme::kDark));
  return theme == PictureTheme::kDark ? kDark : kLight;
}

// Lines come before what a picture fills with a colour of the same hue.
QList<QColor> ColoursOf(const Theme& theme) {
  QList<QColor> colours(theme.lines.begin(), theme.lines.end());
  colours << theme.background << theme.text << theme.faintText << theme.grid << theme.bar << theme.barEdge
          << theme.negativeBar << theme.point << theme.reference << theme.region << theme.marker;
  return colours;
}

QFont TextFont(int pixels, bool bold) {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(pixels);
  font.setBold(bold);
  return font;
}

}  // namespace brenvolt
