#include "apps/desktop/views/sheet_view.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <algorithm>

#include "apps/desktop/base/text.h"
#include "host/base/error.h"

namespace brenvolt::desktop {
namespace {

// What the clipboard takes without the window standing still; more is exported.
constexpr std::size_t kMostCopied = 2'000'000;
// Columns are made as wide as the cells at the top, as far as that takes no time.
constexpr int kFittedColumns = 200;
constexpr int kFittedRows = 50;
constexpr int kLeastWidth = 64;
constexpr int kMostWidth = 240;

QString Explained(const Error& error) {
  if (error.Where().empty()) return Shown(error.what());
  return Shown(error.Where()) + QStringLiteral(": ") + Shown(error.what());
}

}  // namespace

SheetView::SheetView(Document& document, Spreadsheet& sheet, QWidget* parent)
    : QTableView(parent), model_(new SheetModel(document, sheet, this)) {
  setObjectName(QStringLiteral("grid"));
  setAccessibleName(tr("Data grid"));
  setModel(model_);
  setSelectionMode(QAbstractItemView::ContiguousSelection);
  setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  setWordWrap(false);
  setCornerButtonEnabled(true);
  setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                  QAbstractItemView::AnyKeyPressed);
  const int line = fontMetrics().height() + 8;
  verticalHeader()->setMinimumSectionSize(line);
  verticalHeader()->setDefaultSectionSize(line);
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  horizontalHeader()->setTextElideMode(Qt::ElideRight);
  horizontalHeader()->setHighlightSections(true);
  FitColumns();
  connect(model_, &SheetModel::refused, this, &SheetView::refused);
  connect(selectionModel(), &QItemSelectionModel::currentColumnChanged, this,
          &SheetView::currentVariableChanged);
  if (model_->rowCount() > 0 && model_->columnCount() > 0) setCurrentIndex(model_->index(0, 0));
}

void SheetView::FitColumns() {
  const QFontMetrics metrics = fontMetrics();
  const int rows = std::min(model_->rowCount(), kFittedRows);
  for (int column = 0; column < std::min(model_->columnCount(), kFittedColumns); ++column) {
    int width = metrics.horizontalAdvance(model_->headerData(column, Qt::Horizontal).toString());
    for (int row = 0; row < rows; ++row)
      width = std::max(width, metrics.horizontalAdvance(model_->index(row, column).data().toString()));
    setColumnWidth(column, std::clamp(width + 20, kLeastWidth, kMostWidth));
  }
}

std::optional<CellArea> SheetView::SelectedArea() const {
  const QItemSelection selection = selectionModel()->selection();
  if (selection.size() != 1) return std::nullopt;
  const QItemSelectionRange& range = selection.front();
  return CellArea{static_cast<std::size_t>(range.top()), static_cast<std::size_t>(range.left()),
                  static_cast<std::size_t>(range.height()), static_cast<std::size_t>(range.width())};
}

std::optional<std::size_t> SheetView::CurrentVariable() const {
  if (!currentIndex().isValid()) return std::nullopt;
  return static_cast<std::size_t>(currentIndex().column());
}

void SheetView::Copy() {
  CopyArea(false);
}

void SheetView::CopyWithNames() {
  CopyArea(true);
}

bool SheetView::CopyArea(bool withNames) {
  const auto area = SelectedArea();
  if (!area || area->rows * area->columns > kMostCopied) {
    emit refused(area ? tr("These are too many cells for the clipboard; export the sheet instead.")
                      : tr("Select a rectangle of cells first."));
    return false;
  }
  QGuiApplication::clipboard()->setText(
      Shown(CopyText(model_->Sheet(), *area, withNames, UserNumberLocale())));
  return true;
}

void SheetView::Cut() {
  if (CopyArea(false)) Clear();
}

