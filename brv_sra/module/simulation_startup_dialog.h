// The simulation startup dialog: starts a simulation, its design, or the profiler. It is outside the
// sequence; a host opens it for a person who has fitted before.
#pragma once

#include <cstdint>
#include <vector>

#include "brv_sra/module/startup_tasks.h"

namespace brenvolt::sra {

class CSimulation : public CTaskDialog {
 public:
  explicit CSimulation(CSimulationAndRisk& analysis);

  // The button that starts the simulation is OK.
  std::vector<StandIn> StandInsOf(std::int32_t number) const override;

 protected:
  bool OnCommand(std::int32_t number) override;
  // Runs a simulation, as the button does.
  bool OnOk() override;
};

}  // namespace brenvolt::sra
