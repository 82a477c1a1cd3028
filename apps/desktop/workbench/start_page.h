// What the window shows first: files and examples to begin with.
#pragma once

#include <QWidget>
#include <filesystem>

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
  void openAsked();
  void newAsked();
  void fileAsked(const QString& file);

 private:
  QWidget* MakeExamples();

  QVBoxLayout* recent_;
};

}  // namespace brenvolt::desktop
