// What analyses have shown, as pages in a tree: tables to read, sort, copy and export, pictures to enlarge, copy and
// save, which change with the dialogs that made them (live_graphs.h). A page is made when it is looked at, so that a
// hundred thousand results take no more time than the tree.
#pragma once

#include <QWidget>
#include <filesystem>
#include <map>
#include <memory>

#include "apps/desktop/base/limit_mover.h"
#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/analysis_table_doc.h"
#include "host/jobs/reports/shown_report.h"

class QStackedWidget;
class QToolBar;
class QTreeWidget;
class QTreeWidgetItem;

namespace brenvolt::desktop {

class PictureView;

class ResultsPanel : public QWidget {
  Q_OBJECT

 public:
  explicit ResultsPanel(QWidget* parent = nullptr);
  ~ResultsPanel() override;

  // What comes from now on stands below this title, with a number where a group has it already.
  void BeginGroup(const QString& title);
  // What makes the results of that group.
  void SetOrigin(const ShownOrigin& origin);
  // The page that came last is shown; of those that come between the two calls, the first.
  void BeginSeries();
  void EndSeries();
  void Add(std::shared_ptr<CAnalysisTableDoc> table);
  void Add(std::shared_ptr<CAnalysisGraphDoc> graph);
  int Count() const;
  // What stands in the group of the result that is looked at, or in the last one.
  QString GroupTitle() const;
  std::vector<ShownResult> ShownGroup() const;
  ShownOrigin GroupOrigin() const;
  // Whether that is the group to which results still come.
  bool IsGroupOpen() const;
  // Of these, those that are in no file, no project and no report.
  int UnsavedCount() const;
  // A report has that group.
  void SetReported();
  void SetKept(const CAnalysisTableDoc& table);
  // Another graph takes the place of one; nothing happens where that was removed.
  void Replace(const CAnalysisGraphDoc& former, std::shared_ptr<CAnalysisGraphDoc> now);
  // Shows tables again whose analysis has filled them anew.
  void Refresh();
  QTreeWidget& Tree() { return *tree_; }
  // The page that is shown; null if none is.
  QWidget* Page() const;

 public slots:
  void Copy();
  // Asks for a file, whose ending says the format.
  void Save();
  void Remove();
  // Both throw Error and WrongJob.
  void SaveTo(const std::filesystem::path& file);

 signals:
  // There is one more result.
  void added();
  void said(const QString& text);
  // A report of the results is asked for.
  void reportAsked();
  // The table is to be kept as a sheet of the project.
  void keepAsked(std::shared_ptr<CAnalysisTableDoc> table);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Result;

  void AddItem(const QString& title, Result result);
  Result* ResultOf(const CAnalysisGraphDoc& graph) const;
  // What a limit that was moved changed: its picture, and tables that stand in its group under the same title.
  void Follow(const CAnalysisGraphDoc& former, const MovedLimit& moved, bool isLast);
  void ReplaceTable(const QTreeWidgetItem& group, const std::shared_ptr<CAnalysisTableDoc>& table);
  void ShowCurrent();
  QWidget* MakePage(const Result& result);
  PictureView* MakePicture(const std::shared_ptr<CAnalysisGraphDoc>& graph);
  Result* CurrentResult() const;
  QTreeWidgetItem* CurrentGroup() const;
  void UpdateActions();

  QTreeWidget* tree_;
  QStackedWidget* pages_;
  QToolBar* tools_;
  QAction* keep_;
  QAction* report_;
  QList<QAction*> zooms_;
  QTreeWidgetItem* group_ = nullptr;
  bool isSeries_ = false;
  QTreeWidgetItem* first_ = nullptr;                       // of the series
  QList<QTreeWidgetItem*> open_;                           // those with a page, the one looked at last first
  std::map<const QTreeWidgetItem*, ShownOrigin> origins_;  // by group
  std::vector<std::unique_ptr<Result>> results_;
};

}  // namespace brenvolt::desktop
