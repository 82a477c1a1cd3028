// The profiler: models and formulas predict dependents from predictors that vary at random. Sequence step
// 108.
//
// States: no dependents yet; dependents listed, predictors to be specified; simulated, when the output
// buttons act on the spreadsheet of the last run. The predictors' page is profiler_predictors_dialog.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "brv_sra/frame/dialog_base.h"
#include "brv_sra/profiler/dialogs/profiler_predictors_dialog.h"
#include "brv_sra/profiler/dialogs/result_documents.h"
#include "brv_sra/profiler/profiler_models.h"
#include "brv_sra/profiler/profiler_run.h"
#include "brv_sra/profiler/profiler_state.h"
#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/analysis_table_doc.h"

namespace brenvolt::sra {

class CSimulationProfiler : public CSimulationAndRiskModelessDialog {
 public:
  explicit CSimulationProfiler(AnalysisServices& analysis);

  ProfilerState& State() const { return Services().Profiler(); }
  ProfilerDesign& Design() const { return State().design; }
  // The dependent that is edited and shown. Throws Error if there is none.
  ProfilerDependent& Selected() const;

  // Loads models from files, all or none. Throws Error.
  void LoadModels(const std::vector<std::filesystem::path>& files);
  // "Y = expression" for the dependent Y, which is made if there is none; or an expression for a dependent
  // by its place. Throws Error if there is no such dependent.
  void PutFormula(const std::string& text, std::size_t dependent);
  // Throws Error if the input has nothing to fit.
  void FitBest();
  // Updates the controls after the design has changed.
  void Refresh();

  // Results are those of one dependent, by its name or its place. A response has no chosen fit.
  std::string_view WithoutMeaning(DispatchId resultsMember) const override;
  std::string_view KindWithoutMeaning(std::int32_t kind) const override;
  void PutResultsVariables(const Variant& variables) override;

  // What the buttons make; shown and returned. They throw Error that says why they fail; a run has then shown
  // it as a message.
  std::shared_ptr<CAnalysisTableDoc> SimulationResults();
  std::shared_ptr<CAnalysisTableDoc> CapabilityStats();
  // The tables of the selected dependent are shown; returned is the first, its moments.
  std::shared_ptr<CAnalysisTableDoc> SummaryStats();
  std::shared_ptr<CAnalysisGraphDoc> SummaryGraph();
  // The table of defect rates and that of the counts are shown as well; the graph is returned.
  std::shared_ptr<CAnalysisGraphDoc> DefectProfile();

 protected:
  void OnInitDialog() override;
  bool OnCommand(std::int32_t number) override;
  // Simulates; the dialog stays.
  bool OnOk() override;
  void OnControlChanged(std::int32_t number) override;

 private:
  bool AskForModels();
  void ShowNotes(const ProfilerNotes& notes) const;
  void ShowCaptioned(std::int32_t caption, const std::string& text, const std::string& where = {}) const;
  void ShowDependents();
  void ShowNoise();
  void ShowSelected();
  void EnableOutputs();
  void TakeRuns();
  void TakeSeed();
  void TakeReal(std::int32_t control);
  bool SetShownFormula();
  bool TakeFormulaBack();

  // Runs and shows the outcome; false, after a message, where the run was stopped.
  bool Simulate();
  void Produce(ProfilerRun run);
  void ShowProfiles() const;
  // What a button does: carries `make` out; a message under the caption where it throws.
  template <class Make>
  bool Attempt(std::int32_t caption, const Make& make) const;
  // The selected dependent in the last output, over the runs that were asked for. Throws Error if that is not there.
  SimulatedResponse Response();
  const Spreadsheet& Chosen(const CaseChoice& choice);
  const VariableFit& FitOfResponse(const SimulatedResponse& response);
  void RequireSpecification() const;

  PredictorPage predictors_;
  // The fit of a dependent of a sheet, by its place: of the present output, or of the runs that were chosen last.
  std::optional<std::pair<std::size_t, VariableFit>> fit_;
  const Spreadsheet* fitted_ = nullptr;
  std::unique_ptr<Spreadsheet> chosen_;
};

}  // namespace brenvolt::sra
