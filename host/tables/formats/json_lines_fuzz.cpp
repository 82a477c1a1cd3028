// Arbitrary bytes as lines of JSON objects.
#include "host/tables/formats/json_lines.h"
#include "host/tables/formats/reader_fuzz_support_test.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return brenvolt::TryReader(
      data, size, [](std::string_view bytes) { return brenvolt::ReadJsonLines(bytes, "data", "file", {}); });
}
