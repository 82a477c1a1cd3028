#include "apps/desktop/port/selection_question.h"

#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <utility>

#include "apps/desktop/base/text.h"
#include "apps/desktop/base/words.h"
#include "apps/desktop/dialogs/wrapped_label.h"
#include "host/formula/formula_name.h"

namespace brenvolt::desktop {
namespace {

constexpr int kCharacters = 60;
// A condition is tried when no key has been pressed for so long.
constexpr int kPauseInMilliseconds = 150;
const char* const kExample = "height > 1.5 and group = 2";

class SelectionDialog : public QDialog {
 public:
  SelectionDialog(const SelectionQuestion& question, const Spreadsheet* input, const JudgeCondition& judge,
                  QWidget* owner)
      : QDialog(owner),
        input_(input),
        judge_(judge),
        enabled_(tr("&Use only the cases that meet a condition")),
        buttons_(QDialogButtonBox::Ok | QDialogButtonBox::Cancel) {
    setObjectName(QStringLiteral("selection"));
    setWindowTitle(tr("Selection Conditions"));
    auto* const layout = new QVBoxLayout(this);
    enabled_.setObjectName(QStringLiteral("enabled"));
    enabled_.setChecked(question.enabled);
    layout->addWidget(&enabled_);
    auto* const label = new QLabel(tr("&Condition:"));
    label->setBuddy(&condition_);
    condition_.setObjectName(QStringLiteral("condition"));
    condition_.setText(Shown(question.condition));
    condition_.setPlaceholderText(QString::fromLatin1(kExample));
    condition_.setMinimumWidth(kCharacters * condition_.fontMetrics().averageCharWidth());
    layout->addWidget(label);
    layout->addWidget(&condition_);
    verdict_.setObjectName(QStringLiteral("verdict"));
    layout->addWidget(&verdict_);
    AddVariables(*layout);
    layout->addWidget(&buttons_);
    Connect();
    Judge();
    condition_.setFocus();
  }

  SelectionQuestion Answer() const { return {enabled_.isChecked(), Utf8(condition_.text())}; }

 private:
  void AddVariables(QVBoxLayout& layout) {
    auto* const label = new QLabel(tr("&Variables (double-click or Enter puts one into the condition):"));
    label->setBuddy(&variables_);
    variables_.setObjectName(QStringLiteral("names"));
    variables_.setUniformItemSizes(true);
    for (std::size_t i = 0; input_ != nullptr && i < input_->VariableCount(); ++i)
      variables_.addItem(Shown(input_->VariableAt(i).Name()));
    layout.addWidget(label);
    layout.addWidget(&variables_, 1);
  }

  void Connect() {
    pause_.setSingleShot(true);
    pause_.setInterval(kPauseInMilliseconds);
    connect(&pause_, &QTimer::timeout, this, [this] { Judge(); });
    connect(&condition_, &QLineEdit::textEdited, this, [this](const QString& text) {
      isAccepted_ = false;
      enabled_.setChecked(!text.trimmed().isEmpty());
      pause_.start();
    });
    connect(&enabled_, &QCheckBox::toggled, this, [this] { Judge(); });
    connect(&variables_, &QListWidget::itemActivated, this, [this](const QListWidgetItem* item) {
      condition_.insert(Shown(NameInFormula(Utf8(item->text()))));
      enabled_.setChecked(true);
      condition_.setFocus();
      Judge();
    });
    connect(&buttons_, &QDialogButtonBox::accepted, this, [this] {
      pause_.stop();
      isAccepted_ = true;
      Judge();
    });
    connect(&buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
  }

  // Of what is typed while a condition is tried, the last is tried next.
  void Judge() {
    if (std::exchange(isJudging_, true)) {
      isLate_ = true;
      return;
    }
    do {
      isLate_ = false;
      Show(Verdict());
    } while (isLate_);
    isJudging_ = false;
    if (std::exchange(isAccepted_, false) && isValid_) accept();
  }
  ConditionVerdict Verdict() const {
    if (!enabled_.isChecked()) return {true, "All cases are used."};
    if (input_ == nullptr) return {};
    try {
      return judge_(Utf8(condition_.text().trimmed()));
    } catch (const std::exception& error) {
      return {false, Utf8(Reason(error))};
    }
  }
  void Show(const ConditionVerdict& verdict) {
    isValid_ = verdict.isValid;
    verdict_.setText(Shown(verdict.words));
    verdict_.setForegroundRole(isValid_ ? QPalette::WindowText : QPalette::LinkVisited);
    buttons_.button(QDialogButtonBox::Ok)->setEnabled(isValid_);
  }

  const Spreadsheet* input_;
  const JudgeCondition& judge_;
  QCheckBox enabled_;
  QLineEdit condition_;
  WrappedLabel verdict_;
  QListWidget variables_;
  QDialogButtonBox buttons_;
  QTimer pause_;
  bool isValid_ = true;
  bool isJudging_ = false;
  bool isLate_ = false;      // something was typed meanwhile
  bool isAccepted_ = false;  // if it is valid
};

}  // namespace

bool AskForSelection(SelectionQuestion& question, const Spreadsheet* input, const JudgeCondition& judge,
                     QWidget* owner) {
  SelectionDialog dialog(question, input, judge, owner);
  if (dialog.exec() != QDialog::Accepted) return false;
  question = dialog.Answer();
  return true;
}

}  // namespace brenvolt::desktop
