#include "host/jobs/score_job.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "host/jobs/base/analysis_session.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"
#include "host/jobs/safe_cells_option.h"
#include "host/tables/formats/data_file_writer.h"
#include "host/tables/formats/safe_cells.h"

namespace brenvolt {
namespace {

// A name that the predictions have already tells that the column is that of the data.
std::string KeptName(const Spreadsheet& predictions, const std::string& name) {
  return predictions.FindVariable(name) ? name + " (data)" : name;
}

// The predictions behind columns of the data, each case under its name there or else under its number.
Spreadsheet BesideTheirCases(Spreadsheet predictions, const Spreadsheet& cases,
                             const std::vector<std::int16_t>& kept) {
  Spreadsheet found(predictions.Name());
  for (const std::int16_t number : kept) {
    Variable copy = cases.VariableAt(static_cast<std::size_t>(number - 1));
    copy.SetName(KeptName(predictions, copy.Name()));
    found.AddVariable(std::move(copy));
  }
  for (std::size_t i = 0; i < predictions.VariableCount(); ++i)
    found.AddVariable(std::move(predictions.VariableAt(i)));
  const bool isNamed = cases.HasCaseNames() && !cases.AreCasesNumbered();
  found.SetHeader(isNamed && !cases.Header().empty() ? cases.Header() : "Case");
  if (!isNamed) {
    found.NumberCases();
    return found;
  }
  std::vector<std::string> names(cases.CaseCount());
  for (std::size_t i = 0; i < names.size(); ++i) names[i] = cases.CaseName(i);
  found.SetCaseNames(std::move(names));
  return found;
}

// "keep=['id', 'date']", or nothing.
std::string KeepArgument(const std::vector<std::string>& keep) {
  std::string list;
  for (const std::string& name : keep) list += (list.empty() ? "keep=[" : ", ") + PythonText(name);
  return list.empty() ? list : list + "]";
}

}  // namespace

JobFaults ScoreJob::Check() const {
  JobFaults faults;
  if (model.empty()) faults.push_back({"model", "missing model file"});
  CheckOnce("keep", keep, faults);
  CheckReading(data, faults);
  if (HasEnding(output, ".json")) {
    faults.push_back(
        {"output", "predictions as JSON are printed, with json as the format, and not written to a file"});
  } else {
    CheckTableTarget("output", output, faults);
  }
  CheckSafeCells(safeCells, output, faults);
  CheckTargetsApart({{"model", model}, {"data", data.file}}, {{"output", output}}, faults);
  return faults;
}

ScoreRun ScoreJob::Predict(const PredictionModel& prediction, const Spreadsheet& cases) const {
  RequireCases(cases);
  const std::vector<std::int16_t> kept = NumbersOf(cases, keep, "keep");
  const auto isCategorical = [](const ModelField& field) {
    return field.kind == ModelFieldKind::kCategorical;
  };
  if (probabilities && std::ranges::none_of(prediction.Dependents(), isCategorical))
    throw WrongJob("probabilities", "the model predicts no classes");
  ScoreOptions options;
  options.classProbabilities = probabilities;
  options.invalid = leaveInvalid ? InvalidValues::kMissing : InvalidValues::kError;
  UnpredictedCases unpredicted;
  Spreadsheet predictions = prediction.Score(cases, prediction.Name(), options, &unpredicted);
  return {BesideTheirCases(std::move(predictions), cases, kept), kept.size(), std::move(unpredicted),
          prediction.UnavailableOutputs(cases)};
}

ScoreRun ScoreJob::Score() const {
  RequireNone(Check());
  const PredictionModel prediction = PredictionModel::Load(model);
  DataFile file = OpenJobData(data);
  return Predict(prediction, file.Sheet(data.sheet));
}

ScoreRun ScoreJob::Score(const Spreadsheet& cases) const {
  RequireNone(Check());
  return Predict(PredictionModel::Load(model), cases);
}

void ScoreJob::Record(JobRecorder& recorder, const void* predictions, const void* cases) const {
  if (!recorder.IsRecording()) return;
  JobRecorder::Arguments arguments{PythonPath(model),
                                   cases != nullptr ? recorder.NameOf(cases) : PythonPath(data.file),
                                   data.sheet.empty() ? "" : "sheet=" + PythonText(data.sheet),
                                   KeepArgument(keep),
                                   probabilities ? "probabilities=True" : "",
                                   leaveInvalid ? "leave_invalid=True" : ""};
  for (std::string& argument : ReadingArguments(data)) arguments.push_back(std::move(argument));
  recorder.Gave("predictions", nullptr, "Score", arguments, predictions);
}

ScoreRun ScoreJob::Run(JobRecorder& recorder) const {
  ScoreRun run = Score();
  Record(recorder, &run.predictions);
  const std::filesystem::path file = output.empty() ? "/dev/stdout" : output;
  const bool isCsv = !HasDataEnding(file) || HasEnding(file, ".csv");
  recorder.Called(
      &run.predictions, isCsv ? "to_csv" : "to_file",
      {PythonPath(file), isCsv ? DecimalCommaArgument(data.decimalComma) : "", SafeCellsArgument(safeCells)});
  if (output.empty()) return run;
  RefuseProjectTarget(output);
  WriteDataFile(safeCells ? WithSafeCells(run.predictions) : run.predictions, output, data.Format());
  return run;
}

}  // namespace brenvolt
