#include "apps/desktop/dialogs/wrapped_label.h"

#include <QResizeEvent>
#include <algorithm>

namespace brenvolt::desktop {
namespace {

constexpr int kFewestCharacters = 20;
constexpr int kMostCharacters = 34;

}  // namespace

WrappedLabel::WrappedLabel() {
  setWordWrap(true);
  setTextFormat(Qt::PlainText);
  setTextInteractionFlags(Qt::TextSelectableByMouse);
  setFocusPolicy(Qt::NoFocus);
}

QSize WrappedLabel::sizeHint() const {
  if (!wordWrap()) return QLabel::sizeHint();
  const int character = fontMetrics().averageCharWidth();
  const int natural = fontMetrics().size(0, text()).width() + character;
  const int width = std::min(natural, kMostCharacters * character);
  return {width, heightForWidth(width)};
}

QSize WrappedLabel::minimumSizeHint() const {
  if (!wordWrap()) return QLabel::minimumSizeHint();
  const int width = std::min(sizeHint().width(), kFewestCharacters * fontMetrics().averageCharWidth());
  return {width, heightForWidth(std::max(width, this->width()))};
}

// What the lines need depends on the width, which layouts ask about only once.
void WrappedLabel::resizeEvent(QResizeEvent* event) {
  QLabel::resizeEvent(event);
  if (event->size().width() != event->oldSize().width()) updateGeometry();
}

}  // namespace brenvolt::desktop
