// The default distributions of a design: which of the distributions that are saved with a variable becomes the person's
// own, or is left; which variables are left out; and whether the best saved distributions are simulated in place of own
// ones, which takes all bounds away.
#pragma once

#include <string>

#include "brv_sra/frame/dialog_base.h"
#include "brv_sra/simulation/design_state.h"

namespace brenvolt::sra {

// "Var1: Normal(location=1.0000, scale=2.0000) [0, ]", as lists show it: with the bounds that count.
std::string DesignLine(const DesignedVariable& variable, ParameterSource source);

class DesignSimDefaultDistributionsModalDlg : public CSimulationAndRiskModalDialog {
 public:
  // The design must outlive the dialog and have a variable; OK writes into it.
  DesignSimDefaultDistributionsModalDlg(AnalysisServices& analysis, DesignState& design);

 protected:
  void OnInitDialog() override;
  bool OnCommand(std::int32_t number) override;
  bool OnOk() override;
  void OnControlChanged(std::int32_t number) override;

 private:
  DesignedVariable& Highlighted();
  // Lines of the design after a change; what is known of the highlighted variable.
  void ShowDesign();
  void ShowHighlighted();
  bool TakeOver();
  void TakeOverAll();

  DesignState& target_;
  DesignState edited_;
};

}  // namespace brenvolt::sra
