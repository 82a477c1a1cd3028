#include "apps/desktop/port/matrix_table.h"

#include <QBrush>
#include <algorithm>

#include "apps/desktop/base/text.h"
#include "host/base/correlation_rules.h"
#include "host/base/number_text.h"
#include "host/numeric/algebra/symmetric_eigen.h"

namespace brenvolt::desktop {
namespace {

std::optional<double> CorrelationIn(const std::string& cell) {
  const auto value = ParseTravelledNumber(Trim(cell));
  return value ? CorrelationEntry(*value) : std::nullopt;
}

}  // namespace

MatrixTable::MatrixTable(std::vector<std::string> names, std::vector<std::string> cells)
    : names_(std::move(names)), cells_(std::move(cells)) {
  for (int row = 0; row < rowCount(); ++row) {
    for (int column = 0; column < row; ++column) Cell(row, column) = Cell(column, row);
  }
}

std::string& MatrixTable::Cell(int row, int column) {
  return cells_[static_cast<std::size_t>(row) * Size() + static_cast<std::size_t>(column)];
}

const std::string& MatrixTable::Cell(int row, int column) const {
  return cells_[static_cast<std::size_t>(row) * Size() + static_cast<std::size_t>(column)];
}

int MatrixTable::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(Size());
}

int MatrixTable::columnCount(const QModelIndex& parent) const {
  return rowCount(parent);
}

int MatrixTable::BadCells() const {
  int count = 0;
  for (int row = 0; row < rowCount(); ++row) {
    for (int column = row + 1; column < columnCount(); ++column)
      count += CorrelationIn(Cell(row, column)) ? 0 : 1;
  }
  return count;
}

std::optional<double> MatrixTable::SmallestEigenvalue() const {
  std::vector<double> matrix;
  for (int row = 0; row < rowCount(); ++row) {
    for (int column = 0; column < columnCount(); ++column) {
      const auto value = row == column ? std::optional(1.0) : CorrelationIn(Cell(row, column));
      if (!value) return std::nullopt;
      matrix.push_back(*value);
    }
  }
  std::vector<double> values(Size());
  if (values.empty() || !SymmetricEigen(matrix, Size(), values)) return std::nullopt;
  return values.front();
}

void MatrixTable::Put(int row, int column, const QString& text) {
  Cell(row, column) = Cell(column, row) = Utf8(text.trimmed());
}

int MatrixTable::Paste(int row, int column, const QString& text) {
  int count = 0;
  QStringList lines = text.split(u'\n');
  if (!lines.isEmpty() && lines.back().trimmed().isEmpty()) lines.pop_back();
  for (int i = 0; i < static_cast<int>(lines.size()) && row + i < rowCount(); ++i) {
    const QStringList values = lines[i].split(u'\t');
    for (int j = 0; j < static_cast<int>(values.size()) && column + j < columnCount(); ++j) {
      if (row + i == column + j) continue;
      Put(row + i, column + j, values[j]);
      ++count;
    }
  }
  emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
  return count;
}

QString MatrixTable::Copy(int firstRow, int firstColumn, int lastRow, int lastColumn) const {
  QString text;
  for (int row = firstRow; row <= lastRow; ++row) {
    QStringList line;
    for (int column = firstColumn; column <= lastColumn; ++column) line.push_back(Shown(Cell(row, column)));
    text += line.join(u'\t') + u'\n';
  }
  return text;
}

QVariant MatrixTable::data(const QModelIndex& index, int role) const {
  const std::string& cell = Cell(index.row(), index.column());
  const bool isBad = index.row() != index.column() && !CorrelationIn(cell);
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
      return Shown(cell);
    case Qt::TextAlignmentRole:
      return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    case Qt::BackgroundRole:
      return isBad ? QVariant(QBrush(QColor(0xf4, 0xb6, 0xb0))) : QVariant();
    case Qt::ForegroundRole:
      return isBad ? QVariant(QBrush(Qt::black)) : QVariant();
    case Qt::ToolTipRole:
      if (isBad) return tr("expected a number from -1 to 1");
      return tr("%1 with %2")
          .arg(Shown(names_[static_cast<std::size_t>(index.row())]))
          .arg(Shown(names_[static_cast<std::size_t>(index.column())]));
    default:
      return {};
  }
}

QVariant MatrixTable::headerData(int section, Qt::Orientation /*orientation*/, int role) const {
  if (role != Qt::DisplayRole) return {};
  return Shown(names_[static_cast<std::size_t>(section)]);
}

Qt::ItemFlags MatrixTable::flags(const QModelIndex& index) const {
  const Qt::ItemFlags usual = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  return index.row() == index.column() ? usual : usual | Qt::ItemIsEditable;
}

bool MatrixTable::setData(const QModelIndex& changed, const QVariant& value, int role) {
  if (role != Qt::EditRole || changed.row() == changed.column()) return false;
  Put(changed.row(), changed.column(), value.toString());
  const QModelIndex across = index(changed.column(), changed.row());
  emit dataChanged(across, across);
  emit dataChanged(changed, changed);
  return true;
}

}  // namespace brenvolt::desktop
