// Simulation from distributions: the checks of the run's options, the run, and its report. Sequence steps 104
// and 106.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "brv_sra/frame/dialog_base.h"
#include "brv_sra/simulation/simulation_pieces.h"
#include "brv_sra/simulation/simulation_run.h"
#include "brv_sra/simulation/simulation_state.h"

namespace brenvolt::sra {

class CSimulationFromDistribution : public CSimulationAndRiskModelessDialog {
 public:
  explicit CSimulationFromDistribution(AnalysisServices& analysis);

  // The variables to simulate, numbered from 1. Throws Error for one without distribution properties.
  void SelectVariables(const std::vector<std::int16_t>& variables);
  // Those of them that take no part. Throws Error for one that is not simulated.
  void Exclude(const std::vector<std::int16_t>& variables);
  // The correlation matrix by its name beside the input; that of the input for an empty name. Throws Error where there
  // is none.
  void ChooseMatrix(const std::string& name);
  // The correlation matrix of the design, read from a matrix sheet. Throws Error for any other sheet.
  void SetCorrelationMatrix(const Spreadsheet& sheet);
  // The variables are those of the member Variables; the simulated data can be saved.
  std::string_view WithoutMeaning(DispatchId resultsMember) const override;
  void PutResultsVariables(const Variant& variables) override;
  // Validates, runs, shows the new spreadsheet and returns it; the dialog stays. Null for the method that
  // produces nothing. Throws Error when a check or the run fails, which has then said why.
  std::shared_ptr<CAnalysisTableDoc> SimulationResults();
  // Validates and runs, and writes the samples to a file instead of a spreadsheet, in pieces, so that the
  // limit of the sample matrix does not count: NumPy arrays if the name ends in .npz, or separated
  // values; to no file if the name is empty. Shows and returns the summary; null for the method that
  // produces nothing. Throws Error when a check or the run fails, for the methods that induce correlation,
  // and when the file cannot be written; it is then as it was.
  std::shared_ptr<CAnalysisTableDoc> SimulationFile(const std::filesystem::path& file);

 protected:
  void OnInitDialog() override;
  bool OnCommand(std::int32_t number) override;
  // Validates, runs, shows the new spreadsheet and moves on to the results.
  bool OnOk() override;
  void OnControlChanged(std::int32_t number) override;

 private:
  SimulationOptions& Options() { return Services().Simulation().options; }
  bool AskForVariables();
  bool AskForExcluded();
  // The variables that a person chooses in place of the present ones; nothing if they cancelled.
  std::optional<std::vector<std::int16_t>> ChosenOf(const std::vector<std::int16_t>& present,
                                                    std::int32_t caption, std::int32_t listCaption) const;
  void ListMatrices();
  void TakeMatrixChoice();
  void ShowVariables();
  enum class Outcome : std::uint8_t { kFailed, kNothing, kProduced };

  // What bounds the number of samples.
  enum class OutputLimit : std::uint8_t { kSheet, kNone };

  bool Validate(OutputLimit limit);
  bool ValidateNumberOfSamples(OutputLimit limit);
  bool ValidateSeed();
  Outcome ValidateAndRun();
  // The given matrix, or the input if it is one, or the one saved with fits of the input, in this analysis or beside it;
  // null without any. Throws Error for one that is not valid.
  const MatrixFile* CorrelationMatrix();
  // Gives the design its correlations by name; a message, and false, if there are none.
  bool AttachCorrelations(SimulationDesign& design);
  Outcome Run();
  Result<SampleSummaries> RunInPieces(const std::filesystem::path& file);
  // Shows what a run failed by.
  Outcome Report(const Fault& fault) const;
  // Shows what a run made and keeps it.
  void Produce(SimulationRun run);
  // Into the last output if that is to be updated, otherwise as a new spreadsheet.
  void ShowOutput(std::unique_ptr<Spreadsheet> output);
  // The message about a repaired matrix, and the matrix as a document.
  void ShowRepair(const SimulatedCorrelations& correlations);

  std::optional<MatrixFile> kept_;  // the matrix that was last found to be kept with the input
};

}  // namespace brenvolt::sra
