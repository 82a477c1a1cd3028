#include "host/jobs/fit_job.h"

#include <algorithm>

#include "host/analysis/result_table.h"
#include "host/base/almost_equal.h"
#include "host/jobs/fit_graphs.h"
#include "host/jobs/project_files.h"

namespace brenvolt {
namespace {

// The place of a variable in a list that it is in, from 1.
std::int32_t PlaceOf(const std::string& variable, const std::vector<std::string>& list) {
  return static_cast<std::int32_t>(std::ranges::find(list, variable) - list.begin() + 1);
}

// Text variables cannot be fitted; one misspelt number turns a whole column into text.
void SayWhatIsLeftOut(const Spreadsheet& sheet, UserInterface& interface) {
  std::string names;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    if (sheet.VariableAt(i).Type() != VariableType::kText) continue;
    names += (names.empty() ? "" : ", ") + sheet.VariableAt(i).Name();
  }
  if (!names.empty()) interface.ShowMessage({"text variables are left out: " + names, {}, {}});
}

// The variables named, or every numeric variable but the weights as continuous ones.
FitJob::Variables Choose(const FitJob::Variables& named, const Spreadsheet& sheet, UserInterface& interface) {
  if (!named.All().empty()) return named;
  FitJob::Variables chosen;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    if (variable.Type() == VariableType::kNumeric && sheet.WeightVariable() != i)
      chosen.continuous.push_back(variable.Name());
  }
  if (chosen.continuous.empty()) throw Error("has no numeric variable", "sheet " + sheet.Name());
  SayWhatIsLeftOut(sheet, interface);
  return chosen;
}

// A new variable has some distributions checked: all are put, the ones not asked for as unchecked.
void PutDistributions(AutomationObject& dialog, const FitJob& job, const FitJob::Variables& fitted) {
  for (const bool continuous : {true, false}) {
    const std::size_t count = (continuous ? fitted.continuous : fitted.discrete).size();
    for (std::size_t i = 1; i <= count; ++i) {
      const auto place = static_cast<std::int32_t>(i);
      for (const FittedType& type : kFittedTypes) {
        if (type.continuous == continuous) dialog.Put(type.check, place, job.Tries(type));
      }
      if (continuous) dialog.Put("FitJohnsonByPercentile", place, job.johnsonPercentiles);
    }
  }
}

