// The grid in which a sheet is read and edited.
#pragma once

#include <QTableView>

#include "apps/desktop/views/sheet_edits.h"
#include "apps/desktop/views/sheet_model.h"

namespace brenvolt::desktop {

class SheetView : public QTableView {
  Q_OBJECT

 public:
  // Both must outlive the view.
  SheetView(Document& document, Spreadsheet& sheet, QWidget* parent = nullptr);

  SheetModel& Model() { return *model_; }
  // The one rectangle that is selected; nothing if there is none, or several.
  std::optional<CellArea> SelectedArea() const;
  // The variable of the current cell.
  std::optional<std::size_t> CurrentVariable() const;

 public slots:
  void Copy();
  void CopyWithNames();
  void Cut();
  void Paste();
  // Makes the selected cells missing.
  void Clear();
  void InsertCases();
  void InsertVariables();
  // Of all rows, or of all columns, that the selection touches.
  void RemoveCases();
  void RemoveVariables();
  void GoToCase(int number);

 signals:
  void refused(const QString& why);
  void said(const QString& what);
  void currentVariableChanged();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  // False, and a refusal was said, where nothing was copied.
  bool CopyArea(bool withNames);
  // Refuses what throws, and says why.
  bool Try(const QString& what, const std::function<Edits()>& edits);
  void FitColumns();

  SheetModel* model_;
};

}  // namespace brenvolt::desktop
