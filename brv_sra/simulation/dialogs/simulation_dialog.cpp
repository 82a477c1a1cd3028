#include "brv_sra/simulation/dialogs/simulation_dialog.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <new>
#include <optional>
#include <utility>

#include "brv_sra/frame/captioned_progress.h"
#include "brv_sra/frame/control_members.h"
#include "brv_sra/frame/distribution_texts.h"
#include "brv_sra/frame/fault_message.h"
#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/matrix/matrix_state.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/simulation_interface.h"
#include "brv_sra/simulation/dialogs/input_matrix.h"
#include "brv_sra/simulation/dialogs/simulation_documents.h"
#include "brv_sra/simulation/saved_fits.h"
#include "brv_sra/simulation/simulation_run.h"
#include "host/analysis/run_bounds.h"
#include "host/automation/dialog_interface.h"
#include "host/automation/variable_list.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/rounds/crew.h"
#include "host/tables/csv.h"
#include "host/tables/numpy_archive.h"

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
constexpr std::array<MethodButton, 5> kMethodButtons{
    {{kMonteCarlo, SimulationMethod::kMonteCarlo},
     {kLatinHypercube, SimulationMethod::kLatinHypercube},
     {kImanConover, SimulationMethod::kImanConover},
     {kLatinHypercubeImanConover, SimulationMethod::kLatinHypercubeImanConover},
     {kNormalToAnything, SimulationMethod::kNormalToAnything}}};

Variant GetVariables(Dialog& dialog, Indexes) {
  return dialog.Controls().Text(kVariableList);
}
void PutVariables(Dialog& dialog, Indexes, const Variant& value) {
  if (dialog.GetInputTable() == nullptr) throw Error("no input spreadsheet");
  dialog.SelectVariables(VariableNumbers(value, dialog.GetInputTable()->VariableCount()));
}

Variant GetSimulationResults(Dialog& dialog, Indexes) {
  return std::shared_ptr<AutomationObject>(dialog.SimulationResults());
}

Variant GetCorrelationMatrix(Dialog& dialog, Indexes) {
  const auto& matrix = dialog.Services().Simulation().matrix;
  if (!matrix) return {};
  return std::shared_ptr<AutomationObject>(
      std::make_shared<CAnalysisTableDoc>(ValueOrThrow(MakeMatrixFile(*matrix))));
}
// Indexed by the name of the file that the samples go to.
Variant GetSimulationFile(Dialog& dialog, Indexes indexes) {
  return std::shared_ptr<AutomationObject>(dialog.SimulationFile(indexes[0].ToText()));
}

// For programs: it is not shown.
Variant GetSavedFits(Dialog& dialog, Indexes) {
  if (dialog.GetInputTable() == nullptr) throw Error("no input spreadsheet");
  const SimulationOptions& options = dialog.Services().Simulation().options;
  const auto fits =
      ValueOrThrow(SavedFits(PropertiesOf(*dialog.GetInputTable()), options.variables, options.truncate));
  return std::shared_ptr<AutomationObject>(std::make_shared<CAnalysisTableDoc>(SavedFitsSheet(fits)));
}

// Takes a spreadsheet; nothing takes the matrix away.
void PutCorrelationMatrix(Dialog& dialog, Indexes, const Variant& value) {
  if (value.IsEmpty()) return dialog.ChooseMatrix({});
  const auto document = std::dynamic_pointer_cast<CAnalysisTableDoc>(value.ToObject());
  if (document == nullptr || !document->HasTable()) throw Error("expected a spreadsheet");
  dialog.SetCorrelationMatrix(document->Table());
}

template <std::int32_t Control>
constexpr Member Method(std::string_view name) {
  return Member{name, GetChecked<Dialog, Control>, PutChosen<Dialog, Control>}.AsChoice();
}

Variant GetExcluded(Dialog& dialog, Indexes) {
  return dialog.Analysis().dsplst(dialog.Services().Simulation().options.excluded);
}
void PutExcluded(Dialog& dialog, Indexes, const Variant& value) {
  if (dialog.GetInputTable() == nullptr) throw Error("no input spreadsheet");
  dialog.Exclude(VariableNumbers(value, dialog.GetInputTable()->VariableCount()));
}

