// What the editors of a variable's distribution share: its fields, in which an entry that is not valid is refused where it
// is made, and OK, which refuses entries that do not make a distribution.
#pragma once

#include <string>
#include <utility>

#include "brv_sra/distributions/specification.h"
#include "brv_sra/frame/dialog_base.h"
#include "brv_sra/frame/distribution_fields.h"

namespace brenvolt::sra {

class EnteredDistributionDialog : public CSimulationAndRiskModalDialog {
 public:
  // What was entered, once OK was taken.
  const DistributionSpecification& Entered() const { return fields_.Edited(); }

 protected:
  // `start` is a distribution of the variable to start from, or null; it must outlive the dialog.
  EnteredDistributionDialog(AnalysisServices& analysis, const DialogTemplate& dialog, std::string variable,
                            const DistributionSpecification* start, const DistributionControls& fields)
      : CSimulationAndRiskModalDialog(analysis, dialog),
        variable_(std::move(variable)),
        start_(start),
        fields_(*this, fields, DistributionFields::Check::kAtOnce) {}

  bool OnOk() override { return fields_.Taken().has_value(); }

  const std::string variable_;
  const DistributionSpecification* const start_;
  DistributionFields fields_;
};

}  // namespace brenvolt::sra
