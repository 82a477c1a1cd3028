#include "apps/desktop/workbench/document_view.h"

#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSet>
#include <QSignalBlocker>
#include <QStackedWidget>
#include <QTabBar>
#include <QVBoxLayout>

#include "apps/desktop/base/text.h"
#include "host/base/error.h"

namespace brenvolt::desktop {

DocumentView::DocumentView(Document& document, QWidget* parent)
    : QWidget(parent),
      document_(document),
      notice_(new QWidget),
      noticeText_(new QLabel),
      grids_(new QStackedWidget),
      tabs_(new QTabBar) {
  tabs_->setObjectName(QStringLiteral("sheets"));
  tabs_->setAccessibleName(tr("Sheets"));
  tabs_->setShape(QTabBar::RoundedSouth);
  tabs_->setExpanding(false);
  tabs_->setUsesScrollButtons(true);
  tabs_->setElideMode(Qt::ElideRight);
  tabs_->setContextMenuPolicy(Qt::CustomContextMenu);
  noticeText_->setWordWrap(true);
  auto* reload = new QPushButton(tr("Read it again"));
  auto* keep = new QPushButton(tr("Keep what is here"));
  auto* row = new QHBoxLayout(notice_);
  row->addWidget(noticeText_, 1);
  row->addWidget(reload);
  row->addWidget(keep);
  notice_->setAutoFillBackground(true);
  notice_->setBackgroundRole(QPalette::ToolTipBase);
  notice_->hide();
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(notice_);
  layout->addWidget(grids_, 1);
  layout->addWidget(tabs_);
  connect(reload, &QPushButton::clicked, this, &DocumentView::reloadAsked);
  connect(keep, &QPushButton::clicked, notice_, &QWidget::hide);
  connect(tabs_, &QTabBar::currentChanged, this, &DocumentView::ShowGrid);
  connect(tabs_, &QTabBar::tabBarDoubleClicked, this, &DocumentView::Rename);
  connect(tabs_, &QTabBar::customContextMenuRequested, this, &DocumentView::ShowTabMenu);
  connect(&document, &Document::sheetsChanged, this, &DocumentView::ListSheets);
  ListSheets();
}

void DocumentView::SetNotice(const QString& text) {
  noticeText_->setText(text);
  notice_->setVisible(!text.isEmpty());
}

// Sheets that stay keep their grids.
void DocumentView::ListSheets() {
  const Spreadsheet* current = CurrentSheet();
  const QSignalBlocker blocker(tabs_);
  while (tabs_->count() > 0) tabs_->removeTab(0);
  QSet<const Spreadsheet*> present;
  Workbook& workbook = document_.Content();
  for (std::size_t i = 0; i < workbook.SheetCount(); ++i) {
    const Spreadsheet& sheet = workbook.SheetAt(i);
    present.insert(&sheet);
    // An ampersand would be taken for an access key.
    const int tab = tabs_->addTab(Shown(sheet.Name()).replace(QLatin1Char('&'), QStringLiteral("&&")));
    tabs_->setTabToolTip(tab, tr("%1: %L2 cases, %L3 variables. Double-click to rename.")
                                  .arg(Shown(sheet.Name()))
                                  .arg(sheet.CaseCount())
                                  .arg(sheet.VariableCount()));
    if (&sheet == current) tabs_->setCurrentIndex(tab);
  }
  for (auto view = views_.begin(); view != views_.end();) {
    if (present.contains(view.key())) {
      ++view;
    } else {
      delete view.value();
      view = views_.erase(view);
    }
  }
  ShowGrid();
}

Spreadsheet* DocumentView::CurrentSheet() const {
  auto* view = CurrentGrid();
  return view == nullptr ? nullptr : &view->Model().Sheet();
}

SheetView* DocumentView::CurrentGrid() const {
  return qobject_cast<SheetView*>(grids_->currentWidget());
}

void DocumentView::ShowGrid() {
  const auto place = static_cast<std::size_t>(tabs_->currentIndex());
  if (tabs_->currentIndex() >= 0 && place < document_.Content().SheetCount()) {
    Spreadsheet& sheet = document_.Content().SheetAt(place);
    SheetView*& view = views_[&sheet];
    if (view == nullptr) {
      view = new SheetView(document_, sheet);
      connect(view, &SheetView::refused, this, &DocumentView::refused);
      connect(view, &SheetView::said, this, &DocumentView::said);
      connect(view, &SheetView::currentVariableChanged, this, &DocumentView::currentChanged);
      grids_->addWidget(view);
    }
    grids_->setCurrentWidget(view);
  }
  emit currentChanged();
}

void DocumentView::ShowSheet(const std::string& name) {
  for (std::size_t i = 0; i < document_.Content().SheetCount(); ++i) {
    if (document_.Content().SheetAt(i).Name() == name) tabs_->setCurrentIndex(static_cast<int>(i));
  }
}

void DocumentView::Rename(int tab) {
  if (tab < 0) return;
  const std::string former = document_.Content().SheetAt(static_cast<std::size_t>(tab)).Name();
  bool accepted = false;
  const QString name = QInputDialog::getText(this, tr("Rename sheet"), tr("Name of the sheet:"),
                                             QLineEdit::Normal, Shown(former), &accepted);
  if (!accepted || Utf8(name) == former) return;
  Edits edits;
  edits.emplace_back(NameSheet{former, Utf8(name)});
  try {
    document_.Do(tr("Rename sheet"), std::move(edits));
  } catch (const Error& error) {
    emit refused(Shown(error.what()));
  }
}

void DocumentView::RemoveSheet(int tab) {
  Edits edits;
  edits.emplace_back(DropSheet{document_.Content().SheetAt(static_cast<std::size_t>(tab)).Name()});
  try {
    document_.Do(tr("Delete sheet"), std::move(edits));
  } catch (const Error& error) {
    emit refused(Shown(error.what()));
  }
}

void DocumentView::ShowTabMenu(const QPoint& at) {
  const int tab = tabs_->tabAt(at);
  if (tab < 0) return;
  QMenu menu(this);
  menu.addAction(tr("&Rename…"), this, [this, tab] { Rename(tab); });
  menu.addAction(tr("&Delete sheet"), this, [this, tab] { RemoveSheet(tab); });
  menu.exec(tabs_->mapToGlobal(at));
}

}  // namespace brenvolt::desktop
