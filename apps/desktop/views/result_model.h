// A result table in a grid, in the order in which a person sorted it. The document is neither copied nor changed.
#pragma once

#include <QAbstractTableModel>
#include <cstdint>
#include <memory>
#include <vector>

#include "host/analysis/analysis_table_doc.h"

namespace brenvolt::desktop {

class ResultModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit ResultModel(std::shared_ptr<const CAnalysisTableDoc> document, QObject* parent = nullptr);

  const Spreadsheet& Table() const { return document_->Table(); }
  // The row of the document that is shown at a row of the grid.
  std::size_t RowAt(int row) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
  // Numbers by value, texts in the order of the person's language; missing values come last in both orders. Column -1
  // is the order of the document.
  void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

  // Shows the content that the document has now, in its own order if that is another one than before.
  void Refresh();

  // A rectangle as text for a spreadsheet, with the headings above it; numbers in full.
  std::string CopyText(int top, int left, int bottom, int right) const;

 private:
  // The variable of a column of the grid; null for the names.
  const Variable* VariableAt(int column) const;
  QString TextAt(std::size_t row, int column) const;
  std::vector<std::uint32_t> SortedBy(int column, Qt::SortOrder order) const;

  std::shared_ptr<const CAnalysisTableDoc> document_;
  bool hasNames_;  // the first column holds the names of the rows, which are not mere numbers
  std::uint64_t ContentStamp() const;
  std::uint64_t stamp_ = 0;           // of the content that is shown
  std::vector<std::uint32_t> order_;  // empty: that of the document
};

}  // namespace brenvolt::desktop
