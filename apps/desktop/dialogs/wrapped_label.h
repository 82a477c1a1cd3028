// A label that breaks its text into lines and always takes the height that they need.
#pragma once

#include <QLabel>

namespace brenvolt::desktop {

class WrappedLabel : public QLabel {
 public:
  WrappedLabel();

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
};

}  // namespace brenvolt::desktop
