// The window of Brenvolt. Exit status 0: closed; 1: no display, or what was asked for at the start failed; 2: the call
// was wrong.
#include <QApplication>
#include <QIcon>
#include <QLocale>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTimer>
#include <clocale>
#include <cstdio>
#include <cstdlib>

#include "apps/desktop/base/text.h"
#include "apps/desktop/base/words.h"
#include "apps/desktop/desktop_options.h"
#include "apps/desktop/workbench/main_window.h"
#include "host/base/number_text.h"
#include "host/base/process/memory_policy.h"

namespace {

using brenvolt::desktop::MainWindow;
using brenvolt::desktop::StartOptions;

constexpr int kFailed = 1;
constexpr const char* kPlatform = "QT_QPA_PLATFORM";

// The toolkit ends the process by a signal where it finds no display; a person gets a sentence and a status instead.
// Its other remarks are for programmers.
void RefuseMissingDisplay(QtMsgType type, const QMessageLogContext& /*context*/, const QString& /*text*/) {
  if (type != QtFatalMsg) return;
  std::fprintf(
      stderr,
      "brenvolt-desktop: no display can be opened; start it in a graphical session, or use the command "
      "brenvolt\n");
  std::_Exit(kFailed);
}

void ReportFault(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
  if (type == QtCriticalMsg || type == QtFatalMsg)
    std::fprintf(stderr, "brenvolt-desktop: %s\n", qPrintable(text));
}

// Numbers are shown and typed as in the person's language, also where the system has no tables of that language.
void AdoptDecimalSeparator() {
  const QString separator = QLocale::system().decimalPoint();
  if (separator == QStringLiteral(",")) brenvolt::SetUserNumberLocale({','});
}

// A fault that nobody expected reaches the person with its words, and the window goes on.
class Program : public QApplication {
 public:
  using QApplication::QApplication;

  bool notify(QObject* receiver, QEvent* event) override {
    try {
      return QApplication::notify(receiver, event);
    } catch (const std::exception& error) {
      const QString words = brenvolt::desktop::Explained(error);
      if (platformName() == QStringLiteral("offscreen")) {
        qCritical("%s", qPrintable(words));
      } else {
        QMessageBox::warning(activeWindow(), QStringLiteral("Brenvolt"), words);
      }
    }
    return false;
  }
};

// Carries out what the call asked for, and ends the program where a picture was all of it.
void Begin(MainWindow& window, const StartOptions& options) {
  const auto finish = [&window, options](bool succeeded) {
    if (options.screenshot.empty()) return;
    const bool saved = window.grab().save(brenvolt::desktop::ShownPath(options.screenshot), "PNG");
    if (!saved)
      std::fprintf(stderr, "brenvolt-desktop: the picture cannot be written (%s)\n",
                   options.screenshot.c_str());
    QCoreApplication::exit(saved && succeeded ? 0 : kFailed);
  };
  if (options.screenshot.empty()) window.Resume();
  const bool opened = options.file.empty() || window.OpenFile(options.file);
  if (options.macro.empty() || !opened) {
    finish(opened);
    return;
  }
  QObject::connect(&window, &MainWindow::macroEnded, &window, finish);
  window.RunMacro(options.macro);
}

}  // namespace

int main(int argc, char** argv) {
  brenvolt::ReturnLargeBlocksAtOnce();
  int status = 0;
  const auto options = brenvolt::desktop::ReadOptions(argc, argv, status);
  if (!options) return status;
  if (!options->screenshot.empty() && !qEnvironmentVariableIsSet(kPlatform)) qputenv(kPlatform, "offscreen");
  qInstallMessageHandler(RefuseMissingDisplay);
  Program application(argc, argv);
  qInstallMessageHandler(ReportFault);
  // Numbers in files are read and written as elsewhere, whatever the person's language.
  std::setlocale(LC_NUMERIC, "C");
  AdoptDecimalSeparator();
  QCoreApplication::setApplicationName(QStringLiteral("Brenvolt"));
  QApplication::setDesktopFileName(QStringLiteral("brenvolt-desktop"));
  QApplication::setWindowIcon(QIcon(QStringLiteral(":/brenvolt.svg")));
  // A picture shows what was asked for, and nothing that the person has kept.
  const QTemporaryDir unattended;
  const bool isUnattended = !options->screenshot.empty();
  MainWindow window(isUnattended ? brenvolt::desktop::PathOf(unattended.path())
                                 : brenvolt::desktop::Settings::PersonalFolder());
  window.SetUnattended(isUnattended);
  window.show();
  QTimer::singleShot(0, &window, [&window, &options] { Begin(window, *options); });
  return QApplication::exec();
}
