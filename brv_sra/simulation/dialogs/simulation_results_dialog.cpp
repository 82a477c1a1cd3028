#include "brv_sra/simulation/dialogs/simulation_results_dialog.h"

#include <new>

#include "brv_sra/frame/captioned_progress.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/module_type_library.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/simulation/dialogs/simulation_documents.h"
#include "brv_sra/simulation/simulation_state.h"
#include "host/base/error.h"

namespace brenvolt::sra {

CSimulationResults::CSimulationResults(CSimulationAndRisk& analysis)
    : CSimulationAndRiskModelessDialog(analysis, SimulationResultsTemplate()) {
  EnableAutomation<CSimulationResults>(kSimulationResultsInterface, "CSimulationResults", {});
}

bool CSimulationResults::OnOk() {
  try {
    return ShowSummaries();
  } catch (const UserCancelled&) {
    return false;
  } catch (const std::bad_alloc&) {
    ShowMessage(kMsgInsufficientMemory);
    return false;
  }
}

bool CSimulationResults::ShowSummaries() {
  const SimulationState& state = SimulationAndRisk().Simulation();
  const auto& output = state.output;
  if (output == nullptr || !output->HasTable()) return false;
  UserInterface& interface = Analysis().Interface();
  const Spreadsheet& table = output->Table();
  const RunProgress bars = CaptionedProgress(interface);
  interface.ShowDocument(
      std::make_shared<CAnalysisTableDoc>(SummarySheet(table.Title(), SummarizeOutput(table, bars))));
  if (!state.correlations || table.VariableCount() < 2) return true;
  interface.ShowDocument(std::make_shared<CAnalysisTableDoc>(
      CorrelationSummary(table, *state.correlations, CorrelateOutput(table, bars))));
  return true;
}

}  // namespace brenvolt::sra
