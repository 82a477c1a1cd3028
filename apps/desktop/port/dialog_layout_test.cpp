// Every template of the module as widgets: all of it is there, in its place, and readable.
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <map>

#include "apps/desktop/dialogs/dialog_form.h"
#include "apps/desktop/port/desktop_support_test.h"
#include "host/analysis/ports/headless_user_interface.h"

namespace brenvolt::desktop::test {
namespace {

// The templates of the dialogs that a person meets, by number, as a session goes through them.
class AllTemplates {
 public:
  AllTemplates() : sheet_(OpenDataFile(kExamples + "faithful.csv", {})) {
    Collect(0, {1255}, {});
    Collect(0, {1015}, {1});
    Collect(2, {1407, 1404, 1409, 1408}, {});
    Collect(1, {}, {1});
    Collect(3, {}, {});
  }

  const std::map<int, const DialogTemplate*>& All() const { return all_; }

 private:
  void Note(const CAnalysisDialog& dialog) { all_[dialog.Template().number] = &dialog.Template(); }
  void Open() {
    if (analysis_->GetDialog() != nullptr) Note(*analysis_->GetDialog());
  }

  // Goes to a task, presses buttons that open editors, then those that lead to other dialogs.
  void Collect(int task, const std::vector<int>& editors, const std::vector<int>& onward) {
    analysis_.reset();
    input_ = std::make_unique<CAnalysisDoc>(interface_, &sheet_.Sheet({}));
    analysis_ = application_.NewAnalysis(*input_);
    Open();
    CAnalysisDialog* dialog = analysis_->GetDialog();
    dialog->Select(1006, task);
    if (task == 0 && editors.front() == 1255) {
      dialog->Press(1255);
      Open();
      return;
    }
    dialog->Press(kControlOk);
    Open();
    if (task == 0) Choose();
    for (const int button : editors) {
      interface_.modalAnswers.push_back([this](CAnalysisModalDialog& editor) {
        Note(editor);
        editor.Press(kControlOk);
      });
      if (analysis_->GetDialog()->Controls().Has(1401)) analysis_->GetDialog()->Select(1401, 0);
      analysis_->GetDialog()->Press(button);
    }
    if (task == 2) analysis_->GetDialog()->Press(1405);
    for (const int button : onward) {
      analysis_->GetDialog()->Press(button);
      Open();
    }
    if (task == 0) analysis_->GetDialog()->Press(1104);
  }

  void Choose() {
    interface_.variableAnswers.push_back([](VariableQuestion& question) { question.first = {1, 2}; });
    analysis_->GetDialog()->Press(1010);
  }

  HeadlessUserInterface interface_;
  Application application_{interface_};
  DataFile sheet_;
  std::unique_ptr<CAnalysisDoc> input_;
  std::unique_ptr<CAnalysisSupport> analysis_;
  std::map<int, const DialogTemplate*> all_;
};

// Those of the pages in the order of the template, then those of the column beside them.
std::vector<std::int32_t> NumbersOf(const DialogTemplate& source) {
  std::vector<std::int32_t> numbers;
  const auto add = [&](const std::vector<RowTemplate>& rows) {
    for (const RowTemplate& row : rows) {
      for (const ControlTemplate& control : row) numbers.push_back(control.number);
    }
  };
  for (const TabTemplate& tab : source.tabs) {
    for (const GroupTemplate& group : tab.groups) add(group.rows);
  }
  add(source.buttons);
  return numbers;
}

// A form whose controls are all shown, with texts in the labels that have none of their own.
struct ShownForm {
  explicit ShownForm(const DialogTemplate& source) : form(source, {}), controls(source) {
    for (const std::int32_t number : NumbersOf(source)) {
      ControlState& state = controls.At(number);
      if (state.kind == ControlKind::kLabel && state.caption.empty())
        state.text = "A label that says something about what stands beside it";
      if (state.kind == ControlKind::kListBox || state.kind == ControlKind::kComboBox)
        state.items = {"General Extreme Value", "another one"};
    }
    form.Show(controls);
    form.show();
    form.resize(form.sizeHint().expandedTo(form.minimumSizeHint()));
    QTest::qWait(1);
  }

