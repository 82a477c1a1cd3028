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
#include <algorithm>
#include <cctype>

#include "apps/desktop/base/text.h"
#include "apps/desktop/dialogs/wrapped_label.h"
#include "host/analysis/result_request.h"
#include "host/base/error.h"

namespace brenvolt::desktop {
namespace {

constexpr int kCharacters = 60;
// A condition is tried when no key has been pressed for so long.
constexpr int kPauseInMilliseconds = 150;
const char* const kExample = "height > 1.5 and group = 2";

class SelectionDialog : public QDialog {
 public:
  SelectionDialog(const SelectionQuestion& question, const Spreadsheet* input, QWidget* owner)
      : QDialog(owner),
        input_(input),
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
      enabled_.setChecked(!text.trimmed().isEmpty());
      pause_.start();
    });
    connect(&enabled_, &QCheckBox::toggled, this, [this] { Judge(); });
    connect(&variables_, &QListWidget::itemActivated, this, [this](const QListWidgetItem* item) {
      condition_.insert(Shown(NameInFormulas(Utf8(item->text()))));
      enabled_.setChecked(true);
      condition_.setFocus();
      Judge();
    });
    connect(&buttons_, &QDialogButtonBox::accepted, this, [this] {
      pause_.stop();
      Judge();
      if (isValid_) accept();
    });
    connect(&buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
  }

  void Judge() {
    isValid_ = true;
    std::string verdict = "All cases are used.";
    const std::string condition = Utf8(condition_.text().trimmed());
    if (enabled_.isChecked() && condition.empty()) verdict = "An empty condition admits every case.";
    if (enabled_.isChecked() && !condition.empty() && input_ != nullptr)
      verdict = VerdictOn(condition, *input_, isValid_);
    verdict_.setText(Shown(verdict));
    verdict_.setForegroundRole(isValid_ ? QPalette::WindowText : QPalette::LinkVisited);
    buttons_.button(QDialogButtonBox::Ok)->setEnabled(isValid_);
  }

  const Spreadsheet* input_;
  QCheckBox enabled_;
  QLineEdit condition_;
  WrappedLabel verdict_;
  QListWidget variables_;
  QDialogButtonBox buttons_;
  QTimer pause_;
  bool isValid_ = true;
};

}  // namespace

std::string VerdictOn(const std::string& condition, const Spreadsheet& input, bool& isValid) {
  try {
    const auto accepted = CasesMeeting(condition, input, "condition");
    const auto count = std::ranges::count_if(accepted, [](std::uint8_t flag) { return flag != 0; });
    isValid = true;
    return std::to_string(count) + " of " + std::to_string(input.CaseCount()) + " cases meet the condition.";
  } catch (const Error& error) {
    isValid = false;
    return error.Where() + ": " + error.what();
  }
}

std::string NameInFormulas(const std::string& name) {
  const auto isOfWord = [](unsigned char c) { return std::isalnum(c) != 0 || c == '_' || c == '.'; };
  const bool isPlain = !name.empty() && std::isdigit(static_cast<unsigned char>(name.front())) == 0 &&
                       std::ranges::all_of(name, isOfWord);
  if (isPlain) return name;
  const char quote = name.find('\'') == std::string::npos ? '\'' : '"';
  return quote + name + quote;
}

bool AskForSelection(SelectionQuestion& question, const Spreadsheet* input, QWidget* owner) {
  SelectionDialog dialog(question, input, owner);
  if (dialog.exec() != QDialog::Accepted) return false;
  question = dialog.Answer();
  return true;
}

}  // namespace brenvolt::desktop
