#include "apps/desktop/dialogs/dialog_window.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "apps/desktop/base/text.h"
#include "apps/desktop/dialogs/caption.h"
#include "apps/desktop/dialogs/settings_window.h"
#include "host/base/number_text.h"

namespace brenvolt::desktop {
namespace {

// The rest of the screen is for the window's frame and the task bar.
constexpr double kShareOfScreen = 0.9;
// What a title bar needs beside the caption.
constexpr int kTitleBarCharacters = 18;

// Whether a dialog has kept an entry, if written otherwise: "1e3" becomes "1000".
bool IsSameEntry(const std::string& typed, const std::string& kept) {
  if (Trim(typed) == Trim(kept)) return true;
  const auto first = ParseNumber(Trim(typed), UserNumberLocale());
  return first && first == ParseNumber(Trim(kept), UserNumberLocale());
}

}  // namespace

DialogWindow::DialogWindow(EngineThread& engine, CAnalysisDialog& dialog, Exists exists, QWidget* parent)
    : QDialog(parent),
      engine_(engine),
      dialog_(dialog),
      exists_(std::move(exists)),
      automation_(dialog.AutomationInterface()) {
  setWindowTitle(ReadCaption(dialog.Template().caption).text);
  setObjectName(QStringLiteral("dialog%1").arg(dialog.Template().number));
  ControlActions actions;
  actions.press = [this](std::int32_t number) { Press(number); };
  actions.check = [this](std::int32_t number, bool checked) {
    Operate([=](CAnalysisDialog& open) { return open.Check(number, checked); });
  };
  actions.select = [this](std::int32_t number, int place) {
    Operate([=](CAnalysisDialog& open) { return open.Select(number, place); });
    if (isOpen_ && dialog_.Controls().At(number).kind == ControlKind::kListBox) emit rowChosen(number);
  };
  actions.enter = [this](std::int32_t number, const QString& text) { Enter(number, text); };
  actions.doubleClick = [this](std::int32_t number) {
    Operate([=](CAnalysisDialog& open) { return open.DoubleClick(number); });
  };
  form_ = new DialogForm(dialog.Template(), std::move(actions));
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(form_, 1);
  const auto* const automation = dynamic_cast<const DialogAutomationBase*>(automation_.get());
  if (automation != nullptr &&
      std::ranges::any_of(automation->Interface().members, SettingsWindow::IsSetting))
    layout->addLayout(MakeSettingsRow());
  connect(&engine_, &EngineThread::busyChanged, this, &DialogWindow::Follow);
  if (auto* const ok = qobject_cast<QPushButton*>(form_->WidgetOf(kControlOk))) ok->setDefault(true);
  Refresh();
  form_->FocusFirst();
  FitContent();
}

// As large as the content asks for where the screen has the room, and wide enough for the caption to be read.
void DialogWindow::FitContent() {
  const QFontMetrics metrics = fontMetrics();
  setMinimumWidth(metrics.horizontalAdvance(windowTitle()) +
                  kTitleBarCharacters * metrics.averageCharWidth());
  const QSize most = screen()->availableSize() * kShareOfScreen;
  resize(sizeHint().expandedTo(minimumSize()).boundedTo(most));
}

void DialogWindow::Refresh() {
  if (isOpen_) form_->Show(dialog_.Controls());
}

void DialogWindow::Forget() {
  isOpen_ = false;
  exists_ = nullptr;
  automation_ = nullptr;
}

// The way to the settings that no control has.
QLayout* DialogWindow::MakeSettingsRow() {
  auto* const button = new QPushButton(tr("All settings..."));
  button->setObjectName(QStringLiteral("allSettings"));
  button->setToolTip(tr("Every setting of the dialog by name, also those without a control"));
  button->setAutoDefault(false);
  connect(button, &QPushButton::clicked, this, &DialogWindow::ShowSettings);
  connect(&engine_, &EngineThread::busyChanged, button, &QPushButton::setDisabled);
  auto* const row = new QHBoxLayout;
  const int margin = form_->layout()->contentsMargins().left();
  row->setContentsMargins(margin, 0, margin, margin);
  row->addWidget(button);
  row->addStretch(1);
  return row;
}

void DialogWindow::ShowSettings() {
  form_->Commit();
  const auto automation = automation_;
  const auto* const described = dynamic_cast<const DialogAutomationBase*>(automation.get());
  if (!isOpen_ || described == nullptr || engine_.IsBusy()) return;
  SettingsWindow window(engine_, automation, described->Interface(), this);
  connect(&window, &SettingsWindow::changed, this, &DialogWindow::Refresh);
  window.exec();
  Refresh();
  emit operated();
}

// Long work leaves the window alive but takes nothing from it.
void DialogWindow::Follow(bool isBusy) {
  if (isBusy) focus_ = focusWidget();
  form_->setEnabled(!isBusy);
  if (!isBusy && focus_ != nullptr) focus_->setFocus();
}

void DialogWindow::Operate(const std::function<bool(CAnalysisDialog&)>& operation) {
  if (!isOpen_ || engine_.IsBusy()) {
    Refresh();
    return;
  }
  QString failure;
  try {
    engine_.Run([&] {
      operation(dialog_);
      isOpen_ = exists_();
    });
  } catch (const Error& error) {
    failure = Shown(error.Where().empty() ? error.what() : error.Where() + ": " + error.what());
  } catch (const std::exception& error) {
    failure = Shown(error.what());
  }
  Refresh();
  if (!failure.isEmpty()) emit failed(failure);
  emit operated();
}

// What was typed last counts before the button does, unless the dialog did not take it: the person sees that first.
void DialogWindow::Press(std::int32_t number) {
  isRefused_ = false;
  if (number != kControlCancel) form_->Commit();
  if (isRefused_) return;
  emit pressing(number);
  const std::int32_t outer = std::exchange(pressed_, number);
  Operate([=](CAnalysisDialog& open) { return open.Press(number); });
  pressed_ = outer;
}

void DialogWindow::Enter(std::int32_t number, const QString& text) {
  const std::string typed = Utf8(text);
  Operate([&](CAnalysisDialog& open) { return open.Enter(number, typed); });
  if (isOpen_ && !IsSameEntry(typed, dialog_.Controls().Text(number))) isRefused_ = true;
}

void DialogWindow::reject() {
  Press(kControlCancel);
}

void DialogWindow::closeEvent(QCloseEvent* event) {
  event->ignore();
  Press(kControlCancel);
}

}  // namespace brenvolt::desktop
