#include "apps/desktop/port/variable_question.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>

#include "apps/desktop/base/text.h"
#include "apps/desktop/dialogs/caption.h"
#include "apps/desktop/port/variable_table.h"

namespace brenvolt::desktop {
namespace {

constexpr int kRows = 14;
constexpr int kFewestRows = 5;
constexpr int kFewestNameCharacters = 16;
constexpr int kCharacters = 62;
// Whose texts say how wide columns are.
constexpr int kMeasuredRows = 200;

class VariableDialog : public QDialog {
 public:
  VariableDialog(const VariableQuestion& question, const Spreadsheet* input, QWidget* owner)
      : QDialog(owner), lists_(ListsOf(question)), table_(question.names, lists_, ChosenOf(question), input) {
    setObjectName(QStringLiteral("variables"));
    setWindowTitle(Shown(question.caption));
    shown_.setSourceModel(&table_);
    shown_.setFilterKeyColumn(static_cast<int>(lists_.size()) + 1);
    shown_.setFilterCaseSensitivity(Qt::CaseInsensitive);
    auto* const layout = new QVBoxLayout(this);
    layout->addLayout(MakeSearch());
    layout->addWidget(MakeView(), 1);
    layout->addLayout(MakeListButtons());
    layout->addWidget(&count_);
    layout->addWidget(MakeButtons());
    connect(&table_, &VariableTable::chosenChanged, this, [this] { ShowCount(); });
    ShowCount();
    view_.setFocus();
    const int more = (kRows - kFewestRows) * view_.verticalHeader()->defaultSectionSize();
    resize(sizeHint().width(), std::min(sizeHint().height() + more, Available().height()));
  }

  const VariableTable& Table() const { return table_; }

 private:
  static QStringList ListsOf(const VariableQuestion& question) {
    QStringList lists{Shown(question.firstListCaption)};
    if (!question.secondListCaption.empty()) lists.push_back(Shown(question.secondListCaption));
    return lists;
  }
  static std::vector<std::vector<std::int16_t>> ChosenOf(const VariableQuestion& question) {
    std::vector<std::vector<std::int16_t>> chosen{question.first};
    if (!question.secondListCaption.empty()) chosen.push_back(question.second);
    return chosen;
  }

  QLayout* MakeSearch() {
    auto* const row = new QHBoxLayout;
    auto* const label = new QLabel(tr("&Search:"));
    label->setBuddy(&search_);
    search_.setObjectName(QStringLiteral("search"));
    search_.setClearButtonEnabled(true);
    search_.setPlaceholderText(tr("part of a name"));
    connect(&search_, &QLineEdit::textChanged, &shown_, &QSortFilterProxyModel::setFilterFixedString);
    row->addWidget(label);
    row->addWidget(&search_, 1);
    return row;
  }

  QWidget* MakeView() {
    view_.setObjectName(QStringLiteral("table"));
    view_.setAccessibleName(tr("Variables"));
    view_.setModel(&shown_);
    view_.setSelectionBehavior(QAbstractItemView::SelectRows);
    view_.verticalHeader()->hide();
    view_.verticalHeader()->setDefaultSectionSize(view_.fontMetrics().height() * 3 / 2);
    view_.setTabKeyNavigation(false);
    view_.setMinimumSize(WidthOfColumns(), kFewestRows * view_.verticalHeader()->defaultSectionSize());
    return &view_;
  }

  // What the frame of the window leaves of the screen.
  QSize Available() const { return screen()->availableSize() * 9 / 10; }

  // All columns are seen at once, and names take what the others leave.
  int WidthOfColumns() {
    QHeaderView& header = *view_.horizontalHeader();
    header.setResizeContentsPrecision(kMeasuredRows);
    int width = 2 * view_.frameWidth() + view_.verticalScrollBar()->sizeHint().width();
    const int names = static_cast<int>(lists_.size()) + 1;
    for (int column = 0; column < table_.columnCount(); ++column) {
      view_.resizeColumnToContents(column);
      const int few = kFewestNameCharacters * view_.fontMetrics().averageCharWidth();
      width += column == names ? std::max(few, header.sectionSize(column)) : header.sectionSize(column);
    }
    header.setSectionResizeMode(names, QHeaderView::Stretch);
    const int least =
        std::min(kCharacters * view_.fontMetrics().averageCharWidth(), Available().width() * 9 / 10);
    return std::clamp(width, least, std::max(least, screen()->availableSize().width() * 3 / 4));
  }

  // What the buttons below the table do to the rows that are selected, or to all that the search shows.
  void Choose(int list, bool isIn) {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : view_.selectionModel()->selection()) {
      for (int row = range.top(); row <= range.bottom(); ++row)
        rows.push_back(shown_.mapToSource(shown_.index(row, 0)).row());
    }
    for (int row = 0; row < shown_.rowCount() && view_.selectionModel()->selection().isEmpty(); ++row)
      rows.push_back(shown_.mapToSource(shown_.index(row, 0)).row());
    table_.Choose(rows, list, isIn);
  }

  // Beside each other where the screen has room for it.
  QLayout* MakeListButtons() {
    auto* const row = new QBoxLayout(QBoxLayout::LeftToRight);
    for (int list = 0; list < static_cast<int>(lists_.size()); ++list) {
      auto* const add = new QPushButton(tr("Into \"%1\"").arg(Spoken(lists_[list])));
      add->setObjectName(QStringLiteral("into%1").arg(list + 1));
      add->setToolTip(tr("Puts the selected rows into the list, or all rows shown if none is selected"));
      connect(add, &QPushButton::clicked, this, [this, list] { Choose(list, true); });
      row->addWidget(add);
    }
    auto* const none = new QPushButton(tr("Into &none"));
    none->setObjectName(QStringLiteral("none"));
    connect(none, &QPushButton::clicked, this, [this] {
      for (int list = 0; list < static_cast<int>(lists_.size()); ++list) Choose(list, false);
    });
    row->addWidget(none);
    if (row->sizeHint().width() > Available().width() * 9 / 10) row->setDirection(QBoxLayout::TopToBottom);
    row->addStretch(1);
    for (int i = 0; i + 1 < row->count(); ++i)
      static_cast<QPushButton*>(row->itemAt(i)->widget())->setAutoDefault(false);
    return row;
  }

  QWidget* MakeButtons() {
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->setObjectName(QStringLiteral("buttons"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return buttons;
  }

  void ShowCount() {
    QStringList parts;
    for (qsizetype list = 0; list < lists_.size(); ++list)
      parts.push_back(
          tr("%1: %2").arg(Spoken(lists_[list])).arg(table_.Chosen()[static_cast<std::size_t>(list)].size()));
    count_.setText(tr("%1 of %2 variables").arg(parts.join(QStringLiteral(", "))).arg(table_.rowCount()));
  }

  QStringList lists_;
  VariableTable table_;
  QSortFilterProxyModel shown_;
  QLineEdit search_;
  QTableView view_;
  QLabel count_;
};

}  // namespace

bool AskForVariables(VariableQuestion& question, const Spreadsheet* input, QWidget* owner) {
  VariableDialog dialog(question, input, owner);
  if (dialog.exec() != QDialog::Accepted) return false;
  const auto& chosen = dialog.Table().Chosen();
  question.first = chosen.front();
  if (chosen.size() > 1) question.second = chosen.back();
  return true;
}

}  // namespace brenvolt::desktop
