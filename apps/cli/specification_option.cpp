#include "apps/cli/specification_option.h"

#include <optional>
#include <vector>

#include "apps/cli/data_options.h"
#include "host/base/number_text.h"

namespace brenvolt::cli {

ResponseSpecification ParseSpecification(const std::string& text) {
  constexpr const char* kField = "specifications";
  constexpr const char* kForm = "RESPONSE=LSL,TARGET,USL, each of which may be empty";
  constexpr std::size_t kNumbers = 3;
  const auto [response, numbers] = SplitEntry(kField, kForm, text);
  std::vector<std::optional<double>> values;
  for (const std::string& part : SplitAtCommas(numbers)) {
    const std::string number(Trim(part));
    values.push_back(number.empty() ? std::nullopt : std::optional(NumberIn(kField, number)));
  }
  if (values.size() != kNumbers) RefuseEntry(kField, kForm, text);
  SpecificationLimits limits;
  limits.lower = values[0].value_or(limits.lower);
  limits.target = values[1].value_or(limits.target);
  limits.upper = values[2].value_or(limits.upper);
  return {response, limits};
}

}  // namespace brenvolt::cli
