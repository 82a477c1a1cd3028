#include "apps/desktop/views/result_model.h"

#include <QCollator>
#include <algorithm>
#include <cmath>
#include <numeric>

#include "apps/desktop/base/shown_number.h"
#include "apps/desktop/base/text.h"
#include "apps/desktop/base/text_block.h"
#include "apps/desktop/views/sheet_model.h"
#include "host/base/number_text.h"
#include "host/tables/editing/cell_text.h"

namespace brenvolt::desktop {
namespace {

constexpr double kLeastInShownForm = 1e6;

// What is shown of a number; tooltips and copies have it in full.
QString ShortText(double value) {
  const bool isWhole =
      value == std::floor(value) && std::abs(value) < 1e15 && std::abs(value) >= kLeastInShownForm;
  return isWhole ? ShownInFull(value) : ShownNumber(value);
}

}  // namespace

ResultModel::ResultModel(std::shared_ptr<const CAnalysisTableDoc> document, QObject* parent)
    : QAbstractTableModel(parent),
      document_(std::move(document)),
      hasNames_(Table().HasCaseNames() && !Table().AreCasesNumbered()),
      stamp_(ContentStamp()) {}

// Of the first variable: a table is filled anew as a whole.
std::uint64_t ResultModel::ContentStamp() const {
  return Table().VariableCount() == 0 ? 0 : Table().VariableAt(0).ContentStamp();
}

void ResultModel::Refresh() {
  if (!document_->HasTable() || ContentStamp() == stamp_) return;
  beginResetModel();
  stamp_ = ContentStamp();
  order_.clear();
  endResetModel();
}

std::size_t ResultModel::RowAt(int row) const {
  return order_.empty() ? static_cast<std::size_t>(row) : order_[static_cast<std::size_t>(row)];
}

const Variable* ResultModel::VariableAt(int column) const {
  if (hasNames_ && column == 0) return nullptr;
  return &Table().VariableAt(static_cast<std::size_t>(column - (hasNames_ ? 1 : 0)));
}

int ResultModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(std::min(Table().CaseCount(), SheetModel::kMostRows));
}

int ResultModel::columnCount(const QModelIndex& parent) const {
  if (parent.isValid()) return 0;
  return static_cast<int>(std::min(Table().VariableCount(), SheetModel::kMostRows)) + (hasNames_ ? 1 : 0);
}

QString ResultModel::TextAt(std::size_t row, int column) const {
  const Variable* variable = VariableAt(column);
  return Shown(variable == nullptr ? Table().CaseName(row) : CellText(*variable, row, UserNumberLocale()));
}

QVariant ResultModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const std::size_t row = RowAt(index.row());
  const Variable* variable = VariableAt(index.column());
  const bool isNumber = variable != nullptr && variable->Type() == VariableType::kNumeric;
  switch (role) {
    case Qt::DisplayRole:
      if (!isNumber) return TextAt(row, index.column());
      return variable->IsMissing(row) ? QStringLiteral("–") : ShortText(variable->Values()[row]);
    case Qt::ToolTipRole:
      return TextAt(row, index.column());
    case Qt::TextAlignmentRole:
      return static_cast<int>((isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    default:
      return {};
  }
}

QVariant ResultModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Vertical)
    return role == Qt::DisplayRole ? QVariant(QString::number(RowAt(section) + 1)) : QVariant();
  if (role != Qt::DisplayRole && role != Qt::ToolTipRole) return {};
  const Variable* variable = VariableAt(section);
  return Shown(variable == nullptr ? Table().Header() : variable->Name());
}

void ResultModel::sort(int column, Qt::SortOrder order) {
  emit layoutAboutToBeChanged();
  order_ = column < 0 || column >= columnCount() ? std::vector<std::uint32_t>() : SortedBy(column, order);
  emit layoutChanged();
}

std::vector<std::uint32_t> ResultModel::SortedBy(int column, Qt::SortOrder order) const {
  std::vector<std::uint32_t> rows(static_cast<std::size_t>(rowCount()));
  std::iota(rows.begin(), rows.end(), 0U);
  const Variable* variable = VariableAt(column);
  const bool down = order == Qt::DescendingOrder;
  if (variable != nullptr && variable->Type() == VariableType::kNumeric) {
    const auto values = variable->Values();
    std::ranges::stable_sort(rows, [&](std::uint32_t a, std::uint32_t b) {
      const bool aMissing = variable->IsMissing(a);
      const bool bMissing = variable->IsMissing(b);
      if (aMissing || bMissing) return !aMissing && bMissing;
      return down ? values[b] < values[a] : values[a] < values[b];
    });
    return rows;
  }
  std::vector<QString> texts;
  for (const std::uint32_t row : rows) texts.push_back(TextAt(row, column));
  QCollator collator;
  collator.setNumericMode(true);
  std::ranges::stable_sort(rows, [&](std::uint32_t a, std::uint32_t b) {
    if (texts[a].isEmpty() || texts[b].isEmpty()) return !texts[a].isEmpty() && texts[b].isEmpty();
    return collator.compare(texts[a], texts[b]) * (down ? -1 : 1) < 0;
  });
  return rows;
}

std::string ResultModel::CopyText(int top, int left, int bottom, int right) const {
  std::string text;
  for (int column = left; column <= right; ++column)
    AppendCell(text, Utf8(headerData(column, Qt::Horizontal, Qt::DisplayRole).toString()), column == left);
  text += '\n';
  for (int row = top; row <= bottom; ++row) {
    for (int column = left; column <= right; ++column)
      AppendCell(text, Utf8(TextAt(RowAt(row), column)), column == left);
    text += '\n';
  }
  return text;
}

}  // namespace brenvolt::desktop
