// The toolkit in tests of the window: without a display, in a number format of its own.
#pragma once

#include <unistd.h>

#include <QApplication>
#include <QFont>
#include <clocale>

#include "apps/desktop/base/theme.h"
#include "host/base/number_text.h"

namespace brenvolt::desktop::test {

// The toolkit's one application, which is made at the first call and stays until the process ends, as the toolkit
// wants. A window that nobody answers would wait for ever: the process ends a minute after the last call.
inline constexpr unsigned kSecondsToEnd = 60;
// The colours and the size of the letters that BRENVOLT_THEME ("dark") and BRENVOLT_POINTS ask for.
inline ThemeChoice AskedTheme() {
  return qgetenv("BRENVOLT_THEME") == "dark" ? ThemeChoice::kDark : ThemeChoice::kSystem;
}
inline void StartToolkit() {
  alarm(kSecondsToEnd);
  if (QCoreApplication::instance() != nullptr) return;
  static int count = 1;
  static char name[] = "desktop_tests";
  static char* arguments[] = {name, nullptr};
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  new QApplication(count, arguments);
  std::setlocale(LC_NUMERIC, "C");
  SetUserNumberLocale({});
  ApplyTheme(AskedTheme());
  if (const int points = qEnvironmentVariableIntValue("BRENVOLT_POINTS"); points > 0) {
    QFont font = QApplication::font();
    font.setPointSize(points);
    QApplication::setFont(font);
  }
}

// A base of test fixtures, before members that are widgets.
struct WithToolkit {
  WithToolkit() { StartToolkit(); }
};

}  // namespace brenvolt::desktop::test
