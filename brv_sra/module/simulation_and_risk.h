// The analysis object: the one thing that the host asks the module for. It owns what outlives a single dialog
// and starts every dialog of the analysis through a fixed table of sequence steps. Dialogs know it as `AnalysisServices`.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "brv_sra/distributions/specification.h"
#include "brv_sra/frame/analysis_services.h"

namespace brenvolt::sra {

class BRENVOLT_EXPORT CSimulationAndRisk : public AnalysisServices {
 public:
  // `document` may be null.
  explicit CSimulationAndRisk(CAnalysisDoc* document);
  ~CSimulationAndRisk() override;

  void Initialize() override;
  bool ForwardSequence(int from, int to) const override;
  InstanceHandle GetLibInstance() const override;
  int GetAnalysisID() const override;
  std::string GetAnalysisName() const override;

  // Step 100: hands the module's blocks to the base and clears the one-shot flag. Returns 1, however often it
  // is called.
  std::int32_t Init();

  // Entry methods of the sequence's dialogs: -1 when the dialog is open, 0 when it could not be made.
  std::int32_t StartAnalysis();
  std::int32_t SimulationStartupDialog();
  std::int32_t FitDistributionDialog();
  std::int32_t FitDistributionResultsDialog();
  std::int32_t DesignSimulationDialog();
  std::int32_t SimulationFromDistributionDialog();
  std::int32_t SimulationResultsDialog();
  std::int32_t SimulationProfilerDialog();

  // More of the correlation matrix file; each returns nonzero for success.
  //
  // Makes a matrix of uncorrelated variables, shows it, and attaches it as the input. The person chooses the
  // variables from the input's; under automation they are those of Matrix().variables.
  std::int32_t CreateAndAttachCorrelationInputFile();
  // Reads number and names of the input's variables; 0 without an input. Nothing is read, and the answer is 1, while the
  // profiler works with formulas.
  std::int32_t UpdateFromInputMatrixFile();
  // Whether the matrix last validated is symmetric, exactly, with a diagonal of exactly 1.
  std::int32_t IsCorrelationMatrixSymmetric();

  void SetAutoProfiler(bool on) { autoProfiler_ = on; }

  // The host's startup menus, and its case selection conditions and case weights, for this analysis; all are
  // on until a task is started that has no use for them.
  void EnableStartupMenus(bool on) { startupMenus_.startupMenusEnabled = on; }
  void EnableCaseSettings(bool on) {
    caseSelection_.caseSelectionEnabled = on;
    weights_.caseWeightsEnabled = on;
  }

  DistributionSpecification& Specification() { return specification_; }

  FitState& Fit() override { return *fit_; }
  MatrixState& Matrix() override { return *matrix_; }
  SimulationState& Simulation() override { return *simulation_; }
  ProfilerState& Profiler() override { return *profiler_; }
  const NumericDefaults& Defaults() const override { return defaults_; }
  bool AutoProfiler() const override { return autoProfiler_; }
  bool OpenData() override;
  bool MayFitInput() const override;
  std::int32_t ValidateInputMatrixFile(WindowHandle parent = nullptr) override;
  std::int32_t ValidateOrDesignInputMatrixFile() override;
  std::int32_t UpdateFromInputSpreadsheet() override;

 private:
  DistributionSpecification specification_;
  std::unique_ptr<FitState> fit_;
  std::unique_ptr<MatrixState> matrix_;
  std::unique_ptr<SimulationState> simulation_;
  std::unique_ptr<ProfilerState> profiler_;
  NumericDefaults defaults_;
  bool autoProfiler_ = false;
  CaseSelectionBlock caseSelection_;
  StartupMenuBlock startupMenus_;
  CaseCountBlock counts_;
  CaseWeightBlock weights_;
};

}  // namespace brenvolt::sra

// The module's factory: a new analysis without a document, which the host owns and deletes through its
// virtual destructor; null when memory is short.
extern "C" BRENVOLT_EXPORT brenvolt::sra::CSimulationAndRisk* Kro6NewAnalysis();