Variant GetMatrixName(Dialog& dialog, Indexes) {
  return dialog.Services().Simulation().options.matrix;
}
void PutMatrixName(Dialog& dialog, Indexes, const Variant& value) {
  dialog.ChooseMatrix(value.ToText());
}

Variant GetFileSamples(Dialog& dialog, Indexes) {
  return static_cast<double>(dialog.Services().Simulation().options.fileSamples);
}
void PutFileSamples(Dialog& dialog, Indexes, const Variant& value) {
  const double samples = value.ToReal();
  if (!(samples >= 0 && samples <= kMostFileSamples && samples == std::floor(samples)))
    throw Error("expected a whole number from 0 to " + ShortestNumber(kMostFileSamples));
  dialog.Services().Simulation().options.fileSamples = static_cast<std::int64_t>(samples);
}

// Those from CorrelationMatrix on are not members that macros knew from the start; they follow the others.
constexpr std::array<Member, 19> kMembers{{
    {"Variables", GetVariables, PutVariables},
    Method<kMonteCarlo>("MonteCarloMethod"),
    Method<kLatinHypercube>("LHSMethod"),
    Method<kImanConover>("ImanConoverMethod"),
    Method<kLatinHypercubeImanConover>("LHSwithImanMethod"),
    Method<kNormalToAnything>("NORTAMethod"),
    {"NumberOfSamples", GetNumber<Dialog, kNumberOfSamples>, PutText<Dialog, kNumberOfSamples>},
    {"IsSeedRandomNumber", GetChecked<Dialog, kSeedSwitch>, PutChecked<Dialog, kSeedSwitch>},
    {"RandomSeedNumber", GetNumber<Dialog, kSeed>, PutText<Dialog, kSeed>},
    {"TruncateSimulationData", GetChecked<Dialog, kTruncate>, PutChecked<Dialog, kTruncate>},
    {"IsAutoUpdateSameSheet", GetChecked<Dialog, kAutoUpdate>, PutChecked<Dialog, kAutoUpdate>},
    Member{"SimulationResults", GetSimulationResults, nullptr}.ByButton(kSimulate),
    {"CorrelationMatrix", GetCorrelationMatrix, PutCorrelationMatrix},
    {"SimulationFile", GetSimulationFile, nullptr},
    {"SavedFits", GetSavedFits, nullptr},
    {"ExcludedVariables", GetExcluded, PutExcluded},
    {"UseFittedDistributions", GetChecked<Dialog, kUseFitted>, PutChecked<Dialog, kUseFitted>},
    {"CorrelationMatrixName", GetMatrixName, PutMatrixName},
    {"NumberOfFileSamples", GetFileSamples, PutFileSamples},
}};
static_assert(Binds(kSimulationFromDistributionInterface, kMembers));

constexpr const char* kNothingSimulated = "nothing was simulated";

// "a, b, c"
std::string Listed(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

std::string Readable(double x) {
  return FormatNumber("%.4g", x);
}

// Means, standard deviations and number of cases for the variables of `file`, all of which `given` has.
void TakeSummaries(const MatrixFile& given, MatrixFile& file) {
  for (std::size_t i = 0; i < file.variables.size(); ++i) {
    const auto place = std::ranges::find(given.variables, file.variables[i]) - given.variables.begin();
    file.means[i] = given.means[static_cast<std::size_t>(place)];
    file.standardDeviations[i] = given.standardDeviations[static_cast<std::size_t>(place)];
  }
  file.validCases = given.validCases;
}

}  // namespace

CSimulationFromDistribution::CSimulationFromDistribution(AnalysisServices& analysis)
    : CSimulationAndRiskModelessDialog(analysis, SimulationTemplate()) {
  EnableAutomation<CSimulationFromDistribution>(kSimulationFromDistributionInterface,
                                                "CSimulationFromDistribution", kMembers);
}

