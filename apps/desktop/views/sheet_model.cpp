#include "apps/desktop/views/sheet_model.h"

#include <QGuiApplication>
#include <QPalette>
#include <algorithm>

#include "apps/desktop/base/text.h"
#include "apps/desktop/views/sheet_edits.h"
#include "host/base/error.h"
#include "host/tables/editing/cell_text.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt::desktop {
namespace {

std::size_t Place(int section) {
  return static_cast<std::size_t>(section);
}

// What shows a missing value, in the colours of light and dark windows.
QBrush MissingBrush() {
  QColor colour = QGuiApplication::palette().color(QPalette::Text);
  colour.setAlphaF(0.35F);
  return {colour, Qt::BDiagPattern};
}

bool IsOnDiagonal(const Spreadsheet& sheet, std::size_t row, std::size_t column) {
  return row == column && HasMatrixRows(sheet);
}

}  // namespace

SheetModel::SheetModel(Document& document, Spreadsheet& sheet, QObject* parent)
    : QAbstractTableModel(parent), document_(document), sheet_(sheet) {
  connect(&document, &Document::edited, this, &SheetModel::Update);
}

int SheetModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(std::min(sheet_.CaseCount(), kMostRows));
}

int SheetModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(std::min(sheet_.VariableCount(), kMostRows));
}

QVariant SheetModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const std::size_t row = Place(index.row());
  const std::size_t column = Place(index.column());
  if (row >= sheet_.CaseCount() || column >= sheet_.VariableCount()) return {};
  return CellData(row, column, role);
}

QVariant SheetModel::CellData(std::size_t row, std::size_t column, int role) const {
  const Variable& variable = sheet_.VariableAt(column);
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
      return Shown(CellText(variable, row, UserNumberLocale()));
    case Qt::TextAlignmentRole:
      return static_cast<int>((variable.Type() == VariableType::kText ? Qt::AlignLeft : Qt::AlignRight) |
                              Qt::AlignVCenter);
    case Qt::BackgroundRole:
      return variable.IsMissing(row) ? QVariant(MissingBrush()) : QVariant();
    case Qt::ToolTipRole:
    case Qt::AccessibleTextRole:
      if (variable.IsMissing(row)) return tr("Missing value");
      return role == Qt::AccessibleTextRole ? CellData(row, column, Qt::DisplayRole) : QVariant();
    default:
      return {};
  }
}

QVariant SheetModel::headerData(int section, Qt::Orientation orientation, int role) const {
  const std::size_t place = Place(section);
  if (orientation == Qt::Horizontal) return VariableHeading(place, role);
  if (place >= sheet_.CaseCount()) return {};
  if (role == Qt::TextAlignmentRole) return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
  if (role != Qt::DisplayRole) return {};
  const std::string name = sheet_.CaseName(place);
  return name.empty() ? QString::number(section + 1) : Shown(name);
}

QVariant SheetModel::VariableHeading(std::size_t column, int role) const {
  if (column >= sheet_.VariableCount()) return {};
  const Variable& variable = sheet_.VariableAt(column);
  if (role == Qt::DisplayRole) return Shown(variable.Name());
  if (role == Qt::ToolTipRole)
    return tr("%1 (%2)").arg(Shown(variable.Name()),
                             variable.Type() == VariableType::kText ? tr("text") : tr("numbers"));
  return {};
}

Qt::ItemFlags SheetModel::flags(const QModelIndex& index) const {
  Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
  if (index.isValid() && !document_.IsBusy() &&
      !IsOnDiagonal(sheet_, Place(index.row()), Place(index.column())))
    flags |= Qt::ItemIsEditable;
  return flags;
}

bool SheetModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (!index.isValid() || role != Qt::EditRole) return false;
  const QString text = value.toString();
  if (text == data(index, Qt::EditRole).toString()) return true;
  try {
    document_.Do(tr("Typing"), Fill(sheet_, {Place(index.row()), Place(index.column()), 1, 1}, Utf8(text),
                                    UserNumberLocale()));
    return true;
  } catch (const Error& error) {
    emit refused(error.Where().empty() ? Shown(error.what())
                                       : Shown(error.Where()) + QStringLiteral(": ") + Shown(error.what()));
    return false;
  }
}

void SheetModel::Update(const QString& sheet, bool shape) {
  if (sheet != Shown(sheet_.Name())) return;
  if (shape) {
    beginResetModel();
    endResetModel();
    return;
  }
  emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
  emit headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
}

}  // namespace brenvolt::desktop
