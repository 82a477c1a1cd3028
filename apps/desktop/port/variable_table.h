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
  // A variable that is put into one list leaves the other.
  void Choose(int row, int list, bool isIn);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 signals:
  void chosenChanged();

 private:
  bool IsIn(int row, int list) const;
  int ListOf(const QModelIndex& index) const { return index.column(); }
  const Variable* VariableOf(int row) const;
  QString TypeOf(int row) const;
  QVariant ValidOf(int row) const;

  std::vector<std::string> names_;
  QStringList lists_;
  std::vector<std::vector<std::int16_t>> chosen_;
  const Spreadsheet* input_;
  mutable std::vector<std::optional<std::size_t>> valid_;  // counted when first shown
};

}  // namespace brenvolt::desktop
