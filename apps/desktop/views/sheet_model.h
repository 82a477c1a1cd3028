// A sheet as a grid: cells are read from the host's columns where they are shown, and nothing is kept of them.
#pragma once

#include <QAbstractTableModel>
#include <QBrush>

#include "apps/desktop/documents/document.h"

namespace brenvolt::desktop {

class SheetModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  // Both must outlive the model.
  SheetModel(Document& document, Spreadsheet& sheet, QObject* parent = nullptr);

  Document& Owner() { return document_; }
  Spreadsheet& Sheet() { return sheet_; }
  const Spreadsheet& Sheet() const { return sheet_; }

  // Cases beyond this are not shown: no height could be given to them all.
  static constexpr std::size_t kMostRows = 50'000'000;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  // An edit by a person; a text that the variable does not take is refused.
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

 signals:
  // What was wrong with what was typed.
  void refused(const QString& why);

 private:
  void Update(const QString& sheet, bool shape);
  QVariant CellData(std::size_t row, std::size_t column, int role) const;
  QVariant VariableHeading(std::size_t column, int role) const;

  Document& document_;
  Spreadsheet& sheet_;
};

}  // namespace brenvolt::desktop
