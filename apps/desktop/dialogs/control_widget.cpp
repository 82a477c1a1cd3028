#include "apps/desktop/dialogs/control_widget.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <algorithm>

#include "apps/desktop/base/text.h"
#include "apps/desktop/dialogs/caption.h"
#include "apps/desktop/dialogs/wrapped_label.h"

namespace brenvolt::desktop {
namespace {

constexpr int kFieldCharacters = 13;
constexpr int kFewestListRows = 4;
constexpr int kMostListRows = 9;
constexpr int kFewestListCharacters = 22;
constexpr int kMostListCharacters = 52;
constexpr int kFewestComboCharacters = 14;

QIcon IconOf(CaptionMark mark) {
  const QStyle& style = *QApplication::style();
  switch (mark) {
    case CaptionMark::kAccept:
      return style.standardIcon(QStyle::SP_DialogOkButton);
    case CaptionMark::kOpen:
      return style.standardIcon(QStyle::SP_DialogOpenButton);
    case CaptionMark::kVariables:
      return style.standardIcon(QStyle::SP_FileDialogDetailedView);
    case CaptionMark::kNone:
      break;
  }
  return {};
}

class ButtonWidget final : public ControlWidget {
 public:
  ButtonWidget(const ControlTemplate& control, const ControlActions& actions)
      : ControlWidget(control.number, new QPushButton, nullptr) {
    auto* button = static_cast<QPushButton*>(Widget());
    const Caption caption = ReadCaption(control.caption);
    button->setText(caption.text);
    button->setIcon(IconOf(caption.mark));
    button->setAccessibleName(Spoken(caption.text));
    // Enter is OK, whichever button was pressed last; only who has gone to Cancel means that one.
    button->setAutoDefault(control.number == kControlCancel);
    // What is half typed in a field is not handed over on the way to Cancel.
    if (control.number == kControlCancel) button->setFocusPolicy(Qt::TabFocus);
    const std::int32_t number = control.number;
    QObject::connect(button, &QPushButton::clicked, button, [&actions, number] { actions.press(number); });
  }

 private:
  void ShowContent(const ControlState& /*state*/) override {}
};

// Check boxes and radio buttons. What is checked is the control's to say.
class CheckWidget final : public ControlWidget {
 public:
  CheckWidget(const ControlTemplate& control, const ControlActions& actions)
      : ControlWidget(control.number, Make(control.kind), nullptr) {
    auto* button = static_cast<QAbstractButton*>(Widget());
    const Caption caption = ReadCaption(control.caption);
    button->setText(caption.text);
    button->setAccessibleName(Spoken(caption.text));
    const std::int32_t number = control.number;
    QObject::connect(button, &QAbstractButton::clicked, button,
                     [&actions, number](bool checked) { actions.check(number, checked); });
  }

 private:
  static QWidget* Make(ControlKind kind) {
    if (kind == ControlKind::kCheckBox) return new QCheckBox;
    return new QRadioButton;
  }
  // Of radio buttons that exclude each other, a person can uncheck none; a dialog can.
  void ShowContent(const ControlState& state) override {
    auto* button = static_cast<QAbstractButton*>(Widget());
    const bool isExclusive = button->autoExclusive();
    if (!state.checked) button->setAutoExclusive(false);
    button->setChecked(state.checked);
    button->setAutoExclusive(isExclusive);
  }
};

QStringList Lines(const std::vector<std::string>& items) {
  QStringList lines;
  for (const std::string& item : items) lines.push_back(Shown(item));
  return lines;
}

class ListOfItems final : public QListWidget {
 public:
  QSize sizeHint() const override {
    const int character = fontMetrics().averageCharWidth();
    const int frame = 2 * frameWidth();
    const int rows = std::clamp(count(), kFewestListRows, kMostListRows);
    const int row = count() > 0 ? sizeHintForRow(0) : fontMetrics().height();
    const int width = std::clamp(sizeHintForColumn(0) + 3 * character, kFewestListCharacters * character,
                                 kMostListCharacters * character);
    return {width + frame, rows * row + frame};
  }
  QSize minimumSizeHint() const override {
    return {kFewestListCharacters * fontMetrics().averageCharWidth(),
            kFewestListRows * fontMetrics().height() + 2 * frameWidth()};
  }
};

class ListWidget final : public ControlWidget {
 public:
  ListWidget(const ControlTemplate& control, QLabel* label, const ControlActions& actions)
      : ControlWidget(control.number, new ListOfItems, label) {
    auto* list = static_cast<QListWidget*>(Widget());
    list->setUniformItemSizes(true);
    const std::int32_t number = control.number;
    QObject::connect(list, &QListWidget::currentRowChanged, list, [&actions, number](int row) {
      if (row >= 0) actions.select(number, row);
    });
    QObject::connect(list, &QListWidget::itemDoubleClicked, list,
                     [&actions, number] { actions.doubleClick(number); });
  }

 private:
  void ShowContent(const ControlState& state) override {
    auto* list = static_cast<QListWidget*>(Widget());
    const QSignalBlocker silence(list);
    if (state.items != shown_) {
      list->clear();
      list->addItems(Lines(state.items));
      shown_ = state.items;
      list->updateGeometry();
    }
    if (list->currentRow() != state.selection) list->setCurrentRow(state.selection);
  }

