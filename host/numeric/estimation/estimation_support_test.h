// What the tests of the estimators share: how an estimate ended, where no fault is kNone.
#pragma once

#include <optional>

#include "host/numeric/estimation/estimation_fault.h"

namespace brenvolt {

using Ended = std::optional<EstimationFault>;
inline constexpr Ended kNone = std::nullopt;

template <class T>
Ended EndOf(const EstimationResult<T>& result) {
  return result ? kNone : Ended(result.Reason().identifier);
}

}  // namespace brenvolt
