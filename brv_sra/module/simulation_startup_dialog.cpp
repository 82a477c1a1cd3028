#include "brv_sra/module/simulation_startup_dialog.h"

#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/module_type_library.h"

namespace brenvolt::sra {

using namespace define_task;

CSimulation::CSimulation(CSimulationAndRisk& analysis) : CTaskDialog(analysis, SimulationStartupTemplate()) {
  EnableAutomation<CSimulation>(kSimulationStartupInterface, "CSimulation", {});
}

std::vector<CAnalysisDialog::StandIn> CSimulation::StandInsOf(std::int32_t number) const {
  if (number != kRunSimulation) return {};
  return {{"OK", CallKind::kMethod, {}}};
}

// The simulation is started as from the startup dialog, and returns there.
bool CSimulation::OnCommand(std::int32_t number) {
  const StartupTask* task = FindStartupTask(number);
  if (task == nullptr) return CTaskDialog::OnCommand(number);
  const bool runs = number == kRunSimulation;
  StartTask(*task, runs ? step::kSimulationFromStartup : task->step);
  return true;
}

bool CSimulation::OnOk() {
  return OnCommand(kRunSimulation);
}

}  // namespace brenvolt::sra
