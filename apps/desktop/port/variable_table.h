// The variables of a sheet as the rows of a table, with a box to check for each list that they may be put into.
#pragma once

#include <QAbstractTableModel>
#include <optional>
#include <vector>

#include "host/tables/spreadsheet.h"

namespace brenvolt::desktop {

class VariableTable : public QAbstractTableModel {
  Q_OBJECT

 public:
  // The lists, one or two, hold numbers of variables from 1 in the order in which they were chosen. `input` may be null.
  VariableTable(std::vector<std::string> names, QStringList lists,
                std::vector<std::vector<std::int16_t>> chosen, const Spreadsheet* input);

  const std::vector<std::vector<std::int16_t>>& Chosen() const { return chosen_; }
  // Variables that are put into one list leave the other. Those whose numbers are too large to be chosen stay out.
  void Choose(const std::vector<int>& rows, int list, bool isIn);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 signals:
  void chosenChanged();

 private:
  bool IsIn(int row, int list) const { return listOf_[static_cast<std::size_t>(row)] == list; }
  const Variable* VariableOf(int row) const;
  QString TypeOf(int row) const;
  QVariant ValidOf(int row) const;

  std::vector<std::string> names_;
  QStringList lists_;
  std::vector<std::vector<std::int16_t>> chosen_;
  std::vector<int> listOf_;  // of each variable; -1 for none
  const Spreadsheet* input_;
  mutable std::vector<std::optional<std::size_t>> valid_;  // counted when first shown
};

}  // namespace brenvolt::desktop
