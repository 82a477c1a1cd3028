#include "apps/desktop/port/variable_table.h"

#include <algorithm>

#include "apps/desktop/base/text.h"
#include "apps/desktop/dialogs/caption.h"

namespace brenvolt::desktop {
namespace {

// The columns after the boxes.
enum Column { kNumber, kName, kType, kValid, kColumns };

}  // namespace

VariableTable::VariableTable(std::vector<std::string> names, QStringList lists,
                             std::vector<std::vector<std::int16_t>> chosen, const Spreadsheet* input)
    : names_(std::move(names)), lists_(std::move(lists)), chosen_(std::move(chosen)), input_(input) {
  if (input_ != nullptr && input_->VariableCount() != names_.size()) input_ = nullptr;
  valid_.resize(names_.size());
}

int VariableTable::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(names_.size());
}

int VariableTable::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(lists_.size()) + (input_ != nullptr ? kColumns : kType);
}

bool VariableTable::IsIn(int row, int list) const {
  const auto& numbers = chosen_[static_cast<std::size_t>(list)];
  return std::ranges::find(numbers, row + 1) != numbers.end();
}

const Variable* VariableTable::VariableOf(int row) const {
  return input_ != nullptr ? &input_->VariableAt(static_cast<std::size_t>(row)) : nullptr;
}

QString VariableTable::TypeOf(int row) const {
  const Variable* const variable = VariableOf(row);
  if (variable == nullptr) return {};
  return variable->Type() == VariableType::kText ? tr("text") : tr("number");
}

QVariant VariableTable::ValidOf(int row) const {
  const Variable* const variable = VariableOf(row);
  if (variable == nullptr) return {};
  auto& count = valid_[static_cast<std::size_t>(row)];
  if (!count) {
    count = 0;
    for (std::size_t i = 0; i < variable->Size(); ++i) *count += variable->IsMissing(i) ? 0 : 1;
  }
  return static_cast<qulonglong>(*count);
}

QVariant VariableTable::data(const QModelIndex& index, int role) const {
  const int lists = static_cast<int>(lists_.size());
  if (index.column() < lists) {
    if (role == Qt::CheckStateRole) return IsIn(index.row(), index.column()) ? Qt::Checked : Qt::Unchecked;
    if (role == Qt::AccessibleTextRole) return Spoken(lists_[index.column()]);
    return {};
  }
  const int column = index.column() - lists;
  if (role == Qt::TextAlignmentRole && (column == kNumber || column == kValid))
    return QVariant(Qt::AlignRight | Qt::AlignVCenter);
  if (role != Qt::DisplayRole) return {};
  switch (column) {
    case kNumber:
      return index.row() + 1;
    case kName:
      return Shown(names_[static_cast<std::size_t>(index.row())]);
    case kType:
      return TypeOf(index.row());
    default:
      return ValidOf(index.row());
  }
}

QVariant VariableTable::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  const int lists = static_cast<int>(lists_.size());
  if (section < lists) return Spoken(lists_[section]);
  const QStringList headings{tr("No."), tr("Variable"), tr("Type"), tr("Valid")};
  return headings[section - lists];
}

Qt::ItemFlags VariableTable::flags(const QModelIndex& index) const {
  const Qt::ItemFlags usual = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
  return index.column() < static_cast<int>(lists_.size()) ? usual | Qt::ItemIsUserCheckable : usual;
}

bool VariableTable::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::CheckStateRole || index.column() >= static_cast<int>(lists_.size())) return false;
  Choose(index.row(), index.column(), value.toInt() == Qt::Checked);
  return true;
}

void VariableTable::Choose(int row, int list, bool isIn) {
  const auto number = static_cast<std::int16_t>(row + 1);
  if (IsIn(row, list) == isIn) return;
  for (auto& numbers : chosen_) std::erase(numbers, number);
  if (isIn) chosen_[static_cast<std::size_t>(list)].push_back(number);
  emit dataChanged(index(row, 0), index(row, static_cast<int>(lists_.size()) - 1), {Qt::CheckStateRole});
  emit chosenChanged();
}

}  // namespace brenvolt::desktop
