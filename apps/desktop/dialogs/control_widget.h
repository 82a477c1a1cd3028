// The widgets of single controls. Each shows the state of its control and says what a person does with it.
#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <memory>

#include "host/controls/control_set.h"

class QLabel;
class QWidget;

namespace brenvolt::desktop {

// What a person does with a control, by its number.
struct ControlActions {
  std::function<void(std::int32_t)> press;
  std::function<void(std::int32_t, bool)> check;
  std::function<void(std::int32_t, int)> select;
  std::function<void(std::int32_t, const QString&)> enter;
  std::function<void(std::int32_t)> doubleClick;
};

class ControlWidget {
 public:
  ControlWidget(std::int32_t number, QWidget* widget, QLabel* label);
  virtual ~ControlWidget() = default;
  ControlWidget(const ControlWidget&) = delete;
  ControlWidget& operator=(const ControlWidget&) = delete;

  std::int32_t Number() const { return number_; }
  QWidget* Widget() const { return widget_; }
  // The caption beside or above the widget; null where the widget bears its caption itself or has none.
  QLabel* Label() const { return label_; }

  // Shows a state; nothing that a person is just entering is lost unless the control's text has changed.
  void Show(const ControlState& state);
  // Hands over what was typed and not yet handed over. False if the person has typed nothing new.
  virtual bool Commit() { return false; }

 protected:
  virtual void ShowContent(const ControlState& state) = 0;

 private:
  std::int32_t number_;
  QWidget* widget_;
  QLabel* label_;
};

// The widget of a control, named "control<number>", and of its caption, "caption<number>", without a parent. `actions`
// must outlive it.
std::unique_ptr<ControlWidget> MakeControlWidget(const ControlTemplate& control,
                                                 const ControlActions& actions);

}  // namespace brenvolt::desktop
