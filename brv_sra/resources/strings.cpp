#include "brv_sra/resources/strings.h"

namespace brenvolt::sra {

std::string_view StripDontTranslate(std::string_view text) {
  return text.starts_with(kDontTranslate) ? text.substr(kDontTranslate.size()) : text;
}

}  // namespace brenvolt::sra
