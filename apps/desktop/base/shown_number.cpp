#include "apps/desktop/base/shown_number.h"

#include <algorithm>

#include "apps/desktop/base/text.h"
#include "host/base/number_text.h"

namespace brenvolt::desktop {
namespace {

QString WithSeparator(std::string text) {
  std::ranges::replace(text, '.', UserNumberLocale().decimalSeparator);
  return Shown(text);
}

}  // namespace

QString ShownNumber(double value) {
  return WithSeparator(FormatNumber("%.6g", value));
}

QString ShownInFull(double value) {
  return WithSeparator(ShortestNumber(value));
}

}  // namespace brenvolt::desktop
