// brenvolt profile: how predictions vary when their predictors do, and how often they miss a specification.
#include <cstdio>
#include <optional>

#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/print.h"
#include "apps/cli/profile_report.h"
#include "apps/cli/round_options.h"
#include "apps/cli/specification_option.h"
#include "apps/cli/wrong_call.h"
#include "host/analysis/ports/terminal_user_interface.h"
#include "host/analysis/run_bounds.h"
#include "host/base/number_text.h"
#include "host/base/visible_text.h"
#include "host/jobs/json/profile_json.h"
#include "host/jobs/profile/profile_job.h"
#include "host/jobs/profile/profile_plots.h"
#include "host/jobs/profile/profile_workbook.h"
#include "host/jobs/reports/profile_report.h"
#include "host/jobs/reports/reported_jobs.h"

namespace brenvolt::cli {
namespace {

struct ProfileCall {
  ProfileJob job;
  std::filesystem::path record;
  ReportFormat format = ReportFormat::kTable;
};

// As the words stand.
std::filesystem::path ParseModel(const std::string& text) {
  return text;
}
std::string ParseFormula(const std::string& text) {
  return text;
}

std::pair<std::string, double> ParseOne(const std::string& field, const std::string& form,
                                        const std::string& text) {
  const auto [name, number] = SplitEntry(field, form, text);
  return {name, NumberIn(field, std::string(Trim(number)))};
}

ProfileJob::Noise ParseNoise(const std::string& text) {
  const auto [response, deviation] = ParseOne("noise", "RESPONSE=STANDARD-DEVIATION", text);
  return {response, deviation};
}

ProfileJob::Fixed ParseFixed(const std::string& text) {
  const auto [predictor, words] = SplitEntry("fixed", "PREDICTOR=VALUE", text);
  const std::string value(Trim(words));
  if (const auto number = ParseNumber(value)) return {predictor, *number};
  return {predictor, value};
}

ProfileJob::Truncation ParseTruncation(const std::string& text) {
  constexpr const char* kForm = "PREDICTOR=LOW:HIGH";
  const auto [predictor, bounds] = SplitEntry("truncate", kForm, text);
  const auto [low, high] = BoundsIn("truncate", kForm, text, bounds);
  return {predictor, low, high};
}

// What the runs are repeated from, a line each.
std::string DrawnText(const ProfileCall& call, const ProfileRun& run) {
  std::string text;
  for (const auto& [name, value] : DrawnFacts(call.job, run.results).facts)
    text += "  " + name + " " + value + "\n";
  return text;
}

void Report(const ProfileCall& call, const ProfileRun& run) {
  const ProfileJob& job = call.job;
  if (call.format == ReportFormat::kCsv) return PrintCsv(ProfileSheet(run.results), job.data);
  if (call.format == ReportFormat::kJson) {
    Print(JsonText(ProfileJson(job, run)));
    return;
  }
  std::printf("Seed %d\n", run.seed);
  Print(ProfileText(run.results, DrawnText(call, run)));
  if (!job.output.empty()) {
    std::printf("\nSimulated data %s %s%s\n", run.outputSheet.empty() ? "written to" : "saved in",
                VisibleLine(job.output.string()).c_str(),
                VisibleLine(run.outputSheet.empty() ? "" : ", sheet " + run.outputSheet).c_str());
  }
  if (!job.graphs.empty()) std::printf("\nGraphs written to %s\n", VisibleLine(job.graphs.string()).c_str());
  ReportPlot(job.plot);
  SayReportWritten(job.report);
}

// The files are written before anything is reported, so that a report means a finished job.
void Profile(const ProfileCall& call) {
  RequireWords(call.job);
  Recording recording(call.record);
  TerminalUserInterface terminal(kProgram);
  const ProfileRun run = RunReported(call.job, terminal, recording.Job());
  Report(call, run);
  recording.Commit();
}

}  // namespace

void AddProfileCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand(
      "profile", "Simulate what models or formulas predict, and compare it with specifications");
  const auto call = std::make_shared<ProfileCall>();
  ProfileJob& job = call->job;
  AddDataOptions(
      *command, job.data,
      ", whose columns the predictors start from: the distribution saved with the column of the "
      "predictor's name, else Normal with its mean and standard deviation; without data --variable or "
      "--from say all");
  AddEntries(*command, "--model", job.models, ParseModel, "FILE.pmml",
             "Model that predicts its dependents; may be repeated");
  AddEntries(*command, "--formula", job.formulas, ParseFormula, "'Y=...'",
             "Formula that predicts a response instead of a model; may be repeated");
  AddHandInputs(*command, job.inputs);
  command
      ->add_option("--matrix", job.inputs.matrix,
                   "Correlations of the predictors: a sheet of the project, a CSV file, or "
                   "PROJECT.bvw[:SHEET]; --correlation is entered into them")
      ->type_name("SHEET|FILE");
  command->add_flag_callback(
      "--no-saved-fits", [call] { call->job.savedFits = false; },
      "Start each predictor from its column, whatever distribution is saved with it");
  AddNumber(*command, "--samples", "samples", job.samples, "N",
            "Number of runs, 1 or more (default " + std::to_string(kUsualProfilerRuns) + ")");
  AddNumber(*command, "--seed", "seed", job.seed, "S",
            "Seed, 1 or more: the same seed gives the same runs; default: one is drawn and reported");
  command->add_flag(
      "--correlated", job.correlated,
      "Correlate the predictors as the matrix saved with their distributions has it, else as their "
      "columns are");
  command->add_flag("--fit-best", job.fitBest,
                    "Draw each predictor from the distribution that fits its column best");
  AddEntries(*command, "--noise", job.noise, ParseNoise, "Y=SD",
             "Add normal noise of this standard deviation to a response; may be repeated");
  command
      ->add_option("--noise-correlation", job.noiseCorrelations,
                   "The correlation of the noise of two responses, once for each pair")
      ->allow_extra_args(false)
      ->type_name("Y,Y=NUMBER");
  AddEntries(*command, "--spec", job.specifications, ParseSpecification, "Y=LSL,TARGET,USL",
             "Specification of a response; each part may be empty, as in 'Y=,,25'; may be repeated");
  AddEntries(*command, "--fix", job.fixed, ParseFixed, "X=VALUE",
             "Keep a predictor at a number, or at a class by its name; may be repeated");
  AddEntries(
      *command, "--truncate", job.truncate, ParseTruncation, "X=LOW:HIGH",
      "Keep the draws of a predictor within bounds, each of which may be empty, instead of the range that "
      "a model declares; may be repeated");
  command
      ->add_option(
          "-o,--output", job.output,
          "Where the simulated runs go, by ending: .csv, .npz for NumPy arrays, .xlsx with summaries, "
          "correlations, limits, rates and charts on sheets of their own, .sav, .dta, or .bvw for a project; "
          "the first two take any number of runs, the others up to " +
              std::to_string(kMostProfilerRuns))
      ->type_name("OUT");
  AddWaitOption(*command);
  command
      ->add_option("--graphs", job.graphs,
                   "File for the data of the graphs as JSON: histograms with the best fit and the limits, "
                   "tornado graphs, profiles of predicted values, defect profiles; not with --record")
      ->type_name("FILE.json");
  AddPlotOptions(*command, job.plot, kProfilePlotKinds);
  AddReportOption(*command, job.report);
  AddReadingOptions(*command, job.data);
  AddRoundOptions(*command, job.rounds);
  AddRecordOption(*command, call->record);
  AddTableFormatOption(*command, call->format);
  command->footer(
      "Example:\n  brenvolt profile examples/ozone.csv --model examples/ozone_regression.pmml --fit-best "
      "--correlated --noise O3=4.75 --spec O3=,,25 --seed 7\n  brenvolt profile --from "
      "examples/tolerance_stack.txt --formula 'gap = housing - a - b - c - d' --spec gap=0.3,,0.7");
  command->callback([call] { Profile(*call); });
}

}  // namespace brenvolt::cli
