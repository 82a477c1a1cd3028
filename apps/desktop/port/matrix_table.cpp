#include "apps/desktop/port/matrix_table.h"

#include <QBrush>
#include <cmath>
#include <limits>
#include <utility>

#include "apps/desktop/base/text.h"
#include "host/base/correlation_rules.h"
#include "host/base/number_text.h"

namespace brenvolt::desktop {
namespace {

// NaN for what is no correlation.
double CorrelationIn(const std::string& cell) {
  const auto value = ParseTravelledNumber(Trim(cell));
  const auto entry = value ? CorrelationEntry(*value) : std::nullopt;
  return entry.value_or(std::numeric_limits<double>::quiet_NaN());
}

}  // namespace

MatrixTable::MatrixTable(std::vector<std::string> names, std::vector<std::string> cells)
    : names_(std::move(names)), cells_(std::move(cells)), values_(cells_.size(), 1.0) {
  for (std::size_t row = 0; row < Size(); ++row) {
    for (std::size_t column = row + 1; column < Size(); ++column)
      Put(row, column, cells_[PlaceOf(row, column)]);
  }
}

std::size_t MatrixTable::PlaceOf(const QModelIndex& index) const {
  return PlaceOf(static_cast<std::size_t>(index.row()), static_cast<std::size_t>(index.column()));
}

int MatrixTable::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(Size());
}

int MatrixTable::columnCount(const QModelIndex& parent) const {
  return rowCount(parent);
}

void MatrixTable::Put(std::size_t row, std::size_t column, std::string text) {
  const std::size_t there = PlaceOf(row, column);
  const std::size_t across = PlaceOf(column, row);
  const double value = CorrelationIn(text);
  bad_ += (std::isnan(value) ? 1 : 0) - (std::isnan(values_[there]) ? 1 : 0);
  values_[there] = values_[across] = value;
  cells_[across] = text;
  cells_[there] = std::move(text);
}

void MatrixTable::Put(const MatrixPaste& paste) {
  if (paste.cells.empty()) return;
  for (const PastedCell& cell : paste.cells) Put(cell.row, cell.column, cell.text);
  emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
  emit edited();
}

QString MatrixTable::Copy(int firstRow, int firstColumn, int lastRow, int lastColumn) const {
  QString text;
  for (int row = firstRow; row <= lastRow; ++row) {
    QStringList line;
    for (int column = firstColumn; column <= lastColumn; ++column)
      line.push_back(Shown(cells_[PlaceOf(index(row, column))]));
    text += line.join(u'\t') + u'\n';
  }
  return text;
}

QVariant MatrixTable::data(const QModelIndex& index, int role) const {
  const bool isBad = std::isnan(values_[PlaceOf(index)]);
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
      return Shown(cells_[PlaceOf(index)]);
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
  Put(static_cast<std::size_t>(changed.row()), static_cast<std::size_t>(changed.column()),
      Utf8(value.toString().trimmed()));
  const QModelIndex across = index(changed.column(), changed.row());
  emit dataChanged(across, across);
  emit dataChanged(changed, changed);
  emit edited();
  return true;
}

}  // namespace brenvolt::desktop
