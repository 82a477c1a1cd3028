// The page of a tab. It asks for all the room that its content needs, and scrolls where the screen has less.
#pragma once

#include <QScrollArea>

namespace brenvolt::desktop {

class PageArea : public QScrollArea {
 public:
  explicit PageArea(QWidget* content);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace brenvolt::desktop
