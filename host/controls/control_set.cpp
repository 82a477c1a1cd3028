#include "host/controls/control_set.h"

#include "host/base/almost_equal.h"
#include "host/base/error.h"
#include "host/base/number_text.h"

namespace brenvolt {
namespace {

[[noreturn]] void ThrowNoControl(std::int32_t number) {
  throw Error("the dialog has no control " + std::to_string(number));
}

}  // namespace

ControlSet::ControlSet(const DialogTemplate& source) {
  AddRows(source.buttons);
  for (const TabTemplate& tab : source.tabs) {
    for (const GroupTemplate& group : tab.groups) AddRows(group.rows);
  }
}

void ControlSet::AddRows(const std::vector<RowTemplate>& rows) {
  ++groups_;
  for (const RowTemplate& row : rows) {
    for (const ControlTemplate& control : row) {
      ControlState state;
      state.kind = control.kind;
      state.caption = control.caption;
      state.radioGroup = groups_;
      if (!controls_.emplace(control.number, std::move(state)).second) {
        throw Error("control " + std::to_string(control.number) + " appears twice in a dialog template");
      }
    }
  }
}

const ControlState& ControlSet::At(std::int32_t number) const {
  const auto found = controls_.find(number);
  if (found == controls_.end()) ThrowNoControl(number);
  return found->second;
}

ControlState& ControlSet::At(std::int32_t number) {
  const auto found = controls_.find(number);
  if (found == controls_.end()) ThrowNoControl(number);
  return found->second;
}

void ControlSet::SetChecked(std::int32_t number, bool checked) {
  ControlState& control = At(number);
  if (control.kind == ControlKind::kRadioButton && checked) {
    for (auto& [other, state] : controls_) {
      if (state.kind == ControlKind::kRadioButton && state.radioGroup == control.radioGroup)
        state.checked = false;
    }
  }
  control.checked = checked;
}

void ControlSet::SetItems(std::int32_t number, std::vector<std::string> items) {
  ControlState& control = At(number);
  control.items = std::move(items);
  if (control.selection >= static_cast<int>(control.items.size())) control.selection = -1;
}

bool ControlSet::Select(std::int32_t number, int index) {
  ControlState& control = At(number);
  if (index < 0 || index >= static_cast<int>(control.items.size())) return false;
  control.selection = index;
  return true;
}

int ControlSet::GetDlgItemDouble(std::int32_t number, double& value) const {
  const auto parsed = ParseNumber(Trim(Text(number)), UserNumberLocale());
  if (!parsed) return 1;
  value = *parsed;
  return 0;
}

int ControlSet::GetDlgItemLong(std::int32_t number, std::int32_t& value) const {
  const auto parsed = ParseInteger(Trim(Text(number)));
  if (!parsed) return 1;
  value = *parsed;
  return 0;
}

void ControlSet::SetDlgItemDouble(std::int32_t number, double value) {
  SetText(number, IsNotSet(value) ? std::string() : ParseTextBuffer(ShortestNumber(value)));
}

void ControlSet::SetDlgItemLong(std::int32_t number, std::int32_t value) {
  SetText(number, value == kNotSetCount ? std::string() : std::to_string(value));
}

}  // namespace brenvolt
