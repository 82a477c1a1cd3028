// A symmetric matrix as a table of cells as they are typed: a cell and the one across the diagonal are one, and the
// diagonal stays.
#pragma once

#include <QAbstractTableModel>
#include <optional>
#include <string>
#include <vector>

namespace brenvolt::desktop {

class MatrixTable : public QAbstractTableModel {
  Q_OBJECT

 public:
  // `cells` row by row; of a pair that differs, the one above the diagonal counts.
  MatrixTable(std::vector<std::string> names, std::vector<std::string> cells);

  const std::vector<std::string>& Cells() const { return cells_; }
  // The cells that hold no correlation, above the diagonal.
  int BadCells() const;
  // The smallest eigenvalue; nothing while a cell is bad.
  std::optional<double> SmallestEigenvalue() const;
  // Puts lines of cells apart by tabs, as spreadsheets copy them, at a cell and to the right of it and below. What lies
  // outside the matrix or on the diagonal is passed over. The number of cells that were put.
  int Paste(int row, int column, const QString& text);
  // Lines of cells apart by tabs.
  QString Copy(int firstRow, int firstColumn, int lastRow, int lastColumn) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 private:
  std::size_t Size() const { return names_.size(); }
  std::string& Cell(int row, int column);
  const std::string& Cell(int row, int column) const;
  void Put(int row, int column, const QString& text);

  std::vector<std::string> names_;
  std::vector<std::string> cells_;
};

}  // namespace brenvolt::desktop
