// Simulations whose samples no memory holds, and no sheet: drawn a piece at a time, each piece handed on, and
// summarised on the way. For the methods without correlation; the values are those of one run as a whole
// (simulation_run.h).
#pragma once

#include <cstddef>
#include <functional>
#include <span>

#include "brv_sra/base/fault.h"
#include "brv_sra/base/run_progress.h"
#include "brv_sra/simulation/sampling/simulation_design.h"
#include "brv_sra/simulation/simulation_summary.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// Takes some samples, the next ones: an output sheet (simulation_output.h) that holds these alone.
using CaseSink = std::function<void(Spreadsheet& piece)>;
// Takes the next values of one variable, counted among those that take part; the values of one come together.
using ColumnSink = std::function<void(std::size_t variable, std::span<const double> values)>;

// Seeds the stream and draws the samples, some megabytes at a time. Under Monte Carlo, memory does not grow
// with the number of samples; under the Latin hypercube it grows by four bytes per value when samples are
// handed on by cases, and by four bytes per sample when they come by columns. What the sinks throw ends the
// run, and so does UserCancelled. A variable that cannot be sampled is a fault as of SamplingFault.
//
// The summary is exact: the values are drawn two or three times. By cases, a column whose values take draws
// as they come (a truncated type with candidates) is drawn once more, so that the next one's place in the
// stream is known.
//
// Work is done in rounds by the crew (host/rounds), all of which call this. Of several processes one hands on the samples, and
// the sinks of the others take none; an empty sink takes none anywhere.
Result<SampleSummaries> SimulateByCases(const SimulationDesign& design, bool seeded, double seed,
                                        const CaseSink& take, const RunProgress& bars);
Result<SampleSummaries> SimulateByColumns(const SimulationDesign& design, bool seeded, double seed,
                                          const ColumnSink& take, const RunProgress& bars);

}  // namespace brenvolt::sra
