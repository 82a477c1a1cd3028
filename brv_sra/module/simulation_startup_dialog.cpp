#include "brv_sra/module/simulation_startup_dialog.h"

#include "brv_sra/frame/sequence_table.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/module_type_library.h"

namespace brenvolt::sra {

using namespace define_task;

CSimulation::CSimulation(CSimulationAndRisk& analysis)
    : CSimulationAndRiskModelessDialog(analysis, SimulationStartupTemplate()) {
  EnableAutomation<CSimulation>(kSimulationStartupInterface, "CSimulation", {});
}

void CSimulation::OnInitDialog() {
  SimulationAndRisk().EnableStartupMenus(true);
}

std::vector<CAnalysisDialog::StandIn> CSimulation::StandInsOf(std::int32_t number) const {
  if (number != kRunSimulation) return {};
  return {{"OK", CallKind::kMethod, {}}};
}

// The simulation is started as from the startup dialog, and returns there.
bool CSimulation::OnCommand(std::int32_t number) {
  const StartupTask* task = FindStartupTask(number);
  if (task == nullptr) return CSimulationAndRiskModelessDialog::OnCommand(number);
  const bool runs = number == kRunSimulation;
  former_ = StartTask(SimulationAndRisk(), *task, runs ? step::kSimulationFromStartup : task->step);
  return true;
}

void CSimulation::OnStepRefused() {
  UndoTask(SimulationAndRisk(), former_);
}

bool CSimulation::OnOk() {
  return OnCommand(kRunSimulation);
}

}  // namespace brenvolt::sra
