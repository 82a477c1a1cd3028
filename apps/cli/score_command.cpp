// brenvolt score: the predictions of a PMML model for the cases of a data file.
#include <cstdio>

#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "host/jobs/score_job.h"

namespace brenvolt::cli {
namespace {

struct ScoreCall {
  ScoreJob job;
  std::filesystem::path record;
};

void Score(const ScoreCall& call) {
  const ScoreJob& job = call.job;
  Recording recording(call.record);
  const Spreadsheet predictions = job.Run(recording.Job());
  if (job.output.empty()) {
    std::fputs(CsvText(predictions, job.data.Format()).c_str(), stdout);
  } else {
    std::printf("Predictions of %zu cases written to %s\n", predictions.CaseCount(), job.output.c_str());
  }
  recording.Commit();
}

}  // namespace

void AddScoreCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("score", "Predict cases with a model from a PMML file");
  const auto call = std::make_shared<ScoreCall>();
  ScoreJob& job = call->job;
  command->add_option("MODEL", job.model, "PMML file, version 3.0 to 4.4")->required();
  command
      ->add_option(
          "DATA", job.data.file,
          "CSV file with a header row, or project (.bvw); the columns that the model reads are found "
          "by their names")
      ->required();
  command->add_option("--sheet", job.data.sheet, "Sheet of a project; default: its first data sheet")
      ->type_name("NAME");
  command
      ->add_option("-o,--output", job.output,
                   "CSV file of the predictions, one line per case; default: standard output")
      ->type_name("OUT.csv");
  command->add_flag("--probabilities", job.probabilities, "Also the probability of every class");
  command->add_flag(
      "--leave-invalid", job.leaveInvalid,
      "Leave a case without predictions where the model refuses one of its values; default: fail");
  AddDecimalCommaOption(*command, job.data);
  AddRecordOption(*command, call->record);
  command->footer("Example:\n  brenvolt score ozone.pmml ozone.csv -o predicted.csv");
  command->callback([call] { Score(*call); });
}

}  // namespace brenvolt::cli
