// The main window under the hands of a person: what tests of whole jobs share.
#pragma once

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QRegularExpression>
#include <QTableView>
#include <QThread>
#include <QTreeWidget>

#include "apps/desktop/base/text.h"
#include "apps/desktop/port/desktop_support_test.h"
#include "apps/desktop/views/results_panel.h"
#include "apps/desktop/workbench/analysis_desk.h"
#include "apps/desktop/workbench/document_view.h"
#include "apps/desktop/workbench/main_window.h"
#include "host/base/files/temporary_folder_support_test.h"

namespace brenvolt::desktop::test {

// Checks the boxes of the first list for variables, by their names, and accepts.
inline void CheckVariables(QWidget& asked, const QStringList& names) {
  auto& view = Child<QTableView>(asked, "table");
  for (const QString& name : names) {
    Child<QLineEdit>(asked, "search").setText(name);
    view.setCurrentIndex(view.model()->index(0, 0));
    QTest::keyClick(&view, Qt::Key_Space);
  }
  PressButton(asked, QDialogButtonBox::AcceptRole);
}

struct Bench : WithToolkit {
  TemporaryFolder folder;
  MainWindow window{StateIn(folder)};

  static std::filesystem::path StateIn(const TemporaryFolder& folder) {
    Settings(folder / "state").SetTheme(AskedTheme());
    return folder / "state";
  }
  Bench() {
    window.SetUnattended(true);
    window.show();
  }

  // The number of the template of the open dialog; 0 without one.
  int Dialog() {
    return window.Desk().Window() != nullptr ? window.Desk().Window()->objectName().mid(6).toInt() : 0;
  }
  QWidget& Control(std::int32_t number) { return Desk::ControlIn(*window.Desk().Window(), number); }
  void Click(std::int32_t number) { Desk::ClickOn(Control(number)); }
  void Type(std::int32_t number, const QString& text) { Desk::TypeInto(Control(number), text); }
  void ClickRow(std::int32_t number, int row) {
    auto& list = static_cast<QListWidget&>(Control(number));
    const QPoint place = list.visualItemRect(list.item(row)).center();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place);
  }
  // Gives a variable of the open design, counted from 0, a normal distribution, by its editor.
  void DesignNormal(int row, const QString& mean, const QString& deviation) {
    ClickRow(1401, row);
    const Hand edit("dialog15001", [&](QWidget& shown) {
      auto& editor = static_cast<DialogWindow&>(shown);
      static_cast<QListWidget&>(Desk::ControlIn(editor, 1411)).setCurrentRow(0);
      Desk::TypeInto(Desk::ControlIn(editor, 1412), mean);
      Desk::TypeInto(Desk::ControlIn(editor, 1413), deviation);
      Desk::ClickOn(Desk::ControlIn(editor, kControlOk));
    });
    Click(1407);
    EXPECT_TRUE(edit.HasActed());
  }

  // The report of the results that are looked at, which is written to a file of this name.
  QString Exported(const std::string& name) {
    const Hand save("QFileDialog", [&](QWidget& asked) {
      auto& edit = Child<QLineEdit>(asked, "fileNameEdit");
      edit.setText(ShownPath(folder / name));
      QTest::keyClick(&edit, Qt::Key_Return);
    });
    window.ExportReport();
    EXPECT_TRUE(save.HasActed());
    return QString::fromStdString(BytesOf(folder / name));
  }
  // The command that a report says repeats it, without the name of the program; empty without.
  static QString CommandIn(const QString& report) {
    return QRegularExpression(QStringLiteral("\nbrenvolt (.*)\n")).match(report).captured(1);
  }

  // The tree of results, line by line: groups, and what is in them.
  QStringList Results() {
    QStringList titles;
    for (QTreeWidgetItemIterator item(&window.Results().Tree()); *item != nullptr; ++item)
      titles << (*item)->text(0);
    return titles;
  }
};

}  // namespace brenvolt::desktop::test
