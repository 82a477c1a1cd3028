#include "apps/desktop/views/results_panel.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QSplitter>
#include <QStackedWidget>
#include <QTableView>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "apps/desktop/base/live_graphs.h"
#include "apps/desktop/base/save_question.h"
#include "apps/desktop/base/text.h"
#include "apps/desktop/views/picture_view.h"
#include "apps/desktop/views/result_model.h"
#include "host/base/error.h"
#include "host/jobs/base/job_fault.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/result_files.h"

namespace brenvolt::desktop {

struct ResultsPanel::Result {
  std::shared_ptr<CAnalysisTableDoc> table;
  std::shared_ptr<CAnalysisGraphDoc> graph;
  QTreeWidgetItem* item = nullptr;
  QWidget* page = nullptr;
  bool isSaved = false;  // in a file, a project or a report
};

namespace {

// Pages that were looked at long ago are made again.
constexpr qsizetype kMostPages = 30;
constexpr int kPlaceRole = Qt::UserRole;
constexpr int kTitleRole = Qt::UserRole + 1;  // without the number that tells equal ones apart
constexpr int kTreeCharacters = 34;
constexpr int kPageCharacters = 80;
constexpr std::size_t kMostCopied = 2'000'000;

QTableView* MakeTable(const std::shared_ptr<CAnalysisTableDoc>& document) {
  auto* view = new QTableView;
  auto* model = new ResultModel(document, view);
  view->setObjectName(QStringLiteral("resultTable"));
  view->setAccessibleName(Shown(document->Table().Title()));
  view->setModel(model);
  view->setSortingEnabled(true);
  view->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
  view->horizontalHeader()->setSortIndicatorClearable(true);
  view->setSelectionMode(QAbstractItemView::ContiguousSelection);
  view->setAlternatingRowColors(true);
  view->setWordWrap(false);
  const int line = view->fontMetrics().height() + 8;
  view->verticalHeader()->setMinimumSectionSize(line);
  view->verticalHeader()->setDefaultSectionSize(line);
  view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  view->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
  constexpr int kMeasuredColumns = 100;
  view->horizontalHeader()->setResizeContentsPrecision(50);
  for (int column = 0; column < std::min(model->columnCount(), kMeasuredColumns); ++column) {
    view->resizeColumnToContents(column);
    view->setColumnWidth(column, std::clamp(view->columnWidth(column) + 8, 72, 260));
  }
  return view;
}

// A heading above the grid: that of the tree, and what else the title says.
QWidget* WithTitle(QTableView* view, const QString& heading, const Spreadsheet& table) {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  layout->setContentsMargins(0, 0, 0, 0);
  const QString more = Shown(table.Title()).section(QLatin1Char('\n'), 1).trimmed();
  auto* title = new QLabel(more.isEmpty() ? heading : heading + QLatin1Char('\n') + more);
  title->setObjectName(QStringLiteral("resultTitle"));
  QFont bold = title->font();
  bold.setBold(true);
  title->setFont(bold);
  title->setMargin(6);
  title->setWordWrap(true);
  title->setTextFormat(Qt::PlainText);
  title->setTextInteractionFlags(Qt::TextSelectableByMouse);
  layout->addWidget(title);
  layout->addWidget(view);
  page->setFocusProxy(view);
  return page;
}

// What a table is of, and what it holds: "eruptions: ranking by ...".
QString TitleOf(const Spreadsheet& table) {
  const QString name = Shown(table.Name());
  const QString title = Shown(table.Title()).section(QLatin1Char('\n'), 0, 0).trimmed();
  if (name.isEmpty() || title.isEmpty() || title.contains(name)) return title.isEmpty() ? name : title;
  return name + QStringLiteral(": ") + title;
}

// The title as it is, or with the first number that none of the siblings has.
QString Distinct(const QString& title, const QStringList& taken) {
  QString distinct = title;
  for (int number = 2; taken.contains(distinct); ++number)
    distinct = QStringLiteral("%1 (%2)").arg(title).arg(number);
  return distinct;
}

QStringList TitlesIn(const QTreeWidgetItem& parent) {
  QStringList titles;
  for (int i = 0; i < parent.childCount(); ++i) titles << parent.child(i)->text(0);
  return titles;
}

}  // namespace

ResultsPanel::ResultsPanel(QWidget* parent)
    : QWidget(parent), tree_(new QTreeWidget), pages_(new QStackedWidget), tools_(new QToolBar) {
  tree_->setObjectName(QStringLiteral("results"));
  tree_->setAccessibleName(tr("Results"));
  tree_->setHeaderHidden(true);
  tree_->setUniformRowHeights(true);
  auto* empty = new QLabel(tr("Results appear here."));
  empty->setAlignment(Qt::AlignCenter);
  empty->setEnabled(false);
  pages_->addWidget(empty);
  auto* splitter = new QSplitter(Qt::Horizontal);
  splitter->addWidget(tree_);
  splitter->addWidget(pages_);
  splitter->setStretchFactor(1, 1);
  const int character = tree_->fontMetrics().averageCharWidth();
  splitter->setSizes({kTreeCharacters * character, kPageCharacters * character});
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(tools_);
  layout->addWidget(splitter, 1);

  tools_->addAction(tr("Copy"), this, &ResultsPanel::Copy)->setToolTip(tr("Copy the table or the picture"));
  tools_->addAction(tr("Save…"), this, &ResultsPanel::Save)
      ->setToolTip(tr("Save the table or the picture in a file"));
  keep_ = tools_->addAction(tr("Add to project"), this, [this] {
    if (const Result* result = CurrentResult(); result != nullptr && result->table != nullptr)
      emit keepAsked(result->table);
  });
  keep_->setToolTip(tr("Keep the table as a sheet of the project"));
  report_ = tools_->addAction(tr("Report…"), this, &ResultsPanel::reportAsked);
  report_->setToolTip(tr("Write a report of these results: PDF, HTML or Markdown"));
  tools_->addAction(tr("Remove"), this, &ResultsPanel::Remove)->setToolTip(tr("Remove the result"));
  tools_->addSeparator();
  const auto zoom = [this](void (PictureView::*how)()) {
    return [this, how] {
      if (auto* picture = qobject_cast<PictureView*>(Page())) (picture->*how)();
    };
  };
  zooms_ << tools_->addAction(tr("Larger"), this, zoom(&PictureView::ZoomIn))
         << tools_->addAction(tr("Smaller"), this, zoom(&PictureView::ZoomOut))
         << tools_->addAction(tr("Fit width"), this, zoom(&PictureView::ZoomToFit));
  connect(tree_, &QTreeWidget::currentItemChanged, this, &ResultsPanel::ShowCurrent);
  connect(&LiveGraphs::All(), &LiveGraphs::replaced, this,
          [this](const auto& former, auto now) { Replace(*former, std::move(now)); });
  UpdateActions();
}

ResultsPanel::~ResultsPanel() = default;

void ResultsPanel::BeginGroup(const QString& title) {
  group_ = new QTreeWidgetItem(tree_, {Distinct(title, TitlesIn(*tree_->invisibleRootItem()))});
  group_->setData(0, kPlaceRole, -1);
  group_->setExpanded(true);
}

void ResultsPanel::SetOrigin(const ShownOrigin& origin) {
  if (group_ != nullptr) origins_[group_] = origin;
}

ShownOrigin ResultsPanel::GroupOrigin() const {
  const auto found = origins_.find(CurrentGroup());
  return found != origins_.end() ? found->second : ShownOrigin();
}

void ResultsPanel::Add(std::shared_ptr<CAnalysisTableDoc> table) {
  const QString title = TitleOf(table->Table());
  AddItem(title, {std::move(table), nullptr});
}

void ResultsPanel::Add(std::shared_ptr<CAnalysisGraphDoc> graph) {
  const QString title = Shown(graph->Content().title);
  AddItem(title, {nullptr, std::move(graph)});
}

void ResultsPanel::AddItem(const QString& title, Result result) {
  if (group_ == nullptr) BeginGroup(tr("Results"));
  const QString shown = Distinct(title, TitlesIn(*group_));
  auto* item = new QTreeWidgetItem(group_, {shown});
  item->setToolTip(0, shown);
  item->setData(0, kTitleRole, title);
  item->setData(0, kPlaceRole, static_cast<int>(results_.size()));
  result.item = item;
  results_.push_back(std::make_unique<Result>(std::move(result)));
  if (isSeries_) {
    if (first_ == nullptr) first_ = item;
  } else {
    tree_->setCurrentItem(item);
  }
  emit added();
}

void ResultsPanel::BeginSeries() {
  isSeries_ = true;
  first_ = nullptr;
}

void ResultsPanel::EndSeries() {
  isSeries_ = false;
  if (first_ != nullptr) tree_->setCurrentItem(std::exchange(first_, nullptr));
}

int ResultsPanel::Count() const {
  return static_cast<int>(std::ranges::count_if(results_, [](const auto& one) { return one != nullptr; }));
}

void ResultsPanel::Refresh() {
  for (auto* view : pages_->findChildren<QTableView*>()) static_cast<ResultModel*>(view->model())->Refresh();
}

QWidget* ResultsPanel::Page() const {
  const Result* result = CurrentResult();
  return result == nullptr ? nullptr : result->page;
}

ResultsPanel::Result* ResultsPanel::CurrentResult() const {
  const QTreeWidgetItem* item = tree_->currentItem();
  const int place = item == nullptr ? -1 : item->data(0, kPlaceRole).toInt();
  return place < 0 ? nullptr : results_[static_cast<std::size_t>(place)].get();
}

QTreeWidgetItem* ResultsPanel::CurrentGroup() const {
  QTreeWidgetItem* const item = tree_->currentItem();
  if (item == nullptr) return tree_->topLevelItem(tree_->topLevelItemCount() - 1);
  return item->parent() == nullptr ? item : item->parent();
}

QString ResultsPanel::GroupTitle() const {
  const QTreeWidgetItem* const group = CurrentGroup();
  return group == nullptr ? QString() : group->text(0);
}

bool ResultsPanel::IsGroupOpen() const {
  return CurrentGroup() == group_;
}

std::vector<ShownResult> ResultsPanel::ShownGroup() const {
  std::vector<ShownResult> shown;
  const QTreeWidgetItem* const group = CurrentGroup();
  for (const auto& one : results_) {
    if (one == nullptr || one->item->parent() != group) continue;
    ShownResult& result = shown.emplace_back(ShownResult{Utf8(one->item->text(0))});
    if (one->table != nullptr) result.table = &one->table->Table();
    if (one->graph != nullptr) result.graph = &one->graph->Content();
  }
  return shown;
}

QWidget* ResultsPanel::MakePage(const Result& result) {
  if (result.graph != nullptr) return MakePicture(result.graph);
  QTableView* const table = MakeTable(result.table);
  table->installEventFilter(this);
  return WithTitle(table, result.item->text(0), result.table->Table());
}

PictureView* ResultsPanel::MakePicture(const std::shared_ptr<CAnalysisGraphDoc>& graph) {
  auto* picture = new PictureView(graph, &LiveGraphs::All());
  connect(picture, &PictureView::limitMoved, this,
          [this](const std::shared_ptr<const CAnalysisGraphDoc>& former, const MovedLimit& moved,
                 bool isLast) { Follow(*former, moved, isLast); });
  return picture;
}

ResultsPanel::Result* ResultsPanel::ResultOf(const CAnalysisGraphDoc& graph) const {
  const auto found = std::ranges::find_if(
      results_, [&](const auto& one) { return one != nullptr && one->graph.get() == &graph; });
  return found != results_.end() ? found->get() : nullptr;
}

void ResultsPanel::Replace(const CAnalysisGraphDoc& former, std::shared_ptr<CAnalysisGraphDoc> now) {
  Result* const result = ResultOf(former);
  if (result == nullptr) return;
  const QString title = Shown(now->Content().title);
  if (result->item->data(0, kTitleRole).toString() != title) {
    const QString shown = Distinct(title, TitlesIn(*result->item->parent()));
    result->item->setText(0, shown);
    result->item->setToolTip(0, shown);
    result->item->setData(0, kTitleRole, title);
  }
  if (result == CurrentResult()) LiveGraphs::All().LookAt(now);
  result->graph = std::move(now);
  result->isSaved = false;
  if (auto* picture = static_cast<PictureView*>(result->page)) picture->Show(result->graph);
}

void ResultsPanel::ReplaceTable(const QTreeWidgetItem& group,
                                const std::shared_ptr<CAnalysisTableDoc>& table) {
  const QString title = TitleOf(table->Table());
  for (const auto& one : results_) {
    if (one == nullptr || one->table == nullptr || one->item->parent() != &group ||
        one->item->data(0, kTitleRole).toString() != title)
      continue;
    one->table = table;
    one->isSaved = false;
    // The page is made again when it is looked at.
    open_.removeOne(one->item);
    delete std::exchange(one->page, nullptr);
  }
}

void ResultsPanel::Follow(const CAnalysisGraphDoc& former, const MovedLimit& moved, bool isLast) {
  const Result* const result = ResultOf(former);
  if (moved.graph != nullptr) Replace(former, moved.graph);
  if (!isLast) return;
  if (result != nullptr) {
    for (const auto& table : moved.tables) ReplaceTable(*result->item->parent(), table);
  }
  emit said(QString(moved.words).replace(u'\n', QStringLiteral(", ")));
}

void ResultsPanel::ShowCurrent() {
  Result* result = CurrentResult();
  UpdateActions();
  LiveGraphs::All().LookAt(result != nullptr ? result->graph : nullptr);
  if (result == nullptr) return pages_->setCurrentIndex(0);
  if (result->page == nullptr) {
    result->page = MakePage(*result);
    pages_->addWidget(result->page);
  }
  pages_->setCurrentWidget(result->page);
  open_.removeOne(result->item);
  open_.prepend(result->item);
  while (open_.size() > kMostPages) {
    auto& old = *results_[static_cast<std::size_t>(open_.takeLast()->data(0, kPlaceRole).toInt())];
    delete std::exchange(old.page, nullptr);
  }
}

void ResultsPanel::UpdateActions() {
  const Result* result = CurrentResult();
  for (QAction* action : tools_->actions()) action->setEnabled(result != nullptr);
  report_->setEnabled(Count() > 0);
  keep_->setEnabled(result != nullptr && result->table != nullptr);
  for (QAction* action : zooms_) action->setEnabled(result != nullptr && result->graph != nullptr);
}

void ResultsPanel::Copy() {
  if (auto* picture = qobject_cast<PictureView*>(Page())) {
    try {
      picture->Copy();
    } catch (const Error& error) {
      emit said(Shown(error.what()));
    }
    return;
  }
  const auto* view = Page() == nullptr ? nullptr : Page()->findChild<QTableView*>();
  if (view == nullptr) return;
  const auto& model = static_cast<const ResultModel&>(*view->model());
  const QItemSelection selection = view->selectionModel()->selection();
  const bool isPart = selection.size() == 1 && (selection[0].height() > 1 || selection[0].width() > 1);
  const QItemSelectionRange part = isPart ? selection[0] : QItemSelectionRange();
  const int bottom = isPart ? part.bottom() : model.rowCount() - 1;
  const int right = isPart ? part.right() : model.columnCount() - 1;
  const int top = isPart ? part.top() : 0;
  const int left = isPart ? part.left() : 0;
  if (static_cast<std::size_t>(bottom - top + 1) * static_cast<std::size_t>(right - left + 1) > kMostCopied)
    return emit said(tr("These are too many cells for the clipboard; save the table instead."));
  QGuiApplication::clipboard()->setText(Shown(model.CopyText(top, left, bottom, right)));
}

// The table itself would copy one cell, and menus of the window have the key for data.
bool ResultsPanel::eventFilter(QObject* watched, QEvent* event) {
  const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
  if (!isKey || !static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy))
    return QWidget::eventFilter(watched, event);
  if (event->type() == QEvent::KeyPress) Copy();
  event->accept();
  return true;
}

