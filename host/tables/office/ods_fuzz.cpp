// Arbitrary bytes as the sheets of an ods workbook.
#include <cstddef>
#include <cstdint>

#include "host/base/error.h"
#include "host/tables/office/ods_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    brenvolt::ReadOdsContent({reinterpret_cast<const char*>(data), size}, "file");
  } catch (const brenvolt::Error&) {
  }
  return 0;
}
