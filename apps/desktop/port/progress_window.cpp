#include "apps/desktop/port/progress_window.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace brenvolt::desktop {
namespace {

constexpr int kSteps = 1000;
constexpr int kCharacters = 45;

}  // namespace

ProgressWindow::ProgressWindow(QWidget* parent)
    : QDialog(parent), caption_(new QLabel), bar_(new QProgressBar), cancel_(new QPushButton(tr("&Cancel"))) {
  setObjectName(QStringLiteral("progress"));
  setWindowTitle(QStringLiteral("Brenvolt"));
  caption_->setTextFormat(Qt::PlainText);
  caption_->setMinimumWidth(kCharacters * caption_->fontMetrics().averageCharWidth());
  bar_->setRange(0, kSteps);
  bar_->setAccessibleName(tr("Progress"));
  cancel_->setObjectName(QStringLiteral("cancel"));
  auto* const row = new QHBoxLayout;
  row->addWidget(bar_, 1);
  row->addWidget(cancel_);
  auto* const layout = new QVBoxLayout(this);
  layout->addWidget(caption_);
  layout->addLayout(row);
  connect(cancel_, &QPushButton::clicked, this, &ProgressWindow::reject);
}

void ProgressWindow::ShowProgress(const QString& caption, std::int64_t done, std::int64_t total) {
  if (!isCancelled_) caption_->setText(caption);
  // Of work whose end is not known the bar shows that it goes on.
  bar_->setRange(0, total > 0 ? kSteps : 0);
  if (total > 0)
    bar_->setValue(static_cast<int>(static_cast<double>(done) / static_cast<double>(total) * kSteps));
  if (!isVisible()) show();
}

void ProgressWindow::End() {
  hide();
}

void ProgressWindow::Forget() {
  isCancelled_ = false;
  cancel_->setEnabled(true);
}

// The work ends when it next looks, which it does within a second.
void ProgressWindow::reject() {
  isCancelled_ = true;
  cancel_->setEnabled(false);
  caption_->setText(tr("Stopping…"));
}

}  // namespace brenvolt::desktop
