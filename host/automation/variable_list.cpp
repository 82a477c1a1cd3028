#include "host/automation/variable_list.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "host/base/error.h"
#include "host/base/number_text.h"

namespace brenvolt {
namespace {

std::int16_t Checked(std::int64_t number, std::size_t variables) {
  if (number < 1 || number > static_cast<std::int64_t>(variables) || number > INT16_MAX) {
    throw Error("no variable " + std::to_string(number));
  }
  return static_cast<std::int16_t>(number);
}

// One item of a text: "5" or "2-4".
void AddItem(std::string_view item, std::size_t variables, std::vector<std::int16_t>& numbers) {
  const auto dash = item.find('-');
  const auto first = ParseInteger(item.substr(0, dash));
  const auto last = dash == std::string_view::npos ? first : ParseInteger(item.substr(dash + 1));
  if (!first || !last || *first > *last) throw Error("not a list of variables: " + std::string(item));
  Checked(*last, variables);
  for (int number = *first; number <= *last; ++number) numbers.push_back(Checked(number, variables));
}

void AddText(std::string_view text, std::size_t variables, std::vector<std::int16_t>& numbers) {
  constexpr std::string_view kSeparators = " ,\t";
  for (auto start = text.find_first_not_of(kSeparators); start != std::string_view::npos;) {
    const auto end = std::min(text.find_first_of(kSeparators, start), text.size());
    AddItem(text.substr(start, end - start), variables, numbers);
    start = text.find_first_not_of(kSeparators, end);
  }
}

}  // namespace

std::int16_t VariableNumberOf(std::size_t index) {
  if (index >= INT16_MAX) {
    throw Error("variable number " + std::to_string(index + 1) + " is beyond the " +
                std::to_string(INT16_MAX) + " variables that an analysis reaches");
  }
  return static_cast<std::int16_t>(index + 1);
}

std::vector<std::int16_t> VariableNumbers(const Variant& value, std::size_t variables) {
  std::vector<std::int16_t> numbers;
  if (value.IsText()) {
    AddText(value.ToText(), variables, numbers);
  } else {
    for (const Variant& element : value.ToArray()) numbers.push_back(Checked(element.ToInteger(), variables));
  }
  std::vector<std::int16_t> sorted = numbers;
  std::ranges::sort(sorted);
  const auto twice = std::ranges::adjacent_find(sorted);
  if (twice != sorted.end()) throw Error("variable " + std::to_string(*twice) + " is listed twice");
  return numbers;
}

}  // namespace brenvolt
