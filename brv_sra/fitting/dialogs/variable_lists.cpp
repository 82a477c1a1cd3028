#include "brv_sra/fitting/dialogs/variable_lists.h"

#include <algorithm>
#include <string>

#include "host/automation/variable_list.h"
#include "host/base/error.h"

namespace brenvolt::sra {

VariableLists VariableListsFrom(const Variant& value, std::size_t variables) {
  Variant::Array lists;
  if (value.IsText()) {
    const std::string text = value.ToText();
    const auto bar = std::min(text.find(kListBar), text.size());
    lists = {text.substr(0, bar), bar < text.size() ? text.substr(bar + 1) : std::string()};
  } else {
    lists = value.ToArray();
  }
  if (lists.size() != 2) throw Error("not a list of continuous and a list of discrete variables");
  return {VariableNumbers(lists[0], variables), VariableNumbers(lists[1], variables)};
}

}  // namespace brenvolt::sra
