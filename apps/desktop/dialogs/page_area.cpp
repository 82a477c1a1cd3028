#include "apps/desktop/dialogs/page_area.h"

#include <QEvent>
#include <QLayout>
#include <QScreen>
#include <QScrollBar>

namespace brenvolt::desktop {
namespace {

// The rest of the screen is for the window's frame, its buttons and the task bar.
constexpr double kShareOfScreen = 0.75;

}  // namespace

PageArea::PageArea(QWidget* content) {
  setFrameShape(QFrame::NoFrame);
  setWidgetResizable(true);
  setWidget(content);
  content->setAutoFillBackground(false);
  viewport()->setAutoFillBackground(false);
  content->installEventFilter(this);
}

QSize PageArea::sizeHint() const {
  const QLayout& layout = *widget()->layout();
  QSize wanted = layout.totalSizeHint().expandedTo(layout.totalMinimumSize());
  if (layout.hasHeightForWidth())
    wanted.setHeight(std::max(wanted.height(), layout.totalHeightForWidth(wanted.width())));
  return wanted;
}

QSize PageArea::minimumSizeHint() const {
  const QSize most = screen()->availableSize() * kShareOfScreen;
  const QSize wanted = sizeHint();
  QSize least = widget()->layout()->totalMinimumSize();
  least.setHeight(std::max(least.height(), wanted.height()));
  // Room for the bar that scrolls what the screen has no place for.
  if (least.height() > most.height()) least.rwidth() += verticalScrollBar()->sizeHint().width();
  return least.boundedTo(most);
}

bool PageArea::eventFilter(QObject* watched, QEvent* event) {
  if (watched == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
  return QScrollArea::eventFilter(watched, event);
}

}  // namespace brenvolt::desktop
