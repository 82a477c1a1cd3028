#include "apps/desktop/workbench/main_window.h"

#include <QMessageBox>
#include <QPlainTextEdit>

#include "apps/desktop/base/text.h"
#include "apps/desktop/workbench/macro_process.h"
#include "host/application/application.h"
#include "host/base/error.h"

namespace brenvolt::desktop {
namespace {

constexpr int kWidth = 1000;
constexpr int kHeight = 650;

QString Description(const DataFile& data) {
  QString text = ShownPath(data.path) + QStringLiteral("\n");
  for (std::size_t i = 0; i < data.workbook.SheetCount(); ++i) {
    const Spreadsheet& sheet = data.workbook.SheetAt(i);
    text += MainWindow::tr("%1: %2 variables, %3 cases\n")
                .arg(Shown(sheet.Name()))
                .arg(sheet.VariableCount())
                .arg(sheet.CaseCount());
  }
  return text;
}

}  // namespace

MainWindow::MainWindow() : page_(new QPlainTextEdit(this)) {
  setWindowTitle(QStringLiteral("Brenvolt"));
  resize(kWidth, kHeight);
  page_->setReadOnly(true);
  setCentralWidget(page_);
}

bool MainWindow::OpenFile(const std::filesystem::path& path) {
  try {
    page_->setPlainText(Description(OpenDataFile(path, {})));
    return true;
  } catch (const Error& error) {
    QMessageBox::warning(this, windowTitle(), Shown(error.Where() + ": " + error.what()));
    return false;
  }
}

void MainWindow::RunMacro(const std::filesystem::path& path) {
  auto* macro = new MacroProcess(this);
  page_->clear();
  connect(macro, &MacroProcess::printed, page_, &QPlainTextEdit::insertPlainText);
  connect(macro, &MacroProcess::ended, this, [this, macro](bool succeeded) {
    macro->deleteLater();
    emit macroEnded(succeeded);
  });
  macro->Start(path);
}

}  // namespace brenvolt::desktop
