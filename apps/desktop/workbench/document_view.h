// The sheets of a document, one at a time, with their names below.
#pragma once

#include <QHash>
#include <QWidget>

#include "apps/desktop/views/sheet_view.h"

class QLabel;
class QPushButton;
class QStackedWidget;
class QTabBar;

namespace brenvolt::desktop {

class DocumentView : public QWidget {
  Q_OBJECT

 public:
  // `document` must outlive the view.
  explicit DocumentView(Document& document, QWidget* parent = nullptr);

  Document& Owner() { return document_; }
  // The sheet that is shown; null in an empty project.
  Spreadsheet* CurrentSheet() const;
  SheetView* CurrentGrid() const;
  void ShowSheet(const std::string& name);
  // Says above the grid that the file is no longer what was read; an empty text says nothing.
  void SetNotice(const QString& text);

 signals:
  void refused(const QString& why);
  void said(const QString& what);
  void currentChanged();
  void reloadAsked();

 private:
  void ListSheets();
  void ShowGrid();
  void Rename(int tab);
  void ShowTabMenu(const QPoint& at);
  void RemoveSheet(int tab);

  Document& document_;
  QWidget* notice_;
  QLabel* noticeText_;
  QStackedWidget* grids_;
  QTabBar* tabs_;
  QHash<const Spreadsheet*, SheetView*> views_;
};

}  // namespace brenvolt::desktop
