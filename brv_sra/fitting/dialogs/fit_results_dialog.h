// The fit results: per variable the ranked distributions with their tests, the summary of moments, the graphs
// of a fit, and the saving of fits onto the variables of the input. Sequence step 103.
//
// The results belong to the committed specification. Graphs and correlations read the values again from the
// input, with the case selection, weights and missing-data deletion of the fit.
//
// What a person does by a button, automation does by a member; a fault is a message to the one and an
// exception to the other.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "brv_sra/fitting/dialogs/fit_result_graphs.h"
#include "brv_sra/fitting/fit_run.h"
#include "brv_sra/fitting/fit_state.h"
#include "brv_sra/frame/dialog_base.h"
#include "host/analysis/analysis_graph_doc.h"
#include "host/analysis/analysis_table_doc.h"

namespace brenvolt::sra {

class CFitDistributionResults : public CSimulationAndRiskModelessDialog {
 public:
  explicit CFitDistributionResults(AnalysisServices& analysis);

  FitState& Results() const { return Services().Fit(); }
  // The variable at a place among the results, from 1. Throws Error if there is none.
  VariableFit& VariableAt(int place) const;
  // The variables of the Quick and of the Save/plot tab.
  VariableFit& QuickVariable() const;
  VariableFit& SaveVariable() const;
  // The names of a variable's valid fits, best first, each once: untranslated, with their blanks. Nothing
  // if there is no such variable (from 0).
  std::optional<std::vector<std::string>> FittedDistributions(int variable) const;

  // What the buttons of the same meaning do; each shows its document and returns it. Throws
  // CDispatchException with the text to show: 10246 for a variable that could not be fitted.
  std::shared_ptr<CAnalysisTableDoc> ShowSummaryStatistics();
  std::shared_ptr<CAnalysisTableDoc> ShowDistributionSummary(const VariableFit& variable);
  std::shared_ptr<CAnalysisTableDoc> ShowDetails();
  std::shared_ptr<CAnalysisGraphDoc> ShowPlot(FitPlot plot);
  // The correlation matrix file of the selected variables with a valid fit. Says which correlations are not
  // defined.
  std::shared_ptr<CAnalysisTableDoc> ShowCorrelationMatrix();
  // Writes the fits of the selected variables as properties of the input's variables, and shows and returns
  // the correlation matrix file that goes with them: over the variables just saved, continuous ones first,
  // and those that carry earlier fits. Null, and nothing was written, if the input is not available.
  // Throws when a truncation is not complete or no selected variable has a valid fit, but then marks the
  // variables as without a fit.
  std::shared_ptr<CAnalysisTableDoc> SaveFits();
  // The same, and on to the simulation. Throws Error without an input.
  void SaveAndSimulate();

  // All Results… members have a meaning. The variables are those of the member Variables.
  std::string_view WithoutMeaning(DispatchId /*resultsMember*/) const override { return {}; }
  std::string_view KindWithoutMeaning(std::int32_t kind) const override;
  void PutResultsVariables(const Variant& variables) override;

  // Shows the settings of the Save/plot tab's variable after a change of them.
  void ShowSaveSettings();

 protected:
  void OnInitDialog() override;
  bool OnCommand(std::int32_t number) override;
  // OK shows the summary statistics and leaves the dialog open.
  bool OnOk() override;
  void OnControlChanged(std::int32_t number) override;

 private:
  bool Move(std::int32_t variableList, int by);
  void MoveInOrder(int by);
  void LeaveOutOfOrder();
  void ListDistributions();
  void TakeTruncation();
  const DistributionFit& ChosenFit() const;
  void RequireFitted(const VariableFit& variable) const;
  CaseSet Cases() const;
  // Of the cases that were asked for, if any were.
  std::vector<double> SortedValues(const VariableFit& variable);
  // The table of the chosen fit at the points that were asked for.
  std::shared_ptr<CAnalysisTableDoc> ShowPoints();
  // What OK makes: the kind of result that was asked for, by default the summary statistics.
  void ShowKind(std::int32_t kind);
  std::shared_ptr<CAnalysisTableDoc> Show(std::unique_ptr<Spreadsheet> table);
  std::shared_ptr<CAnalysisTableDoc> ShowCorrelations(const std::vector<int>& variables);
};

}  // namespace brenvolt::sra
