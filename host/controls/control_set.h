// The state of a dialog's controls by number: values, lists, enabled, visible.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/controls/dialog_template.h"

namespace brenvolt {

struct ControlState {
  ControlKind kind = ControlKind::kLabel;
  std::string caption;
  int radioGroup = 0;
  bool enabled = true;
  bool visible = true;
  bool checked = false;            // check boxes and radio buttons
  int selection = -1;              // lists and combo boxes: the index of the selected item, -1 for none
  std::vector<std::string> items;  // lists and combo boxes
  std::string text;                // fields, and the text that a label shows
};

class ControlSet {
 public:
  // The controls of a template in their first state: unchecked, empty, enabled, visible.
  explicit ControlSet(const DialogTemplate& source);

  bool Has(std::int32_t number) const { return controls_.contains(number); }
  // Throws Error for a number that the template does not have, here and below.
  const ControlState& At(std::int32_t number) const;
  ControlState& At(std::int32_t number);

  void Enable(std::int32_t number, bool enabled) { At(number).enabled = enabled; }
  void Show(std::int32_t number, bool visible) { At(number).visible = visible; }
  bool IsChecked(std::int32_t number) const { return At(number).checked; }
  // Checking a radio button unchecks the others of its group.
  void SetChecked(std::int32_t number, bool checked);
  const std::string& Text(std::int32_t number) const { return At(number).text; }
  void SetText(std::int32_t number, std::string text) { At(number).text = std::move(text); }
  void SetItems(std::int32_t number, std::vector<std::string> items);
  int Selection(std::int32_t number) const { return At(number).selection; }
  // False, and nothing changes, for an index that the list does not have.
  bool Select(std::int32_t number, int index);

  // The number in a field, in the user's locale. Non-zero: the field is empty or unreadable, and `value` is
  // kept.
  int GetDlgItemDouble(std::int32_t number, double& value) const;
  int GetDlgItemLong(std::int32_t number, std::int32_t& value) const;
  // Shows a number in a field; kNotSet and its integer form empty the field.
  void SetDlgItemDouble(std::int32_t number, double value);
  void SetDlgItemLong(std::int32_t number, std::int32_t value);

 private:
  void AddRows(const std::vector<RowTemplate>& rows);

  std::map<std::int32_t, ControlState> controls_;
  int groups_ = 0;
};

}  // namespace brenvolt
