// The analysis object: the one thing that the host asks the module for. It owns what outlives a single dialog
// and starts every dialog of the analysis through a fixed table of sequence steps. Every dialog sees the class, so that it is
// declared here; the folder module/ defines it, as it opens all dialogs and holds the state of all.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "brv_sra/distributions/specification.h"
#include "host/analysis/analysis_support.h"
#include "host/base/export.h"

namespace brenvolt::sra {

struct FitState;
struct MatrixState;
struct ProfilerState;
struct SimulationState;

class BRENVOLT_EXPORT CSimulationAndRisk : public CAnalysisSupport {
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

  // The correlation matrix file; each returns nonzero for success.
  //
  // Checks the input as a matrix file and reads it; shows a message for a fault. `parent` is the window that
  // asks. If it fails, no matrix file is attached and no values are kept.
  std::int32_t ValidateInputMatrixFile(WindowHandle parent = nullptr);
  // The same, then the names of its variables; for an input that is not a valid matrix file, asks whether to
  // create one, except under automation.
  std::int32_t ValidateOrDesignInputMatrixFile();
  // Makes a matrix of uncorrelated variables, shows it, and attaches it as the input. The person chooses the
  // variables from the input's; under automation they are those of Matrix().variables.
  std::int32_t CreateAndAttachCorrelationInputFile();
  // Reads number and names of variables of the input, which is a matrix file or data; 0 without an input. Of a
  // spreadsheet they are those that are selected for fitting, continuous ones first, and for simulation; all where none
  // is. Nothing is read, and the answer is 1, while the profiler works with formulas.
  std::int32_t UpdateFromInputMatrixFile();
  std::int32_t UpdateFromInputSpreadsheet();
  // Whether the matrix last validated is symmetric, exactly, with a diagonal of exactly 1.
  std::int32_t IsCorrelationMatrixSymmetric();

  // Lets the person choose a data file, which becomes the input; what was specified for the previous input is
  // forgotten. False, and nothing changed, when the person cancelled or the file could not be read: a message
  // has then said why.
  bool OpenData();
  // A matrix file can be fitted like other data, which is seldom meant: if the input is one, asks. False
  // when the person decides against it.
  bool MayFitInput() const;

  // Defaults of numeric settings; everything around them starts at zero. The contract prescribes all of them, also those
  // that nothing reads.
  struct NumericDefaults {
    std::int32_t reservedCount = 0;
    std::int32_t numberOfSamples = 100;
    double randomSeed = 1000.0;
    std::int32_t textLength = 256;
    const void* reservedPointer = nullptr;
  };
  const NumericDefaults& Defaults() const { return defaults_; }

  // The startup dialog's "AutoProfiler" choice, read by the profiler.
  bool AutoProfiler() const { return autoProfiler_; }
  void SetAutoProfiler(bool on) { autoProfiler_ = on; }

  // The host's startup menus, and its case selection conditions and case weights, for this analysis; all are
  // on until a task is started that has no use for them.
  void EnableStartupMenus(bool on) { startupMenus_.startupMenusEnabled = on; }
  void EnableCaseSettings(bool on) {
    caseSelection_.caseSelectionEnabled = on;
    weights_.caseWeightsEnabled = on;
  }

  DistributionSpecification& Specification() { return specification_; }
  // What the fit dialogs share, what is known of the correlation matrix, what the simulation dialogs share,
  // and what the profiler keeps.
  FitState& Fit() { return *fit_; }
  MatrixState& Matrix() { return *matrix_; }
  SimulationState& Simulation() { return *simulation_; }
  ProfilerState& Profiler() { return *profiler_; }

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
