// "Options" of the fit specification: by which test the results are ranked, and how the chi-square test bins.
// Each radio button sets its value at once; Cancel takes nothing back.
#pragma once

#include <cstdint>

#include "brv_sra/frame/dialog_base.h"

namespace brenvolt::sra {

class FitOptionsModalDlg : public CSimulationAndRiskModalDialog {
 public:
  explicit FitOptionsModalDlg(AnalysisServices& analysis);

 protected:
  void OnInitDialog() override;
  void OnControlChanged(std::int32_t number) override;
};

}  // namespace brenvolt::sra