// An input that is a matrix file is the correlation matrix as well.
void CSimulationFromDistribution::OnInitDialog() {
  Services().ValidateInputMatrixFile();
  SimulationOptions& options = Options();
  const AnalysisServices::NumericDefaults& defaults = Services().Defaults();
  if (options.numberOfSamples == 0) options.numberOfSamples = defaults.numberOfSamples;
  if (IsNotSet(options.seed)) options.seed = defaults.randomSeed;
  if (options.variables.empty() && GetInputTable() != nullptr) {
    options.variables = VariablesWithDistributions(PropertiesOf(*GetInputTable()));
  }
  Controls().SetDlgItemLong(kNumberOfSamples, options.numberOfSamples);
  Controls().SetChecked(kSeedSwitch, options.seeded);
  Controls().SetText(kSeed, ShortestNumber(options.seed));
  Controls().SetChecked(kTruncate, options.truncate);
  Controls().SetChecked(kAutoUpdate, options.autoUpdate);
  Controls().SetChecked(kUseFitted, options.source == ParameterSource::kFitted);
  ListMatrices();
  for (const MethodButton& button : kMethodButtons) {
    if (button.method == options.method) Controls().SetChecked(button.control, true);
  }
  ShowVariables();
}

std::string_view CSimulationFromDistribution::WithoutMeaning(DispatchId resultsMember) const {
  const bool hasOne = resultsMember == common_member::kResultsVariables ||
                      resultsMember == common_member::kResultsSaveFileName;
  return hasOne ? "" : "the dialog makes simulated data, whose results are made by the next one";
}

void CSimulationFromDistribution::PutResultsVariables(const Variant& variables) {
  PutVariables(*this, {}, variables);
}

void CSimulationFromDistribution::ShowVariables() {
  const auto& variables = Options().variables;
  Controls().SetText(kVariableList,
                     variables.empty() ? szLoadResString(kFitListEmpty) : Analysis().dsplst(variables));
  const auto& excluded = Options().excluded;
  Controls().SetText(
      kLeftOutList, excluded.empty() ? szLoadResString(kSimulationNoneLeftOut) : Analysis().dsplst(excluded));
}

void CSimulationFromDistribution::ListMatrices() {
  std::vector<std::string> names{szLoadResString(kSimulationMatrixOfInput)};
  if (Analysis().Document() != nullptr) {
    for (std::string& name : Analysis().Document()->MatrixNames()) names.push_back(std::move(name));
  }
  const auto found = std::ranges::find(names, Options().matrix);
  Controls().SetItems(kMatrix, names);
  Controls().Select(kMatrix, found == names.end() ? 0 : static_cast<int>(found - names.begin()));
}

bool CSimulationFromDistribution::OnCommand(std::int32_t number) {
  if (number == kVariables) return AskForVariables();
  if (number == kLeaveOut) return AskForExcluded();
  if (number == kSimulate) return ValidateAndRun() != Outcome::kFailed;
  return CSimulationAndRiskModelessDialog::OnCommand(number);
}

void CSimulationFromDistribution::OnControlChanged(std::int32_t number) {
  SimulationOptions& options = Options();
  for (const MethodButton& button : kMethodButtons) {
    if (button.control == number && options.method != button.method)
      options.previousMethod = std::exchange(options.method, button.method);
  }
  if (number == kSeedSwitch) options.seeded = Controls().IsChecked(kSeedSwitch);
  if (number == kTruncate) options.truncate = Controls().IsChecked(kTruncate);
  if (number == kAutoUpdate) options.autoUpdate = Controls().IsChecked(kAutoUpdate);
  if (number == kUseFitted)
    options.source =
        Controls().IsChecked(kUseFitted) ? ParameterSource::kFitted : ParameterSource::kUserSpecified;
  if (number == kMatrix) TakeMatrixChoice();
}

// A matrix that cannot be used leaves the former choice.
void CSimulationFromDistribution::TakeMatrixChoice() {
  const int place = Controls().Selection(kMatrix);
  const std::string name =
      place > 0 ? Controls().At(kMatrix).items[static_cast<std::size_t>(place)] : std::string();
  Attempt([&] { ChooseMatrix(name); });
  ListMatrices();
}

