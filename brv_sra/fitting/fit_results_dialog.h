// The fit results: per variable the ranked distributions and the summary of moments, and the saving of fits
// onto the variables of the input. Sequence step 103.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "brv_sra/fitting/fit_state.h"
#include "brv_sra/frame/dialog_base.h"
#include "host/analysis/analysis_table_doc.h"

namespace brenvolt::sra {

class CFitDistributionResults : public CSimulationAndRiskModelessDialog {
 public:
  explicit CFitDistributionResults(CSimulationAndRisk& analysis);

  const FitState& Results() const { return SimulationAndRisk().Fit(); }
  // The display names of a variable's valid fits, best first; nothing where there is no such variable (from
  // 0).
  std::optional<std::vector<std::string>> FittedDistributions(int variable) const;

  // What the buttons of the same meaning do; each shows its document and returns it.
  std::shared_ptr<CAnalysisTableDoc> ShowSummaryStatistics();
  std::shared_ptr<CAnalysisTableDoc> ShowDistributionSummary();
  // Writes the valid fits of every variable as properties of the input's variables. Returns the number of
  // variables written.
  int SaveFits();

 protected:
  void OnInitDialog() override;
  bool OnCommand(std::int32_t number) override;
  // OK shows the summary statistics and leaves the dialog open.
  bool OnOk() override;
  void OnControlChanged(std::int32_t number) override;

 private:
  const VariableFit& ShownVariable() const;
  RankingCriterion CriterionOf(const VariableFit& fit) const;
  void ListDistributions();
  std::shared_ptr<CAnalysisTableDoc> Show(std::unique_ptr<Spreadsheet> table);
};

}  // namespace brenvolt::sra
