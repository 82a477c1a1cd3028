#include "apps/desktop/port/matrix_question.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QPushButton>
#include <QShortcut>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>

#include "apps/desktop/base/text.h"
#include "apps/desktop/dialogs/wrapped_label.h"
#include "apps/desktop/port/matrix_table.h"
#include "host/base/correlation_rules.h"

namespace brenvolt::desktop {
namespace {

constexpr int kCharacters = 56;
constexpr int kRows = 8;

// A bad cell keeps its colour while it is the current one.
class CellPainter : public QStyledItemDelegate {
 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    const QVariant colour = index.data(Qt::BackgroundRole);
    if (!colour.isValid()) return;
    option->palette.setBrush(QPalette::Highlight, colour.value<QBrush>().color().darker(kDarker));
    option->palette.setColor(QPalette::HighlightedText, Qt::black);
  }

 private:
  static constexpr int kDarker = 125;
};

class MatrixDialog : public QDialog {
 public:
  MatrixDialog(const MatrixQuestion& question, QWidget* owner)
      : QDialog(owner),
        table_(question.names, question.cells),
        buttons_(QDialogButtonBox::Ok | QDialogButtonBox::Cancel) {
    setObjectName(QStringLiteral("matrix"));
    setWindowTitle(Shown(question.title));
    auto* const layout = new QVBoxLayout(this);
    note_.setText(Shown(question.note));
    layout->addWidget(&note_);
    layout->addWidget(MakeView(), 1);
    verdict_.setObjectName(QStringLiteral("verdict"));
    layout->addWidget(&verdict_);
    auto* const paste = buttons_.addButton(tr("&Paste"), QDialogButtonBox::ActionRole);
    paste->setObjectName(QStringLiteral("paste"));
    paste->setToolTip(tr("Puts cells that a spreadsheet copied at the current cell"));
    layout->addWidget(&buttons_);
    connect(paste, &QPushButton::clicked, this, [this] { Paste(); });
    connect(&buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(&buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(&table_, &MatrixTable::dataChanged, this, [this] { Judge(); });
    Judge();
    view_.setFocus();
  }

  const MatrixTable& Table() const { return table_; }

 private:
  QWidget* MakeView() {
    view_.setObjectName(QStringLiteral("table"));
    view_.setAccessibleName(windowTitle());
    view_.setModel(&table_);
    view_.setItemDelegate(&painter_);
    view_.setTabKeyNavigation(false);
    view_.verticalHeader()->setDefaultSectionSize(view_.fontMetrics().height() * 3 / 2);
    view_.resizeColumnsToContents();
    view_.setMinimumSize(kCharacters * view_.fontMetrics().averageCharWidth(),
                         kRows * view_.verticalHeader()->defaultSectionSize());
    view_.setCurrentIndex(table_.index(0, std::min(1, table_.columnCount() - 1)));
    const auto bind = [this](QKeySequence::StandardKey key, void (MatrixDialog::*act)()) {
      auto* const shortcut = new QShortcut(key, &view_);
      shortcut->setContext(Qt::WidgetShortcut);
      connect(shortcut, &QShortcut::activated, this, act);
    };
    bind(QKeySequence::Copy, &MatrixDialog::Copy);
    bind(QKeySequence::Paste, &MatrixDialog::Paste);
    return &view_;
  }

  void Copy() {
    const QItemSelection selection = view_.selectionModel()->selection();
    if (selection.isEmpty()) return;
    const QItemSelectionRange& range = selection.front();
    QApplication::clipboard()->setText(table_.Copy(range.top(), range.left(), range.bottom(), range.right()));
  }

  // A whole matrix fits where the current cell is none that it begins at.
  void Paste() {
    const QString text = QApplication::clipboard()->text();
    QModelIndex place = view_.currentIndex();
    const auto lines = text.trimmed().count(u'\n') + 1;
    if (lines == table_.rowCount()) place = table_.index(0, 0);
    if (place.isValid()) table_.Paste(place.row(), place.column(), text);
  }

  void Judge() {
    const int bad = table_.BadCells();
    QString verdict;
    if (bad > 0) {
      verdict = bad == 1 ? tr("A cell, marked in colour, is not a number from -1 to 1.")
                         : tr("%1 cells, marked in colour, are not numbers from -1 to 1.").arg(bad);
    } else if (const auto smallest = table_.SmallestEigenvalue()) {
      verdict = tr("Smallest eigenvalue: %1. ").arg(*smallest, 0, 'g', 4);
      verdict +=
          IsPositiveEigenvalue(*smallest)
              ? tr("The matrix is positive definite.")
              : tr("No variables can have these correlations; a simulation repairs the matrix and says how.");
    }
    verdict_.setText(verdict);
    buttons_.button(QDialogButtonBox::Ok)->setEnabled(bad == 0);
  }

  MatrixTable table_;
  WrappedLabel note_;
  CellPainter painter_;
  QTableView view_;
  WrappedLabel verdict_;
  QDialogButtonBox buttons_;
};

}  // namespace

bool AskForMatrix(MatrixQuestion& question, QWidget* owner) {
  MatrixDialog dialog(question, owner);
  if (dialog.exec() != QDialog::Accepted) return false;
  question.cells = dialog.Table().Cells();
  return true;
}

}  // namespace brenvolt::desktop
