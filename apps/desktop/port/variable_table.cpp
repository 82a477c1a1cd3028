#include "apps/desktop/port/variable_table.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "apps/desktop/base/text.h"
#include "apps/desktop/dialogs/caption.h"

namespace brenvolt::desktop {
namespace {

// The columns after the boxes.
enum Column { kNumber, kName, kType, kValid, kColumns };

// An analysis numbers the variables that it is given by 16 bits.
constexpr int kMostNumbered = std::numeric_limits<std::int16_t>::max();

}  // namespace

VariableTable::VariableTable(std::vector<std::string> names, QStringList lists,
                             std::vector<std::vector<std::int16_t>> chosen, const Spreadsheet* input)
    : names_(std::move(names)), lists_(std::move(lists)), chosen_(std::move(chosen)), input_(input) {
  if (input_ != nullptr && input_->VariableCount() != names_.size()) input_ = nullptr;
  valid_.resize(names_.size());
  listOf_.assign(names_.size(), -1);
  for (std::size_t list = 0; list < chosen_.size(); ++list) {
    for (const std::int16_t number : chosen_[list]) {
      if (number >= 1 && static_cast<std::size_t>(number) <= listOf_.size())
        listOf_[static_cast<std::size_t>(number) - 1] = static_cast<int>(list);
    }
  }
}

int VariableTable::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(names_.size());
}

int VariableTable::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(lists_.size()) + (input_ != nullptr ? kColumns : kType);
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
  if (role == Qt::ToolTipRole && index.row() >= kMostNumbered)
    return tr("Only the first %1 variables can be chosen").arg(kMostNumbered);
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
  if (index.row() >= kMostNumbered) return Qt::NoItemFlags;
  return index.column() < static_cast<int>(lists_.size()) ? usual | Qt::ItemIsUserCheckable : usual;
}

bool VariableTable::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::CheckStateRole || index.column() >= static_cast<int>(lists_.size())) return false;
  Choose({index.row()}, index.column(), value.toInt() == Qt::Checked);
  return true;
}

void VariableTable::Choose(const std::vector<int>& rows, int list, bool isIn) {
  std::vector<std::int16_t> changed;
  for (const int row : rows) {
    if (row >= kMostNumbered || IsIn(row, list) == isIn) continue;
    listOf_[static_cast<std::size_t>(row)] = isIn ? list : -1;
    changed.push_back(static_cast<std::int16_t>(row + 1));
  }
  if (changed.empty()) return;
  for (std::size_t i = 0; i < chosen_.size(); ++i) {
    std::erase_if(chosen_[i], [&](std::int16_t number) {
      return listOf_[static_cast<std::size_t>(number) - 1] != static_cast<int>(i);
    });
  }
  if (isIn) std::ranges::copy(changed, std::back_inserter(chosen_[static_cast<std::size_t>(list)]));
  const auto [first, last] = std::ranges::minmax(changed);
  emit dataChanged(index(first - 1, 0), index(last - 1, static_cast<int>(lists_.size()) - 1),
                   {Qt::CheckStateRole});
  emit chosenChanged();
}

}  // namespace brenvolt::desktop
