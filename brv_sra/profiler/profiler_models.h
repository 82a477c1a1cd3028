// Where the profiler's predictors and dependents come from: models and formulas, merged by name, and the
// specifications that predictors start with. Knows no dialog.
//
// A name that models or formulas read is a predictor, unless a model or a formula predicts it: then they read its
// predictions. Fields that a model lists and never reads are none. A predictor is removed once nothing reads it,
// but stays as long as a formula is not valid; what a person specified for it is kept in case that it returns.
//
// A predictor starts from the data if they have a numeric variable of its name:
// - a continuous one as Normal of their mean and standard deviation; as Fixed where they are constant;
// - a categorical one as Discrete of its codes and their relative frequencies.
// A continuous one is truncated to the range that its models declare as valid; a person may lift that.
// A predictor of texts takes the texts of a text variable, and those of a numeric one as numbers are written
// ("1", "2.5"); texts that its model does not know are passed over. Without data a categorical predictor
// starts from the codes and frequencies of its model (equal ones if the file gives none); a continuous one
// has no specification. All cases of the data count, whatever their selection and weights.
#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "brv_sra/base/fault.h"
#include "brv_sra/base/run_progress.h"
#include "brv_sra/profiler/profiler_design.h"
#include "host/tables/spreadsheet.h"

namespace brenvolt::sra {

// What a person should be told, but what does not stop the work.
using ProfilerNotes = std::vector<Fault>;

// The names in a text of file names separated by "|". kInvalidFileNames if there is none, or one of them
// is empty.
Result<std::vector<std::filesystem::path>> SplitFileNames(std::string_view text);

// Merges models into a design, in their order. A predictor that is known keeps its specification; a dependent
// that is known is predicted by the later model, unless it has a formula. `data` may be null. The
// correlations of new predictors with all others are those of the data. kFieldTypesDiffer, and the design
// stays as it was, where a field holds numbers in one model and texts in another.
Result<ProfilerNotes> MergeModels(ProfilerDesign& design,
                                  std::span<const std::shared_ptr<const PredictionModel>> models,
                                  const Spreadsheet* data);

// Sets the formula of a dependent; names in it that are not yet predictors become predictors. A formula
// that is not valid is kept all the same: the run will report it.
ProfilerNotes SetFormula(ProfilerDesign& design, std::size_t dependent, std::string formula,
                         const Spreadsheet* data);
// Returns to the previous formula, which may be none; nothing, and the design stays as it was, if none was set.
std::optional<ProfilerNotes> UndoFormula(ProfilerDesign& design, std::size_t dependent,
                                         const Spreadsheet* data);

// Specifies every predictor that the data have by the distribution that fits them best. Continuous predictors
// try all continuous distributions but the Gaussian mixture, with offset 0, ranked by the Kolmogorov-Smirnov
// test; a categorical one takes the Discrete of its data, whose codes its models know. A predictor that no
// distribution fits stays as it is. Returns how many were fitted. kNoPredictorFitted or a fault of the fit,
// and nothing changes, if there are none. Throws UserCancelled.
Result<std::size_t> FitBestDistributions(ProfilerDesign& design, const Spreadsheet& data,
                                         const RunProgress& bars);

}  // namespace brenvolt::sra
