#include "brv_sra/simulation/simulation_results_dialog.h"

#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/type_library.h"
#include "brv_sra/simulation/simulation_run.h"
#include "brv_sra/simulation/simulation_state.h"

namespace brenvolt::sra {

CSimulationResults::CSimulationResults(CSimulationAndRisk& analysis)
    : CSimulationAndRiskModelessDialog(analysis, SimulationResultsTemplate()) {
  EnableAutomation<CSimulationResults>(kSimulationResultsInterface, "CSimulationResults", {});
}

bool CSimulationResults::OnOk() {
  const SimulationState& state = SimulationAndRisk().Simulation();
  const auto& output = state.output;
  if (output == nullptr || !output->HasTable()) return false;
  Analysis().Interface().ShowDocument(
      std::make_shared<CAnalysisTableDoc>(SimulationSummary(output->Table())));
  const bool pairs = state.correlations && output->Table().VariableCount() > 1;
  if (pairs) {
    Analysis().Interface().ShowDocument(
        std::make_shared<CAnalysisTableDoc>(CorrelationSummary(output->Table(), *state.correlations)));
  }
  return true;
}

}  // namespace brenvolt::sra
