#include "apps/desktop/port/weight_question.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QVBoxLayout>

#include "apps/desktop/base/text.h"

namespace brenvolt::desktop {
namespace {

class WeightDialog : public QDialog {
 public:
  WeightDialog(const WeightQuestion& question, const Spreadsheet* input, QWidget* owner) : QDialog(owner) {
    setObjectName(QStringLiteral("weights"));
    setWindowTitle(tr("Case Weights"));
    auto* const layout = new QVBoxLayout(this);
    auto* const row = new QHBoxLayout;
    auto* const label = new QLabel(tr("&Search:"));
    label->setBuddy(&search_);
    search_.setObjectName(QStringLiteral("search"));
    search_.setPlaceholderText(tr("part of a name"));
    row->addWidget(label);
    row->addWidget(&search_, 1);
    layout->addLayout(row);
    Fill(question, input);
    layout->addWidget(&list_, 1);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(&list_, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
    connect(&search_, &QLineEdit::textChanged, this, [this](const QString& part) {
      for (int i = 1; i < list_.count(); ++i)
        list_.setRowHidden(i, !list_.item(i)->text().contains(part, Qt::CaseInsensitive));
    });
    list_.setFocus();
  }

  std::size_t Chosen() const { return static_cast<std::size_t>(std::max(0, list_.currentRow())); }

 private:
  void Fill(const WeightQuestion& question, const Spreadsheet* input) {
    list_.setObjectName(QStringLiteral("list"));
    list_.setAccessibleName(tr("Variable that weights the cases"));
    list_.setUniformItemSizes(true);
    list_.addItem(tr("No weights: every case counts once"));
    for (std::size_t i = 0; i < question.names.size(); ++i) {
      const bool isText = input != nullptr && i < input->VariableCount() &&
                          input->VariableAt(i).Type() == VariableType::kText;
      list_.addItem(Shown(question.names[i]) + (isText ? tr(" (text)") : QString()));
    }
    list_.setCurrentRow(static_cast<int>(question.variable));
    // The first line is read whole; names that are longer are scrolled to.
    const int line = list_.fontMetrics().horizontalAdvance(list_.item(0)->text());
    list_.setMinimumWidth(line + 2 * list_.fontMetrics().averageCharWidth() + 2 * list_.frameWidth() +
                          list_.verticalScrollBar()->sizeHint().width());
  }

  QLineEdit search_;
  QListWidget list_;
};

}  // namespace

bool AskForWeights(WeightQuestion& question, const Spreadsheet* input, QWidget* owner) {
  WeightDialog dialog(question, input, owner);
  if (dialog.exec() != QDialog::Accepted) return false;
  question.variable = dialog.Chosen();
  return true;
}

}  // namespace brenvolt::desktop
