// The run of a fit: reads every selected variable, estimates, tests and ranks.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "brv_sra/base/fault.h"
#include "brv_sra/base/run_progress.h"
#include "brv_sra/fitting/fit_state.h"
#include "brv_sra/fitting/sample_reader.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// How the analysis treats the sheet's cases.
struct CaseOptions {
  bool useSelection = true;
  bool useWeights = true;
};

// True when the data of `variables` variables of `cases` cases are within the limit of a fit. The product is
// taken in 32 bits, as the limit requires.
bool FitsDataLimit(std::size_t variables, std::size_t cases);

// The cases that a fit uses, by the sheet's selection and weights and the fit specification's deletion mode.
// The faults are those of AcceptedCases.
Result<CaseSet> FittedCases(const Spreadsheet& sheet, const FitSpecification& specification,
                            const CaseOptions& options);

// The name of a variable (number from 1) on one line, without blanks around it.
std::string OneLineName(const Spreadsheet& sheet, int number);

// Fits the continuous variables, then the discrete ones, on all processors; the results depend neither on
// their number nor on the order of the work. A bootstrap that is asked for follows all fits. Progress and
// cancellation reach the port on the calling thread only. If a number of mixtures was out of its bounds,
// VariableFit::mixtures holds the number taken, and the caller says so, once for all variables. `counts`,
// where given, takes the numbers of cases. kDataTooLarge or a fault of the weights. A fault of a value or of the
// percentiles leaves its own variable invalid, and the others as they are. Throws UserCancelled.
Result<std::vector<VariableFit>> RunFit(const Spreadsheet& sheet, const FitSpecification& specification,
                                        const CaseOptions& options, const RunProgress& bars,
                                        CaseCounts* counts = nullptr);

// The first fault of a variable among the results; nothing if none has one.
std::optional<Fault> FirstFault(const std::vector<VariableFit>& results);

// Whether any variable has a valid fit.
bool AnyIsFitted(const std::vector<VariableFit>& results);

}  // namespace brenvolt::sra
