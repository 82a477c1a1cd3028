#include "apps/desktop/base/theme.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

namespace brenvolt::desktop {
namespace {

QPalette DarkPalette() {
  const QColor window(0x25, 0x28, 0x2d);
  const QColor base(0x1b, 0x1d, 0x21);
  const QColor text(0xe4, 0xe6, 0xe9);
  const QColor faint(0x8a, 0x90, 0x99);
  const QColor accent(0x3d, 0x8f, 0xd6);
  QPalette palette(text, window, window.lighter(150), window.darker(150), window.lighter(120), text,
                   Qt::white, base, window);
  palette.setColor(QPalette::Button, window.lighter(115));
  palette.setColor(QPalette::AlternateBase, base.lighter(125));
  palette.setColor(QPalette::ToolTipBase, window.lighter(130));
  palette.setColor(QPalette::ToolTipText, text);
  palette.setColor(QPalette::PlaceholderText, faint);
  palette.setColor(QPalette::Highlight, accent);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, accent.lighter(140));
  palette.setColor(QPalette::LinkVisited, accent.lighter(140));
  for (const auto role :
       {QPalette::Text, QPalette::WindowText, QPalette::ButtonText, QPalette::HighlightedText})
    palette.setColor(QPalette::Disabled, role, faint);
  palette.setColor(QPalette::Disabled, QPalette::Highlight, window.lighter(140));
  return palette;
}

}  // namespace

void ApplyTheme(ThemeChoice theme) {
  if (theme == ThemeChoice::kSystem) {
    QApplication::setPalette(QPalette());
    return;
  }
  // The style of the system may not follow the colours.
  QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
  QApplication::setPalette(theme == ThemeChoice::kDark ? DarkPalette()
                                                       : QApplication::style()->standardPalette());
}

}  // namespace brenvolt::desktop
