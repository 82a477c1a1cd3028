// Arbitrary bytes as a text file under options that the first byte picks: read, or refused by name.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "host/base/error.h"
#include "host/tables/text/text_table.h"

namespace {

brenvolt::TextOptions OptionsOf(std::uint8_t bits) {
  brenvolt::TextOptions options;
  if ((bits & 1) != 0) options.delimiter = "blanks";
  if ((bits & 2) != 0) options.decimal = ",";
  if ((bits & 4) != 0) options.thousands = ".";
  if ((bits & 8) != 0) options.header = (bits & 16) != 0 ? "2" : "no";
  if ((bits & 16) != 0) options.unitsRow = true;
  if ((bits & 32) != 0) options.comment = "#";
  if ((bits & 64) != 0) options.encoding = "windows-1252";
  if ((bits & 128) != 0) options.missingText = {"-", "."};
  return options;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  try {
    const brenvolt::DataRead read = brenvolt::ReadTextTable(bytes, "data", "file", OptionsOf(data[0]));
    for (const auto& sheet : read.sheets) {
      if (sheet->CaseCount() == 0 || sheet->VariableCount() == 0) std::abort();
    }
  } catch (const brenvolt::Error& error) {
    if (std::string_view(error.what()).empty()) std::abort();
  }
  return 0;
}
