#include "host/jobs/fit_job.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "host/analysis/result_table.h"
#include "host/base/almost_equal.h"
#include "host/base/error.h"
#include "host/base/files/file_turn.h"
#include "host/base/lower_case.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"
#include "host/jobs/base/report_target.h"
#include "host/jobs/fit_graphs.h"
#include "host/jobs/fit_quantiles.h"
#include "host/jobs/fit_results.h"
#include "host/numeric/distributions/distribution_table.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt {
namespace {

// The place of a variable in a list that it is in, from 1.
std::int32_t PlaceOf(const std::string& variable, const std::vector<std::string>& list) {
  return static_cast<std::int32_t>(std::ranges::find(list, variable) - list.begin() + 1);
}

std::string TextVariables(const Spreadsheet& sheet) {
  std::string names;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    if (sheet.VariableAt(i).Type() != VariableType::kText) continue;
    names += (names.empty() ? "" : ", ") + sheet.VariableAt(i).Name();
  }
  return names;
}

// Text variables cannot be fitted; one misspelt number turns a whole column into text.
void SayWhatIsLeftOut(const Spreadsheet& sheet, UserInterface& interface) {
  const std::string names = TextVariables(sheet);
  if (!names.empty()) interface.ShowMessage({"text variables are left out: " + names, {}, {}});
}

// Whole numbers that repeat are counts or truth values usually if they are counts or flags that begin near 0,
// or where 0 is among them. A single one is a truth value, or a constant.
bool LooksDiscrete(const Variable& variable) {
  constexpr std::size_t kFew = 20;
  constexpr std::size_t kMost = 1000;
  std::set<double> different;
  std::size_t valid = 0;
  for (std::size_t i = 0; i < variable.Size(); ++i) {
    const double value = variable.Values()[i];
    if (variable.IsMissing(i)) continue;
    if (value < 0 || value != std::floor(value)) return false;
    different.insert(value);
    if (different.size() > kMost) return false;
    ++valid;
  }
  if (valid == different.size()) return false;
  if (different.size() == 1) return *different.begin() <= 1;
  const bool isFew = different.size() <= kFew && *different.begin() <= kFew;
  return isFew || (different.contains(0) && 2 * different.size() <= valid);
}

void SayWhatLooksDiscrete(const Spreadsheet& sheet, const std::vector<std::string>& continuous,
                          UserInterface& interface) {
  std::string names;
  for (const std::string& name : continuous) {
    if (LooksDiscrete(sheet.VariableAt(*sheet.FindVariable(name))))
      names += (names.empty() ? "" : ", ") + name;
  }
  if (!names.empty())
    interface.ShowMessage(
        {"these may be counts, but are fitted as continuous unless they are given as discrete: " + names,
         {},
         {}});
}

struct CensoringCodes {
  std::string column;
  std::string event;  // the code of an event, where it has to be said
};

// The two codes of such a column, in order; empty for any other.
std::vector<std::string> TwoCodes(const Variable& variable) {
  std::set<double> different;
  for (std::size_t k = 0; k < variable.Size() && different.size() < 3; ++k) {
    if (!variable.IsMissing(k)) different.insert(variable.Values()[k]);
  }
  std::vector<std::string> codes;
  for (const double value : different) {
    const auto label = variable.Label(value);
    codes.push_back(label ? LowerCase(*label) : ShortestNumber(value));
  }
  std::ranges::sort(codes);
  return codes;
}

// The column of a sheet that looks as if it said which cases are censored: of 0 and 1, 1 and 2, or false and true, and
// called after that.
std::optional<CensoringCodes> CensoringColumn(const Spreadsheet& sheet) {
  constexpr std::string_view kNames[] = {"status", "fustat",    "cens", "event", "delta",
                                         "failed", "suspended", "dead", "death"};
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    const std::string name = LowerCase(variable.Name());
    if (std::ranges::none_of(kNames, [&](std::string_view one) { return name.starts_with(one); })) continue;
    const std::vector<std::string> codes = TwoCodes(variable);
    if (codes == std::vector<std::string>{"1", "2"}) return CensoringCodes{variable.Name(), "2"};
    if (codes == std::vector<std::string>{"0", "1"} || codes == std::vector<std::string>{"false", "true"})
      return CensoringCodes{variable.Name(), ""};
  }
  return std::nullopt;
}

