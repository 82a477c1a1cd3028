#include "apps/desktop/workbench/recovery_dialog.h"

#include <QDateTime>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <utility>

#include "apps/desktop/base/text.h"

namespace brenvolt::desktop {

RecoveryDialog::RecoveryDialog(std::vector<std::unique_ptr<LeftJournal>> left, Recoverer recover,
                               QWidget* parent)
    : QDialog(parent), left_(std::move(left)), recover_(std::move(recover)), list_(new QTreeWidget) {
  setWindowTitle(tr("Unsaved edits"));
  auto* text =
      new QLabel(tr("Brenvolt ended before these edits were saved. They can be made again now; nothing is "
                    "written to your files until you save."));
  text->setWordWrap(true);
  list_->setObjectName(QStringLiteral("leftJournals"));
  list_->setAccessibleName(tr("Documents with unsaved edits"));
  list_->setRootIsDecorated(false);
  list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list_->setHeaderLabels({tr("Document"), tr("Edits"), tr("Last edit"), tr("Folder")});
  auto* buttons = new QDialogButtonBox;
  auto* recoverButton = buttons->addButton(tr("&Recover"), QDialogButtonBox::AcceptRole);
  auto* discardButton = buttons->addButton(tr("&Discard…"), QDialogButtonBox::DestructiveRole);
  auto* laterButton = buttons->addButton(tr("&Ask again next time"), QDialogButtonBox::RejectRole);
  recoverButton->setObjectName(QStringLiteral("recover"));
  discardButton->setObjectName(QStringLiteral("discard"));
  recoverButton->setDefault(true);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(text);
  layout->addWidget(list_, 1);
  layout->addWidget(buttons);
  connect(recoverButton, &QPushButton::clicked, this, [this] { ForChosen(recover_); });
  connect(discardButton, &QPushButton::clicked, this, &RecoveryDialog::Discard);
  connect(laterButton, &QPushButton::clicked, this, &QDialog::reject);
  resize(620, 280);
  List();
}

void RecoveryDialog::List() {
  list_->clear();
  for (const auto& left : left_) {
    const std::filesystem::path& file = left->Base().file;
    const QDateTime last = QFileInfo(ShownPath(left->Path())).lastModified();
    new QTreeWidgetItem(list_,
                        {file.empty() ? tr("New project") : ShownPath(file.filename()),
                         QLocale().toString(static_cast<qulonglong>(left->EditCount())),
                         QLocale().toString(last, QLocale::ShortFormat), ShownPath(file.parent_path())});
  }
  for (int column = 0; column < list_->columnCount(); ++column) list_->resizeColumnToContents(column);
  if (left_.empty()) accept();
}

void RecoveryDialog::ForChosen(const std::function<bool(LeftJournal&)>& what) {
  const bool all = list_->selectedItems().isEmpty();
  std::vector<std::unique_ptr<LeftJournal>> others;
  for (std::size_t i = 0; i < left_.size(); ++i) {
    const bool isChosen = all || list_->topLevelItem(static_cast<int>(i))->isSelected();
    if (!isChosen || !what(*left_[i])) others.push_back(std::move(left_[i]));
  }
  left_ = std::move(others);
  List();
}

void RecoveryDialog::Discard() {
  const auto answer = QMessageBox::warning(this, windowTitle(),
                                           tr("Discard the unsaved edits? They cannot be recovered later."),
                                           QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Cancel);
  if (answer != QMessageBox::Discard) return;
  ForChosen([](LeftJournal& left) {
    left.Remove();
    return true;
  });
}

}  // namespace brenvolt::desktop
