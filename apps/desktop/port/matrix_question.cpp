#include "apps/desktop/port/matrix_question.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QListView>
#include <QPushButton>
#include <QShortcut>
#include <QStringListModel>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

#include "apps/desktop/base/shown_number.h"
#include "apps/desktop/base/text.h"
#include "apps/desktop/base/text_block.h"
#include "apps/desktop/dialogs/wrapped_label.h"
#include "apps/desktop/port/matrix_table.h"

namespace brenvolt::desktop {
namespace {

constexpr int kCharacters = 56;
constexpr int kRows = 8;
constexpr int kChangesShown = 4;
// Eigenvalues of more are given by the first and the last ones.
constexpr std::size_t kMostEigenvalues = 8;
// A matrix over more variables is judged when nothing has been typed for a while.
constexpr int kMostJudgedAtOnce = 60;
constexpr int kPauseInMilliseconds = 300;

QString EigenvaluesIn(const std::vector<double>& values) {
  if (values.empty()) return {};
  QStringList texts;
  const bool areMany = values.size() > kMostEigenvalues;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (areMany && i == kMostEigenvalues / 2) {
      texts << QStringLiteral("…");
      i = values.size() - kMostEigenvalues / 2;
    }
    texts << ShownNumber(values[i]);
  }
  const QString list = texts.join(QStringLiteral("; "));
  return areMany ? MatrixTable::tr("%1 eigenvalues: %2").arg(values.size()).arg(list)
                 : MatrixTable::tr("Eigenvalues: %1").arg(list);
}

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
        judge_(question.judge),
        table_(question.names, question.cells),
        buttons_(QDialogButtonBox::Ok | QDialogButtonBox::Cancel) {
    setObjectName(QStringLiteral("matrix"));
    setWindowTitle(Shown(question.title));
    auto* const layout = new QVBoxLayout(this);
    note_.setText(Shown(question.note));
    layout->addWidget(&note_);
    layout->addWidget(MakeView(), 1);
    AddVerdict(*layout);
    auto* const paste = buttons_.addButton(tr("&Paste"), QDialogButtonBox::ActionRole);
    paste->setObjectName(QStringLiteral("paste"));
    paste->setToolTip(tr("Puts cells that a spreadsheet copied at the current cell"));
    layout->addWidget(&buttons_);
    connect(paste, &QPushButton::clicked, this, [this] { Paste(); });
    connect(&buttons_, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(&buttons_, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(&table_, &MatrixTable::edited, this, [this] { Follow(); });
    connect(&pause_, &QTimer::timeout, this, [this] { Judge(); });
    pause_.setSingleShot(true);
    pause_.setInterval(kPauseInMilliseconds);
    Follow();
    view_.setFocus();
  }

  const MatrixTable& Table() const { return table_; }

 private:
  void AddVerdict(QVBoxLayout& layout) {
    pasted_.setObjectName(QStringLiteral("pasted"));
    verdict_.setObjectName(QStringLiteral("verdict"));
    eigenvalues_.setObjectName(QStringLiteral("eigenvalues"));
    changes_.setObjectName(QStringLiteral("changes"));
    changes_.setAccessibleName(tr("Changes of a repair"));
    changes_.setModel(&changeLines_);
    changes_.setUniformItemSizes(true);
    changes_.setEditTriggers(QAbstractItemView::NoEditTriggers);
    changes_.setMaximumHeight(kChangesShown * changes_.fontMetrics().height() * 3 / 2);
    pasted_.hide();
    for (QWidget* const widget :
         std::initializer_list<QWidget*>{&pasted_, &verdict_, &eigenvalues_, &changes_})
      layout.addWidget(widget);
  }

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

  void Paste() {
    const TextRows block = RowsOf(QApplication::clipboard()->text());
    const QModelIndex place = view_.currentIndex();
    if (block.empty() || !place.isValid()) return;
    const MatrixPaste paste = PlaceInMatrix(block, table_.Names(), static_cast<std::size_t>(place.row()),
                                            static_cast<std::size_t>(place.column()));
    table_.Put(paste);
    QStringList said{paste.cells.size() == 1 ? tr("One correlation was pasted.")
                                             : tr("%1 correlations were pasted.").arg(paste.cells.size())};
    if (paste.outside > 0) said << tr("%1 cells lie beyond the matrix and were left out.").arg(paste.outside);
    if (paste.differing > 0)
      said << tr("The halves differ in %1 of them; the cells above the diagonal count.").arg(paste.differing);
    pasted_.setText(said.join(u' '));
    pasted_.show();
  }

  void Follow() {
    pasted_.hide();
    buttons_.button(QDialogButtonBox::Ok)->setEnabled(table_.BadCells() == 0);
    if (table_.BadCells() == 0 && table_.rowCount() > kMostJudgedAtOnce) {
      ShowVerdict({});
      pause_.start();
    } else {
      Judge();
    }
  }

  void Judge() {
    pause_.stop();
    MatrixVerdict verdict;
    if (const int bad = table_.BadCells(); bad > 0) {
      verdict.text =
          Utf8(bad == 1 ? tr("A cell, marked in colour, is not a number from -1 to 1.")
                        : tr("%1 cells, marked in colour, are not numbers from -1 to 1.").arg(bad));
    } else if (judge_) {
      verdict = judge_(table_.Values());
    }
    ShowVerdict(verdict);
  }

  void ShowVerdict(const MatrixVerdict& verdict) {
    verdict_.setText(Shown(verdict.text));
    eigenvalues_.setText(EigenvaluesIn(verdict.eigenvalues));
    QStringList lines;
    for (const std::string& line : verdict.changes) lines << Shown(line);
    changeLines_.setStringList(lines);
    changes_.setVisible(!lines.isEmpty());
  }

  std::function<MatrixVerdict(const std::vector<double>&)> judge_;
  MatrixTable table_;
  WrappedLabel note_;
  CellPainter painter_;
  QTableView view_;
  WrappedLabel pasted_;
  WrappedLabel verdict_;
  WrappedLabel eigenvalues_;
  QStringListModel changeLines_;
  QListView changes_;
  QTimer pause_;
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
