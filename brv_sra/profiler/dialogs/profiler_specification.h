// Specifications of predictors as automation and macros write them, their checks, and how lists show them.
//
// A predictor is written as an array: the key of a distribution ("scNormalDistr", "Normal", or its code), its
// values in catalogue order, the offset where the type has one, then its truncation: below (0 or 1), minimum,
// above (0 or 1), maximum; or "Fixed" and the value; or nothing, which takes the distribution away. The
// truncation may be left out, but for the user-defined discrete distribution, whose values come in pairs; a
// value that is left out is empty.
#pragma once

#include <string>
#include <string_view>

#include "brv_sra/profiler/profiler_design.h"
#include "host/automation/variant.h"

namespace brenvolt::sra {

// Sets the predictor from its array; a number alone fixes it. Throws Error with the message to show, and the
// predictor stays as it was, if the array is not a specification or the distribution is not valid.
void SetSpecification(ProfilerPredictor& predictor, const Variant& value);
Variant SpecificationArray(const ProfilerPredictor& predictor);

// The checks of a specification that a person applies: of its values, then that the truncation bounds in
// force are numbers and do not cross. Throws Error with the message.
void CheckPredictorSpecification(const DistributionSpecification& specification);

// "Age: Normal(location=1.0000, scale=2.0000) [0, 5]", "Age: Fixed (3.000000)", "Age: none".
std::string PredictorLine(const ProfilerPredictor& predictor);

}  // namespace brenvolt::sra