  std::vector<std::string> shown_;
};

class ComboWidget final : public ControlWidget {
 public:
  ComboWidget(const ControlTemplate& control, QLabel* label, const ControlActions& actions)
      : ControlWidget(control.number, new QComboBox, label) {
    auto* combo = static_cast<QComboBox*>(Widget());
    combo->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    combo->setMinimumContentsLength(kFewestComboCharacters);
    const std::int32_t number = control.number;
    QObject::connect(combo, &QComboBox::activated, combo,
                     [&actions, number](int place) { actions.select(number, place); });
  }

 private:
  void ShowContent(const ControlState& state) override {
    auto* combo = static_cast<QComboBox*>(Widget());
    if (state.items != shown_) {
      combo->clear();
      combo->addItems(Lines(state.items));
      shown_ = state.items;
    }
    combo->setCurrentIndex(state.selection);
  }

  std::vector<std::string> shown_;
};

// As wide as a usual number, and wider for one with all its digits.
class NumberField final : public QLineEdit {
 public:
  NumberField() {
    QObject::connect(this, &QLineEdit::textChanged, this, [this] { updateGeometry(); });
  }
  QSize sizeHint() const override {
    const int frame =
        QLineEdit::sizeHint().width() - kUsualCharacters * fontMetrics().horizontalAdvance(u'x');
    const int most = kMostFieldCharacters * fontMetrics().averageCharWidth();
    const int typed = std::min(fontMetrics().horizontalAdvance(text() + u'x'), most) + frame;
    return {std::max(typed, minimumWidth()), QLineEdit::sizeHint().height()};
  }

 private:
  static constexpr int kUsualCharacters = 17;  // of the toolkit's own size
  static constexpr int kMostFieldCharacters = 24;
};

class FieldWidget final : public ControlWidget {
 public:
  FieldWidget(const ControlTemplate& control, QLabel* label, const ControlActions& actions)
      : ControlWidget(control.number,
                      control.kind == ControlKind::kTextField ? new QLineEdit : new NumberField, label),
        actions_(actions) {
    auto* field = static_cast<QLineEdit*>(Widget());
    const bool isText = control.kind == ControlKind::kTextField;
    const int width = kFieldCharacters * field->fontMetrics().averageCharWidth();
    field->setMinimumWidth(width);
    field->setSizePolicy(isText ? QSizePolicy::Expanding : QSizePolicy::Preferred, QSizePolicy::Fixed);
    QObject::connect(field, &QLineEdit::editingFinished, field, [this] { Commit(); });
  }

  bool Commit() override {
    const QString typed = static_cast<QLineEdit*>(Widget())->text();
    if (typed == shown_) return false;
    shown_ = typed;
    actions_.enter(Number(), typed);
    return true;
  }

 private:
  void ShowContent(const ControlState& state) override {
    const QString text = Shown(state.text);
    if (text == shown_) return;
    shown_ = text;
    auto* field = static_cast<QLineEdit*>(Widget());
    field->setText(text);
    // A number that is longer than the field shows its beginning.
    field->setCursorPosition(0);
  }

  const ControlActions& actions_;
  QString shown_;
};

// What a label says may change: its caption goes before it.
class LabelWidget final : public ControlWidget {
 public:
  explicit LabelWidget(const ControlTemplate& control)
      : ControlWidget(control.number, new WrappedLabel, nullptr),
        caption_(ReadCaption(control.caption).text) {}

 private:
  void ShowContent(const ControlState& state) override {
    const QString text = Shown(state.text).trimmed();
    const QString between = caption_.isEmpty() || text.isEmpty() ? QString() : QStringLiteral(" ");
    auto* label = static_cast<QLabel*>(Widget());
    const QString shown = Spoken(caption_).isEmpty() ? text : caption_ + between + text;
    if (label->text() != shown) label->setText(shown);
  }

  QString caption_;
};

QLabel* MakeLabel(const ControlTemplate& control) {
  const Caption caption = ReadCaption(control.caption);
  if (caption.text.isEmpty()) return nullptr;
  auto* label = new QLabel(caption.text);
  label->setObjectName(QStringLiteral("caption%1").arg(control.number));
  return label;
}

}  // namespace

ControlWidget::ControlWidget(std::int32_t number, QWidget* widget, QLabel* label)
    : number_(number), widget_(widget), label_(label) {
  widget_->setObjectName(QStringLiteral("control%1").arg(number));
  if (label_ == nullptr) return;
  label_->setBuddy(widget_);
  widget_->setAccessibleName(Spoken(label_->text()));
}

void ControlWidget::Show(const ControlState& state) {
  ShowContent(state);
  widget_->setEnabled(state.enabled);
  widget_->setVisible(state.visible);
  if (label_ == nullptr) return;
  label_->setEnabled(state.enabled);
  label_->setVisible(state.visible);
}

std::unique_ptr<ControlWidget> MakeControlWidget(const ControlTemplate& control,
                                                 const ControlActions& actions) {
  switch (control.kind) {
    case ControlKind::kButton:
      return std::make_unique<ButtonWidget>(control, actions);
    case ControlKind::kCheckBox:
    case ControlKind::kRadioButton:
      return std::make_unique<CheckWidget>(control, actions);
    case ControlKind::kListBox:
      return std::make_unique<ListWidget>(control, MakeLabel(control), actions);
    case ControlKind::kComboBox:
      return std::make_unique<ComboWidget>(control, MakeLabel(control), actions);
    case ControlKind::kIntegerField:
    case ControlKind::kRealField:
    case ControlKind::kTextField:
      return std::make_unique<FieldWidget>(control, MakeLabel(control), actions);
    case ControlKind::kLabel:
      break;
  }
  return std::make_unique<LabelWidget>(control);
}

}  // namespace brenvolt::desktop
