#include "brv_sra/simulation/simulation_dialog.h"

#include <array>

#include "brv_sra/frame/control_members.h"
#include "brv_sra/frame/sequence_table.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/simulation/simulation_run.h"
#include "host/automation/variable_list.h"
#include "host/base/error.h"
#include "host/base/number_text.h"

namespace brenvolt::sra {
namespace {

using namespace simulation_dialog;
using Dialog = CSimulationFromDistribution;
using Indexes = std::span<const Variant>;
using Member = AutomationMember<Dialog>;

struct MethodButton {
  std::int32_t control;
  SimulationMethod method;
};
constexpr std::array<MethodButton, 2> kMethodButtons{
    {{kMonteCarlo, SimulationMethod::kMonteCarlo}, {kLatinHypercube, SimulationMethod::kLatinHypercube}}};

Variant GetVariables(Dialog& dialog, Indexes) {
  return dialog.Controls().Text(kVariableList);
}
void PutVariables(Dialog& dialog, Indexes, const Variant& value) {
  if (dialog.GetInputTable() == nullptr) throw Error("no input spreadsheet");
  dialog.SelectVariables(VariableNumbers(value, dialog.GetInputTable()->VariableCount()));
}

constexpr std::array<Member, 7> kMembers{{
    {"Variables", 0x60030000, 0, GetVariables, PutVariables},
    {"MonteCarloMethod", 0x60030002, 0, GetChecked<Dialog, kMonteCarlo>, PutChosen<Dialog, kMonteCarlo>},
    {"LHSMethod", 0x60030004, 0, GetChecked<Dialog, kLatinHypercube>, PutChosen<Dialog, kLatinHypercube>},
    {"NumberOfSamples", 0x6003000c, 0, GetNumber<Dialog, kNumberOfSamples>,
     PutText<Dialog, kNumberOfSamples>},
    {"IsSeedRandomNumber", 0x6003000e, 0, GetChecked<Dialog, kSeedSwitch>, PutChecked<Dialog, kSeedSwitch>},
    {"RandomSeedNumber", 0x60030010, 0, GetNumber<Dialog, kSeed>, PutText<Dialog, kSeed>},
    {"TruncateSimulationData", 0x60030012, 0, GetChecked<Dialog, kTruncate>, PutChecked<Dialog, kTruncate>},
}};

}  // namespace

CSimulationFromDistribution::CSimulationFromDistribution(CSimulationAndRisk& analysis)
    : CSimulationAndRiskModelessDialog(analysis, SimulationTemplate()) {
  EnableAutomation<CSimulationFromDistribution>("SRASimulationFromDistribution",
                                                "CSimulationFromDistribution", kMembers);
}

void CSimulationFromDistribution::OnInitDialog() {
  SimulationOptions& options = Options();
  const CSimulationAndRisk::NumericDefaults& defaults = SimulationAndRisk().Defaults();
  if (options.numberOfSamples == 0) options.numberOfSamples = defaults.numberOfSamples;
  if (IsNotSet(options.seed)) options.seed = defaults.randomSeed;
  if (options.variables.empty() && GetInputTable() != nullptr) {
    options.variables = VariablesWithDistributions(*GetInputTable());
  }
  Controls().SetDlgItemLong(kNumberOfSamples, options.numberOfSamples);
  Controls().SetChecked(kSeedSwitch, options.seeded);
  Controls().SetText(kSeed, ShortestNumber(options.seed));
  Controls().SetChecked(kTruncate, options.truncate);
  for (const MethodButton& button : kMethodButtons) {
    if (button.method == options.method) Controls().SetChecked(button.control, true);
  }
  ShowVariables();
}

void CSimulationFromDistribution::ShowVariables() {
  const auto& variables = Options().variables;
  Controls().SetText(kVariableList,
                     variables.empty() ? szLoadResString(kFitListEmpty) : Analysis().dsplst(variables));
}

bool CSimulationFromDistribution::OnCommand(std::int32_t number) {
  if (number == kVariables) return AskForVariables();
  return CSimulationAndRiskModelessDialog::OnCommand(number);
}

void CSimulationFromDistribution::OnControlChanged(std::int32_t number) {
  SimulationOptions& options = Options();
  for (const MethodButton& button : kMethodButtons) {
    if (button.control == number) options.method = button.method;
  }
  if (number == kSeedSwitch) options.seeded = Controls().IsChecked(kSeedSwitch);
  if (number == kTruncate) options.truncate = Controls().IsChecked(kTruncate);
}

bool CSimulationFromDistribution::AskForVariables() {
  if (GetInputTable() == nullptr) return false;
  VariableQuestion question;
  question.caption = szLoadResString(kFitSelectVariables);
  question.firstListCaption = szLoadResString(kFitSelectContinuous);
  for (std::size_t i = 0; i < GetInputTable()->VariableCount(); ++i) {
    question.names.push_back(GetInputTable()->VariableAt(i).Name());
  }
  question.first = Options().variables;
  if (!Analysis().Interface().SelectVariables(question)) return false;
  SelectVariables(question.first);
  return true;
}

void CSimulationFromDistribution::SelectVariables(const std::vector<std::int16_t>& variables) {
  const auto available = VariablesWithDistributions(*GetInputTable());
  for (const std::int16_t number : variables) {
    if (std::ranges::find(available, number) == available.end()) {
      throw Error("variable " + Analysis().get_vn(number) + " has no fitted distribution",
                  GetInputTable()->Name());
    }
  }
  Options().variables = variables;
  ShowVariables();
}

bool CSimulationFromDistribution::OnOk() {
  const bool samplesValid = ValidateNumberOfSamples();
  const bool seedValid = ValidateSeed();
  if (!samplesValid || !seedValid) return false;
  if (Options().variables.empty()) {
    ShowMessage(kMsgNoDistributionsInInput);
    return false;
  }
  if (!Run()) return false;
  if (SimulationAndRisk().Simulation().output != nullptr) GoToStep(step::kSimulationResults);
  return true;
}

bool CSimulationFromDistribution::ValidateNumberOfSamples() {
  std::int32_t samples = 0;
  if (Controls().GetDlgItemLong(kNumberOfSamples, samples) != 0 || samples < 1) {
    ShowMessage(kMsgInvalidNumberOfSamples);
    return false;
  }
  Options().numberOfSamples = samples;
  if (FitsSampleLimit(Options().variables.size(), samples)) return true;
  ShowMessage(kMsgTooManySamples);
  return false;
}

// Only the lower bound of a seed is enforced, although the message names an upper one.
bool CSimulationFromDistribution::ValidateSeed() {
  std::int32_t seed = 0;
  const bool readable = Controls().GetDlgItemLong(kSeed, seed) == 0;
  if (readable && seed >= 0) {
    Options().seed = seed;
    return true;
  }
  if (!Options().seeded) {
    Options().seed = readable ? seed : kNotSet;
    return true;
  }
  ShowMessage(kMsgInvalidSeed);
  Options().seed = SimulationAndRisk().Defaults().randomSeed;
  Controls().SetText(kSeed, ShortestNumber(Options().seed));
  return false;
}

bool CSimulationFromDistribution::Run() {
  SimulationState& state = SimulationAndRisk().Simulation();
  SimulationRun run;
  try {
    const SimulationDesign design = ReadDesign(*GetInputTable(), state.options);
    run = RunSimulation(design, state.options.seeded, state.options.seed, Analysis().Interface());
  } catch (const Error& error) {
    Analysis().ShowMessage(error.what(), error.Where());
    return false;
  } catch (const UserCancelled&) {
    return false;
  }
  if (!Report(run)) return false;
  if (run.output == nullptr) return true;
  state.output = std::make_shared<CAnalysisTableDoc>(std::move(run.output));
  // Simulated data open as a spreadsheet of their own, whatever the option says.
  CAnalysisDoc& document = *Analysis().Document();
  const bool toWorkbook = document.ResultsToWorkbook();
  document.SetResultsToWorkbook(false);
  Analysis().Interface().ShowDocument(state.output);
  document.SetResultsToWorkbook(toWorkbook);
  return true;
}

bool CSimulationFromDistribution::Report(const SimulationRun& run) const {
  if (run.status == SimulationStatus::kSuccess) return true;
  const bool memory = run.status == SimulationStatus::kMemoryFailure;
  Analysis().ShowMessage(szLoadResString(memory ? kMsgInsufficientMemory : kMsgSimulationFailedDistributions),
                         run.where);
  return false;
}

}  // namespace brenvolt::sra
