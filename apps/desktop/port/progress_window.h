// The progress of long work, with a button that asks it to stop.
#pragma once

#include <QDialog>
#include <atomic>
#include <cstdint>

class QLabel;
class QProgressBar;
class QPushButton;

namespace brenvolt::desktop {

class ProgressWindow : public QDialog {
  Q_OBJECT

 public:
  explicit ProgressWindow(QWidget* parent);

  void ShowProgress(const QString& caption, std::int64_t done, std::int64_t total);
  void End();

  // Whether the person asked to stop, since the last Forget. From any thread.
  bool IsCancelled() const { return isCancelled_; }
  void Forget();

  void reject() override;

 private:
  QLabel* caption_;
  QProgressBar* bar_;
  QPushButton* cancel_;
  std::atomic<bool> isCancelled_{false};
};

}  // namespace brenvolt::desktop
