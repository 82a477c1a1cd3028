// The user-defined distributions: a Gaussian mixture of 2 to 20 components, or a histogram of codes whose proportions add up to 1,
// with all components or classes in a list and the layout of their values in a note.
#pragma once

#include <string>

#include "brv_sra/simulation/dialogs/entered_distribution_dialog.h"

namespace brenvolt::sra {

class DesignSimUserDefinedModalDlg : public EnteredDistributionDialog {
 public:
  // A start that is not user-defined counts as none.
  DesignSimUserDefinedModalDlg(AnalysisServices& analysis, std::string variable,
                               const DistributionSpecification* start);

 protected:
  void OnInitDialog() override;
  void OnControlChanged(std::int32_t number) override;

 private:
  void Start(DistributionCode code);
  void ShowAll();
};

}  // namespace brenvolt::sra
