// Arbitrary bytes as a data file of whatever kind they look like: read, or refused by name, within bounds.
#include "host/tables/formats/reader_fuzz_support_test.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return brenvolt::TryReader(
      data, size, [](std::string_view bytes) { return brenvolt::ReadDataBytes(bytes, "data", "file", {}); });
}
