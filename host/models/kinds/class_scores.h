// From scores by class to probabilities, in place over a block.
#pragma once

#include <vector>

#include "host/models/transformations/frame.h"

namespace brenvolt::pmml {

// Each column over the sum of all.
void NormaliseSum(const std::vector<Slot>& columns, Frame& frame);
// exp of each column over the sum of these.
void NormaliseSoftmax(const std::vector<Slot>& columns, Frame& frame);
// Columns of cumulative probabilities of the classes but the last become those of the single classes.
void DifferenceCumulative(const std::vector<Slot>& columns, Frame& frame);

}  // namespace brenvolt::pmml