// Lifetimes that were still running when they were seen last are longer than they look.
void SayWhatLooksCensored(const Spreadsheet& sheet, const FitJob::Variables& fitted,
                          UserInterface& interface) {
  const auto column = CensoringColumn(sheet);
  const std::vector<std::string> named = fitted.All();
  if (!column || named == std::vector<std::string>{column->column}) return;
  const std::string event =
      column->event.empty() ? "" : ", and " + column->event + " as the code of an event";
  interface.ShowMessage(
      {Quoted(column->column) +
           " may say which values are censored, that is, known only by a bound; to fit them as such, give it "
           "as the column of censoring" +
           event,
       {},
       {}});
}

// What is wrong with a job over these data. Taking away what is not there would do nothing.
JobFaults CheckSheet(const FitJob& job, const Spreadsheet& sheet) {
  JobFaults faults;
  if (job.weights && job.weights->empty() && !sheet.WeightVariable())
    faults.push_back({"weights", "the data have no case weights to leave out"});
  if (job.select && job.select->empty() && sheet.Selection().condition.empty())
    faults.push_back({"select", "the data have no selection of cases to leave out"});
  const bool isMatrix = sheet.Kind() == SheetKind::kMatrix || LooksLikeMatrixTable(sheet);
  if (isMatrix && !job.data.yes)
    faults.push_back({"yes", "the rows of " + Quoted(sheet.Name()) +
                                 " are those of a correlation matrix; confirm that they are meant as data"});
  if (!isMatrix && job.data.yes)
    faults.push_back({"yes", "the data are not a correlation matrix, so there is nothing to confirm"});
  return faults;
}

// A name with the blanks that a person puts behind a comma, unless a variable bears them.
std::vector<std::string> WithoutBlanks(std::vector<std::string> names, const Spreadsheet& sheet) {
  for (std::string& name : names) {
    if (!sheet.FindVariable(name)) name = Trim(name);
  }
  return names;
}

// The variables named, or every numeric variable but the weights as continuous ones.
FitJob::Variables Choose(const FitJob::Variables& named, const Spreadsheet& sheet) {
  if (!named.All().empty())
    return {WithoutBlanks(named.continuous, sheet), WithoutBlanks(named.discrete, sheet)};
  FitJob::Variables chosen;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    if (variable.Type() == VariableType::kNumeric && sheet.WeightVariable() != i)
      chosen.continuous.push_back(variable.Name());
  }
  if (!chosen.continuous.empty()) return chosen;
  const std::string texts = TextVariables(sheet);
  throw Error("the sheet has no numeric variable" + (texts.empty() ? "" : "; these are text: " + texts),
              "sheet " + sheet.Name());
}

// A new variable has some distributions checked: all are put, the ones not asked for as unchecked.
void PutDistributions(AutomationObject& dialog, const FitJob& job, const FitJob::Variables& fitted) {
  for (const bool continuous : {true, false}) {
    const std::size_t count = (continuous ? fitted.continuous : fitted.discrete).size();
    for (std::size_t i = 1; i <= count; ++i) {
      const auto place = static_cast<std::int32_t>(i);
      for (const NamedDistribution& distribution : kNamedDistributions) {
        if (distribution.continuous == continuous)
          dialog.Put(distribution.check, place, job.Tries(distribution));
      }
      if (continuous) dialog.Put("FitJohnsonByPercentile", place, job.johnsonPercentiles);
    }
  }
}

