// The definition of a distribution: one of the sixteen, its parameters, offset and bounds.
#pragma once

#include <string>

#include "brv_sra/simulation/dialogs/entered_distribution_dialog.h"

namespace brenvolt::sra {

class DesignSimDistributionModalDlg : public EnteredDistributionDialog {
 public:
  DesignSimDistributionModalDlg(AnalysisServices& analysis, std::string variable,
                                const DistributionSpecification* start);

 protected:
  void OnInitDialog() override;
  void OnControlChanged(std::int32_t number) override;
};

}  // namespace brenvolt::sra
