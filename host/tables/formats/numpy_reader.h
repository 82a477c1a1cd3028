// Archives of NumPy arrays (.npz) as tables: an array of one axis is a column, one of two axes several.
#pragma once

#include <string>
#include <string_view>

#include "host/tables/formats/data_file_reader.h"
#include "host/tables/office/zip_content.h"

namespace brenvolt {

// Arrays of numbers and truth values. The columns of an array of two axes are called NAME_1, NAME_2, …. Throws Error naming
// the array if it is of another type, damaged, or of another length than the others.
DataRead ReadNumpyFile(std::string_view bytes, const std::string& name, const std::string& where);
// The same from the parts of the archive.
DataRead ReadNumpyArrays(const std::vector<ZipPart>& parts, const std::string& name,
                         const std::string& where);

}  // namespace brenvolt
