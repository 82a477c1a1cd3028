#include "apps/desktop/dialogs/dialog_window.h"

#include <QCloseEvent>
#include <QPushButton>
#include <QVBoxLayout>

#include "apps/desktop/base/text.h"
#include "apps/desktop/dialogs/caption.h"
#include "host/base/number_text.h"

namespace brenvolt::desktop {
namespace {

// Whether a dialog has kept an entry, if written otherwise: "1e3" becomes "1000".
bool IsSameEntry(const std::string& typed, const std::string& kept) {
  if (Trim(typed) == Trim(kept)) return true;
  const auto first = ParseNumber(Trim(typed), UserNumberLocale());
  return first && first == ParseNumber(Trim(kept), UserNumberLocale());
}

}  // namespace

DialogWindow::DialogWindow(EngineThread& engine, CAnalysisDialog& dialog, Exists exists, QWidget* parent)
    : QDialog(parent), engine_(engine), dialog_(dialog), exists_(std::move(exists)) {
  setWindowTitle(ReadCaption(dialog.Template().caption).text);
  setObjectName(QStringLiteral("dialog%1").arg(dialog.Template().number));
  ControlActions actions;
  actions.press = [this](std::int32_t number) { Press(number); };
  actions.check = [this](std::int32_t number, bool checked) {
    Operate([=](CAnalysisDialog& open) { return open.Check(number, checked); });
  };
  actions.select = [this](std::int32_t number, int place) {
    Operate([=](CAnalysisDialog& open) { return open.Select(number, place); });
  };
  actions.enter = [this](std::int32_t number, const QString& text) { Enter(number, text); };
  actions.doubleClick = [this](std::int32_t number) {
    Operate([=](CAnalysisDialog& open) { return open.DoubleClick(number); });
  };
  form_ = new DialogForm(dialog.Template(), std::move(actions));
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(form_);
  connect(&engine_, &EngineThread::busyChanged, this, &DialogWindow::Follow);
  if (auto* const ok = qobject_cast<QPushButton*>(form_->WidgetOf(kControlOk))) ok->setDefault(true);
  Refresh();
  form_->FocusFirst();
}

void DialogWindow::Refresh() {
  if (isOpen_) form_->Show(dialog_.Controls());
}

void DialogWindow::Forget() {
  isOpen_ = false;
  exists_ = nullptr;
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
  if (!isRefused_) Operate([=](CAnalysisDialog& open) { return open.Press(number); });
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
