// Any text is either refused or means something that reads back from its own notation.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "host/jobs/notation/distribution_notation.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    const std::string noted = brenvolt::NotationOf(brenvolt::ReadVariable(text));
    if (brenvolt::NotationOf(brenvolt::ReadVariable(noted)) != noted) std::abort();
  } catch (const brenvolt::NotationError&) {
  }
  return 0;
}
