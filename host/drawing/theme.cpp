#include "host/drawing/theme.h"

namespace brenvolt {
namespace {

const Theme kLight{QColor(0xFFFFFF),
                   QColor(0x222222),
                   QColor(0x666666),
                   QColor(0xE4E4E4),
                   QColor(0xBFD7EA),
                   QColor(0x6F9BBF),
                   QColor(0xE8C088),
                   QColor(0, 114, 178, 130),
                   QColor(0x777777),
                   QColor(213, 94, 0, 38),
                   QColor(0xA03000),
                   {QColor(0xD55E00), QColor(0x0072B2), QColor(0x009E73), QColor(0xA8558A), QColor(0x8A6D00),
                    QColor(0x222222)}};

const Theme kDark{QColor(0x1B1E23),
                  QColor(0xE8E8E8),
                  QColor(0xA8ADB5),
                  QColor(0x343A43),
                  QColor(0x3E5F7C),
                  QColor(0x6F9BBF),
                  QColor(0x8A6536),
                  QColor(86, 180, 233, 150),
                  QColor(0xA8ADB5),
                  QColor(240, 128, 48, 50),
                  QColor(0xFF9A5C),
                  {QColor(0xFF8C42), QColor(0x56B4E9), QColor(0x35C79A), QColor(0xE39CC9), QColor(0xF0E442),
                   QColor(0xE8E8E8)}};

}  // namespace

const Theme& ThemeOf(PictureTheme theme) {
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