void CSimulationFromDistribution::ChooseMatrix(const std::string& name) {
  SimulationState& state = Services().Simulation();
  if (name.empty()) {
    state.matrix.reset();
  } else {
    if (Analysis().Document() == nullptr) throw Error("no matrix can be found here", name);
    SetCorrelationMatrix(*Analysis().Document()->FindMatrix(name));
  }
  state.options.matrix = name;
  ListMatrices();
}

bool CSimulationFromDistribution::AskForVariables() {
  const auto chosen = ChosenOf(Options().variables, kFitSelectVariables, kFitSelectContinuous);
  return chosen && Attempt([&] { SelectVariables(*chosen); });
}

bool CSimulationFromDistribution::AskForExcluded() {
  const auto chosen = ChosenOf(Options().excluded, kSimulationSelectLeftOut, 0);
  return chosen && Attempt([&] { Exclude(*chosen); });
}

std::optional<std::vector<std::int16_t>> CSimulationFromDistribution::ChosenOf(
    const std::vector<std::int16_t>& present, std::int32_t caption, std::int32_t listCaption) const {
  if (GetInputTable() == nullptr) return std::nullopt;
  VariableQuestion question;
  question.caption = szLoadResString(caption);
  question.firstListCaption = szLoadResString(listCaption);
  for (std::size_t i = 0; i < GetInputTable()->VariableCount(); ++i) {
    question.names.push_back(GetInputTable()->VariableAt(i).Name());
  }
  question.first = present;
  if (!Analysis().Interface().SelectVariables(question)) return std::nullopt;
  return question.first;
}

void CSimulationFromDistribution::Exclude(const std::vector<std::int16_t>& variables) {
  const auto& simulated = Options().variables;
  for (const std::int16_t number : variables) {
    if (std::ranges::find(simulated, number) == simulated.end())
      throw Error("variable " + Analysis().get_vn(number) + " is not simulated", GetInputTable()->Name());
  }
  Options().excluded = variables;
  ShowVariables();
}

void CSimulationFromDistribution::SelectVariables(const std::vector<std::int16_t>& variables) {
  const auto available = VariablesWithDistributions(PropertiesOf(*GetInputTable()));
  for (const std::int16_t number : variables) {
    if (std::ranges::find(available, number) == available.end()) {
      throw Error("variable " + Analysis().get_vn(number) + " has no fitted distribution",
                  GetInputTable()->Name());
    }
  }
  Options().variables = variables;
  std::erase_if(Options().excluded,
                [&](std::int16_t number) { return std::ranges::find(variables, number) == variables.end(); });
  ShowVariables();
}

void CSimulationFromDistribution::SetCorrelationMatrix(const Spreadsheet& sheet) {
  Services().Simulation().matrix = ReadGivenMatrix(sheet);
  Options().matrix.clear();
  ListMatrices();
}

// The method that produces nothing succeeds and leaves the dialog open.
bool CSimulationFromDistribution::OnOk() {
  const Outcome outcome = ValidateAndRun();
  if (outcome == Outcome::kProduced) GoToStep(step::kSimulationResults);
  return outcome != Outcome::kFailed;
}

std::shared_ptr<CAnalysisTableDoc> CSimulationFromDistribution::SimulationResults() {
  const Outcome outcome = ValidateAndRun();
  if (outcome == Outcome::kFailed) throw Error(kNothingSimulated);
  return outcome == Outcome::kProduced ? Services().Simulation().output : nullptr;
}

std::shared_ptr<CAnalysisTableDoc> CSimulationFromDistribution::SimulationFile(
    const std::filesystem::path& file) {
  if (!Validate(OutputLimit::kNone)) throw Error(kNothingSimulated);
  if (Options().method == SimulationMethod::kNormalToAnything) return nullptr;
  if (InducesCorrelation(Options().method))
    throw Error("samples that are correlated with each other cannot be written in pieces");
  try {
    Result<SampleSummaries> run = RunInPieces(file);
    if (run) {
      auto summary =
          std::make_shared<CAnalysisTableDoc>(SummarySheet(MethodTitle(Options().method), *std::move(run)));
      Present(summary);
      return summary;
    }
    ShowFault(Analysis(), run.Reason());
  } catch (const UserCancelled&) {  // without a message
  } catch (const std::bad_alloc&) {
    ShowMessage(kMsgInsufficientMemory);
  }
  throw Error(kNothingSimulated);
}