void SheetView::Paste() {
  const TextRows texts = RowsOf(QGuiApplication::clipboard()->text());
  if (texts.empty()) return emit refused(tr("The clipboard holds no text."));
  const auto area = SelectedArea();
  const QModelIndex current = currentIndex();
  const std::size_t row = area ? area->row : current.isValid() ? static_cast<std::size_t>(current.row()) : 0;
  const std::size_t column = area                ? area->column
                             : current.isValid() ? static_cast<std::size_t>(current.column())
                                                 : 0;
  if (area && texts.size() == 1 && texts[0].size() == 1) {
    Try(tr("Paste"), [&] { return Fill(model_->Sheet(), *area, texts[0][0], UserNumberLocale()); });
    return;
  }
  const NumberLocale locale = UserNumberLocale();
  const PastedTexts pasted = SplitNames(model_->Sheet(), row, column, texts, locale);
  const bool isDone =
      Try(tr("Paste"), [&] { return desktop::Paste(model_->Sheet(), row, column, pasted, locale); });
  if (!isDone || pasted.names.empty()) return;
  QStringList names;
  for (const std::string& name : pasted.names) names << Shown(name);
  emit said(tr("The first line was pasted as names: %1.").arg(names.join(QStringLiteral(", "))));
}

void SheetView::Clear() {
  const auto area = SelectedArea();
  if (!area) return;
  Try(tr("Clear"), [&] { return Fill(model_->Sheet(), *area, {}, UserNumberLocale()); });
}

void SheetView::InsertCases() {
  const auto area = SelectedArea();
  const std::size_t at = area ? area->row : model_->Sheet().CaseCount();
  Try(tr("Insert cases"), [&] { return InsertEmptyCases(model_->Sheet(), at, area ? area->rows : 1); });
}

void SheetView::InsertVariables() {
  const auto area = SelectedArea();
  const std::size_t at = area ? area->column : model_->Sheet().VariableCount();
  Try(tr("Insert variables"),
      [&] { return InsertEmptyVariables(model_->Sheet(), at, area ? area->columns : 1); });
}

void SheetView::RemoveCases() {
  const auto area = SelectedArea();
  if (!area) return;
  Try(tr("Delete cases"), [&] {
    if (model_->Sheet().Kind() == SheetKind::kMatrix) throw Error("a matrix keeps its rows");
    Edits edits;
    edits.emplace_back(DropCases{model_->Sheet().Name(), area->row, area->rows});
    return edits;
  });
}

void SheetView::RemoveVariables() {
  const auto area = SelectedArea();
  if (!area) return;
  Try(tr("Delete variables"), [&] {
    if (model_->Sheet().Kind() == SheetKind::kMatrix) throw Error("a matrix keeps its columns");
    Edits edits;
    edits.emplace_back(DropVariables{model_->Sheet().Name(), area->column, area->columns});
    return edits;
  });
}

void SheetView::GoToCase(int number) {
  const int row = std::clamp(number - 1, 0, std::max(0, model_->rowCount() - 1));
  const int column = std::max(0, currentIndex().column());
  setCurrentIndex(model_->index(row, column));
}

bool SheetView::Try(const QString& what, const std::function<Edits()>& edits) {
  try {
    model_->Owner().Do(what, edits());
    return true;
  } catch (const Error& error) {
    emit refused(Explained(error));
    return false;
  }
}

void SheetView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) return Copy();
  if (event->matches(QKeySequence::Cut)) return Cut();
  if (event->matches(QKeySequence::Paste)) return Paste();
  if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) return Clear();
  if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
      state() != QAbstractItemView::EditingState) {
    const int row = std::min(currentIndex().row() + 1, model_->rowCount() - 1);
    return setCurrentIndex(model_->index(row, currentIndex().column()));
  }
  QTableView::keyPressEvent(event);
}

void SheetView::contextMenuEvent(QContextMenuEvent* event) {
  QMenu menu(this);
  menu.addAction(tr("Cu&t"), this, &SheetView::Cut);
  menu.addAction(tr("&Copy"), this, &SheetView::Copy);
  menu.addAction(tr("Copy with &names"), this, &SheetView::CopyWithNames);
  menu.addAction(tr("&Paste"), this, &SheetView::Paste);
  menu.addAction(tr("C&lear"), this, &SheetView::Clear);
  menu.addSeparator();
  menu.addAction(tr("&Insert cases above"), this, &SheetView::InsertCases);
  menu.addAction(tr("Insert &variables to the left"), this, &SheetView::InsertVariables);
  menu.addAction(tr("&Delete cases"), this, &SheetView::RemoveCases);
  menu.addAction(tr("D&elete variables"), this, &SheetView::RemoveVariables);
  menu.exec(event->globalPos());
}

}  // namespace brenvolt::desktop
