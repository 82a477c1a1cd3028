#include "brv_sra/profiler/dialogs/profiler_dialog.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <numeric>
#include <utility>

#include "brv_sra/frame/captioned_progress.h"
#include "brv_sra/frame/fault_message.h"
#include "brv_sra/frame/sequence_steps.h"
#include "brv_sra/matrix/dialogs/correlation_entries.h"
#include "brv_sra/matrix/dialogs/correlation_verdict.h"
#include "brv_sra/profiler/dialogs/defect_documents.h"
#include "brv_sra/profiler/dialogs/profiler_graphs.h"
#include "brv_sra/profiler/dialogs/unpredicted_document.h"
#include "brv_sra/resources/dialog_templates.h"
#include "brv_sra/resources/resource_numbers.h"
#include "brv_sra/resources/strings.h"
#include "host/analysis/specification_words.h"
#include "host/automation/dialog_interface.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/formula/assignment_words.h"
#include "host/formula/formula.h"

namespace brenvolt::sra {
namespace {

using namespace profiler_dialog;

constexpr double kLargestLimit = 1e30;

// A number that is not given is NaN in the design and not set in a field.
double ToField(double value) {
  return std::isnan(value) ? kNotSet : value;
}
double FromField(double value) {
  return IsNotSet(value) ? std::numeric_limits<double>::quiet_NaN() : value;
}

double* LimitOf(std::int32_t control, SpecificationLimits& limits) {
  if (control == kLsl) return &limits.lower;
  return control == kUsl ? &limits.upper : &limits.target;
}

// The constants of OuptutType that a response has.
constexpr std::int32_t kSummaryStatsKind = 6;
constexpr std::int32_t kSummaryGraphKind = 7;

constexpr const char* kNotDone = "nothing was produced";

}  // namespace

ProfilerDependent& CSimulationProfiler::Selected() const {
  if (State().selected >= Design().dependents.size()) throw Error(szLoadResString(kMsgProfilerNoDependent));
  return Design().dependents[State().selected];
}

void CSimulationProfiler::OnInitDialog() {
  State().mode = Services().AutoProfiler() ? ProfilerMode::kFormulas : ProfilerMode::kModels;
  const bool formulas = State().mode == ProfilerMode::kFormulas;
  if (!formulas) Services().UpdateFromInputSpreadsheet();
  for (const std::int32_t control : {kFormula, kSetFormula, kUndoFormula}) Controls().Show(control, formulas);
  Controls().Show(kModel, !formulas);
  Controls().Enable(kOptions, false);  // those of the host, which has none for this dialog
  Controls().SetText(kInstructions, szLoadResString(kProfilerInstructionsDistributions) +
                                        szLoadResString(kProfilerInstructionsSimulate) +
                                        szLoadResString(kProfilerInstructionsDefects));
  Refresh();
}

void CSimulationProfiler::Refresh() {
  Controls().SetChecked(kSeedSwitch, Design().seeded);
  Controls().SetDlgItemLong(kSeed, Design().seed);
  Controls().SetChecked(kAutoUpdate, State().autoUpdate);
  Controls().SetDlgItemLong(kRuns, Design().runs);
  predictors_.Refresh();
  ShowDependents();
}

void CSimulationProfiler::ShowDependents() {
  Controls().SetItems(kDependent, NamesOf(Design().dependents));
  Controls().Select(kDependent, static_cast<int>(State().selected));
  const bool multivariate = Design().IsNoiseMultivariate();
  Controls().SetItems(kNoise,
                      {szLoadResString(kProfilerNoNoise),
                       szLoadResString(multivariate ? kProfilerMultivariateNoise : kProfilerRandomNoise)});
  ShowSelected();
}

void CSimulationProfiler::ShowSelected() {
  const bool any = State().selected < Design().dependents.size();
  const ProfilerDependent none;
  const ProfilerDependent& shown = any ? Design().dependents[State().selected] : none;
  for (const std::int32_t control : {kNoise, kLsl, kUsl, kTarget, kDependent})
    Controls().Enable(control, any);
  Controls().Select(kNoise, shown.addNoise ? 1 : 0);
  Controls().SetText(kModel,
                     shown.model != nullptr ? shown.model->Name() : szLoadResString(kProfilerNoModel));
  Controls().SetText(kFormula, shown.formula);
  Controls().SetDlgItemDouble(kLsl, ToField(shown.limits.lower));
  Controls().SetDlgItemDouble(kUsl, ToField(shown.limits.upper));
  Controls().SetDlgItemDouble(kTarget, ToField(shown.limits.target));
  ShowNoise();
  EnableOutputs();
}

void CSimulationProfiler::ShowNoise() {
  const bool any = State().selected < Design().dependents.size();
  const bool noise = any && Selected().addNoise;
  Controls().SetDlgItemDouble(kDeviation, any ? Selected().standardDeviation : kNotSet);
  Controls().Enable(kDeviation, noise);
  Controls().Enable(kEditCorrelationY, noise && Design().IsNoiseMultivariate());
}

void CSimulationProfiler::EnableOutputs() {
  const bool any = State().selected < Design().dependents.size();
  const bool simulated = State().output != nullptr && State().output->HasTable();
  Controls().Show(kDefects, any && Selected().limits.IsValid());
  const std::string_view fault = any ? ContradictionIn(Selected().limits) : std::string_view();
  Controls().SetText(kSpecificationFault,
                     fault.empty() ? "" : FormatResource(kProfilerSpecificationFault, std::string(fault)));
  for (const std::int32_t control : {kCapability, kSummaryStats, kSummaryGraph})
    Controls().Enable(control, any && simulated);
  Controls().Enable(kUndoFormula, any && !Selected().formerFormulas.empty());
}

// ---- What a person does

bool CSimulationProfiler::OnCommand(std::int32_t number) {
  const auto outputs = [this](auto member, std::int32_t caption) {
    return Attempt(caption, [&] { (this->*member)(); });
  };
  switch (number) {
    case kLoadModels:
      return AskForModels();
    case kAddDistribution:
      return predictors_.Apply();
    case kFitBest:
      return Attempt(kCaptionBasicStatsError, [this] { FitBest(); });
    case kEditCorrelation:
      return EditCorrelations(Analysis(), kProfilerCorrelationTitle, NamesOf(Design().predictors),
                              Design().correlations, [this](const std::vector<double>& matrix) {
                                return VerdictOnCorrelations(matrix, NamesOf(Design().predictors));
                              });
    case kEditCorrelationY:
      return EditCorrelations(Analysis(), kProfilerCorrelationYTitle, NamesOf(Design().dependents),
                              Design().correlationsY, VerdictOnNoiseCorrelations);
    case kSetFormula:
      return SetShownFormula();
    case kUndoFormula:
      return TakeFormulaBack();
    case kDefects:
      return outputs(&CSimulationProfiler::DefectProfile, kCaptionProcessCapabilityError);
    case kCapability:
      return outputs(&CSimulationProfiler::CapabilityStats, kCaptionProcessCapabilityError);
    case kSummaryStats:
      return outputs(&CSimulationProfiler::SummaryStats, kCaptionSummaryStatsError);
    case kSummaryGraph:
      return outputs(&CSimulationProfiler::SummaryGraph, kCaptionSummaryGraphError);
    default:
      return CSimulationAndRiskModelessDialog::OnCommand(number);
  }
}

void CSimulationProfiler::OnControlChanged(std::int32_t number) {
  if (predictors_.OnChanged(number)) return;
  switch (number) {
    case kSeedSwitch:
      Design().seeded = Controls().IsChecked(kSeedSwitch);
      return;
    case kSeed:
      return TakeSeed();
    case kAutoUpdate:
      State().autoUpdate = Controls().IsChecked(kAutoUpdate);
      return;
    case kRuns:
      return TakeRuns();
    case kDependent:
      State().selected = static_cast<std::size_t>(std::max(0, Controls().Selection(kDependent)));
      return ShowSelected();
    case kNoise:
      Selected().addNoise = Controls().Selection(kNoise) == 1;
      return ShowNoise();
    case kDeviation:
    case kLsl:
    case kUsl:
    case kTarget:
      return TakeReal(number);
    default:
      return;
  }
}

void CSimulationProfiler::TakeRuns() {
  std::int32_t runs = 0;
  const bool read = Controls().GetDlgItemLong(kRuns, runs) == 0;
  if (read && runs >= kFewestProfilerRuns && runs <= kMostProfilerRuns) {
    Design().runs = runs;
    return;
  }
  Design().runs = kUsualProfilerRuns;
  Controls().SetDlgItemLong(kRuns, kUsualProfilerRuns);
  ShowMessage(kMsgProfilerRunsReset);
}

// The field takes 1 to the largest 32-bit integer and refuses all else.
void CSimulationProfiler::TakeSeed() {
  std::int32_t seed = 0;
  if (Controls().GetDlgItemLong(kSeed, seed) == 0 && seed >= 1) Design().seed = seed;
  Controls().SetDlgItemLong(kSeed, Design().seed);
}

// An empty field takes the number away. Anything else that is not a number in range is refused.
void CSimulationProfiler::TakeReal(std::int32_t control) {
  const bool deviation = control == kDeviation;
  double& target = deviation ? Selected().standardDeviation : *LimitOf(control, Selected().limits);
  double value = kNotSet;
  const bool empty = Trim(Controls().Text(control)).empty();
  const bool read = !empty && Controls().GetDlgItemDouble(control, value) == 0;
  const bool valid = read && std::isfinite(value) && value >= (deviation ? 0 : -kLargestLimit) &&
                     (deviation || value <= kLargestLimit);
  if (valid || empty) target = deviation ? value : FromField(value);
  Controls().SetDlgItemDouble(control, deviation ? target : ToField(target));
  EnableOutputs();
}

bool CSimulationProfiler::AskForModels() {
  FileQuestion question;
  question.title = szLoadResString(kProfilerOpenModelsTitle);
  question.filter = szLoadResString(kProfilerOpenModelsFilter);
  question.defaultExtension = szLoadResString(kProfilerOpenModelsExtension);
  const auto files = Analysis().Interface().ChooseFiles(question);
  if (files.empty()) return false;
  try {
    LoadModels(files);
  } catch (const Error& error) {
    Analysis().ShowMessage(error.what(), error.Where());
    return false;
  }
  return true;
}

void CSimulationProfiler::LoadModels(const std::vector<std::filesystem::path>& files) {
  std::vector<std::shared_ptr<const PredictionModel>> models;
  for (const std::filesystem::path& file : files)
    models.push_back(std::make_shared<const PredictionModel>(PredictionModel::Load(file)));
  const auto notes = ValueOrThrow(MergeModels(Design(), models, GetInputTable()));
  for (const std::filesystem::path& file : files) {
    auto& known = State().modelFiles;
    if (std::ranges::find(known, file.string()) == known.end()) known.push_back(file.string());
  }
  Refresh();
  ShowNotes(notes);
}

bool CSimulationProfiler::SetShownFormula() {
  try {
    PutFormula(Controls().Text(kFormula), State().selected);
  } catch (const Error& error) {
    Analysis().ShowMessage(error.what(), error.Where());
    return false;
  }
  return true;
}

void CSimulationProfiler::PutFormula(const std::string& text, std::size_t dependent) {
  const FormulaAssignment assignment = SplitAssignment(text);
  ProfilerDesign changed = Design();
  if (assignment.name) {
    const auto known = changed.FindDependent(*assignment.name);
    ProfilerDependent added;
    added.name = *assignment.name;
    dependent = known ? *known : changed.AddDependent(std::move(added));
  }
  if (dependent >= changed.dependents.size()) throw Error(ExpectedAssignment(text));
  const std::string expression(Trim(std::string_view(text).substr(assignment.begin)));
  const ProfilerNotes notes = SetFormula(changed, dependent, expression, GetInputTable());
  Design() = std::move(changed);
  Refresh();
  ShowNotes(notes);
}

bool CSimulationProfiler::TakeFormulaBack() {
  (void)Selected();
  const auto notes = UndoFormula(Design(), State().selected, GetInputTable());
  if (!notes) return false;
  Refresh();
  ShowNotes(*notes);
  return true;
}

void CSimulationProfiler::FitBest() {
  if (GetInputTable() == nullptr) throw Error("no input spreadsheet");
  const auto fitted =
      FitBestDistributions(Design(), *GetInputTable(), CaptionedProgress(Analysis().Interface()));
  if (!fitted) {
    const FaultMessage message = MessageOf(fitted.Reason());
    throw Error(message.text, message.where);
  }
  Refresh();
}

void CSimulationProfiler::ShowCaptioned(std::int32_t caption, const std::string& text,
                                        const std::string& where) const {
  Analysis().ShowMessage(text, where, MessageIcon::kWarning, MessageButtons::kOk, szLoadResString(caption));
}

void CSimulationProfiler::ShowNotes(const ProfilerNotes& notes) const {
  for (const Fault& note : notes) ShowFault(Analysis(), note);
}

// ---- The run

bool CSimulationProfiler::OnOk() {
  const auto kind = std::exchange(Request().kind, {});
  if (!kind) return Simulate();
  return OnCommand(*kind == kSummaryGraphKind ? kSummaryGraph : kSummaryStats);
}

std::string_view CSimulationProfiler::WithoutMeaning(DispatchId resultsMember) const {
  return resultsMember == common_member::kResultsValues ? "a response has no chosen fit" : "";
}

std::string_view CSimulationProfiler::KindWithoutMeaning(std::int32_t kind) const {
  const bool isMade = kind == kSummaryStatsKind || kind == kSummaryGraphKind;
  return isMade ? "" : "a response has scSummaryStats and scSummaryGraph alone";
}

void CSimulationProfiler::PutResultsVariables(const Variant& variables) {
  const Variant::Array given = variables.ToArray();
  if (given.size() != 1) throw Error("expected one dependent, got " + std::to_string(given.size()));
  const std::string text = given.front().ToText();
  const std::vector<std::string> names = NamesOf(Design().dependents);
  std::size_t place = 0;
  while (place < names.size() && names[place] != text && std::to_string(place + 1) != text) ++place;
  if (!Select(kDependent, static_cast<int>(place))) throw Error("there is no dependent " + text);
}

bool CSimulationProfiler::Simulate() {
  return Attempt(kCaptionSimulationError, [this] {
    Request().RequireUsed();  // data are not chosen, nor shown by columns
    ProfilerRun run = ValueOrThrow(RunProfiler(Design(), CaptionedProgress(Analysis().Interface())));
    run.output->SetName(szLoadResString(kProfilerResultsTitle));
    run.output->SetTitle(run.output->Name());
    Produce(std::move(run));
  });
}

// A sheet that is refilled keeps its name and its place: a front end that shows it already has it.
void CSimulationProfiler::Produce(ProfilerRun run) {
  ProfilerState& state = State();
  fit_.reset();
  state.outputPredictors = Design().predictors.size();
  state.outputIndependent = run.independent;
  if (state.autoUpdate && state.output != nullptr && state.output->HasTable()) {
    run.output->SetName(state.output->Table().Name());
    Analysis().Interface().Change([&] { state.output->Table() = std::move(*run.output); });
    SaveRequested(state.output);
  } else {
    state.output = std::make_shared<CAnalysisTableDoc>(std::move(run.output));
    SaveRequested(state.output);  // who is shown it may take the table
    const ResultsToWorkbookOff off(*Analysis().Document());
    Analysis().Interface().ShowDocument(state.output);
  }
  if (auto reasons = UnpredictedDocument(Design(), run.unpredicted))
    Analysis().Interface().ShowDocument(std::make_shared<CAnalysisTableDoc>(std::move(reasons)));
  if (run.repair) {
    Analysis().ShowMessage(szLoadResString(kMsgMatrixRepaired),
                           "smallest eigenvalue " + FormatNumber("%.4g", run.repair->smallestEigenvalue) +
                               ", largest change " + FormatNumber("%.4g", run.repair->to - run.repair->from),
                           MessageIcon::kInformation);
  }
  if (!run.scoreCorrection) ShowMessage(kMsgTooFewSamplesForCorrelation);
  EnableOutputs();
  ShowProfiles();
}

// The spreadsheet stays whatever becomes of the graph.
void CSimulationProfiler::ShowProfiles() const {
  if (!State().output->HasTable()) return;  // the front end has taken it
  const ProfiledColumns columns = ColumnsOf(State().output->Table(), State().outputPredictors, Design());
  try {
    Graph graph = ProfileGraph(columns, CaptionedProgress(Analysis().Interface()));
    Analysis().Interface().ShowGraph(std::make_shared<CAnalysisGraphDoc>(std::move(graph)));
  } catch (const Error& error) {
    Analysis().ShowMessage(error.what(), error.Where());
  } catch (const UserCancelled&) {  // without a message
  }
}

template <class Make>
bool CSimulationProfiler::Attempt(std::int32_t caption, const Make& make) const {
  try {
    make();
    return true;
  } catch (const CDispatchException& error) {  // a text of this dialog's own
    Analysis().ShowMessage(error.what(), error.Where());
  } catch (const Error& error) {
    ShowCaptioned(caption, error.what(), error.Where());
  } catch (const UserCancelled&) {  // without a message
  } catch (const std::bad_alloc&) {
    ShowMessage(kMsgInsufficientMemory);
  }
  return false;
}

std::shared_ptr<CAnalysisTableDoc> CSimulationProfiler::SimulationResults() {
  if (!Simulate()) throw Error(kNotDone);
  return State().output;
}

// ---- Results of the selected dependent

SimulatedResponse CSimulationProfiler::Response() {
  const ProfilerState& state = State();
  const CaseChoice choice = std::exchange(Request().cases, {});
  const ProfilerDependent& selected = Selected();
  if (state.output == nullptr || !state.output->HasTable())
    throw CDispatchException(szLoadResString(kMsgProfilerNotSimulated));
  const Spreadsheet& sheet = choice.IsGiven() ? Chosen(choice) : state.output->Table();
  for (std::size_t j = state.outputPredictors; j < sheet.VariableCount(); ++j) {
    if (sheet.VariableAt(j).Name() == selected.name)
      return {sheet, state.outputPredictors, j - state.outputPredictors, selected.limits,
              state.outputIndependent};
  }
  throw CDispatchException(szLoadResString(kMsgProfilerNotSimulated), selected.name);
}

// A copy of the last output with the chosen runs alone.
const Spreadsheet& CSimulationProfiler::Chosen(const CaseChoice& choice) {
  const Spreadsheet& output = State().output->Table();
  std::vector<std::size_t> all(output.VariableCount());
  std::iota(all.begin(), all.end(), std::size_t{0});
  chosen_ = PartOf(output, all, ChosenCases(choice, output));
  fit_.reset();
  return *chosen_;
}

const VariableFit& CSimulationProfiler::FitOfResponse(const SimulatedResponse& response) {
  if (fitted_ != &response.sheet) fit_.reset();
  fitted_ = &response.sheet;
  if (!fit_ || fit_->first != response.response)
    fit_.emplace(response.response, FitResponse(response, CaptionedProgress(Analysis().Interface())));
  return fit_->second;
}

void CSimulationProfiler::RequireSpecification() const {
  if (!Selected().limits.IsValid())
    throw CDispatchException(szLoadResString(kMsgProfilerInvalidSpec), Selected().name);
}

std::shared_ptr<CAnalysisTableDoc> CSimulationProfiler::CapabilityStats() {
  RequireSpecification();
  const SimulatedResponse response = Response();
  auto document = std::make_shared<CAnalysisTableDoc>(CapabilityDocument(response, FitOfResponse(response)));
  Present(document);
  return document;
}

std::shared_ptr<CAnalysisTableDoc> CSimulationProfiler::SummaryStats() {
  std::shared_ptr<CAnalysisTableDoc> first;
  for (auto& table : SummaryDocuments(Response())) {
    auto document = std::make_shared<CAnalysisTableDoc>(std::move(table));
    if (first == nullptr) first = document;
    Present(document);
  }
  return first;
}

std::shared_ptr<CAnalysisGraphDoc> CSimulationProfiler::SummaryGraph() {
  const SimulatedResponse response = Response();
  auto graph = std::make_shared<CAnalysisGraphDoc>(SummaryGraphs(response, FitOfResponse(response)));
  Present(graph);
  return graph;
}

std::shared_ptr<CAnalysisGraphDoc> CSimulationProfiler::DefectProfile() {
  RequireSpecification();
  const SimulatedResponse response = Response();
  const ProfiledColumns columns = ColumnsOf(response.sheet, response.predictors, Design());
  const DefectCounts counts = CountDefects(columns.responses);
  const auto show = [this](std::unique_ptr<Spreadsheet> table) {
    Present(std::make_shared<CAnalysisTableDoc>(std::move(table)));
  };
  show(MakeDefectCountSheet(columns.responses, counts, response.independent));
  show(MakeDefectSheet(columns.responses, counts));
  if (!FitsProfileLimit(columns.predictors.size(), columns.responses.size()))
    throw CDispatchException(szLoadResString(kMsgDefectProfileFailed),
                             szLoadResString(kMsgProfilerTooManyGraphs));
  auto graph = std::make_shared<CAnalysisGraphDoc>(MakeDefectGraph(columns.responses, columns.predictors));
  Present(graph);
  return graph;
}

}  // namespace brenvolt::sra
