// The main window.
#pragma once

#include <QMainWindow>
#include <filesystem>

class QPlainTextEdit;

namespace brenvolt::desktop {

class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  MainWindow();

  // Opens a project or a data file. False, and a message was shown, for one that cannot be opened.
  bool OpenFile(const std::filesystem::path& path);
  // Runs a macro; its output is shown. `macroEnded` follows.
  void RunMacro(const std::filesystem::path& path);

 signals:
  void macroEnded(bool succeeded);

 private:
  QPlainTextEdit* page_;
};

}  // namespace brenvolt::desktop