void ResultsPanel::Save() {
  const Result* result = CurrentResult();
  if (result == nullptr) return;
  const QString filter =
      result->table != nullptr
          ? tr("CSV (*.csv);;Project (*.bvw);;NumPy arrays (*.npz)")
          : tr("PNG picture (*.png);;SVG picture (*.svg);;PDF (*.pdf);;Data of the graph (*.json)");
  const QString name = AskFileToSave(this, tr("Save result"), result->item->text(0), filter);
  if (name.isEmpty()) return;
  try {
    SaveTo(PathOf(name));
    emit said(tr("Saved in %1").arg(name));
  } catch (const Error& error) {
    emit said(Shown(error.Where()) + QStringLiteral(": ") + Shown(error.what()));
  } catch (const WrongJob& wrong) {
    emit said(Shown(wrong.what()));
  }
}

void ResultsPanel::SaveTo(const std::filesystem::path& file) {
  Result* result = CurrentResult();
  if (result == nullptr) return;
  if (result->table != nullptr) {
    JobFaults faults;
    CheckDataTarget("file", file, faults);
    RequireNone(std::move(faults));
    SaveResultTable(*result->table, file);
  } else if (file.extension() == ".json") {
    SaveResultGraph(*result->graph, file);
  } else {
    static_cast<const PictureView*>(result->page)->Save(file);
  }
  result->isSaved = true;
}

