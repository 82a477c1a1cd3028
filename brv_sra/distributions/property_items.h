// The items of a distribution's property by type: what the writer and the reader of variable properties
// share.
#pragma once

#include <span>
#include <string_view>

#include "brv_sra/distributions/specification.h"

namespace brenvolt::sra {

// The key of each value in the order of the values; empty for types whose values are bare numbers. The item
// "Offset" follows where the catalogue gives the type an offset.
std::span<const std::string_view> ItemKeys(DistributionCode code);

// The printf format of the values.
const char* ItemFormat(DistributionCode code);

}  // namespace brenvolt::sra