Result<SampleSummaries> CSimulationFromDistribution::RunInPieces(const std::filesystem::path& file) {
  const SimulationOptions& options = Options();
  SimulationDesign design = ValueOrThrow(ReadDesign(PropertiesOf(*GetInputTable()), options));
  if (options.fileSamples > 0) design.numberOfSamples = options.fileSamples;
  if (UsesLatinHypercube(design.method) && design.numberOfSamples > std::numeric_limits<std::int32_t>::max())
    throw Error("Latin hypercube sampling takes as many samples as NumberOfSamples can be at most");
  const RunProgress bars = CaptionedProgress(Analysis().Interface());
  const auto byColumns = [&](const ColumnSink& take) {
    return SimulateByColumns(design, options.seeded, options.seed, take, bars);
  };
  if (file.empty()) return byColumns({});
  if (TheCrew().Rank() != 0) return byColumns([](std::size_t, std::span<const double>) {});
  if (IsNumpyArchiveName(file)) {
    NumpyArchive archive(file);
    std::optional<std::size_t> current;
    Result<SampleSummaries> run = byColumns([&](std::size_t variable, std::span<const double> values) {
      if (current != variable) {
        archive.BeginColumn(design.variables[design.ActiveVariables()[variable]].name,
                            static_cast<std::uint64_t>(design.numberOfSamples));
      }
      current = variable;
      archive.Append(values);
    });
    if (run) archive.Commit();
    return run;
  }
  CsvPieces pieces(file);
  const auto append = [&](Spreadsheet& piece) {
    TitleOutput(piece, design.method);
    pieces.Append(piece);
  };
  Result<SampleSummaries> run = SimulateByCases(design, options.seeded, options.seed, append, bars);
  if (run) pieces.Commit();
  return run;
}

CSimulationFromDistribution::Outcome CSimulationFromDistribution::ValidateAndRun() {
  return Validate(OutputLimit::kSheet) ? Run() : Outcome::kFailed;
}

// Every check runs, also after one that failed.
bool CSimulationFromDistribution::Validate(OutputLimit limit) {
  const bool samplesValid = ValidateNumberOfSamples(limit);
  const bool seedValid = ValidateSeed();
  if (!samplesValid || !seedValid) return false;
  if (!Options().variables.empty()) return true;
  ShowMessage(kMsgNoDistributionsInInput);
  return false;
}

bool CSimulationFromDistribution::ValidateNumberOfSamples(OutputLimit limit) {
  std::int32_t samples = 0;
  if (Controls().GetDlgItemLong(kNumberOfSamples, samples) != 0 || samples < 1) {
    ShowMessage(kMsgInvalidNumberOfSamples);
    return false;
  }
  Options().numberOfSamples = samples;
  if (limit == OutputLimit::kNone || FitsSampleLimit(Options().variables.size(), samples)) return true;
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
  Options().seed = Services().Defaults().randomSeed;
  Controls().SetText(kSeed, ShortestNumber(Options().seed));
  return false;
}

const MatrixFile* CSimulationFromDistribution::CorrelationMatrix() {
  const SimulationState& state = Services().Simulation();
  if (state.matrix) return &*state.matrix;
  const MatrixState& input = Services().Matrix();
  if (input.attached) return &input.file;
  kept_ = KeptMatrix(Services());
  return kept_ ? &*kept_ : nullptr;
}

bool CSimulationFromDistribution::AttachCorrelations(SimulationDesign& design) {
  const MatrixFile* file = CorrelationMatrix();
  if (file == nullptr) {
    // One variable has nothing to be correlated with.
    if (design.ActiveVariables().size() <= 1) return true;
    ShowMessage(kMsgSimulationNoMatrix);
    return false;
  }
  RequireSymmetric(*file, {});
  DesignCorrelations correlations = CorrelationsByName(design, *file);
  for (const auto& [names, message] : {std::pair(&correlations.missing, kMsgMatrixLacksVariables),
                                       std::pair(&correlations.ambiguous, kMsgMatrixNamesRepeated)}) {
    if (names->empty()) continue;
    Analysis().ShowMessage(szLoadResString(message) + " " + Listed(*names));
    return false;
  }
  design.correlations = std::move(correlations.matrix);
  return true;
}

