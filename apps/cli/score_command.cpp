// brenvolt score: the predictions of a PMML model for the cases of a data file.
#include <cstdio>

#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/session.h"
#include "host/base/error.h"
#include "host/models/prediction_model.h"

namespace brenvolt::cli {
namespace {

struct ScoreArguments {
  std::filesystem::path model;
  InputOptions input;
  std::filesystem::path output;
  bool classProbabilities = false;
  bool leavesInvalid = false;
};

// The model is read first: a file that is no model is the nearer fault than one of its data.
void Score(const ScoreArguments& arguments) {
  const PredictionModel model = PredictionModel::Load(arguments.model);
  DataFile data = OpenDataFile(arguments.input.path, arguments.input.Format());
  const Spreadsheet& sheet = data.Sheet(arguments.input.sheet);
  if (sheet.Kind() != SheetKind::kData) throw Error("holds a matrix, not cases", sheet.Name());
  ScoreOptions options;
  options.classProbabilities = arguments.classProbabilities;
  options.invalid = arguments.leavesInvalid ? InvalidValues::kMissing : InvalidValues::kError;
  const Spreadsheet predictions = model.Score(sheet, model.Name(), options);
  if (arguments.output.empty()) {
    std::fputs(CsvText(predictions, arguments.input.Format()).c_str(), stdout);
    return;
  }
  WriteCsvFile(predictions, arguments.output, arguments.input.Format());
  std::printf("Predictions of %zu cases written to %s\n", predictions.CaseCount(), arguments.output.c_str());
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
  command->footer("Example:\n  brenvolt score ozone.pmml ozone.csv -o predicted.csv");
  command->callback([arguments] { Score(*arguments); });
}

}  // namespace brenvolt::cli
