// What people are told of values that make no distribution, whether they wrote them in the notation or in Python.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "host/numeric/distributions/common/distribution_facts.h"

namespace brenvolt {

// What a value in the range is: "a number above 0".
std::string_view RangeText(ParameterRange range);

// What is wrong with values each of which is in its range; nothing where they make a distribution.
std::optional<std::string> WrongTogether(DistributionCode code, std::span<const double> values);

}  // namespace brenvolt
