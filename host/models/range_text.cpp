#include "host/models/range_text.h"

#include "host/base/number_text.h"

namespace brenvolt {

std::string GapsText(std::span<const NumberRange> gaps) {
  std::string text;
  for (const NumberRange& gap : gaps)
    text += (text.empty() ? " without " : ", ") + ShortestNumber(gap.low) + " to " + ShortestNumber(gap.high);
  return text;
}

}  // namespace brenvolt
