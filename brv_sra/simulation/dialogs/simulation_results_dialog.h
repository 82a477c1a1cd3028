// The simulation results: OK shows the summary of the simulated variables and, where correlation
// was induced, what was asked for and what was reached. Sequence step 105.
#pragma once

#include "brv_sra/frame/dialog_base.h"

namespace brenvolt::sra {

class CSimulationResults : public CSimulationAndRiskModelessDialog {
 public:
  explicit CSimulationResults(CSimulationAndRisk& analysis);

 protected:
  bool OnOk() override;

 private:
  bool ShowSummaries();
};

}  // namespace brenvolt::sra
