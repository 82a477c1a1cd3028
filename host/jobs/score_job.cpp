#include "host/jobs/score_job.h"

#include <algorithm>

#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"
#include "host/tables/formats/data_file_writer.h"

namespace brenvolt {

JobFaults ScoreJob::Check() const {
  JobFaults faults;
  if (model.empty()) faults.push_back({"model", "missing model file"});
  CheckReading(data, faults);
  CheckTableTarget("output", output, faults);
  CheckTargetsApart({{"model", model}, {"data", data.file}}, {{"output", output}}, faults);
  return faults;
}

ScoreRun ScoreJob::Predict(const PredictionModel& prediction, const Spreadsheet& cases) const {
  RequireCases(cases);
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
  return {std::move(predictions), std::move(unpredicted), prediction.UnavailableOutputs(cases)};
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
  JobRecorder::Arguments arguments{
      PythonPath(model), cases != nullptr ? recorder.NameOf(cases) : PythonPath(data.file),
      data.sheet.empty() ? "" : "sheet=" + PythonText(data.sheet), probabilities ? "probabilities=True" : "",
      leaveInvalid ? "leave_invalid=True" : ""};
  for (std::string& argument : ReadingArguments(data)) arguments.push_back(std::move(argument));
  recorder.Gave("predictions", nullptr, "Score", arguments, predictions);
}

ScoreRun ScoreJob::Run(JobRecorder& recorder) const {
  ScoreRun run = Score();
  Record(recorder, &run.predictions);
  const std::filesystem::path file = output.empty() ? "/dev/stdout" : output;
  const bool isCsv = !HasDataEnding(file) || HasEnding(file, ".csv");
  recorder.Called(&run.predictions, isCsv ? "to_csv" : "to_file",
                  {PythonPath(file), isCsv ? DecimalCommaArgument(data.decimalComma) : ""});
  if (output.empty()) return run;
  RefuseProjectTarget(output);
  WriteDataFile(run.predictions, output, data.Format());
  return run;
}

}  // namespace brenvolt
