// Automation members that represent one control of their dialog: getters and putters for the tables of
// members. A control operation that the dialog refuses is refused to the caller.
#pragma once

#include <cstdint>
#include <span>

#include "host/analysis/analysis_dialog.h"
#include "host/automation/automation_failure.h"
#include "host/automation/variant.h"
#include "host/base/almost_equal.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {

inline void RequireTaken(bool taken) {
  if (!taken) ThrowControlRefused("the control is disabled");
}

template <class Dialog, std::int32_t Control>
Variant GetChecked(Dialog& dialog, std::span<const Variant>) {
  return std::int32_t{dialog.Controls().IsChecked(Control) ? 1 : 0};
}

template <class Dialog, std::int32_t Control>
void PutChecked(Dialog& dialog, std::span<const Variant>, const Variant& value) {
  RequireTaken(dialog.Check(Control, value.ToBoolean()));
}

// A radio button is chosen, never cleared, by a put.
template <class Dialog, std::int32_t Control>
void PutChosen(Dialog& dialog, std::span<const Variant>, const Variant& value) {
  if (value.ToBoolean()) RequireTaken(dialog.Check(Control, true));
}

// The number in a field; kNotSetCount if there is none.
template <class Dialog, std::int32_t Control>
Variant GetNumber(Dialog& dialog, std::span<const Variant>) {
  std::int32_t value = kNotSetCount;
  dialog.Controls().GetDlgItemLong(Control, value);
  return value;
}

template <class Dialog, std::int32_t Control>
void PutText(Dialog& dialog, std::span<const Variant>, const Variant& value) {
  RequireTaken(dialog.Enter(Control, value.ToText()));
}

// Types a number into a field, in the user's locale; "not set" empties it.
inline void EnterNumber(CAnalysisDialog& dialog, std::int32_t control, double value) {
  RequireTaken(
      dialog.Enter(control, IsNotSet(value) ? std::string() : ParseTextBuffer(ShortestNumber(value))));
}
inline void EnterCount(CAnalysisDialog& dialog, std::int32_t control, std::int32_t value) {
  RequireTaken(dialog.Enter(control, value == kNotSetCount ? std::string() : std::to_string(value)));
}

// The selected entry of a list, counted from `First`; First - 1 if none is selected.
template <class Dialog, std::int32_t Control, std::int32_t First>
Variant GetSelection(Dialog& dialog, std::span<const Variant>) {
  return std::int32_t{dialog.Controls().Selection(Control) + First};
}

template <class Dialog, std::int32_t Control, std::int32_t First>
void PutSelection(Dialog& dialog, std::span<const Variant>, const Variant& value) {
  if (!dialog.Select(Control, value.ToInteger() - First))
    ThrowControlRefused("no entry " + value.ToText() + " in the list");
}

}  // namespace brenvolt::sra
