#include "apps/desktop/dialogs/dialog_form.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <iterator>
#include <optional>

#include "apps/desktop/dialogs/caption.h"
#include "apps/desktop/dialogs/page_area.h"

namespace brenvolt::desktop {
namespace {

// What stands before the rest of its row is aligned with that of the other rows.
constexpr int kLeadColumn = 0;
constexpr int kRestColumn = 1;

bool IsOfButtons(const RowTemplate& row) {
  return std::ranges::all_of(
      row, [](const ControlTemplate& control) { return control.kind == ControlKind::kButton; });
}

bool IsField(ControlKind kind) {
  return kind == ControlKind::kIntegerField || kind == ControlKind::kRealField ||
         kind == ControlKind::kTextField;
}

bool IsChoice(ControlKind kind) {
  return kind == ControlKind::kListBox || kind == ControlKind::kComboBox;
}

// Whether a control is named by what stands before it.
bool IsNamedBefore(const ControlTemplate& control) {
  return (IsField(control.kind) || IsChoice(control.kind)) && ReadCaption(control.caption).text.isEmpty();
}

bool HasList(const RowTemplate& row) {
  return std::ranges::any_of(
      row, [](const ControlTemplate& control) { return control.kind == ControlKind::kListBox; });
}

// A row begins with a lead if its first control names or switches what comes after.
bool HasLead(const RowTemplate& row) {
  if (HasList(row)) return false;
  const ControlTemplate& first = row.front();
  const bool isLabelled =
      (IsField(first.kind) || first.kind == ControlKind::kComboBox) && !IsNamedBefore(first);
  return isLabelled || (row.size() > 1 && IsNamedBefore(row[1])) ||
         (row.size() > 1 && first.kind == ControlKind::kCheckBox && IsField(row[1].kind));
}

// A group without a caption that begins with a label goes on under the captioned one before it: radio buttons exclude
// each other within a group, so that two lists of them under one caption are two groups.
bool GoesOn(const GroupTemplate& group) {
  return ReadCaption(group.caption).text.isEmpty() && group.rows.front().front().kind == ControlKind::kLabel;
}

std::vector<std::int32_t> NumbersIn(const std::vector<RowTemplate>& rows) {
  std::vector<std::int32_t> numbers;
  for (const RowTemplate& row : rows) {
    for (const ControlTemplate& control : row) numbers.push_back(control.number);
  }
  return numbers;
}

}  // namespace

DialogForm::DialogForm(const DialogTemplate& source, ControlActions actions)
    : template_(source), actions_(std::move(actions)) {
  auto* const layout = new QHBoxLayout(this);
  QWidget* const column = MakeColumn(source.buttons);
  const bool isOnePage = source.tabs.size() == 1 && source.tabs.front().caption.empty();
  if (isOnePage) {
    layout->addWidget(new PageArea(MakePage(source.tabs.front())), 1);
  } else if (!source.tabs.empty()) {
    auto* const tabs = new QTabWidget;
    for (const TabTemplate& tab : source.tabs)
      tabs->addTab(new PageArea(MakePage(tab)), ReadCaption(tab.caption).text);
    layout->addWidget(tabs, 1);
  }
  layout->addWidget(column);
  OrderTabs(*column);
}

DialogForm::~DialogForm() = default;

ControlWidget& DialogForm::Add(const ControlTemplate& control) {
  auto& made = controls_[control.number];
  made = MakeControlWidget(control, actions_);
  inOrder_.push_back(made.get());
  return *made;
}

QWidget* DialogForm::MakeColumn(const std::vector<RowTemplate>& rows) {
  auto* const column = new QWidget;
  auto* const layout = new QVBoxLayout(column);
  layout->setContentsMargins(0, 0, 0, 0);
  place_ = ReadCaption(template_.caption).text;
  bool isFirst = true;
  for (const RowTemplate& row : rows) {
    if (!isFirst) layout->addSpacing(layout->spacing());
    isFirst = false;
    for (const ControlTemplate& control : row) {
      ControlWidget& added = Add(control);
      if (added.Label() != nullptr) layout->addWidget(added.Label());
      layout->addWidget(added.Widget());
    }
    NameAfterNeighbours(row, place_);
  }
  layout->addStretch(1);
  return column;
}

QWidget* DialogForm::MakePage(const TabTemplate& tab) {
  auto* const page = new QWidget;
  auto* const layout = new QVBoxLayout(page);
  bool hasList = false;
  std::optional<std::size_t> captioned;  // the place of the last group with a caption
  for (const GroupTemplate& group : tab.groups) {
    const QString caption = ReadCaption(group.caption).text;
    place_ = caption.isEmpty() ? ReadCaption(tab.caption).text : caption;
    if (place_.isEmpty()) place_ = ReadCaption(template_.caption).text;
    const bool stretches = std::ranges::any_of(group.rows, HasList);
    hasList = hasList || stretches;
    QWidget* const box = MakeGroup(group);
    if (captioned && GoesOn(group)) {
      auto& before = groups_[*captioned];
      auto& grid = static_cast<QGridLayout&>(*before.first->layout());
      grid.addWidget(box, grid.rowCount(), kLeadColumn, 1, 2);
      std::ranges::copy(groups_.back().second, std::back_inserter(before.second));
      continue;
    }
    layout->addWidget(box, stretches ? 1 : 0);
    captioned = caption.isEmpty() ? std::nullopt : std::optional(groups_.size() - 1);
  }
  if (!hasList) layout->addStretch(1);
  return page;
}

QWidget* DialogForm::MakeGroup(const GroupTemplate& group) {
  const QString caption = ReadCaption(group.caption).text;
  QWidget* const box = caption.isEmpty() ? new QWidget : new QGroupBox(caption);
  auto* const grid = new QGridLayout(box);
  if (caption.isEmpty()) grid->setContentsMargins(0, 0, 0, 0);
  grid->setColumnStretch(kRestColumn, 1);
  FillRows(group.rows, *grid);
  groups_.emplace_back(box, NumbersIn(group.rows));
  return box;
}

void DialogForm::FillRows(const std::vector<RowTemplate>& rows, QGridLayout& grid) {
  for (std::size_t i = 0; i < rows.size();) {
    std::size_t end = i;
    while (end < rows.size() && IsOfButtons(rows[end])) ++end;
    if (end > i) {
      AddButtonRows(rows, i, end, grid);
      i = end;
    } else {
      AddRow(rows[i], grid);
      ++i;
    }
  }
}

// Buttons under each other are equally wide.
void DialogForm::AddButtonRows(const std::vector<RowTemplate>& rows, std::size_t first, std::size_t end,
                               QGridLayout& grid) {
  auto* const buttons = new QGridLayout;
  std::size_t columns = 0;
  for (std::size_t i = first; i < end; ++i) {
    columns = std::max(columns, rows[i].size());
    for (std::size_t j = 0; j < rows[i].size(); ++j) {
      ControlWidget& button = Add(rows[i][j]);
      buttons->addWidget(button.Widget(), static_cast<int>(i - first), static_cast<int>(j));
    }
  }
  auto* const row = new QHBoxLayout;
  row->addLayout(buttons);
  row->addStretch(1);
  grid.addLayout(row, grid.rowCount(), kLeadColumn, 1, 2);
}

void DialogForm::AddRow(const RowTemplate& row, QGridLayout& grid) {
  const int place = grid.rowCount();
  auto* const rest = new QHBoxLayout;
  const bool hasLead = HasLead(row);
  bool stretches = false;
  for (std::size_t i = 0; i < row.size(); ++i) {
    ControlWidget& control = Add(row[i]);
    const ControlKind kind = row[i].kind;
    const bool leads = i == 0 && hasLead;
    if (leads) {
      QWidget* const lead = control.Label() != nullptr ? control.Label() : control.Widget();
      grid.addWidget(lead, place, kLeadColumn);
    }
    if (!leads || control.Label() != nullptr) AddToRow(control, kind, leads, *rest);
    stretches = stretches || kind == ControlKind::kListBox || kind == ControlKind::kTextField ||
                (kind == ControlKind::kLabel && !leads);
  }
  if (!stretches) rest->addStretch(1);
  grid.addLayout(rest, place, hasLead ? kRestColumn : kLeadColumn, 1, hasLead ? 1 : 2);
  if (HasList(row)) grid.setRowStretch(place, 1);
  NameAfterNeighbours(row, place_);
}

// The caption of a list stands above it, that of other controls before them; that of a lead stands already.
void DialogForm::AddToRow(ControlWidget& control, ControlKind kind, bool isLead, QHBoxLayout& layout) {
  if (kind == ControlKind::kListBox) {
    auto* const column = new QVBoxLayout;
    if (control.Label() != nullptr) column->addWidget(control.Label());
    column->addWidget(control.Widget(), 1);
    // Lists beside each other share the room by what they hold.
    layout.addLayout(column);
    return;
  }
  if (control.Label() != nullptr && !isLead) layout.addWidget(control.Label());
  const bool stretches = kind == ControlKind::kTextField || kind == ControlKind::kLabel;
  layout.addWidget(control.Widget(), stretches ? 1 : 0);
}

void DialogForm::NameAfterNeighbours(const RowTemplate& row, const QString& otherwise) {
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (!IsNamedBefore(row[i])) continue;
    QWidget* const widget = WidgetOf(row[i].number);
    widget->setAccessibleName(Spoken(otherwise));
    if (i == 0) continue;
    QWidget* const before = WidgetOf(row[i - 1].number);
    if (auto* const label = qobject_cast<QLabel*>(before)) {
      label->setBuddy(widget);
      // A name does not break into lines beside the field that it names.
      label->setWordWrap(false);
    }
    if (row[i - 1].kind != ControlKind::kButton) names_.emplace_back(before, widget);
  }
}

