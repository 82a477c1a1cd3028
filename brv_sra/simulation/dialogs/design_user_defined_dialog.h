// The user-defined types: a Gaussian mixture of 2 to 20 components, or a histogram of codes whose proportions add up to 1,
// with all components or classes in a list and the layout of their values in a note.
#pragma once

#include <string>

#include "brv_sra/distributions/specification.h"
#include "brv_sra/frame/dialog_base.h"
#include "brv_sra/frame/distribution_fields.h"

namespace brenvolt::sra {

class DesignSimUserDefinedModalDlg : public CSimulationAndRiskModalDialog {
 public:
  // Starts from a distribution of the variable, if that is user-defined; null: from none. It must outlive the dialog.
  DesignSimUserDefinedModalDlg(CSimulationAndRisk& analysis, std::string variable,
                               const DistributionSpecification* start);

  // What was entered, once OK was taken.
  const DistributionSpecification& Entered() const { return fields_.Edited(); }

 protected:
  void OnInitDialog() override;
  bool OnOk() override { return fields_.Taken().has_value(); }
  void OnControlChanged(std::int32_t number) override;

 private:
  void Start(DistributionCode code);
  void ShowAll();

  std::string variable_;
  const DistributionSpecification* start_;
  DistributionFields fields_;
};

}  // namespace brenvolt::sra