  DialogForm form;
  ControlSet controls;
};

QString Place(const QWidget& widget) {
  return widget.objectName();
}

// A widget that shows less than it has to say.
bool IsCutOff(const QWidget& widget) {
  const QSize least = widget.minimumSizeHint();
  if (widget.width() < least.width() || widget.height() < least.height()) return true;
  if (const auto* const label = qobject_cast<const QLabel*>(&widget)) {
    if (label->wordWrap()) return label->height() < label->heightForWidth(label->width());
    return label->width() < label->fontMetrics().size(Qt::TextShowMnemonic, label->text()).width();
  }
  const bool isButton = qobject_cast<const QAbstractButton*>(&widget) != nullptr;
  return isButton &&
         (widget.width() < widget.sizeHint().width() || widget.height() < widget.sizeHint().height());
}

// The part of an ancestor in which children are seen; a page that scrolls is seen whole.
void ExpectInside(const QWidget& widget, const QWidget& form) {
  const QWidget* seen = &widget;
  for (const QWidget* up = widget.parentWidget(); up != nullptr && up != form.parentWidget();
       up = up->parentWidget()) {
    if (up->objectName() == QStringLiteral("qt_scrollarea_viewport")) {
      seen = up->parentWidget();
      continue;
    }
    const QRect place(seen->mapTo(up, QPoint(0, 0)), seen->size());
    EXPECT_TRUE(up->rect().contains(place))
        << Place(widget).toStdString() << " leaves " << up->metaObject()->className();
    seen = up;
  }
}

void ExpectInOrder(ShownForm& shown, const DialogTemplate& source) {
  auto* const tabs = shown.form.findChild<QTabWidget*>();
  std::map<std::int32_t, int> seen;
  for (int page = 0; page < (tabs != nullptr ? tabs->count() : 1); ++page) {
    if (tabs != nullptr) tabs->setCurrentIndex(page);
    QTest::qWait(1);
    std::vector<const QWidget*> visible;
    for (const QWidget* widget : shown.form.findChildren<QWidget*>()) {
      const bool isOurs = widget->objectName().startsWith(QStringLiteral("control")) ||
                          widget->objectName().startsWith(QStringLiteral("caption"));
      if (isOurs && widget->isVisible()) visible.push_back(widget);
    }
    for (const QWidget* widget : visible) {
      if (widget->objectName().startsWith(QStringLiteral("control")))
        ++seen[widget->objectName().mid(7).toInt()];
      EXPECT_FALSE(IsCutOff(*widget))
          << Place(*widget).toStdString() << " " << widget->width() << "x" << widget->height();
      ExpectInside(*widget, shown.form);
      for (const QWidget* other : visible) {
        if (other == widget) break;
        const QRect place(widget->mapTo(&shown.form, QPoint(0, 0)), widget->size());
        const QRect otherPlace(other->mapTo(&shown.form, QPoint(0, 0)), other->size());
        const bool areOnPages = widget->window() == other->window();
        EXPECT_FALSE(areOnPages && place.intersects(otherPlace))
            << Place(*widget).toStdString() << " lies over " << Place(*other).toStdString();
      }
    }
  }
  for (const std::int32_t number : NumbersOf(source)) EXPECT_GE(seen[number], 1) << "control " << number;
  for (const auto& [number, count] : seen)
    EXPECT_EQ(shown.form.findChildren<QWidget*>(QStringLiteral("control%1").arg(number)).size(), 1) << number;
}

TEST(DialogLayout, EveryControlIsOnTheScreenOnceUncoveredAndWhole) {
  StartToolkit();
  const AllTemplates templates;
  EXPECT_EQ(templates.All().size(), 13U);
  const QFont usual = QApplication::font();
  for (const int size : {9, 12, 18}) {
    QFont font = usual;
    font.setPointSize(size);
    QApplication::setFont(font);
    for (const auto& [number, source] : templates.All()) {
      SCOPED_TRACE("template " + std::to_string(number) + " at " + std::to_string(size) + " points");
      ShownForm shown(*source);
      ExpectInOrder(shown, *source);
    }
  }
  QApplication::setFont(usual);
}

TEST(DialogLayout, EveryControlThatTakesTheKeyboardHasANameForScreenReaders) {
  StartToolkit();
  const AllTemplates templates;
  for (const auto& [number, source] : templates.All()) {
    const ShownForm shown(*source);
    for (const std::int32_t control : NumbersOf(*source)) {
      const QWidget& widget = *shown.form.WidgetOf(control);
      if (widget.focusPolicy() == Qt::NoFocus) continue;
      EXPECT_FALSE(widget.accessibleName().isEmpty()) << number << ": " << control;
      EXPECT_FALSE(widget.accessibleName().contains(u'&')) << number << ": " << control;
    }
  }
}

TEST(DialogLayout, TheTabulatorGoesThroughTheControlsInTheOrderOfTheTemplate) {
  StartToolkit();
  const AllTemplates templates;
  for (const auto& [number, source] : templates.All()) {
    const ShownForm shown(*source);
    std::vector<std::int32_t> wanted;
    for (const std::int32_t control : NumbersOf(*source)) {
      if (shown.form.WidgetOf(control)->focusPolicy() & Qt::TabFocus) wanted.push_back(control);
    }
    std::vector<std::int32_t> gone;
    const QWidget* const first = shown.form.WidgetOf(wanted.front());
    const QWidget* widget = first;
    do {
      const bool isControl = widget->objectName().startsWith(QStringLiteral("control"));
      if (isControl && (widget->focusPolicy() & Qt::TabFocus))
        gone.push_back(widget->objectName().mid(7).toInt());
      widget = widget->nextInFocusChain();
    } while (widget != first);
    EXPECT_EQ(gone, wanted) << "template " << number;
  }
}

}  // namespace
}  // namespace brenvolt::desktop::test