// From the first control of the pages to the last, and on to the column beside them: the order of the template, begun
// where a person begins.
void DialogForm::OrderTabs(QWidget& column) {
  std::vector<QWidget*> order;
  std::vector<QWidget*> last;
  for (const ControlWidget* control : inOrder_)
    (column.isAncestorOf(control->Widget()) ? last : order).push_back(control->Widget());
  order.insert(order.end(), last.begin(), last.end());
  for (std::size_t i = 1; i < order.size(); ++i) setTabOrder(order[i - 1], order[i]);
}

void DialogForm::Show(const ControlSet& controls) {
  for (const ControlWidget* control : inOrder_)
    controls_.at(control->Number())->Show(controls.At(control->Number()));
  for (const auto& group : groups_) {
    group.first->setVisible(
        std::ranges::any_of(group.second, [&](std::int32_t number) { return controls.At(number).visible; }));
  }
  for (const auto& pair : names_) {
    const auto* const label = qobject_cast<QLabel*>(pair.first);
    const QString name = label != nullptr ? Spoken(label->text()) : pair.first->accessibleName();
    if (!name.isEmpty()) pair.second->setAccessibleName(name);
  }
}

bool DialogForm::Commit() {
  bool any = false;
  for (ControlWidget* control : inOrder_) any = control->Commit() || any;
  return any;
}

void DialogForm::FocusFirst() {
  for (const ControlWidget* control : inOrder_) {
    QWidget* const widget = control->Widget();
    const bool isPage = control->Number() != kControlOk && control->Number() != kControlCancel;
    if (!isPage || widget->focusPolicy() == Qt::NoFocus || !widget->isEnabled() || !widget->isVisibleTo(this))
      continue;
    if (qobject_cast<QPushButton*>(widget) != nullptr &&
        std::ranges::any_of(template_.buttons, [&](const RowTemplate& row) {
          return std::ranges::any_of(
              row, [&](const ControlTemplate& one) { return one.number == control->Number(); });
        }))
      continue;
    widget->setFocus();
    return;
  }
}

QWidget* DialogForm::WidgetOf(std::int32_t number) const {
  const auto found = controls_.find(number);
  return found != controls_.end() ? found->second->Widget() : nullptr;
}

}  // namespace brenvolt::desktop
