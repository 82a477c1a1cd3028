// All settings of a dialog by name: those that its controls show, and those that no control has, such as the numbers of
// a bootstrap or values of a distribution of one's own. They are the members of the dialog's automation interface.
#pragma once

#include <QDialog>
#include <memory>
#include <vector>

#include "apps/desktop/base/engine_thread.h"
#include "apps/desktop/dialogs/wrapped_label.h"
#include "host/analysis/dialog_automation.h"

class QFormLayout;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace brenvolt::desktop {

class SettingsWindow : public QDialog {
  Q_OBJECT

 public:
  SettingsWindow(EngineThread& engine, std::shared_ptr<AutomationObject> dialog,
                 const InterfaceDescription& interface, QWidget* parent);

  // Whether a member is among the settings: it can be given a value that a person can write, or makes a file that
  // a person can name.
  static bool IsSetting(const MemberDescription& member);

 signals:
  // A setting has a new value.
  void changed();

 private:
  QWidget* MakeList();
  QWidget* MakeEditor();
  void ShowMember(int row);
  std::vector<Variant> Indexes() const;
  void Read();
  void Set();
  // Carries out on the thread of analyses what `prepare` makes of the fields; what is wrong is shown.
  bool Carry(const std::function<std::function<void()>()>& prepare);

  EngineThread& engine_;
  const std::shared_ptr<AutomationObject> dialog_;
  std::vector<const MemberDescription*> members_;
  const MemberDescription* shown_ = nullptr;
  QListWidget* list_;
  WrappedLabel* help_;
  QFormLayout* form_;
  std::vector<QLineEdit*> indexes_;
  QLineEdit* value_ = nullptr;
  WrappedLabel* verdict_;
  QPushButton* set_;
};

// A member's name in words: "BootstrapSamples" is "Bootstrap samples".
QString WordsOf(std::string_view name);

}  // namespace brenvolt::desktop