void PutNumbers(AutomationObject& dialog, const FitJob& job, const FitJob::Variables& fitted) {
  for (const FitJob::Offset& offset : job.offsets) {
    dialog.Put(FindDistribution(offset.distribution)->offset, PlaceOf(offset.variable, fitted.continuous),
               offset.value);
  }
  for (const FitJob::Count& mixture : job.mixtures) {
    dialog.Put("NumberOfMixtures", PlaceOf(mixture.variable, fitted.continuous), AsInteger(mixture.value));
  }
  for (const FitJob::Count& trials : job.trials) {
    const auto place = PlaceOf(trials.variable, fitted.discrete);
    dialog.Put("NumberOfTrials", place, AsInteger(trials.value));
    dialog.Put("IsNumberOfTrials", place, true);
  }
}

// Codes are the places in the table of distributions, whose order is that of the catalogue.
Variant CodesOf(const std::vector<std::string>& names) {
  Variant::Array codes;
  for (const std::string& name : names)
    codes.emplace_back(static_cast<std::int32_t>(FindDistribution(name) - kNamedDistributions.data()));
  return codes;
}

// The place of the fit of a distribution, which is valid.
std::optional<std::size_t> FitOf(const std::string& distribution, const FittedVariable& variable) {
  const auto code = static_cast<int>(FindDistribution(distribution) - kNamedDistributions.data());
  const auto found = std::ranges::find(variable.fits, code, &FittedDistribution::code);
  if (found == variable.fits.end() || found->parameters.empty()) return std::nullopt;
  return static_cast<std::size_t>(found - variable.fits.begin());
}

bool HasValuesBetween(const FittedDistribution& fit, const std::optional<double>& low,
                      const std::optional<double>& high) {
  const double offset = std::isnan(fit.offset) ? 0 : fit.offset;
  const AnyDistribution distribution(static_cast<DistributionCode>(fit.code), fit.parameters, offset);
  const double below = low ? distribution.Cdf(*low) : 0;
  const double above = high ? distribution.Complement(*high) : 0;
  return below < 1 - above || (!low && above < 1) || (low && distribution.Complement(*low) > above);
}

void PutBound(AutomationObject& dialog, std::int32_t place, const std::string& end,
              const std::optional<double>& bound) {
  dialog.Put("IsUserDefinedTrunc" + end, place, bound.has_value());
  dialog.Put("UserDefinedTrunc" + end, place, bound.value_or(kNotSet));
}

// A truncation without bounds takes away those that the variable carries.
void RequireBounds(AutomationObject& dialog, std::int32_t place, const FitJob::Truncation& truncation) {
  const Variant index(place);
  const auto has = [&](const char* member) { return dialog.Get(member, {&index, 1}).ToBoolean(); };
  if (truncation.low || truncation.high || has("IsUserDefinedTruncMin") || has("IsUserDefinedTruncMax"))
    return;
  throw WrongJob("truncate", Quoted(truncation.variable) + " has no bounds that could be removed");
}

// What is put where a project is asked to have none.
std::optional<std::string> OrNone(const std::string& text) {
  return text.empty() ? std::nullopt : std::optional(text);
}

}  // namespace

std::vector<std::string> FitJob::Variables::All() const {
  std::vector<std::string> all = continuous;
  all.insert(all.end(), discrete.begin(), discrete.end());
  return all;
}

bool FitJob::Tries(const NamedDistribution& distribution) const {
  return distributions.empty() || std::ranges::any_of(distributions, [&](const std::string& name) {
           return FindDistribution(name) == &distribution;
         });
}

// An empty text takes away what the sheet has.
void FitJob::ApplyCaseOptions(Spreadsheet& sheet) const {
  if (weights && weights->empty()) sheet.SetWeightVariable(std::nullopt);
  if (weights && !weights->empty())
    sheet.SetWeightVariable(
        static_cast<std::size_t>(NumbersOf(sheet, {&*weights, 1}, "weights").front() - 1));
  if (select) SelectCases(sheet, *select);
}

