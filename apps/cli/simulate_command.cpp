// brenvolt simulate: samples drawn from the distributions that a project's variables carry.
#include <cstdio>

#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/fit_report.h"
#include "apps/cli/print.h"
#include "apps/cli/round_options.h"
#include "apps/cli/simulation_report.h"
#include "apps/cli/wrong_call.h"
#include "host/analysis/ports/terminal_user_interface.h"
#include "host/base/number_text.h"
#include "host/base/visible_text.h"
#include "host/jobs/base/dialog_words.h"
#include "host/jobs/data_plots.h"
#include "host/jobs/json/simulation_json.h"
#include "host/jobs/reports/reported_jobs.h"
#include "host/jobs/simulate_job.h"
#include "host/jobs/simulation_workbook.h"

namespace brenvolt::cli {
namespace {

struct SimulateCall {
  SimulateJob job;
  std::filesystem::path record;
  ReportFormat format = ReportFormat::kTable;

  std::int64_t Samples() const { return static_cast<std::int64_t>(job.samples); }
};

// Where what went.
std::string DestinationText(const SimulationRun& run) {
  if (!run.outputSheet.empty()) {
    return "Simulated data saved in " + run.file.string() + ", sheet " + run.outputSheet +
           (run.matrixSheet.empty() ? "" : "; the repaired matrix in sheet " + run.matrixSheet);
  }
  return "Simulated data written to " + run.file.string() +
         (run.matrixFile.empty() ? "" : "; the repaired matrix to " + run.matrixFile.string());
}

std::string Samples(std::int64_t count) {
  return std::to_string(count) + (count == 1 ? " sample" : " samples");
}

void Report(const SimulateCall& call, const SimulationRun& run) {
  if (call.format == ReportFormat::kCsv) return PrintCsv(SimulationSheet(run.results), call.job.data);
  if (call.format == ReportFormat::kJson) {
    Print(JsonText(SimulationJson(call.job, run)));
    return;
  }
  const ResultTable& summary = run.results.summary;
  std::printf("%s, %s, seed %d\n%s", VisibleLine(summary.title).c_str(), Samples(call.Samples()).c_str(),
              run.seed, SummaryText(summary).c_str());
  if (!run.results.pairs.empty()) std::printf("\n%s", VisibleText(CorrelationsText(run.results)).c_str());
  for (const auto& [variable, cautions] : run.cautions)
    std::printf("\n%s\n%s", VisibleLine(variable).c_str(), VisibleText(CautionsText(cautions)).c_str());
  if (!run.methodNotes.empty()) std::printf("\n");
  for (const std::string& note : run.methodNotes) std::printf("  %s\n", VisibleLine(note).c_str());
  std::printf("\nDrawn by %s%s from\n%s", run.method.c_str(),
              call.job.truncate ? " between the 0.5 % and 99.5 % quantiles" : "",
              VisibleText(TextOf(run.design)).c_str());
  if (!run.file.empty()) std::printf("\n%s\n", VisibleText(DestinationText(run)).c_str());
  ReportPlot(call.job.plot);
  SayReportWritten(call.job.report);
  if (call.job.keepsTable) PrintCharts(DataPlots(run.output->Table(), "histogram", call.job.Origin(run)));
}

// The data are written before anything is reported, so that a report stands for a finished job.
void Simulate(const SimulateCall& call) {
  RequireWords(call.job);
  Recording recording(call.record);
  TerminalUserInterface terminal(kProgram);
  const SimulationRun run = RunReported(call.job, terminal, recording.Job());
  Report(call, run);
  recording.Commit();
}

}  // namespace

void AddSimulateCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand(
      "simulate", "Draw samples from the distributions saved in a project, or given by hand");
  const auto call = std::make_shared<SimulateCall>();
  SimulateJob& job = call->job;
  command->add_option("PROJECT", job.data.file,
                      "Project (.bvw) whose variables carry distributions; --variable or --from takes its "
                      "place");
  AddHandInputs(*command, job.inputs);
  command
      ->add_option("--sheet", job.data.sheet,
                   "Sheet of the project; default: the first whose variables carry distributions")
      ->type_name("NAME");
  AddList(*command, "--variables", job.variables, "V,V",
          "Variables to simulate; default: all with distributions");
  command
      ->add_option(
          "--method", job.method,
          "How samples are drawn; default: iman-conover where correlations are known, else monte-carlo")
      ->type_name("monte-carlo|latin-hypercube|iman-conover|latin-hypercube-iman-conover|norta");
  command
      ->add_option("--matrix", job.matrix,
                   "Correlation matrix for the iman-conover methods: a sheet of the project, a CSV file, or "
                   "PROJECT.bvw[:SHEET]; default: the one saved with the fits")
      ->type_name("SHEET|FILE");
  AddNumber(*command, "--samples", "samples", job.samples, "N",
            "Number of samples (default " + ShortestNumber(job.samples) + ")");
  AddNumber(*command, "--seed", "seed", job.seed, "S",
            "Seed, 0 or more: the same seed gives the same samples; default: one is drawn and reported");
  command->add_flag("--truncate", job.truncate, "Keep each variable within its 0.5 % and 99.5 % quantiles");
  command
      ->add_option(
          "-o,--output", job.output,
          "Where the data go, by ending: .csv, .npz for NumPy arrays, .xlsx with distributions, summaries, "
          "correlations and charts on sheets of their own, .sav, .dta, or .bvw for a project; the first two "
          "take any number of samples of the methods without correlation")
      ->type_name("OUT");
  AddWaitOption(*command);
  AddPlotOptions(*command, job.plot, kDataPlotKinds);
  AddReportOption(*command, job.report);
  AddChartOption(*command, job.keepsTable);
  AddRoundOptions(*command, job.rounds);
  AddRecordOption(*command, call->record);
  AddTableFormatOption(*command, call->format);
  command->footer(
      "Example:\n  brenvolt simulate geyser.bvw --method iman-conover --samples 10000 --seed 7 -o "
      "simulated.csv\n  brenvolt simulate --variable 'h ~ normal(50.2, 0.05)' --variable 'n ~ poisson(3)' "
      "--seed 7");
  command->callback([call] { Simulate(*call); });
}

}  // namespace brenvolt::cli
