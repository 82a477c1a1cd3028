// Simulation from distributions: the checks of the run's options, the run, and its report. Sequence steps 104
// and 106.
#pragma once

#include <cstdint>
#include <vector>

#include "brv_sra/frame/dialog_base.h"
#include "brv_sra/simulation/simulation_run.h"
#include "brv_sra/simulation/simulation_state.h"

namespace brenvolt::sra {

class CSimulationFromDistribution : public CSimulationAndRiskModelessDialog {
 public:
  explicit CSimulationFromDistribution(CSimulationAndRisk& analysis);

  // The variables to simulate, numbered from 1. Throws Error for one without distribution properties.
  void SelectVariables(const std::vector<std::int16_t>& variables);

 protected:
  void OnInitDialog() override;
  bool OnCommand(std::int32_t number) override;
  // Validates, runs, shows the new spreadsheet and moves on to the results.
  bool OnOk() override;
  void OnControlChanged(std::int32_t number) override;

 private:
  SimulationOptions& Options() { return SimulationAndRisk().Simulation().options; }
  bool AskForVariables();
  void ShowVariables();
  bool ValidateNumberOfSamples();
  bool ValidateSeed();
  bool Run();
  bool Report(const SimulationRun& run) const;
};

}  // namespace brenvolt::sra
