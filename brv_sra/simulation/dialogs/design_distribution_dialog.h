// The definition of a distribution: one of the sixteen types, its parameters, offset and bounds. An entry that is not valid
// is refused where it is made, and OK refuses entries that do not make a distribution.
#pragma once

#include <string>

#include "brv_sra/distributions/specification.h"
#include "brv_sra/frame/dialog_base.h"
#include "brv_sra/frame/distribution_fields.h"

namespace brenvolt::sra {

class DesignSimDistributionModalDlg : public CSimulationAndRiskModalDialog {
 public:
  // Starts from a distribution of the variable; null: from none. It must outlive the dialog.
  DesignSimDistributionModalDlg(CSimulationAndRisk& analysis, std::string variable,
                                const DistributionSpecification* start);

  // What was entered, once OK was taken.
  const DistributionSpecification& Entered() const { return fields_.Edited(); }

 protected:
  void OnInitDialog() override;
  bool OnOk() override { return fields_.Taken().has_value(); }
  void OnControlChanged(std::int32_t number) override;

 private:
  std::string variable_;
  const DistributionSpecification* start_;
  DistributionFields fields_;
};

}  // namespace brenvolt::sra
