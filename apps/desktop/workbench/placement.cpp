#include "apps/desktop/workbench/placement.h"

#include <QScreen>
#include <QSplitter>
#include <QWidget>
#include <algorithm>
#include <initializer_list>
#include <utility>

namespace brenvolt::desktop {
namespace {

// Less is no width to read results in.
constexpr int kLeastResults = 480;

QPoint OnScreen(const QPoint& place, const QSize& size, const QRect& screen) {
  return {std::max(std::min(place.x(), screen.right() - size.width() + 1), screen.left()),
          std::max(std::min(place.y(), screen.bottom() - size.height() + 1), screen.top())};
}

QRect OnGlobe(const QWidget& widget) {
  return {widget.mapToGlobal(QPoint(0, 0)), widget.size()};
}

}  // namespace

QPoint PlaceBeside(const QRect& window, const QRect& page, const QRect& screen) {
  const QSize size = window.size();
  const QPoint now = window.topLeft();
  std::pair<qint64, int> least{};
  QPoint best = now;
  bool isFirst = true;
  for (const QPoint& wanted :
       {now, QPoint(page.left() - size.width(), now.y()), QPoint(page.right() + 1, now.y()),
        QPoint(now.x(), page.top() - size.height()), QPoint(now.x(), page.bottom() + 1)}) {
    const QPoint place = OnScreen(wanted, size, screen);
    const QRect covered = QRect(place, size) & page;
    const std::pair<qint64, int> cost{qint64{covered.width()} * covered.height(),
                                      (place - now).manhattanLength()};
    if (!std::exchange(isFirst, false) && cost >= least) continue;
    least = cost;
    best = place;
  }
  return best;
}

void PlaceBesideResults(QWidget& window, QSplitter& splitter, const QWidget& results) {
  if (!results.isVisible()) return;
  const auto place = [&] {
    const QRect frame = window.frameGeometry();
    const QPoint best = PlaceBeside(frame, OnGlobe(results), window.screen()->availableGeometry());
    if (best != frame.topLeft()) window.move(best);
    return QRect(best, frame.size());
  };
  const QRect page = OnGlobe(results);
  const QRect placed = place();
  const int narrower = std::min(placed.right() + 1 - page.left(), page.width() - kLeastResults);
  if (!placed.intersects(page) || narrower <= 0) return;
  QList<int> sizes = splitter.sizes();
  const int index = splitter.indexOf(const_cast<QWidget*>(&results));
  if (index < 1) return;
  sizes[index] -= narrower;
  sizes[index - 1] += narrower;
  splitter.setSizes(sizes);
  place();
}

}  // namespace brenvolt::desktop
