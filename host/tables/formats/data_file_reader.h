// Reads a data file of any kind: text of separated values, and what lies beside this header, told apart by content.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "host/tables/text/data_read.h"

namespace brenvolt {

// The name under which standard input is read.
inline constexpr std::string_view kStandardInput = "-";

// Throws Error naming the file and the place in it, StrayTextsError, and OptionError.
DataRead ReadDataFile(const std::filesystem::path& path, const TextOptions& options);

// The same of bytes in memory. `name` names the sheet of a kind that names none, `where` the file in errors.
DataRead ReadDataBytes(std::string_view bytes, const std::string& name, const std::string& where,
                       const TextOptions& options);

}  // namespace brenvolt