void PutNumbers(AutomationObject& dialog, const FitJob& job, const FitJob::Variables& fitted) {
  for (const FitJob::Offset& offset : job.offsets) {
    dialog.Put(FindFittedType(offset.distribution)->offset, PlaceOf(offset.variable, fitted.continuous),
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

// Codes are the places in the table of types, whose order is that of the catalogue.
Variant CodesOf(const std::vector<std::string>& names) {
  Variant::Array codes;
  for (const std::string& name : names)
    codes.emplace_back(static_cast<std::int32_t>(FindFittedType(name) - kFittedTypes.data()));
  return codes;
}

void PutBound(AutomationObject& dialog, std::int32_t place, const std::string& end,
              const std::optional<double>& bound) {
  dialog.Put("IsUserDefinedTrunc" + end, place, bound.has_value());
  dialog.Put("UserDefinedTrunc" + end, place, bound.value_or(kNotSet));
}

// Case weights and selection for good; an empty text takes away what the project holds.
void ApplyCaseOptions(const FitJob& job, Spreadsheet& sheet, JobRecorder& recorder) {
  if (job.weights && job.weights->empty()) sheet.SetWeightVariable(std::nullopt);
  if (job.weights && !job.weights->empty())
    sheet.SetWeightVariable(static_cast<std::size_t>(NumbersOf(sheet, {&*job.weights, 1}).front() - 1));
  if (job.select && job.select->empty()) sheet.SetSelection({});
  if (job.select && !job.select->empty()) ApplySelection(sheet, *job.select);
  const auto orNone = [](const std::optional<std::string>& text) {
    return text->empty() ? std::nullopt : text;
  };
  if (job.weights) recorder.Set(&sheet, "weight_variable", orNone(job.weights));
  if (job.select) recorder.Set(&sheet, "selection", orNone(job.select));
}

// Opens the data, and gives them what the project holds of them that they are to be saved in: truncations and
// other variables' fits are part of what is saved.
void Open(const FitJob& job, FitRun& run, JobRecorder& recorder) {
  run.data = OpenDataFile(job.data.file, job.data.Format());
  run.sheet = &run.data.Sheet(job.data.sheet);
  recorder.Opened(job.data.file, job.data.decimalComma, &run.data.workbook);
  recorder.Took(&run.data.workbook, run.data.isProject ? run.sheet->Name() : "", run.sheet);
  if (!job.save.empty() && !IsSavedAs(run.data, job.save)) {
    TakeFormerProperties(job.save, *run.sheet);
    recorder.Called(nullptr, "TakeFormerProperties", {recorder.NameOf(run.sheet), PythonPath(job.save)});
  }
  ApplyCaseOptions(job, *run.sheet, recorder);
}

// Puts the fits on the sheet's variables, and the sheet with its correlation matrix into the project.
void Save(const FitJob& job, FitRun& run, JobRecorder& recorder) {
  const auto dialog = run.session->Dialog();
  job.SpecifySaving(*dialog, run.variables);
  const Variant document = dialog->Get("SaveDistributionFit");
  SaveFits(*run.sheet, std::make_unique<Spreadsheet>(TableOf(document)), &run.data, job.save);
  recorder.Called(
      nullptr, "SaveFits",
      {recorder.NameOf(run.sheet), recorder.NameOf(document.ToObject().get()), PythonPath(job.save)});
}

}  // namespace

std::vector<std::string> FitJob::Variables::All() const {
  std::vector<std::string> all = continuous;
  all.insert(all.end(), discrete.begin(), discrete.end());
  return all;
}

bool FitJob::Tries(const FittedType& type) const {
  return distributions.empty() || std::ranges::any_of(distributions, [&](const std::string& name) {
           return FindFittedType(name) == &type;
         });
}

void FitJob::SpecifySaving(AutomationObject& results, const std::vector<std::string>& fitted) const {
  RequireNone(CheckSaving(fitted));
  for (const Truncation& one : truncate) {
    PutBound(results, PlaceOf(one.variable, fitted), "Min", one.low);
    PutBound(results, PlaceOf(one.variable, fitted), "Max", one.high);
  }
  for (const Order& one : order)
    results.Put("DistributionOrder", PlaceOf(one.variable, fitted), CodesOf(one.distributions));
}

std::vector<std::string> FitJob::Fit(AnalysisSession& session, const Spreadsheet& sheet) const {
  RequireNone(Check());
  const Variables fitted = Choose(variables, sheet, session.Interface());
  RequireNone(CheckVariables(fitted));
  const auto continuous = NumbersOf(sheet, fitted.continuous);
  const auto discrete = NumbersOf(sheet, fitted.discrete);
  session.Begin(Task::kFit);
  const auto dialog = session.Dialog();
  dialog->Put("ContinuousVariable", AsVariant(continuous));
  dialog->Put("DiscreteVariable", AsVariant(discrete));
  dialog->Put(kDeletions.at(missing), true);
  dialog->Put(kCriteria.at(RankedBy(true)), true);
  dialog->Put(kDiscreteCriteria.at(RankedBy(false)), true);
  dialog->Put(kBinnings.at(binning), true);
  dialog->Put("BootstrapSamples", AsInteger(bootstrap.value_or(0)));
  dialog->Put("BootstrapSeed", AsInteger(bootstrapSeed.value_or(1)));
  PutDistributions(*dialog, *this, fitted);
  PutNumbers(*dialog, *this, fitted);
  session.Ok();
  return fitted.All();
}

FitRun FitJob::Run(ProgramInterface& interface, JobRecorder& recorder) const {
  RequireNone(Check());
  FitRun run;
  Open(*this, run, recorder);
  run.Start(interface, recorder);
  run.variables = Fit(*run.session, *run.sheet);
  if (!save.empty()) Save(*this, run, recorder);
  if (!graphs.empty()) WriteFitGraphs(run.session->Analysis(), graphs, recorder);
  return run;
}

}  // namespace brenvolt