// Bounds between which the distribution to simulate has no values would be found by the simulation only.
JobFaults FitJob::CheckTruncated(AutomationObject& results) const {
  JobFaults faults;
  const auto fitted = ReadFitResults(results, Covariances::kLeftOut);
  for (const Truncation& one : truncate) {
    const auto variable = std::ranges::find(fitted, one.variable, &FittedVariable::name);
    if (variable == fitted.end()) continue;
    std::vector<int> codes;
    for (const FittedDistribution& fit : variable->fits) codes.push_back(fit.code);
    const auto chosen = std::ranges::find(order, one.variable, &Order::variable);
    const auto first =
        chosen != order.end()
            ? FitOf(chosen->distributions.front(), *variable)
            : FirstSaved(results, static_cast<std::int32_t>(variable - fitted.begin() + 1), codes);
    if (!first || HasValuesBetween(variable->fits[*first], one.low, one.high)) continue;
    faults.push_back({"truncate", Quoted(one.variable) + ": the " + variable->fits[*first].name +
                                      " distribution fitted to it has no values within these bounds"});
  }
  return faults;
}

Table FitJob::Keep(AnalysisSession& session, Spreadsheet& sheet,
                   const std::vector<std::string>& fitted) const {
  RequireNone(CheckSaving(fitted));
  const FormerConditions former(sheet);
  ApplyCaseOptions(sheet);
  const auto results = session.Dialog();
  if (!truncate.empty()) RequireNone(CheckTruncated(*results));
  for (const Truncation& one : truncate) {
    RequireBounds(*results, PlaceOf(one.variable, fitted), one);
    PutBound(*results, PlaceOf(one.variable, fitted), "Min", one.low);
    PutBound(*results, PlaceOf(one.variable, fitted), "Max", one.high);
  }
  for (const Order& one : order)
    results->Put("DistributionOrder", PlaceOf(one.variable, fitted), CodesOf(one.distributions));
  const Variant matrix = session.Attempt([&] { return results->Get("SaveDistributionFit"); });
  static_cast<void>(TableOf(matrix));
  return std::dynamic_pointer_cast<CAnalysisTableDoc>(matrix.ToObject());
}

// Truncations and other variables' fits that the project holds are part of what is saved in it.
FitJob::Former FitJob::TakeFormer(const JobInput& input, JobRecorder& recorder) const {
  const FileIdentity project = FileIdentity::Of(save);
  if (input.home != nullptr && IsSavedAs(*input.home, save))
    return {PropertiesOf(input.sheet),
            input.home->workbook.IsChangedByOthers(save) ? FileIdentity() : project};
  TakeFormerProperties(save, input.sheet);
  recorder.Called(nullptr, "TakeFormerProperties", {recorder.NameOf(input.recorded), PythonPath(save)});
  return {PropertiesOf(input.sheet), project};
}

// The matrix is calculated from all variables with fits, so it has to know those that others saved meanwhile; nobody
// else saves until this is done.
void FitJob::SaveFitted(const JobInput& input, AnalysisSession& session,
                        const std::vector<std::string>& fitted, const Former& former,
                        JobRecorder& recorder) const {
  const FileTurn turn(save);
  if (FileIdentity::Of(save) != former.project) RefreshProperties(save, former.properties, input.sheet);
  SaveKept(input, Keep(session, input.sheet, fitted), recorder);
}

// Puts the sheet with its correlation matrix into the project.
void FitJob::SaveKept(const JobInput& input, const Table& matrix, JobRecorder& recorder) const {
  SaveFits(input.sheet, std::make_unique<Spreadsheet>(matrix->Table()), input.home, save);
  recorder.Called(nullptr, "SaveFits",
                  {recorder.NameOf(input.recorded), recorder.NameOf(matrix.get()), PythonPath(save)});
}

