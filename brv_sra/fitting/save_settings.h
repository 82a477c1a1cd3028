// What is saved of the fits of one variable: which fits, in which order, with which truncation, and with the
// person's own values, if any.
//
// Every function that changes settings checks first: on a fault the settings stay as they were.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "brv_sra/base/fault.h"
#include "brv_sra/distributions/variable_properties.h"
#include "brv_sra/fitting/fit_state.h"

namespace brenvolt::sra {

// The fits that are saved unless the person says otherwise, as indices, best first: the valid ones by rank.
// The histogram of a discrete variable repeats the data and would always stand first, so it is saved only
// if no other fit is valid, or if the person's order names it. Nor, if contradicted fits come last,
// is a fit that the data contradict.
std::vector<std::size_t> DefaultOrder(const VariableFit& variable);
// The person's order if there is one, otherwise the default.
std::vector<std::size_t> SavedOrder(const VariableFit& variable);
// Valid fits of the variable, each once, any of them left out; none for the default order.
Result<void> SetSavedOrder(VariableFit& variable, std::span<const DistributionCode> order);
std::vector<DistributionCode> CodesOf(const VariableFit& variable, std::span<const std::size_t> fits);

// "Weibull;Log Normal;": the keys of the distributions in their order.
std::string OrderText(std::span<const DistributionCode> order);

// The values of a distribution that are saved with user-defined distributions: the person's own, otherwise the
// valid fit's. Null if there are neither.
const DistributionSpecification* UserDefinedSpecification(const VariableFit& variable, DistributionCode code);
bool HasUserDefinedValues(const VariableFit& variable, DistributionCode code);
// Takes the person's own values, which must be valid, of a distribution of the variable's kind.
Result<void> SetUserDefinedValues(VariableFit& variable, DistributionSpecification specification);
void DropUserDefinedValues(VariableFit& variable, DistributionCode code);
// The order with user-defined distributions: the person's, otherwise the saved order followed by the distributions that
// have own values only.
std::vector<DistributionCode> UserDefinedOrder(const VariableFit& variable);
// Distributions with own values or a valid fit, each once; none for the default order.
Result<void> SetUserDefinedOrder(VariableFit& variable, std::span<const DistributionCode> order);

// A fault when a bound in force is not set, or when bounds in force cross once they are rounded as they are
// stored.
Result<void> CheckTruncation(const VariableFit& variable);

// A specification within the bounds of a variable.
DistributionSpecification Within(const Truncation& truncation, DistributionSpecification specification);

// What the writer of variable properties gets.
VariableDistributions DistributionsToSave(const VariableFit& variable, bool userDefined);

}  // namespace brenvolt::sra
