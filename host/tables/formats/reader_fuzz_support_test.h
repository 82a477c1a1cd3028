// What the fuzz targets of readers of data files share: input is read as a table of cases, or refused with a text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "host/base/error.h"
#include "host/tables/formats/data_file_reader.h"

namespace brenvolt {

template <class Read>
int TryReader(const std::uint8_t* data, std::size_t size, const Read& reader) {
  try {
    const DataRead read = reader(std::string_view(reinterpret_cast<const char*>(data), size));
    if (read.sheets.empty()) std::abort();
    for (const auto& sheet : read.sheets) {
      if (sheet->CaseCount() == 0 || sheet->VariableCount() == 0) std::abort();
    }
  } catch (const Error& error) {
    if (std::string_view(error.what()).empty()) std::abort();
  }
  return 0;
}

}  // namespace brenvolt
