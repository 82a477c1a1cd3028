// The simulation results: OK shows the summary of the simulated variables. Sequence step 105.
#pragma once

#include "brv_sra/frame/dialog_base.h"

namespace brenvolt::sra {

class CSimulationResults : public CSimulationAndRiskModelessDialog {
 public:
  explicit CSimulationResults(CSimulationAndRisk& analysis);

 protected:
  bool OnOk() override;
};

}  // namespace brenvolt::sra
