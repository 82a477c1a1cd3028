#include "brv_sra/simulation/dialogs/simulation_results_dialog.h"

#include <memory>
#include <numeric>
#include <utility>

#include "brv_sra/frame/captioned_progress.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/module_type_library.h"
#include "brv_sra/simulation/dialogs/simulation_documents.h"
#include "brv_sra/simulation/simulation_state.h"
#include "host/automation/dialog_interface.h"
#include "host/automation/variable_list.h"
#include "host/base/error.h"

namespace brenvolt::sra {
namespace {

constexpr std::int32_t kSummaryKind = 6;  // scSummaryStats

std::vector<std::size_t> AllOf(const Spreadsheet& sheet) {
  std::vector<std::size_t> places(sheet.VariableCount());
  std::iota(places.begin(), places.end(), std::size_t{0});
  return places;
}

// The rows and columns of some of k variables.
std::vector<double> Among(const std::vector<double>& matrix, const std::vector<std::size_t>& places,
                          std::size_t k) {
  std::vector<double> part;
  for (const std::size_t i : places) {
    for (const std::size_t j : places) part.push_back(matrix[i * k + j]);
  }
  return part;
}

SimulatedCorrelations Among(const SimulatedCorrelations& whole, const std::vector<std::size_t>& places,
                            std::size_t k) {
  SimulatedCorrelations part = whole;
  part.asked = Among(whole.asked, places, k);
  if (part.repair) part.repair->matrix = Among(whole.repair->matrix, places, k);
  return part;
}

}  // namespace

CSimulationResults::CSimulationResults(AnalysisServices& analysis)
    : CSimulationAndRiskModelessDialog(analysis, SimulationResultsTemplate()) {
  EnableAutomation<CSimulationResults>(kSimulationResultsInterface, "CSimulationResults", {});
}

std::string_view CSimulationResults::WithoutMeaning(DispatchId resultsMember) const {
  return resultsMember == common_member::kResultsValues ? "simulated data have no chosen fit" : "";
}

std::string_view CSimulationResults::KindWithoutMeaning(std::int32_t kind) const {
  return kind == kSummaryKind ? "" : "simulated data have scSummaryStats alone";
}

void CSimulationResults::PutResultsVariables(const Variant& variables) {
  const auto& output = Services().Simulation().output;
  if (output == nullptr || !output->HasTable()) throw Error("there are no simulated data");
  variables_.clear();
  for (const std::int16_t number : VariableNumbers(variables, output->Table().VariableCount()))
    variables_.push_back(static_cast<std::size_t>(number - 1));
}

bool CSimulationResults::OnOk() {
  bool shown = false;
  return Attempt([&] { shown = ShowSummaries(); }) && shown;
}

// The first table is the one that is asked for.
bool CSimulationResults::ShowSummaries() {
  const SimulationState& state = Services().Simulation();
  const auto& output = state.output;
  if (output == nullptr || !output->HasTable()) return false;
  Request().kind.reset();
  const CaseChoice choice = std::exchange(Request().cases, {});
  std::vector<std::size_t> variables = std::exchange(variables_, {});
  std::unique_ptr<Spreadsheet> part;
  if (!variables.empty() || choice.IsGiven()) {
    if (variables.empty()) variables = AllOf(output->Table());
    part = PartOf(output->Table(), variables,
                  choice.IsGiven() ? ChosenCases(choice, output->Table()) : std::vector<std::uint8_t>());
  }
  const Spreadsheet& table = part != nullptr ? *part : output->Table();
  const RunProgress bars = CaptionedProgress(Analysis().Interface());
  Present(std::make_shared<CAnalysisTableDoc>(SummarySheet(table.Title(), SummarizeOutput(table, bars))));
  if (!state.correlations || table.VariableCount() < 2) return true;
  const SimulatedCorrelations correlations =
      part != nullptr ? Among(*state.correlations, variables, output->Table().VariableCount())
                      : *state.correlations;
  Present(std::make_shared<CAnalysisTableDoc>(
      CorrelationSummary(table, correlations, CorrelateOutput(table, bars))));
  return true;
}

}  // namespace brenvolt::sra
