// Text files of separated values in whatever encoding and layout, found by looking or told by options.
#pragma once

#include <string>
#include <string_view>

#include "host/tables/text/data_read.h"

namespace brenvolt {

DataRead ReadTextTable(std::string_view bytes, const std::string& name, const std::string& where,
                       const TextOptions& options);

}  // namespace brenvolt
