#include "apps/desktop/base/save_question.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>

namespace brenvolt::desktop {
namespace {

// "PDF (*.pdf)" has the ending ".pdf".
QString EndingOf(const QString& filter) {
  return filter.section(QLatin1Char('*'), 1, 1).section(QLatin1Char(')'), 0, 0);
}

QString WithEnding(const QString& name, const QString& ending, NameEnding when) {
  const bool lacksIt =
      when == NameEnding::kAlways ? !name.endsWith(ending) : QFileInfo(name).suffix().isEmpty();
  return lacksIt ? name + ending : name;
}

bool MayReplace(QWidget* parent, const QString& title, const QString& name) {
  QMessageBox box(QMessageBox::Warning, title,
                  QCoreApplication::translate("AskFileToSave", "%1 is there already. Replace it?").arg(name),
                  QMessageBox::NoButton, parent);
  box.setTextFormat(Qt::PlainText);
  auto* const replace =
      box.addButton(QCoreApplication::translate("AskFileToSave", "&Replace"), QMessageBox::DestructiveRole);
  box.setDefaultButton(box.addButton(QMessageBox::Cancel));
  box.exec();
  return box.clickedButton() == replace;
}

}  // namespace

// The dialog would ask about the name as it was typed, which may not be the name of the file.
QString AskFileToSave(QWidget* parent, const QString& title, const QString& proposed, const QString& filters,
                      NameEnding ending) {
  QFileDialog dialog(parent, title, QString(), filters);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setOption(QFileDialog::DontConfirmOverwrite);
  const QFileInfo first(proposed);
  if (first.isAbsolute()) dialog.setDirectory(first.absolutePath());
  dialog.selectFile(first.fileName());
  while (dialog.exec() == QDialog::Accepted) {
    const QString name =
        WithEnding(dialog.selectedFiles().value(0), EndingOf(dialog.selectedNameFilter()), ending);
    if (!QFileInfo::exists(name) || MayReplace(parent, title, name)) return name;
    dialog.selectFile(name);
  }
  return {};
}

}  // namespace brenvolt::desktop