int ResultsPanel::UnsavedCount() const {
  return static_cast<int>(
      std::ranges::count_if(results_, [](const auto& one) { return one != nullptr && !one->isSaved; }));
}

void ResultsPanel::SetReported() {
  const QTreeWidgetItem* const group = CurrentGroup();
  for (const auto& one : results_) {
    if (one != nullptr && one->item->parent() == group) one->isSaved = true;
  }
}

void ResultsPanel::SetKept(const CAnalysisTableDoc& table) {
  for (const auto& one : results_) {
    if (one != nullptr && one->table.get() == &table) one->isSaved = true;
  }
}

void ResultsPanel::Remove() {
  Result* result = CurrentResult();
  if (result == nullptr) return;
  open_.removeOne(result->item);
  auto& place = results_[static_cast<std::size_t>(result->item->data(0, kPlaceRole).toInt())];
  QTreeWidgetItem* parent = result->item->parent();
  const std::unique_ptr<Result> removed = std::move(place);
  if (first_ == removed->item) first_ = nullptr;
  delete removed->item;
  delete removed->page;
  if (parent->childCount() == 0) {
    if (group_ == parent) group_ = nullptr;
    origins_.erase(parent);
    delete parent;
  }
  ShowCurrent();
}

}  // namespace brenvolt::desktop
