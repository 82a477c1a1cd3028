// Correlations, means and standard deviations of a design. Correlations are entered pair by pair, or in the editor of the
// whole matrix, whose upper triangle counts. The dialog says whether the matrix of the variables that take part is
// positive definite, and what a repair would change.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "brv_sra/frame/dialog_base.h"
#include "brv_sra/simulation/design_state.h"

namespace brenvolt::sra {

class DesignSimCorrelationParamsModalDlg : public CSimulationAndRiskModalDialog {
 public:
  // The design must outlive the dialog; OK writes into it.
  DesignSimCorrelationParamsModalDlg(AnalysisServices& analysis, DesignState& design);

 protected:
  void OnInitDialog() override;
  bool OnCommand(std::int32_t number) override;
  bool OnOk() override;
  void OnControlChanged(std::int32_t number) override;

 private:
  std::size_t Selected(std::int32_t list) const;
  double& Correlation(std::size_t i, std::size_t j);
  void ShowPair();
  void ShowMatrix();
  // On the correlations of the variables that take part.
  MatrixVerdict VerdictOn(std::span<const double> correlations) const;
  void ShowVerdict();
  void ShowSummaries();
  void TakeCorrelation();
  void TakeSummary(std::int32_t control);

  DesignState& target_;
  DesignState edited_;
};

}  // namespace brenvolt::sra
