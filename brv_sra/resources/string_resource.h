// A text of the module under its number.
#pragma once

#include <cstdint>
#include <string_view>

namespace brenvolt::sra {

struct StringResource {
  std::int32_t number;
  std::string_view text;
};

}  // namespace brenvolt::sra
