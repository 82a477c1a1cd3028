#include "apps/desktop/port/name_question.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "apps/desktop/base/text.h"
#include "host/automation/variable_list.h"

namespace brenvolt::desktop {
namespace {

class NameDialog : public QDialog {
 public:
  NameDialog(const VariableQuestion& question, QWidget* owner)
      : QDialog(owner), buttons_(QDialogButtonBox::Ok | QDialogButtonBox::Cancel) {
    setObjectName(QStringLiteral("names"));
    setWindowTitle(Shown(question.caption));
    auto* const label = new QLabel(tr("&Names of the variables, one on each line:"));
    label->setBuddy(&names_);
    names_.setObjectName(QStringLiteral("names"));
    names_.setTabChangesFocus(true);
    names_.setLineWrapMode(QPlainTextEdit::NoWrap);
    for (const std::int16_t number : question.first)
      names_.appendPlainText(Shown(question.names.at(static_cast<std::size_t>(number - 1))));
    fault_.setTextFormat(Qt::PlainText);
    fault_.setWordWrap(true);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(&names_, 1);
    layout->addWidget(&fault_);
    layout->addWidget(&buttons_);
    connect(&buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(&buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(&names_, &QPlainTextEdit::textChanged, this, [this] { Check(); });
    Check();
    names_.setFocus();
  }

  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    const QStringList lines = names_.toPlainText().split(u'\n');
    for (const QString& line : lines) {
      if (!line.trimmed().isEmpty()) names.push_back(Utf8(line.trimmed()));
    }
    return names;
  }

 private:
  void Check() {
    const std::vector<std::string> names = Names();
    QString fault;
    for (auto name = names.begin(); name != names.end() && fault.isEmpty(); ++name) {
      if (std::find(names.begin(), name, *name) != name)
        fault = tr("%1 stands here twice.").arg(Shown(*name));
    }
    fault_.setText(fault);
    buttons_.button(QDialogButtonBox::Ok)->setEnabled(!names.empty() && fault.isEmpty());
  }

  QPlainTextEdit names_;
  QLabel fault_;
  QDialogButtonBox buttons_;
};

}  // namespace

bool AskForNames(VariableQuestion& question, QWidget* owner) {
  NameDialog dialog(question, owner);
  if (dialog.exec() != QDialog::Accepted) return false;
  question.first.clear();
  for (const std::string& name : dialog.Names()) {
    const auto found = std::ranges::find(question.names, name);
    const auto place = static_cast<std::size_t>(found - question.names.begin());
    if (found == question.names.end()) question.names.push_back(name);
    question.first.push_back(VariableNumberOf(place));
  }
  return true;
}

}  // namespace brenvolt::desktop
