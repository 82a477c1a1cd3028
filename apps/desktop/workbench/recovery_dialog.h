// What a crash left, offered when the window starts: each document that has unsaved edits can be recovered or discarded.
#pragma once

#include <QDialog>
#include <functional>
#include <memory>
#include <vector>

#include "apps/desktop/documents/journal.h"

class QPushButton;
class QTreeWidget;

namespace brenvolt::desktop {

class RecoveryDialog : public QDialog {
  Q_OBJECT

 public:
  // Opens the document of a journal with its edits. False if that failed, and the person was told why.
  using Recoverer = std::function<bool(LeftJournal& left)>;

  RecoveryDialog(std::vector<std::unique_ptr<LeftJournal>> left, Recoverer recover, QWidget* parent);

 private:
  void List();
  // The chosen ones, or all if none is chosen.
  void ForChosen(const std::function<bool(LeftJournal&)>& what);
  void Discard();

  std::vector<std::unique_ptr<LeftJournal>> left_;
  Recoverer recover_;
  QTreeWidget* list_;
};

}  // namespace brenvolt::desktop
