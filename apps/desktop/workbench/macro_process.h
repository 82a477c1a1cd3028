// A macro that runs beside the window: the command `brenvolt macro` as a process of its own, so that a macro that hangs
// or fails leaves the window as it is.
#pragma once

#include <QObject>
#include <QProcess>
#include <filesystem>

namespace brenvolt::desktop {

class MacroProcess : public QObject {
  Q_OBJECT

 public:
  explicit MacroProcess(QObject* parent);

  void Start(const std::filesystem::path& macro);
  // Ends the macro, which reports so by `ended`.
  void Stop();

 signals:
  // What the macro and the command print, as it comes.
  void printed(const QString& text);
  void ended(bool succeeded);

 private:
  QProcess process_;
};

}  // namespace brenvolt::desktop
