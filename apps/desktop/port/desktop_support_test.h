// What tests of the window share: the toolkit without a display, an analysis in a window over example data, and hands
// that act on windows which wait for an answer.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialogButtonBox>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "apps/desktop/base/engine_thread.h"
#include "apps/desktop/base/toolkit_support_test.h"
#include "apps/desktop/port/analysis_run.h"
#include "apps/desktop/port/document_sink.h"
#include "host/analysis/analysis_graph_doc.h"
#include "host/application/application.h"

namespace brenvolt::desktop::test {

// Keeps what it is handed.
struct KeepingSink : DocumentSink {
  void TakeDocument(std::shared_ptr<CAnalysisTableDoc> document) override { tables.push_back(document); }
  void TakeGraph(std::shared_ptr<CAnalysisGraphDoc> graph) override { graphs.push_back(graph); }
  Spreadsheet* OpenData(const std::filesystem::path& path) override {
    opened.push_back(std::make_unique<DataFile>(OpenDataFile(path, {})));
    return &opened.back()->Sheet({});
  }
  void TakeChange() override {}

  std::vector<std::shared_ptr<CAnalysisTableDoc>> tables;
  std::vector<std::shared_ptr<CAnalysisGraphDoc>> graphs;
  std::vector<std::unique_ptr<DataFile>> opened;
};

// Acts once on the next window of a name that is shown, from within the event loop that shows it.
class Hand {
 public:
  Hand(std::string name, std::function<void(QWidget&)> act) {
    QObject::connect(&timer_, &QTimer::timeout, &timer_,
                     [this, name = std::move(name), act = std::move(act)] {
                       for (QWidget* const window : QApplication::topLevelWidgets()) {
                         if (!window->isVisible() || window->objectName().toStdString() != name) continue;
                         timer_.stop();
                         hasActed_ = true;
                         act(*window);
                         return;
                       }
                     });
    timer_.start(kLookInMilliseconds);
  }
  bool HasActed() const { return hasActed_; }

 private:
  static constexpr int kLookInMilliseconds = 5;
  QTimer timer_;
  bool hasActed_ = false;
};

template <class Widget>
Widget& Child(QWidget& window, const char* name) {
  auto* const found = window.findChild<Widget*>(QString::fromLatin1(name));
  if (found == nullptr) throw std::runtime_error(std::string("no widget called ") + name);
  return *found;
}

// Clicks on the first button of a role, such as OK or Open.
inline void PressButton(QWidget& window, QDialogButtonBox::ButtonRole role) {
  auto* const box = window.findChild<QDialogButtonBox*>();
  for (QAbstractButton* const button : box->buttons()) {
    if (box->buttonRole(button) != role) continue;
    QTest::mouseClick(button, Qt::LeftButton);
    return;
  }
}

// Answers the next message by Cancel, or by OK where there is nothing else.
class DismissedMessage : public Hand {
 public:
  DismissedMessage() : Hand("message", [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); }) {}
};

// An analysis in a window, and the mouse and the keys of who uses it.
class Desk : WithToolkit {
 public:
  explicit Desk(const std::filesystem::path& data) {
    sheet_ = sink.OpenData(data);
    Begin(*sheet_);
    // An analysis begins with the task that the last one chose; those of tests begin with the first.
    if (Dialog() == kStartup) ClickRow(kTasks, 0);
  }
  void Begin(Spreadsheet& sheet) {
    run.reset();
    run = std::make_unique<AnalysisRun>(engine, sink, sheet, owner);
    run->Show();
  }

  Spreadsheet& Sheet() { return *sheet_; }
  DialogWindow& Window() {
    if (run->Window() == nullptr) throw std::runtime_error("no dialog is open");
    return *run->Window();
  }
  // The number of the template that the window shows, 0 without one.
  int Dialog() { return run->Window() != nullptr ? run->Window()->objectName().mid(6).toInt() : 0; }

  QWidget& Control(std::int32_t number) { return ControlIn(Window(), number); }
  static QWidget& ControlIn(DialogWindow& window, std::int32_t number) {
    QWidget* const widget = window.Form().WidgetOf(number);
    if (widget == nullptr) throw std::runtime_error("no control " + std::to_string(number));
    for (QWidget* up = widget; up != nullptr; up = up->parentWidget()) {
      auto* const stack = up->parentWidget();
      auto* const tabs = stack != nullptr ? qobject_cast<QTabWidget*>(stack->parentWidget()) : nullptr;
      if (tabs != nullptr && tabs->indexOf(up) >= 0) tabs->setCurrentIndex(tabs->indexOf(up));
    }
    return *widget;
  }

  void Click(std::int32_t number) { ClickOn(Control(number)); }
  static void ClickOn(QWidget& widget) {
    // Check boxes are hit on their box, at the left.
    const QPoint place = qobject_cast<QPushButton*>(&widget) != nullptr
                             ? widget.rect().center()
                             : QPoint(widget.height() / 2, widget.height() / 2);
    QTest::mouseClick(&widget, Qt::LeftButton, {}, place);
  }
  // Types into a field in place of what it holds, and leaves it by the tabulator.
  void Type(std::int32_t number, const QString& text) { TypeInto(Control(number), text); }
  static void TypeInto(QWidget& field, const QString& text) {
    field.setFocus();
    QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&field, Qt::Key_Delete);
    QTest::keyClicks(&field, text);
    QTest::keyClick(&field, Qt::Key_Tab);
  }
  // Clicks on a row of a list.
  void ClickRow(std::int32_t number, int row) {
    auto& list = static_cast<QListWidget&>(Control(number));
    const QPoint place = list.visualItemRect(list.item(row)).center();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place);
  }

  KeepingSink sink;
  QWidget owner;
  EngineThread engine;
  std::unique_ptr<AnalysisRun> run;

 private:
  static constexpr int kStartup = 25980;
  static constexpr std::int32_t kTasks = 1006;

  Spreadsheet* sheet_ = nullptr;
};

inline const std::string kExamples = BRENVOLT_SOURCE_DIR "/examples/";

}  // namespace brenvolt::desktop::test
