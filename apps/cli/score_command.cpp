// brenvolt score: the predictions of a PMML model for the cases of a data file.
#include <cstdio>

#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/print.h"
#include "apps/cli/text_table.h"
#include "apps/cli/unpredicted_report.h"
#include "apps/cli/wrong_call.h"
#include "host/base/number_text.h"
#include "host/base/visible_text.h"
#include "host/jobs/json/score_json.h"
#include "host/jobs/score_job.h"
#include "host/tables/formats/safe_cells.h"

namespace brenvolt::cli {
namespace {

struct ScoreCall {
  ScoreJob job;
  std::filesystem::path record;
  ReportFormat format = ReportFormat::kCsv;
};

// The predictions for people, a row for each case.
ReportTable PredictionTable(const Spreadsheet& predictions) {
  ReportTable table;
  table.AddText(predictions.Header());
  for (std::size_t k = 0; k < predictions.VariableCount(); ++k) {
    const Variable& variable = predictions.VariableAt(k);
    variable.Type() == VariableType::kText ? table.AddText(variable.Name())
                                           : table.AddNumber(variable.Name());
  }
  for (std::size_t i = 0; i < predictions.CaseCount(); ++i) {
    std::vector<std::string> cells{std::string(predictions.CaseName(i))};
    for (std::size_t k = 0; k < predictions.VariableCount(); ++k) {
      const Variable& variable = predictions.VariableAt(k);
      const double value = variable.Values()[i];
      const auto label = variable.IsMissing(i) ? std::nullopt : variable.Label(value);
      cells.push_back(variable.IsMissing(i) ? "-" : label ? std::string(*label) : ReadableNumber(value));
    }
    table.AddRow(std::move(cells));
  }
  return table;
}

// Predictions on standard output stay alone there: programs read them.
void ReportRows(const ScoreJob& job, const ScoreRun& run, bool isTable) {
  const std::size_t cases = run.predictions.CaseCount();
  std::string notes = UnpredictedText(run.unpredicted, cases, "cases");
  for (const UnavailableOutput& output : run.unavailable)
    notes += "The output " + output.name + " is left out: " + output.reason + "\n";
  if (job.output.empty()) {
    if (isTable) {
      Print(TextOf(PredictionTable(run.predictions)));
    } else {
      PrintData(CsvText(job.safeCells ? WithSafeCells(run.predictions) : run.predictions, job.data.Format()));
    }
    std::fputs(VisibleText(notes).c_str(), stderr);
    return;
  }
  std::printf("Predictions of %zu cases written to %s\n", cases, VisibleLine(job.output.string()).c_str());
  Print(notes);
}

void Score(const ScoreCall& call) {
  if (call.job.safeCells && call.format != ReportFormat::kCsv)
    throw WrongCall("only cells of CSV could be run as formulas (--safe-cells)");
  Recording recording(call.record);
  const ScoreRun run = call.job.Run(recording.Job());
  if (call.format == ReportFormat::kJson) {
    Print(JsonText(ScoreJson(call.job, run)));
  } else {
    ReportRows(call.job, run, call.format == ReportFormat::kTable);
  }
  recording.Commit();
}

}  // namespace

void AddScoreCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("score", "Predict cases with a model from a PMML file");
  const auto call = std::make_shared<ScoreCall>();
  ScoreJob& job = call->job;
  command->add_option("MODEL", job.model, "PMML file, version 3.0 to 4.4")->required();
  AddDataOptions(*command, job.data, "; the columns that the model reads are found by their names")
      ->required();
  command
      ->add_option(
          "-o,--output", job.output,
          "File of the predictions, one line per case, by ending: .csv, .npz, .xlsx, .sav, .dta; default: "
          "standard output, as CSV")
      ->type_name("FILE");
  AddList(*command, "--keep", job.keep, "V,V",
          "Columns of the data that stand before the predictions, so that cases can be told apart");
  command->add_flag("--probabilities", job.probabilities, "Also the probability of every class");
  command->add_flag(
      "--leave-invalid", job.leaveInvalid,
      "Leave a case without predictions where the model refuses one of its values; default: fail");
  AddReadingOptions(*command, job.data);
  AddSafeCellsOption(*command, job.safeCells);
  AddRecordOption(*command, call->record);
  AddTableFormatOption(*command, call->format);
  command->get_option("--format")
      ->description("csv with a row for each case (default); table for people; json for programs");
  command->footer("Example:\n  brenvolt score ozone.pmml ozone.csv --keep doy -o predicted.csv");
  command->callback([call] { Score(*call); });
}

}  // namespace brenvolt::cli
