// The menus of the main window.
#include <QActionGroup>
#include <QDockWidget>
#include <QFileInfo>
#include <QInputDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QSplitter>
#include <QStackedWidget>
#include <algorithm>
#include <limits>

#include "apps/desktop/base/text.h"
#include "apps/desktop/views/results_panel.h"
#include "apps/desktop/workbench/document_view.h"
#include "apps/desktop/workbench/main_window.h"

namespace brenvolt::desktop {

void MainWindow::MakeFileMenu() {
  QMenu& menu = *menuBar()->addMenu(tr("&File"));
  menu.addAction(tr("&New project"), QKeySequence::New, this, &MainWindow::NewProject);
  menu.addAction(tr("&Open…"), QKeySequence::Open, this, &MainWindow::Open);
  recentMenu_ = menu.addMenu(tr("&Recent files"));
  connect(recentMenu_, &QMenu::aboutToShow, this, &MainWindow::FillRecentMenu);
  menu.addSeparator();
  documentActions_ << menu.addAction(tr("&Save"), QKeySequence::Save, this, &MainWindow::Save)
                   << menu.addAction(tr("Save &as…"), QKeySequence(tr("Ctrl+Shift+S")), this,
                                     &MainWindow::SaveAs);
  gridActions_ << menu.addAction(tr("&Export sheet…"), this, &MainWindow::ExportSheet);
  menu.addAction(tr("Export r&eport…"), this, &MainWindow::ExportReport);
  menu.addSeparator();
  documentActions_ << menu.addAction(tr("&Close"), QKeySequence::Close, this, &MainWindow::CloseDocument);
  menu.addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);
}

void MainWindow::FillRecentMenu() {
  recentMenu_->clear();
  const QStringList files = settings_.RecentFiles();
  for (const QString& file : files) {
    QString name = QFileInfo(file).fileName() + QStringLiteral("  –  ") + QFileInfo(file).path();
    QAction* action = recentMenu_->addAction(name.replace(QLatin1Char('&'), QStringLiteral("&&")));
    action->setEnabled(QFileInfo::exists(file));
    connect(action, &QAction::triggered, this, [this, file] { OpenFile(PathOf(file)); });
  }
  if (files.isEmpty()) recentMenu_->addAction(tr("None yet"))->setEnabled(false);
}

QAction* MainWindow::AddGridAction(QMenu& menu, const QString& text, void (SheetView::*what)()) {
  QAction* action = menu.addAction(text, this, [this, what] {
    SheetView* grid = CurrentView() == nullptr ? nullptr : CurrentView()->CurrentGrid();
    if (grid != nullptr) (grid->*what)();
  });
  gridActions_ << action;
  return action;
}

void MainWindow::MakeEditMenu() {
  QMenu& menu = *menuBar()->addMenu(tr("&Edit"));
  undo_ = menu.addAction(tr("&Undo"), QKeySequence::Undo, this, [this] { GoBack(true); });
  redo_ = menu.addAction(tr("&Redo"), QKeySequence::Redo, this, [this] { GoBack(false); });
  connect(&history_, &QUndoGroup::indexChanged, this, &MainWindow::ShowHistory);
  connect(&history_, &QUndoGroup::activeStackChanged, this, &MainWindow::ShowHistory);
  menu.addSeparator();
  AddGridAction(menu, tr("Cu&t"), &SheetView::Cut);
  AddGridAction(menu, tr("&Copy"), &SheetView::Copy);
  AddGridAction(menu, tr("Copy with &names"), &SheetView::CopyWithNames)
      ->setShortcut(QKeySequence(tr("Ctrl+Shift+C")));
  AddGridAction(menu, tr("&Paste"), &SheetView::Paste);
  AddGridAction(menu, tr("C&lear"), &SheetView::Clear);
  menu.addSeparator();
  AddGridAction(menu, tr("&Insert cases above"), &SheetView::InsertCases);
  AddGridAction(menu, tr("Insert &variables to the left"), &SheetView::InsertVariables);
  AddGridAction(menu, tr("&Delete cases"), &SheetView::RemoveCases);
  AddGridAction(menu, tr("D&elete variables"), &SheetView::RemoveVariables);
  menu.addSeparator();
  gridActions_ << menu.addAction(tr("&Go to case…"), QKeySequence(tr("Ctrl+G")), this, [this] {
    SheetView* grid = CurrentView() == nullptr ? nullptr : CurrentView()->CurrentGrid();
    if (grid == nullptr || grid->Model().rowCount() == 0) return;
    bool accepted = false;
    const int number =
        QInputDialog::getInt(this, tr("Go to case"), tr("Case:"), grid->currentIndex().row() + 1, 1,
                             grid->Model().rowCount(), 1, &accepted);
    if (accepted) grid->GoToCase(number);
  });
}

void MainWindow::MakeTaskMenu() {
  QMenu& menu = *menuBar()->addMenu(tr("&Analyse"));
  for (const auto& [task, text] :
       {std::pair(Task::kFit, tr("&Fit distributions…")), std::pair(Task::kSimulate, tr("&Simulate data…")),
        std::pair(Task::kDesign, tr("&Design a simulation…")),
        std::pair(Task::kProfile, tr("&Profile a model…"))})
    menu.addAction(text, this, [this, chosen = task] { StartTask(chosen); });
  menu.addSeparator();
  gridActions_ << menu.addAction(tr("P&ictures of the variable"), this, &MainWindow::ShowPictures);
}

void MainWindow::MakeViewMenu() {
  QMenu& menu = *menuBar()->addMenu(tr("&View"));
  menu.addAction(tr("&Start page"), this, &MainWindow::ShowStartPage);
  menu.addAction(tr("&Data and results"), this, [this] { pages_->setCurrentWidget(splitter_); });
  menu.addSeparator();
  QAction* results = menu.addAction(tr("&Results"));
  results->setCheckable(true);
  connect(results, &QAction::triggered, results_, &QWidget::setVisible);
  connect(&menu, &QMenu::aboutToShow, this,
          [this, results] { results->setChecked(results_->isVisibleTo(splitter_)); });
  propertyDock_->toggleViewAction()->setText(tr("&Variable"));
  macroDock_->toggleViewAction()->setText(tr("&Macro"));
  menu.addAction(propertyDock_->toggleViewAction());
  menu.addAction(macroDock_->toggleViewAction());
  menu.addSeparator();
  QMenu* themes = menu.addMenu(tr("&Colours"));
  auto* group = new QActionGroup(this);
  for (const auto& [theme, text] :
       {std::pair(ThemeChoice::kSystem, tr("As the &system")), std::pair(ThemeChoice::kLight, tr("&Light")),
        std::pair(ThemeChoice::kDark, tr("&Dark"))}) {
    QAction* action = themes->addAction(text);
    action->setCheckable(true);
    action->setChecked(settings_.Theme() == theme);
    group->addAction(action);
    connect(action, &QAction::triggered, this, [this, chosen = theme] { SetTheme(chosen); });
  }
}

void MainWindow::MakeHelpMenu() {
  QMenu& menu = *menuBar()->addMenu(tr("&Help"));
  menu.addAction(tr("&About Brenvolt"), this, [this] {
    QMessageBox::about(
        this, tr("About Brenvolt"),
        tr("<b>Brenvolt Distributions &amp; Simulation</b><p>Fits probability distributions to data, "
           "ranks the fits, simulates correlated data, and profiles prediction models.</p>"));
  });
}

}  // namespace brenvolt::desktop
