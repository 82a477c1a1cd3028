// What the predictors of the profiler are drawn from beyond what it starts with: the distributions saved with their
// columns, those that a person gives, and their correlations. All of it reaches the open dialog by its members.
#pragma once

#include <string>
#include <vector>

#include "host/jobs/design_job.h"
#include "host/jobs/profile/profile_results.h"

namespace brenvolt {

// The distributions, best ones first, that the variables of a sheet carry, read in an analysis of their own.
DesignText SavedDistributions(ProgramInterface& interface, Spreadsheet& sheet);

class PredictorInputs {
 public:
  // Of the profiler that the session has open. All must outlive this.
  PredictorInputs(AnalysisSession& session, const std::vector<std::string>& predictors);

  // What a predictor is drawn from, as the dialog has it; empty if that is not known.
  Variant SpecificationOf(std::size_t predictor) const;
  void Put(std::size_t predictor, const Variant& specification) const;
  // Of the variables that are predictors. One that is drawn from its categories stays so; what is truncated to the range
  // that a model declares stays within it unless the saved distribution has bounds of its own.
  void TakeSaved(const DesignText& saved) const;
  // Returns the variables that no model reads, which are passed over: a text file may hold more, and so may inputs that
  // are all there is, without data. Throws WrongJob for another one, which is meant to replace a predictor's column.
  std::vector<std::string> TakeGiven(const HandInputs& inputs, bool areAll) const;
  // Correlates the predictors as their columns are, as a matrix has it where there is one, and over these as pairs say.
  // Pairs of which one is no predictor are passed over.
  void Correlate(bool asColumns, const Table& matrix, const std::vector<NotedCorrelation>& pairs) const;

  // Whether the column of a predictor carries a saved distribution.
  bool AnySaved(const Spreadsheet& sheet) const;
  // `simulated` are the runs.
  std::vector<PredictorUse> Uses(const Spreadsheet& simulated) const;
  // How the dialog draws them, one of kSimulationMethods.
  std::string Method() const;
  // The correlations of the predictors that are drawn, but for those of 0, of which one is there if all are; none unless
  // they are correlated.
  std::vector<NotedCorrelation> Correlations() const;

 private:
  AnalysisSession& session_;
  const std::vector<std::string>& names_;
};

// Correlates the noise of responses, each pair in the notation. Throws WrongJob; `noisy` are the responses with noise.
void CorrelateNoise(AnalysisSession& session, const std::vector<std::string>& pairs,
                    const std::vector<std::string>& responses, const std::vector<std::string>& noisy);

}  // namespace brenvolt
