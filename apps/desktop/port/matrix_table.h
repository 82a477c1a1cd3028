// A symmetric matrix as a table of cells as they are typed: a cell and the one across the diagonal are one, and the
// diagonal stays.
#pragma once

#include <QAbstractTableModel>
#include <string>
#include <vector>

#include "apps/desktop/port/matrix_paste.h"

namespace brenvolt::desktop {

class MatrixTable : public QAbstractTableModel {
  Q_OBJECT

 public:
  // `cells` row by row; of a pair that differs, the one above the diagonal counts.
  MatrixTable(std::vector<std::string> names, std::vector<std::string> cells);

  const std::vector<std::string>& Names() const { return names_; }
  const std::vector<std::string>& Cells() const { return cells_; }
  // The cells that hold no correlation, above the diagonal.
  int BadCells() const { return bad_; }
  // The matrix row by row, 1 on its diagonal; NaN in bad cells.
  const std::vector<double>& Values() const { return values_; }
  void Put(const MatrixPaste& paste);
  // Lines of cells apart by tabs.
  QString Copy(int firstRow, int firstColumn, int lastRow, int lastColumn) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;

 signals:
  // Once for whatever is typed or pasted.
  void edited();

 private:
  std::size_t Size() const { return names_.size(); }
  std::size_t PlaceOf(std::size_t row, std::size_t column) const { return row * Size() + column; }
  std::size_t PlaceOf(const QModelIndex& index) const;
  // Both halves.
  void Put(std::size_t row, std::size_t column, std::string text);

  std::vector<std::string> names_;
  std::vector<std::string> cells_;
  std::vector<double> values_;
  int bad_ = 0;
};

}  // namespace brenvolt::desktop
