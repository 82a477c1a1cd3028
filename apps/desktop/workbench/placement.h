// Where dialogs stand that make results: beside these, never over them where the screen has the room.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

class QSplitter;
class QWidget;

namespace brenvolt::desktop {

// The place nearest to where a window is that keeps it on the screen and covers least of the page.
QPoint PlaceBeside(const QRect& window, const QRect& page, const QRect& screen);

// Moves a window that covers the panel of results, which is in the splitter. Where there is not enough room beside it,
// what stands left of the panel gets some of its width.
void PlaceBesideResults(QWidget& window, QSplitter& splitter, const QWidget& results);

}  // namespace brenvolt::desktop
