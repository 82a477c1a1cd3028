#include "apps/desktop/base/theme.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyle>
#include <QStyleFactory>
#include <QStyleOption>

namespace brenvolt::desktop {
namespace {

QPalette DarkPalette() {
  const QColor window(0x31, 0x35, 0x3b);
  const QColor base(0x1c, 0x1e, 0x22);
  const QColor text(0xe4, 0xe6, 0xe9);
  const QColor faint(0x98, 0x9e, 0xa7);
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

// The style draws the edges of fields and boxes darker than the window, which nobody sees on a dark one.
class DarkStyle : public QProxyStyle {
 public:
  DarkStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool isRound = element == PE_IndicatorRadioButton;
    const bool isEdged = isRound || element == PE_IndicatorCheckBox ||
                         element == PE_IndicatorItemViewItemCheck || element == PE_FrameLineEdit ||
                         element == PE_FrameGroupBox;
    if (!isEdged || option->state.testFlag(State_HasFocus)) return;
    painter->save();
    const bool isFrame = element == PE_FrameGroupBox;
    painter->setPen(option->palette.color(QPalette::Disabled, isFrame ? QPalette::Mid : QPalette::Text));
    painter->setBrush(Qt::NoBrush);
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF edge = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (isRound) {
      painter->drawEllipse(edge);
    } else {
      painter->drawRoundedRect(edge, kRounding, kRounding);
    }
    painter->restore();
  }

 private:
  static constexpr double kRounding = 1.5;
};

}  // namespace

void ApplyTheme(ThemeChoice theme) {
  if (theme == ThemeChoice::kSystem) {
    QApplication::setPalette(QPalette());
    return;
  }
  // The style of the system may not follow the colours.
  const bool isDark = theme == ThemeChoice::kDark;
  QApplication::setStyle(isDark ? new DarkStyle : QStyleFactory::create(QStringLiteral("Fusion")));
  QApplication::setPalette(isDark ? DarkPalette() : QApplication::style()->standardPalette());
}

}  // namespace brenvolt::desktop
