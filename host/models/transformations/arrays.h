// Arrays of numbers in a file, dense or sparse.
#pragma once

#include <vector>

#include "host/models/document/pmml_document.h"

namespace brenvolt::pmml {

// The numbers of an Array or REAL-SparseArray (INT-SparseArray) element; throws where there are not `count`.
std::vector<double> ReadNumbers(const Element& array, std::size_t count);

}  // namespace brenvolt::pmml