void FitJob::Save(const JobInput& input, AnalysisSession& session, const std::vector<std::string>& fitted,
                  JobRecorder& recorder) const {
  JobFaults faults = CheckSaving(fitted);
  CheckProjectEnding("save", save, faults);
  CheckFolder("save", save, faults);
  RequireNone(std::move(faults));
  const FileTurn turn(save);
  TakeFormer(input, recorder);
  const Table matrix = Keep(session, input.sheet, fitted);
  const FormerConditions former(input.sheet);
  ApplyCaseOptions(input.sheet);
  SaveKept(input, matrix, recorder);
}

std::vector<std::string> FitJob::Fit(AnalysisSession& session, const Spreadsheet& sheet) const {
  const Variables fitted = Choose(variables, sheet);
  RequireNone(CheckVariables(fitted));
  if (variables.All().empty()) {
    SayWhatIsLeftOut(sheet, session.Interface());
    SayWhatLooksDiscrete(sheet, fitted.continuous, session.Interface());
  }
  SayWhatLooksCensored(sheet, fitted, session.Interface());
  const auto continuous = NumbersOf(sheet, fitted.continuous, "continuous");
  const auto discrete = NumbersOf(sheet, fitted.discrete, "discrete");
  session.Begin(Task::kFit);
  const auto dialog = session.Dialog();
  dialog->Put("ContinuousVariable", AsVariant(continuous));
  dialog->Put("DiscreteVariable", AsVariant(discrete));
  dialog->Put(kDeletions.at(missing), true);
  dialog->Put(kCriteria.at(RankedBy(true)), true);
  dialog->Put(kDiscreteCriteria.at(RankedBy(false)), true);
  dialog->Put(kBinnings.at(binning.value_or(kUsualBinning)), true);
  dialog->Put("ContradictedFitsLast", true);
  dialog->Put("BootstrapSamples", AsInteger(bootstrap.value_or(0)));
  dialog->Put("BootstrapSeed", AsInteger(bootstrapSeed.value_or(kUsualBootstrapSeed)));
  PutDistributions(*dialog, *this, fitted);
  PutNumbers(*dialog, *this, fitted);
  session.Ok();
  return fitted.All();
}

std::vector<std::string> FitJob::Run(const JobInput& input, JobRecorder& recorder) const {
  RequireNone(Check());
  RequireNone(CheckSheet(*this, input.sheet));
  RefuseRecordedPlot(plot, recorder);
  RefuseRecordedReport(report, recorder);
  std::optional<FormerConditions> former;
  if (input.isLent) former.emplace(input.sheet);
  Former formerFits;
  if (!save.empty()) formerFits = TakeFormer(input, recorder);
  ApplyCaseOptions(input.sheet);
  if (weights) recorder.Set(input.recorded, "weight_variable", OrNone(*weights));
  if (select) recorder.Set(input.recorded, "selection", OrNone(*select));
  AnalysisSession& session = Start(input, data);
  std::vector<std::string> fitted = Fit(session, input.sheet);
  if (!save.empty()) SaveFitted(input, session, fitted, formerFits, recorder);
  if (!graphs.empty()) WriteFitGraphs(session.Analysis(), graphs, recorder);
  if (plot.IsAsked()) {
    const auto dialog = session.Dialog();
    WritePlot(plot, data.file.filename().string(),
              plot.Kind() == kReturnLevels ? ReturnLevelPlots(*this, *dialog, input.sheet)
                                           : FitPlots(*dialog, input.sheet, plot));
  }
  return fitted;
}

FitRun FitJob::Run(ProgramInterface& interface, JobRecorder& recorder) const {
  RequireNone(Check());
  FitRun run;
  run.data = OpenJobData(data);
  run.sheet = &run.data.Sheet(data.sheet);
  recorder.Opened(data.file, ReadingArguments(data), &run.data.workbook);
  recorder.Took(&run.data.workbook, run.data.isProject ? run.sheet->Name() : "", run.sheet);
  run.variables = Run(run.Input(interface, recorder), recorder);
  return run;
}

}  // namespace brenvolt
