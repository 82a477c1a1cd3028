// brenvolt score: the predictions of a PMML model for the cases of a data file.
#include <cstdio>

#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "host/jobs/exchange.h"

namespace brenvolt::cli {
namespace {

struct ScoreArguments {
  std::filesystem::path model;
  InputOptions input;
  std::filesystem::path output;
  bool classProbabilities = false;
  bool leavesInvalid = false;
  std::filesystem::path record;
};

void Score(const ScoreArguments& arguments) {
  Recording recording(arguments.record);
  ScoreOptions options;
  options.classProbabilities = arguments.classProbabilities;
  options.invalid = arguments.leavesInvalid ? InvalidValues::kMissing : InvalidValues::kError;
  const InputOptions& input = arguments.input;
  const Spreadsheet predictions =
      ScoreFile(arguments.model, input.path, input.Format(), input.sheet, options);
  const std::string comma = DecimalCommaArgument(input.decimalComma);
  recording.Job().Gave("predictions", nullptr, "Score",
                       {PythonPath(arguments.model), PythonPath(input.path),
                        input.sheet.empty() ? "" : "sheet=" + PythonText(input.sheet),
                        arguments.classProbabilities ? "probabilities=True" : "",
                        arguments.leavesInvalid ? "leave_invalid=True" : "", comma},
                       &predictions);
  if (arguments.output.empty()) {
    std::fputs(CsvText(predictions, input.Format()).c_str(), stdout);
  } else {
    WriteCsvFile(predictions, arguments.output, input.Format());
    recording.Job().Called(&predictions, "to_csv", {PythonPath(arguments.output), comma});
    std::printf("Predictions of %zu cases written to %s\n", predictions.CaseCount(),
                arguments.output.c_str());
  }
  recording.Commit();
}

}  // namespace

void AddScoreCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("score", "Predict cases with a model from a PMML file");
  const auto arguments = std::make_shared<ScoreArguments>();
  command->add_option("MODEL", arguments->model, "PMML file, version 3.0 to 4.4")->required();
  command
      ->add_option(
          "DATA", arguments->input.path,
          "CSV file with a header row, or project (.bvw); the columns that the model reads are found "
          "by their names")
      ->required();
  command->add_option("--sheet", arguments->input.sheet, "Sheet of a project; default: its first data sheet")
      ->type_name("NAME");
  command
      ->add_option("-o,--output", arguments->output,
                   "CSV file of the predictions, one line per case; default: standard output")
      ->type_name("OUT.csv");
  command->add_flag("--probabilities", arguments->classProbabilities, "Also the probability of every class");
  command->add_flag(
      "--leave-invalid", arguments->leavesInvalid,
      "Leave a case without predictions where the model refuses one of its values; default: fail");
  AddDecimalCommaOption(*command, arguments->input);
  AddRecordOption(*command, arguments->record);
  command->footer("Example:\n  brenvolt score ozone.pmml ozone.csv -o predicted.csv");
  command->callback([arguments] { Score(*arguments); });
}

}  // namespace brenvolt::cli
