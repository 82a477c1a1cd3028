// Macros: recorded, read, changed and run. What a macro prints stands below its text, and a fault at its line.
#pragma once

#include <QTimer>
#include <QWidget>
#include <filesystem>
#include <optional>

#include "apps/desktop/documents/kept_macro.h"

class QAction;
class QLabel;
class QPlainTextEdit;

namespace brenvolt::desktop {

class MacroProcess;

// The line of a macro, counted from 1, at which the output of its run says that it failed.
std::optional<int> FailedLine(const QString& output, const QString& macro);

class MacroPanel : public QWidget {
  Q_OBJECT

 public:
  // Macros that are not saved yet are run from files in this folder, and kept there for the case of a crash.
  explicit MacroPanel(std::filesystem::path folder, QWidget* parent = nullptr);

  // Shows a macro. Throws Error if it cannot be read.
  void Open(const std::filesystem::path& macro);
  void SetText(const QString& text);
  // Shows a text that a killed process left.
  void Restore(const MacroText& macro);
  QString Text() const;
  // What the macro that was run last has printed.
  QString Output() const;
  bool IsModified() const;
  bool IsRunning() const { return process_ != nullptr; }
  // Asks whether text that was changed is saved before another one takes its place; false if the person cancelled.
  bool MayReplace();
  // Throws Error.
  void Save(const std::filesystem::path& macro);
  // The recorder is switched on and off by who owns the analyses.
  void SetRecording(bool recording);

 public slots:
  void Run();
  void Stop();
  // Ask for the file.
  void AskOpen();
  bool AskSave();

 signals:
  void recordAsked(bool on);
  void ended(bool succeeded);
  void said(const QString& text);

 private:
  void Replace(const QString& text);
  void KeepText();
  std::filesystem::path FileToRun();
  void Finish(bool succeeded);
  void MarkLine(int line);
  void UpdateTitle();

  std::filesystem::path folder_;
  std::filesystem::path file_;
  KeptMacro kept_;
  QTimer pause_;           // before what is typed is kept
  bool isUnkept_ = false;  // the text could not be kept, which was said
  QPlainTextEdit* editor_;
  QPlainTextEdit* output_;
  QLabel* title_;
  QAction* record_;
  QAction* run_;
  QAction* stop_;
  MacroProcess* process_ = nullptr;
  QString running_;
};

}  // namespace brenvolt::desktop
