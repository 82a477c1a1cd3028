#include "host/application/no_prediction_text.h"

#include <array>
#include <cstddef>

namespace brenvolt {

std::string_view NoPredictionText(NoPrediction reason) {
  constexpr std::array<std::string_view, 4> kTexts{
      "the value is missing", "the model does not know the value", "the model does not accept the number",
      "the model gives no result"};
  return kTexts[static_cast<std::size_t>(reason)];
}

}  // namespace brenvolt
