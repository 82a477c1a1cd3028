// Raw simulated values: Monte Carlo and Latin hypercube sampling from the host's one random stream.
//
// The order of draws is part of the contract: columns in variable order, rows in order within a column, and
// every Monte Carlo value draws one uniform deviate for its fallback first, used or not (variable_sampler.h).
// The same seed, design and method give the same samples, bit for bit what one draw after another gives, at
// any number of threads; and the process's stream is then where these draws would have left it.
#pragma once

#include <cstddef>
#include <span>

#include "brv_sra/simulation/sampling/simulation_design.h"
#include "host/controls/progress_bar.h"

namespace brenvolt::sra {

// Seeds the stream for one run and discards 100 draws: from the user's seed (at least 0, its
// integer part, modulo 2^32 if it is larger) when `seeded`, otherwise from the calendar time in seconds. A seed
// of 0 is as reproducible as any other.
void SeedRandomStream(bool seeded, double seed);

// Fills the columns of the variables that are not excluded in the row-major matrix of numberOfSamples rows
// and one column per variable of the design. False when a distribution cannot be sampled: its parameters are
// invalid, its truncation leaves nothing, or a value is beyond what a double holds. Throws UserCancelled
// through the bar, std::bad_alloc when memory is short.
bool GenerateMonteCarlo(const SimulationDesign& design, std::span<double> matrix, ProgressBar& progress);
bool GenerateLatinHypercube(const SimulationDesign& design, std::span<double> matrix, ProgressBar& progress);

// Generates the columns of the variables `variables`, each into a buffer of its own: columns[c], as long as
// the design has samples, receives the values of variables[c]. Called for all active variables in their
// order, some at a time, it draws what the generators above draw. Does not step the bar. False and throws as
// above.
bool GenerateColumns(const SimulationDesign& design, bool latinHypercube,
                     std::span<const std::size_t> variables, std::span<const std::span<double>> columns,
                     ProgressBar& progress);

}  // namespace brenvolt::sra
