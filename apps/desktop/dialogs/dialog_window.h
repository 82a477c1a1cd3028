// A dialog of an analysis as a window. What a person does in it are the control operations of the dialog, carried out
// on the thread of analyses; afterwards the window shows what the controls have become.
#pragma once

#include <QDialog>
#include <QPointer>
#include <functional>

#include "apps/desktop/base/engine_thread.h"
#include "apps/desktop/dialogs/dialog_form.h"
#include "host/analysis/analysis_dialog.h"
#include "host/analysis/dialog_automation.h"

namespace brenvolt::desktop {

class DialogWindow : public QDialog {
  Q_OBJECT

 public:
  // Whether the dialog still exists and is open, asked after each operation on the thread of analyses.
  using Exists = std::function<bool()>;
  // `engine` and, as long as `exists` answers true, `dialog` must outlive the window.
  DialogWindow(EngineThread& engine, CAnalysisDialog& dialog, Exists exists, QWidget* parent);

  // Shows the present state of the controls.
  void Refresh();
  // The dialog is gone, and what its module made may go as well.
  void Forget();
  DialogForm& Form() { return *form_; }
  // The button whose work is under way; 0 without.
  std::int32_t PressedButton() const { return pressed_; }

  // The window's own ways to leave it are the dialog's Cancel.
  void reject() override;

 signals:
  // A button is about to be pressed; what was typed before counts already.
  void pressing(std::int32_t number);
  // An operation is done; the dialog may no longer exist.
  void operated();
  // A row of a list was chosen, and the dialog knows it.
  void rowChosen(std::int32_t list);
  // An operation failed in a way that dialogs do not show themselves.
  void failed(const QString& what);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void Operate(const std::function<bool(CAnalysisDialog&)>& operation);
  void Press(std::int32_t number);
  void Enter(std::int32_t number, const QString& text);
  void Follow(bool isBusy);
  void FitContent();
  QLayout* MakeSettingsRow();
  void ShowSettings();

  EngineThread& engine_;
  CAnalysisDialog& dialog_;
  Exists exists_;
  std::shared_ptr<AutomationObject> automation_;
  DialogForm* form_;
  bool isOpen_ = true;
  std::int32_t pressed_ = 0;
  bool isRefused_ = false;   // the dialog has not kept what was typed last
  QPointer<QWidget> focus_;  // what had the keyboard before long work
};

}  // namespace brenvolt::desktop
