// Arrays and tables of values in a file.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/models/document/pmml_document.h"

namespace brenvolt::pmml {

// The items of an Array element's content: separated by blanks, in double quotes where they hold some, with
// \" for a quote.
std::vector<std::string> SplitArray(std::string_view content);
// Those of an Array element, whose number must be the one it declares.
std::vector<std::string> ReadArray(const Element& array);
std::vector<double> ReadRealArray(const Element& array);

// The numbers of an Array or REAL-SparseArray (INT-SparseArray) element; throws if there are not `count`.
std::vector<double> ReadNumbers(const Element& array, std::size_t count);

// Rows of an InlineTable, each the texts of the named columns; a cell that a row lacks is nothing.
std::vector<std::vector<std::optional<std::string>>> ReadInlineTable(const Element& table,
                                                                     std::span<const std::string> columns);

}  // namespace brenvolt::pmml
