// The main window over files in a folder of its own, and answers to its questions.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QStringList>
#include <QTimer>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "apps/desktop/base/text.h"
#include "apps/desktop/base/toolkit_support_test.h"
#include "apps/desktop/workbench/document_view.h"
#include "apps/desktop/workbench/main_window.h"
#include "host/base/files/temporary_folder_support_test.h"

namespace brenvolt::desktop::test {

// Answers the questions that come up, one after the other, by the names of their buttons, and keeps their texts.
class Answers : public QObject {
 public:
  explicit Answers(QStringList buttons) : buttons_(std::move(buttons)) {
    connect(&timer_, &QTimer::timeout, this, &Answers::Answer);
    timer_.start(20);
  }
  const QStringList& Texts() const { return texts_; }
  bool AllGiven() const { return buttons_.isEmpty(); }

 private:
  void Answer() {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box == nullptr) return;
    texts_ << box->text();
    const QString wanted = buttons_.isEmpty() ? QString() : buttons_.takeFirst();
    for (QAbstractButton* button : box->buttons()) {
      if (button->text().remove(QLatin1Char('&')).startsWith(wanted)) return button->click();
    }
    ADD_FAILURE() << Utf8(wanted) << " is no answer to: " << Utf8(box->text());
    box->reject();
  }

  QTimer timer_;
  QStringList buttons_;
  QStringList texts_;
};

struct MainWindowTest : WithToolkit, testing::Test {
  TemporaryFolder folder;
  std::filesystem::path State() const { return folder / "state"; }
  std::unique_ptr<MainWindow> Start() const {
    auto window = std::make_unique<MainWindow>(State());
    window->show();
    return window;
  }
  std::filesystem::path Csv(const std::string& name, const std::string& bytes = "a,b\n1,2\n3,\n") const {
    WriteBytes(folder / name, bytes);
    return folder / name;
  }
  std::filesystem::path Project(const std::string& name) const {
    Workbook workbook;
    workbook.Add(std::make_unique<Spreadsheet>("Data", 3, 2));
    workbook.Save(folder / name);
    return folder / name;
  }
  static void Edit(MainWindow& window, double value) {
    SheetView& grid = *window.CurrentView()->CurrentGrid();
    grid.model()->setData(grid.model()->index(0, 0), value);
  }
  static double Cell(const std::filesystem::path& project) {
    return Workbook::Open(project).SheetAt(0).VariableAt(0).Values()[0];
  }
};

}  // namespace brenvolt::desktop::test
