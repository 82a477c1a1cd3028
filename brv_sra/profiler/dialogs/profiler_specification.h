// Specifications of predictors as automation and macros write them, and how lists show them.
//
// A predictor is written as the array of a specification (frame/specification_array.h); or as "Fixed" and the value; or
// as nothing, which takes the distribution away.
#pragma once

#include <string>
#include <string_view>

#include "brv_sra/profiler/profiler_design.h"
#include "host/automation/variant.h"

namespace brenvolt::sra {

// Throws Error if the predictor takes classes and the distribution is none of them.
void RequireClasses(const ProfilerPredictor& predictor, const DistributionSpecification& specification);

// Sets the predictor from its array; a number alone fixes it. Throws Error with the message to show, and the
// predictor stays as it was, if the array is not a specification or the distribution is not valid.
void SetSpecification(ProfilerPredictor& predictor, const Variant& value);
Variant SpecificationArray(const ProfilerPredictor& predictor);

// "Normal(location=1.0000, scale=2.0000) [0, 5]", "Fixed (3.000000)", "none"; classes by their names, the first ten.
std::string SpecificationText(const ProfilerPredictor& predictor);
// "Age: Normal(location=1.0000, scale=2.0000) [0, 5]", "Age: Fixed (3.000000)", "Age: none".
std::string PredictorLine(const ProfilerPredictor& predictor);

}  // namespace brenvolt::sra