CSimulationFromDistribution::Outcome CSimulationFromDistribution::Run() {
  SimulationState& state = Services().Simulation();
  const bool updating = state.options.autoUpdate && state.output != nullptr && state.output->HasTable();
  try {
    Result<SimulationDesign> design = ReadDesign(PropertiesOf(*GetInputTable()), state.options);
    if (!design) return Report(design.Reason());
    if (InducesCorrelation(design->method) && !AttachCorrelations(*design)) return Outcome::kFailed;
    Result<SimulationRun> run = RunSimulation(*design, state.options.seeded, state.options.seed,
                                              CaptionedProgress(Analysis().Interface()), updating);
    if (!run) return Report(run.Reason());
    if (run->output == nullptr) return Outcome::kNothing;
    TitleOutput(*run->output, design->method);
    Produce(*std::move(run));
    return Outcome::kProduced;
  } catch (const Error& error) {
    Analysis().ShowMessage(error.what(), error.Where());
  } catch (const UserCancelled&) {  // without a message
  } catch (const std::bad_alloc&) {
    ShowMessage(kMsgInsufficientMemory);
  }
  return Outcome::kFailed;
}

void CSimulationFromDistribution::Produce(SimulationRun run) {
  SimulationState& state = Services().Simulation();
  ShowOutput(std::move(run.output));
  state.correlations = std::move(run.correlations);
  if (!state.correlations) return;
  if (!state.correlations->scoreCorrection) ShowMessage(kMsgTooFewSamplesForCorrelation);
  if (state.correlations->repair) ShowRepair(*state.correlations);
}

CSimulationFromDistribution::Outcome CSimulationFromDistribution::Report(const Fault& fault) const {
  if (fault.identifier == FaultIdentifier::kReorderingEnded) Analysis().ShowMessage(fault.about);
  ShowFault(Analysis(), fault);
  return Outcome::kFailed;
}

// Simulated data open as a spreadsheet of their own, whatever the option says. A sheet that is refilled keeps
// its name and its place: a front end that shows it already has it.
void CSimulationFromDistribution::ShowOutput(std::unique_ptr<Spreadsheet> output) {
  SimulationState& state = Services().Simulation();
  if (state.options.autoUpdate && state.output != nullptr && state.output->HasTable()) {
    output->SetName(state.output->Table().Name());
    Analysis().Interface().Change([&] { state.output->Table() = std::move(*output); });
    return SaveRequested(state.output);
  }
  state.output = std::make_shared<CAnalysisTableDoc>(std::move(output));
  SaveRequested(state.output);  // who is shown it may take the table
  const ResultsToWorkbookOff off(*Analysis().Document());
  Analysis().Interface().ShowDocument(state.output);
}

void CSimulationFromDistribution::ShowRepair(const SimulatedCorrelations& correlations) {
  const Spreadsheet& output = Services().Simulation().output->Table();
  const CorrelationRepair& repair = *correlations.repair;
  MatrixFile file = MatrixFile::Identity(VariableNames(output));
  file.SetCorrelations(repair.matrix);
  TakeSummaries(*CorrelationMatrix(), file);
  Analysis().ShowMessage(szLoadResString(kMsgMatrixRepaired),
                         "smallest eigenvalue " + Readable(repair.smallestEigenvalue) + ", largest change " +
                             Readable(repair.to - repair.from) + ", " + file.variables[repair.column] +
                             " with " + file.variables[repair.row] + " from " + Readable(repair.from) +
                             " to " + Readable(repair.to),
                         MessageIcon::kInformation);
  // It tells of the simulated data, and is not the matrix of the input.
  const ResultsToWorkbookOff off(*Analysis().Document());
  Analysis().Interface().ShowDocument(std::make_shared<CAnalysisTableDoc>(
      ValueOrThrow(MakeMatrixFile(file, szLoadResString(kRepairedMatrixTitle)))));
}

}  // namespace brenvolt::sra
