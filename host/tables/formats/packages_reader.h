// Files of statistical packages: SPSS (.sav, .zsav), Stata (.dta), SAS (.xpt, .sas7bdat).
#pragma once

#include <string>
#include <string_view>

#include "host/tables/formats/data_file_reader.h"
#include "host/tables/formats/file_kind.h"

namespace brenvolt {

// The property of a variable that holds its description, and that of its format.
inline constexpr const char* kLabelProperty = "label";
inline constexpr const char* kFormatProperty = "format";

// Numbers keep their value labels; texts become text variables. A single code of missing values becomes that of the
// variable; values of several codes, and those that a package marks as missing by a letter, are missing. Descriptions and
// formats become properties. Throws Error naming the file if it is damaged.
DataRead ReadPackageFile(std::string_view bytes, FileKind kind, const std::string& name,
                         const std::string& where);

}  // namespace brenvolt
