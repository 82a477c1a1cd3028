// P-values for people.
#pragma once

#include <string>

#include "host/base/number_text.h"

namespace brenvolt {

// Four decimals say all that one decides by; a smaller one is not 0.
inline std::string PValueText(double pValue) {
  constexpr double kSmallest = 0.0001;
  return pValue < kSmallest ? "<0.0001" : FormatNumber("%.4f", pValue);
}

}  // namespace brenvolt
