// Dialogs as data: a template lists tabs, groups, rows and numbered controls. Front ends render templates;
// dialog classes hold no widget.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace brenvolt {

// Numbers that every dialog has.
inline constexpr std::int32_t kControlOk = 1;
inline constexpr std::int32_t kControlCancel = 2;

enum class ControlKind : std::uint8_t {
  kLabel,
  kButton,
  kCheckBox,
  kRadioButton,  // exclusive among the radio buttons of its group
  kListBox,
  kComboBox,
  kIntegerField,
  kRealField,
  kTextField
};

struct ControlTemplate {
  std::int32_t number;
  ControlKind kind;
  std::string_view caption;  // with its access key after '&'
};

using RowTemplate = std::vector<ControlTemplate>;

struct GroupTemplate {
  std::string_view caption;
  std::vector<RowTemplate> rows;
};

struct TabTemplate {
  std::string_view caption;
  std::vector<GroupTemplate> groups;
};

struct DialogTemplate {
  std::int32_t number;
  std::string_view caption;
  std::vector<RowTemplate> buttons;  // beside the tabs: OK, Cancel and what belongs to the whole dialog
  std::vector<TabTemplate> tabs;
};

}  // namespace brenvolt
