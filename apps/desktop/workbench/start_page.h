// What the window shows first: the tasks, recent files, and examples to try them on.
#pragma once

#include <QWidget>
#include <filesystem>

#include "host/jobs/base/analysis_session.h"

class QVBoxLayout;

namespace brenvolt::desktop {

class StartPage : public QWidget {
  Q_OBJECT

 public:
  explicit StartPage(QWidget* parent = nullptr);

  void SetRecentFiles(const QStringList& files);

  // Where the examples are: beside an installed program, or in the tree that it was built in; empty without.
  static std::filesystem::path ExampleFolder();

 signals:
  void taskAsked(Task task);
  void openAsked();
  void newAsked();
  void fileAsked(const QString& file);

 private:
  void AddTasks(QVBoxLayout& layout);
  QWidget* MakeExamples();

  QVBoxLayout* recent_;
};

}  // namespace brenvolt::desktop
