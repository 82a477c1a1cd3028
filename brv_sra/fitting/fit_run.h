// The run of a fit: reads every selected variable, estimates, tests and ranks.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "brv_sra/fitting/fit_state.h"
#include "brv_sra/fitting/sample_reader.h"
#include "host/base/error.h"
#include "host/controls/progress_bar.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// How the analysis treats the sheet's cases.
struct CaseOptions {
  bool useSelection = true;
  bool useWeights = true;
};

// True when the data of `variables` variables of `cases` cases are within the limit of a fit. The product is
// taken in 32 bits, as the limit has always been.
bool FitsDataLimit(std::size_t variables, std::size_t cases);

// The cases that a fit uses, by the sheet's selection and weights and the fit specification's deletion mode.
// Throws CDispatchException as AcceptedCases does.
CaseSet FittedCases(const Spreadsheet& sheet, const FitSpecification& specification,
                    const CaseOptions& options);

// The name of a variable (number from 1) on one line, without blanks around it.
std::string OneLineName(const Spreadsheet& sheet, int number);

// Message 10281 with the reasons, and what is known of the variables all the same.
class NoValidVariables : public CDispatchException {
 public:
  NoValidVariables(const std::string& what, std::string where, std::vector<VariableFit> fits)
      : CDispatchException(what, std::move(where)), results(std::move(fits)) {}
  std::vector<VariableFit> results;
};

// Fits the continuous variables, then the discrete ones, on all processors; the results depend neither on
// their number nor on the order of the work. A bootstrap that is asked for follows all fits. Progress and
// cancellation reach `port` on the calling thread only. Where a number of mixtures was out of its bounds,
// VariableFit::mixtures holds the number taken, and the caller shows message 10083, once for all variables.
// `counts`, where given, takes the numbers of cases. Throws CDispatchException with the text to show: data
// too large (10013), case weights that are not whole (10012); NoValidVariables (pairwise only);
// NumericalException from the data; UserCancelled.
std::vector<VariableFit> RunFit(const Spreadsheet& sheet, const FitSpecification& specification,
                                const CaseOptions& options, ProgressPort& port, CaseCounts* counts = nullptr);

}  // namespace brenvolt::sra
