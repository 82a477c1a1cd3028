// JSON lines: an object in each line, whose members are the columns.
#pragma once

#include <string>
#include <string_view>

#include "host/tables/formats/data_file_reader.h"

namespace brenvolt {

// Columns in the order in which their names first appear; what a line lacks, and null, is missing. Throws Error naming the
// line for what is no object of numbers, texts and truth values.
DataRead ReadJsonLines(std::string_view text, const std::string& name, const std::string& where,
                       const TextOptions& options);

}  // namespace brenvolt
