// Arbitrary bytes as a data file of whatever kind they look like: read, or refused by name, within bounds.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "host/base/error.h"
#include "host/tables/formats/data_file_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  try {
    const brenvolt::DataRead read = brenvolt::ReadDataBytes(bytes, "data", "file", {});
    if (read.sheets.empty()) std::abort();
    for (const auto& sheet : read.sheets) {
      if (sheet->CaseCount() == 0 || sheet->VariableCount() == 0) std::abort();
    }
  } catch (const brenvolt::Error& error) {
    if (std::string_view(error.what()).empty()) std::abort();
  }
  return 0;
}
