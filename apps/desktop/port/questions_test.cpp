// The questions of the port, and how a dialog in the window answers mouse and keys.
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QScrollBar>
#include <QTableView>
#include <numeric>

#include "apps/desktop/base/text.h"
#include "apps/desktop/dialogs/caption.h"
#include "apps/desktop/dialogs/settings_window.h"
#include "apps/desktop/dialogs/variant_text.h"
#include "apps/desktop/port/desktop_support_test.h"
#include "apps/desktop/port/selection_question.h"
#include "apps/desktop/port/variable_question.h"
#include "apps/desktop/port/variable_table.h"
#include "apps/desktop/port/weight_question.h"
#include "host/base/number_text.h"

namespace brenvolt::desktop::test {
namespace {

TEST(Caption, MarksAreTakenOffAndWordsStay) {
  const struct {
    const char* written;
    const char* text;
    CaptionMark mark;
  } cases[] = {{"g&OK", "&OK", CaptionMark::kAccept},
               {"`Open D&ata", "Open D&ata", CaptionMark::kOpen},
               {"h&Variables:", "&Variables:", CaptionMark::kVariables},
               {" Offset ", "Offset", CaptionMark::kNone},
               {"hidden", "hidden", CaptionMark::kNone},
               {"g&", "g&", CaptionMark::kNone},
               {"", "", CaptionMark::kNone}};
  for (const auto& one : cases) {
    const Caption caption = ReadCaption(one.written);
    EXPECT_EQ(caption.text.toStdString(), one.text);
    EXPECT_EQ(caption.mark, one.mark) << one.written;
  }
  EXPECT_EQ(Spoken(QStringLiteral("&Variables:")).toStdString(), "Variables");
}

TEST(NameFilters, EveryDescriptionKeepsItsPatterns) {
  const QStringList filters = NameFilters("Data files (*.csv;*.bvw)|*.csv;*.bvw|All files (*.*)|*.*||");
  ASSERT_EQ(filters.size(), 2);
  EXPECT_EQ(filters[0].toStdString(), "Data files (*.csv *.bvw)");
  EXPECT_EQ(filters[1].toStdString(), "All files (*)");
}

TEST(VariableTable, VariableIsInOneListAtMostAndTheOrderIsThatOfTheChoice) {
  VariableTable table({"a", "b", "c"}, {"One", "Two"}, {{2}, {}}, nullptr);
  table.Choose({0}, 0, true);
  table.Choose({1}, 1, true);
  table.Choose({2}, 0, true);
  EXPECT_EQ(table.Chosen()[0], (std::vector<std::int16_t>{1, 3}));
  EXPECT_EQ(table.Chosen()[1], (std::vector<std::int16_t>{2}));
  table.Choose({0}, 1, false);
  EXPECT_EQ(table.Chosen()[0].size(), 2U);
}

// Numbers of variables have 16 bits; a larger one would choose another variable.
TEST(VariableTable, OfAHundredThousandVariablesThoseWithANumberAreChosen) {
  constexpr int kMany = 100'000;
  VariableTable table(std::vector<std::string>(kMany, "x"), {"One", "Two"}, {{}, {}}, nullptr);
  std::vector<int> rows(kMany);
  std::iota(rows.begin(), rows.end(), 0);
  table.Choose(rows, 1, true);
  table.Choose(rows, 0, true);
  EXPECT_EQ(table.Chosen()[0].size(), 32767U);
  EXPECT_EQ(table.Chosen()[0].back(), 32767);
  EXPECT_TRUE(table.Chosen()[1].empty());
  EXPECT_FALSE(table.flags(table.index(40'000, 0)).testFlag(Qt::ItemIsUserCheckable));
  EXPECT_FALSE(table.data(table.index(40'000, 0), Qt::ToolTipRole).toString().isEmpty());
}

TEST(WeightQuestion, AVariableBeyondThoseThatAnAnalysisNumbersWeightsTheCases) {
  StartToolkit();
  constexpr std::size_t kMany = 100'000;
  WeightQuestion question{std::vector<std::string>(kMany, "x"), 40'001};
  question.names[70'000] = "the weights";
  const Hand choose("weights", [](QWidget& window) {
    auto& list = Child<QListWidget>(window, "list");
    EXPECT_EQ(list.currentRow(), 40'001);
    QTest::keyClicks(&Child<QLineEdit>(window, "search"), "weights");
    EXPECT_TRUE(list.item(1)->isHidden());
    list.setCurrentRow(70'001);
    PressButton(window, QDialogButtonBox::AcceptRole);
  });
  EXPECT_TRUE(AskForWeights(question, nullptr, nullptr));
  EXPECT_EQ(question.variable, 70'001U);
}

// A screen of 800 by 800, as projectors and remote sessions have.
TEST(VariableQuestion, OfLargeLettersAllIsOnASmallScreen) {
  StartToolkit();
  const QFont usual = QApplication::font();
  QFont large = usual;
  large.setPointSize(16);
  QApplication::setFont(large);
  const Spreadsheet sheet("Data", 3, 100);
  VariableQuestion question{
      "Select variables", "Continuous variables", "Discrete variables", {}, {1, 2}, {3}};
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i)
    question.names.push_back(sheet.VariableAt(i).Name());
  const Hand look("variables", [](QWidget& window) {
    const QSize room = window.screen()->availableSize();
    EXPECT_LE(window.frameGeometry().width(), room.width());
    EXPECT_LE(window.frameGeometry().height(), room.height());
    for (const QPushButton* button : window.findChildren<QPushButton*>()) {
      EXPECT_GE(button->width(), button->minimumSizeHint().width()) << Utf8(button->text());
      EXPECT_TRUE(window.rect().contains(QRect(button->mapTo(&window, QPoint()), button->size())))
          << Utf8(button->text());
    }
    PressButton(window, QDialogButtonBox::RejectRole);
  });
  EXPECT_FALSE(AskForVariables(question, &sheet, nullptr));
  EXPECT_TRUE(look.HasActed());
  QApplication::setFont(usual);
}

// Opened, searched, chosen from, weighted and fitted; a person waits for none of it.
TEST(Desk, AHundredThousandVariablesAreInUse) {
  constexpr std::size_t kMany = 100'000;
  Spreadsheet wide("Wide", 30, kMany);
  for (const std::size_t v : {std::size_t{0}, std::size_t{30'000}, kMany - 1}) {
    std::vector<double> values;
    for (int i = 0; i < 30; ++i) values.push_back(1 + (i * 7 + static_cast<int>(v)) % 11);
    wide.VariableAt(v).AssignValues(std::move(values));
  }
  Desk desk(kExamples + "faithful.csv");
  QElapsedTimer timer;
  timer.start();
  desk.Begin(wide);
  const Hand weigh("weights", [](QWidget& window) {
    Child<QListWidget>(window, "list").setCurrentRow(static_cast<int>(kMany));
    PressButton(window, QDialogButtonBox::AcceptRole);
  });
  desk.Click(1002);
  EXPECT_EQ(wide.WeightVariable(), kMany - 1);
  desk.Click(kControlOk);
  qint64 longest = 0;
  const Hand choose("variables", [&](QWidget& window) {
    auto& search = Child<QLineEdit>(window, "search");
    for (const char key : {'V', 'a', 'r', '3', '0', '0', '0', '1'}) {
      QElapsedTimer stroke;
      stroke.start();
      QTest::keyClick(&search, key);
      QCoreApplication::processEvents();
      longest = std::max(longest, stroke.elapsed());
    }
    EXPECT_EQ(Child<QTableView>(window, "table").model()->rowCount(), 1);
    Desk::ClickOn(Child<QPushButton>(window, "into1"));
    PressButton(window, QDialogButtonBox::AcceptRole);
  });
  desk.Click(1010);
  EXPECT_TRUE(choose.HasActed());
  EXPECT_LT(longest, 300) << "milliseconds for a key";
  desk.Click(kControlOk);
  EXPECT_EQ(desk.Dialog(), 25983) << "the results of the fit";
  EXPECT_LT(timer.elapsed(), 5000);
}

TEST(WindowInterface, VariablesWithTheirTypesAndCountsAreAllSeenWithoutScrolling) {
  Desk desk(kExamples + "faithful.csv");
  desk.Click(kControlOk);
  const Hand look("variables", [](QWidget& window) {
    const auto& view = Child<QTableView>(window, "table");
    EXPECT_GT(view.columnViewportPosition(5), 0);
    EXPECT_FALSE(view.horizontalScrollBar()->isVisible());
    PressButton(window, QDialogButtonBox::RejectRole);
  });
  desk.Click(1010);
  EXPECT_TRUE(look.HasActed());
}

TEST(DialogWindow, OpensWideEnoughForItsCaption) {
  Desk desk(kExamples + "faithful.csv");
  desk.engine.Run([&] { desk.run->Analysis().GetDialgInterface()->Call("OK"); });
  desk.run->Show();
  const int caption = desk.Window().fontMetrics().horizontalAdvance(desk.Window().windowTitle());
  EXPECT_GT(desk.Window().width(), caption);
  EXPECT_GE(desk.Window().width(), desk.Window().sizeHint().width());
}

// A module that is missing or none is named.
TEST(AnalysisRun, AModuleThatDoesNotLoadIsSaidByName) {
  StartToolkit();
  const std::string own = qEnvironmentVariable("BRENVOLT_MODULE").toStdString();
  EngineThread engine;
  KeepingSink sink;
  QWidget owner;
  Spreadsheet& sheet = *sink.OpenData(kExamples + "faithful.csv");
  for (const std::string& module : {std::string("/no/such/module.so"), kExamples + "faithful.csv"}) {
    qputenv("BRENVOLT_MODULE", module.c_str());
    try {
      const AnalysisRun run(engine, sink, sheet, owner);
      ADD_FAILURE() << module;
    } catch (const Error& error) {
      EXPECT_NE((error.Where() + error.what()).find(module), std::string::npos) << error.what();
    }
  }
  own.empty() ? qunsetenv("BRENVOLT_MODULE") : qputenv("BRENVOLT_MODULE", own.c_str());
}

TEST(VariableTable, TypesAndValidValuesAreThoseOfTheSheet) {
  Spreadsheet sheet("data");
  Variable texts("t", 3);
  texts.SetType(VariableType::kText);
  sheet.AddVariable(texts);
  Variable numbers("x", 3);
  numbers.AssignValues({1, numbers.MissingCode(), 3});
  sheet.AddVariable(numbers);
  const VariableTable table({"t", "x"}, {"List"}, {{}}, &sheet);
  const auto shown = [&](int row, int column) {
    return table.data(table.index(row, column), Qt::DisplayRole).toString().toStdString();
  };
  EXPECT_EQ(shown(0, 3), "text");
  EXPECT_EQ(shown(1, 3), "number");
  EXPECT_EQ(shown(0, 4), "3");
  EXPECT_EQ(shown(1, 4), "2");
}

TEST(SelectionQuestion, VerdictCountsTheCasesOrPointsAtTheFault) {
  Spreadsheet sheet("data");
  Variable x("wait time", 4);
  x.AssignValues({1, 2, 3, 4});
  sheet.AddVariable(x);
  const struct {
    const char* condition;
    bool isValid;
    const char* words;
  } cases[] = {{"'wait time' > 1", true, "3 of 4 cases meet the condition."},
               {"height > 1", false, "height"},
               {"'wait time' > 9", false, "no case meets the condition"},
               {" ", true, "An empty condition admits every case."}};
  for (const auto& one : cases) {
    const ConditionVerdict verdict = VerdictOn(one.condition, sheet);
    EXPECT_EQ(verdict.isValid, one.isValid) << one.condition;
    EXPECT_NE(verdict.words.find(one.words), std::string::npos) << verdict.words;
  }
}

// The verdict on what stood there before admits nothing.
TEST(SelectionQuestion, WhatIsTypedWhileAConditionIsTriedIsTriedNextAndOkWaitsForIt) {
  StartToolkit();
  const Spreadsheet sheet("data", 4, 1);
  std::vector<std::string> tried;
  const JudgeCondition judge = [&](const std::string& condition) {
    tried.push_back(condition);
    QWidget* const dialog = QApplication::activeModalWidget();
    if (condition == "Var1 > 1" && dialog != nullptr) {
      QTest::keyClicks(&Child<QLineEdit>(*dialog, "condition"), QStringLiteral("0"));
      PressButton(*dialog, QDialogButtonBox::AcceptRole);
    }
    if (condition != "Var1 > 0" && condition != "Var1 > 1" && dialog != nullptr)
      QTimer::singleShot(0, dialog, [dialog] { static_cast<QDialog*>(dialog)->reject(); });
    return ConditionVerdict{condition != "Var1 > 10", condition};
  };
  const Hand type("selection", [](QWidget& asked) {
    auto& condition = Child<QLineEdit>(asked, "condition");
    QTest::keyClick(&condition, Qt::Key_End);
    QTest::keyClick(&condition, Qt::Key_Backspace);
    QTest::keyClicks(&condition, QStringLiteral("1"));
  });
  SelectionQuestion question{true, "Var1 > 0"};
  EXPECT_FALSE(AskForSelection(question, &sheet, judge, nullptr)) << question.condition;
  EXPECT_EQ(tried, (std::vector<std::string>{"Var1 > 0", "Var1 > 1", "Var1 > 10"}));
  EXPECT_EQ(question.condition, "Var1 > 0");
}

TEST(DialogWindow, ControlsFollowTheDialogAtOnceAndKeysSuffice) {
  Desk desk(kExamples + "faithful.csv");
  EXPECT_FALSE(desk.Control(1254).isEnabled());
  QTest::keyClick(&desk.Control(1006), Qt::Key_End);
  EXPECT_TRUE(desk.Control(1254).isEnabled());
  QTest::keyClick(&desk.Control(1006), Qt::Key_Home);
  EXPECT_FALSE(desk.Control(1254).isEnabled());
  QTest::keyClick(&desk.Control(1006), Qt::Key_Return);
  EXPECT_EQ(desk.Dialog(), 25974);
  QTest::keyClick(&desk.Window(), Qt::Key_Escape);
  EXPECT_EQ(desk.Dialog(), 25980);
  auto& list = static_cast<QListWidget&>(desk.Control(1006));
  const QPoint place = list.visualItemRect(list.item(2)).center();
  QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, place);
  const DismissedMessage noMatrixFile;
  QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, place);
  EXPECT_EQ(desk.Dialog(), 15000);
  desk.Window().close();
  EXPECT_EQ(desk.Dialog(), 25980);
  desk.Window().close();
  EXPECT_EQ(desk.Dialog(), 0);
}

TEST(DialogWindow, FieldsTakeAndShowTheDecimalCommaOfThePerson) {
  Desk desk(kExamples + "faithful.csv");
  SetUserNumberLocale({','});
  desk.ClickRow(1006, 2);
  const DismissedMessage noMatrixFile;
  desk.Click(kControlOk);
  ASSERT_EQ(desk.Dialog(), 15000);
  desk.ClickRow(1401, 0);
  const Hand enter("dialog15001", [](QWidget& window) {
    auto& editor = static_cast<DialogWindow&>(window);
    static_cast<QListWidget&>(Desk::ControlIn(editor, 1411)).setCurrentRow(0);
    Desk::TypeInto(Desk::ControlIn(editor, 1412), "70,25");
    Desk::TypeInto(Desk::ControlIn(editor, 1413), "1,5");
    EXPECT_EQ(static_cast<QLineEdit&>(Desk::ControlIn(editor, 1412)).text(), "70,25");
    Desk::ClickOn(Desk::ControlIn(editor, kControlOk));
  });
  desk.Click(1407);
  EXPECT_TRUE(enter.HasActed());
  const QString chosen = static_cast<QListWidget&>(desk.Control(1401)).item(0)->text();
  EXPECT_TRUE(chosen.contains(QLatin1String("location=70.2500, scale=1.5000"))) << Utf8(chosen);
  SetUserNumberLocale({});
}

TEST(DialogWindow, RadioButtonsExcludeEachOtherWithinTheirGroup) {
  Desk desk(kExamples + "faithful.csv");
  desk.Click(kControlOk);
  const auto checked = [&](std::int32_t number) {
    return static_cast<QAbstractButton&>(desk.Control(number)).isChecked();
  };
  for (const int chosen : {1013, 1014, 1014, 1013}) {
    desk.Click(chosen);
    EXPECT_TRUE(checked(chosen));
    EXPECT_FALSE(checked(1013 + 1014 - chosen));
  }
}

TEST(WindowInterface, RefusalIsAMessageWithTheTextOfTheDialog) {
  Desk desk(kExamples + "toxocara.csv");
  desk.Click(kControlOk);
  QStringList texts;
  const Hand refuse("variables", [&](QWidget& window) { PressButton(window, QDialogButtonBox::RejectRole); });
  desk.Click(kControlOk);
  EXPECT_TRUE(refuse.HasActed());
  EXPECT_EQ(desk.Dialog(), 25974);
  const Hand leaveEmpty("variables",
                        [&](QWidget& window) { PressButton(window, QDialogButtonBox::AcceptRole); });
  const Hand read("message", [&](QWidget& window) {
    for (const QLabel* label : window.findChildren<QLabel*>()) texts.push_back(label->text());
    QTest::keyClick(&window, Qt::Key_Escape);
  });
  // The second time the question is cancelled.
  QTimer::singleShot(300, [&] {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (window->isVisible() && window->objectName() == QStringLiteral("variables")) window->close();
    }
  });
  desk.Click(1010);
  EXPECT_TRUE(read.HasActed());
  EXPECT_TRUE(texts.join(u' ').contains(QStringLiteral("Too few variables selected.")))
      << texts.join(u' ').toStdString();
}

// Puts a setting by its name, by the window of all settings.
void PutSetting(Desk& desk, const QString& name, const QString& value) {
  const Hand put("settings", [&](QWidget& window) {
    auto& members = Child<QListWidget>(window, "members");
    for (int row = 0; row < members.count(); ++row) {
      if (members.item(row)->toolTip() == name) members.setCurrentRow(row);
    }
    auto& field = Child<QLineEdit>(window, "value");
    field.setText(value);
    Desk::ClickOn(Child<QPushButton>(window, "set"));
    EXPECT_EQ(Child<QLabel>(window, "verdict").text().toStdString(), "Done.");
    EXPECT_EQ(field.text().toStdString(), value.toStdString());
    QTest::keyClick(&window, Qt::Key_Escape);
  });
  Desk::ClickOn(Child<QPushButton>(desk.Window(), "allSettings"));
  EXPECT_TRUE(put.HasActed());
}

TEST(SettingsWindow, SettingsWithAndWithoutAControlArePutByName) {
  Desk desk(kExamples + "faithful.csv");
  desk.Click(kControlOk);
  PutSetting(desk, "IsCasewise", "1");
  EXPECT_TRUE(static_cast<QAbstractButton&>(desk.Control(1014)).isChecked());
  PutSetting(desk, "BootstrapSamples", "20");
  PutSetting(desk, "ContinuousVariable", "2");
  desk.engine.Run(
      [&] { EXPECT_EQ(desk.run->Analysis().GetDialgInterface()->Get("BootstrapSamples").ToInteger(), 20); });
  EXPECT_EQ(WordsOf("BootstrapSamples").toStdString(), "Bootstrap samples");
}

TEST(VariantText, ValuesAreReadAsTheyAreWrittenAndNonsenseIsRefused) {
  EXPECT_EQ(TextOf(ValueOf("[[1, 0.5], [0.5, 1]]", AutomationType::kVariant)).toStdString(),
            "[[1,0.5],[0.5,1]]");
  EXPECT_EQ(TextOf(ValueOf("1-3 5", AutomationType::kVariant)).toStdString(), "1-3 5");
  EXPECT_EQ(ValueOf("true", AutomationType::kBoolean).ToBoolean(), true);
  EXPECT_EQ(ValueOf(" 7 ", AutomationType::kInteger).ToInteger(), 7);
  for (const auto& [text, type] :
       std::vector<std::pair<const char*, AutomationType>>{{"2.5", AutomationType::kInteger},
                                                           {"maybe", AutomationType::kBoolean},
                                                           {"x", AutomationType::kReal},
                                                           {"[1, 2", AutomationType::kVariant}})
    EXPECT_THROW(ValueOf(text, type), Error) << text;
}

// The fits' bootstrap runs for minutes if nobody stops it.
TEST(WindowInterface, CancelIsAnsweredWithinASecondAndTheWindowStaysAlive) {
  Desk desk(kExamples + "faithful.csv");
  desk.Click(kControlOk);
  const Hand choose("variables", [&](QWidget& window) {
    Child<QTableView>(window, "table").selectAll();
    Desk::ClickOn(Child<QPushButton>(window, "into1"));
    PressButton(window, QDialogButtonBox::AcceptRole);
  });
  desk.Click(1010);
  desk.engine.Run(
      [&] { desk.run->Analysis().GetDialgInterface()->Put("BootstrapSamples", std::int32_t{100'000}); });
  QElapsedTimer sinceCancel;
  int beats = 0;
  QTimer heart;
  QObject::connect(&heart, &QTimer::timeout, [&] { ++beats; });
  heart.start(10);
  const Hand cancel("progress", [&](QWidget& window) {
    beats = 0;
    QTest::qWait(300);
    EXPECT_GT(beats, 10);
    EXPECT_FALSE(desk.Control(1010).isEnabled());
    sinceCancel.start();
    Desk::ClickOn(Child<QPushButton>(window, "cancel"));
  });
  desk.Click(kControlOk);
  ASSERT_TRUE(cancel.HasActed());
  EXPECT_LT(sinceCancel.elapsed(), 1000);
  EXPECT_EQ(desk.Dialog(), 25974);
  EXPECT_TRUE(desk.Control(1010).isEnabled());
  for (QWidget* window : QApplication::topLevelWidgets())
    EXPECT_FALSE(window->isVisible() && window->objectName() == QStringLiteral("progress"));
}

TEST(EngineThread, CallsWithinQuestionsRunAndFaultsReachTheirCallers) {
  StartToolkit();
  EngineThread engine;
  std::vector<int> order;
  engine.Run([&] {
    order.push_back(1);
    EXPECT_TRUE(engine.IsBusy());
    engine.Ask([&] {
      order.push_back(2);
      EXPECT_FALSE(engine.IsBusy());
      engine.Run([&] { order.push_back(3); });
      EXPECT_THROW(engine.Run([] { throw Error("inside"); }), Error);
    });
    EXPECT_THROW(engine.Ask([] { throw Error("asked"); }), Error);
    order.push_back(4);
  });
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3, 4}));
  EXPECT_FALSE(engine.IsBusy());
  EXPECT_THROW(engine.Run([] { throw Error("outside"); }), Error);
}

}  // namespace
}  // namespace brenvolt::desktop::test
