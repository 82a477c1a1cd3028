// brenvolt simulate: samples drawn from the distributions that a project's variables carry.
#include <array>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/correlation_report.h"
#include "apps/cli/data_options.h"
#include "apps/cli/text_table.h"
#include "apps/cli/wrong_call.h"
#include "host/analysis/terminal_user_interface.h"
#include "host/base/number_text.h"
#include "host/jobs/dialog_words.h"
#include "host/jobs/simulate_job.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;

struct SimulateCall {
  SimulateJob job;
  std::filesystem::path record;
  ReportFormat format = ReportFormat::kTable;

  std::int64_t Samples() const { return static_cast<std::int64_t>(job.samples); }
};

// JSON names of the summary's columns, in their order; the percentiles follow.
constexpr std::array<const char*, 7> kMomentNames{
    "n", "mean", "standardDeviation", "skewness", "kurtosis", "minimum", "maximum"};
constexpr int kSummaryDigits = 5;

// Some columns of the summary, a line per variable.
std::string ColumnsText(const Spreadsheet& summary, std::size_t first, std::size_t last) {
  TextTable table;
  table.AddColumn("Variable", TextTable::Align::kLeft);
  for (std::size_t c = first; c < last; ++c) {
    table.AddColumn(summary.VariableAt(c).Name(), TextTable::Align::kRight);
  }
  for (std::size_t row = 0; row < summary.CaseCount(); ++row) {
    std::vector<std::string> cells{summary.CaseName(row)};
    for (std::size_t c = first; c < last; ++c) {
      // The count is a whole number, shown whole.
      const double value = summary.VariableAt(c).Values()[row];
      cells.push_back(c == 0 ? FormatNumber("%.0f", value) : ReadableNumber(value, kSummaryDigits));
    }
    table.AddRow(std::move(cells));
  }
  return table.Text();
}

// Moments and percentiles apart, so that a line fits a terminal.
std::string SummaryText(const Spreadsheet& summary) {
  return ColumnsText(summary, 0, kMomentNames.size()) + "\n" +
         ColumnsText(summary, kMomentNames.size(), summary.VariableCount());
}

Json SummaryJson(const Spreadsheet& summary) {
  Json variables = Json::array();
  for (std::size_t row = 0; row < summary.CaseCount(); ++row) {
    Json variable = {{"name", summary.CaseName(row)}};
    Json percentiles = Json::object();
    for (std::size_t c = 0; c < summary.VariableCount(); ++c) {
      const double value = summary.VariableAt(c).Values()[row];
      const Json number = std::isfinite(value) ? Json(value) : Json(nullptr);
      if (c == 0) {
        variable[kMomentNames[c]] = static_cast<std::int64_t>(value);
      } else if (c < kMomentNames.size()) {
        variable[kMomentNames[c]] = number;
      } else {
        percentiles[summary.VariableAt(c).Name().substr(1)] = number;
      }
    }
    variable["percentiles"] = percentiles;
    variables.push_back(variable);
  }
  return variables;
}

// Where what went.
std::string DestinationText(const SimulationRun& run) {
  if (!run.outputSheet.empty()) {
    return "Simulated data saved in " + run.file.string() + ", sheet " + run.outputSheet +
           (run.matrixSheet.empty() ? "" : "; the repaired matrix in sheet " + run.matrixSheet);
  }
  return "Simulated data written to " + run.file.string() +
         (run.matrixFile.empty() ? "" : "; the repaired matrix to " + run.matrixFile.string());
}

Json ReportJson(const SimulateCall& call, const SimulationRun& run) {
  Json report = {{"method", run.summary->Table().Title()},
                 {"samples", call.Samples()},
                 {"variables", SummaryJson(run.summary->Table())}};
  if (run.correlations != nullptr)
    report["correlations"] = CorrelationsJson(run.correlations->Table(), run.output->Table());
  if (run.repairedMatrix != nullptr) {
    report["repair"] = RepairJson(run.correlations->Table(), run.output->Table());
    report["repairedMatrix"] = MatrixJson(run.repairedMatrix->Table());
  }
  if (run.file.empty()) return report;
  report["output"] = {{"file", run.file.string()}};
  if (!run.outputSheet.empty()) report["output"]["sheet"] = run.outputSheet;
  if (!run.matrixFile.empty()) report["output"]["matrixFile"] = run.matrixFile.string();
  if (!run.matrixSheet.empty()) report["output"]["matrixSheet"] = run.matrixSheet;
  return report;
}

std::string Samples(std::int64_t count) {
  return std::to_string(count) + (count == 1 ? " sample" : " samples");
}

void Report(const SimulateCall& call, const SimulationRun& run) {
  if (call.format == ReportFormat::kJson) {
    std::fputs(JsonText(ReportJson(call, run)).c_str(), stdout);
    return;
  }
  const Spreadsheet& summary = run.summary->Table();
  std::printf("%s, %s\n%s", summary.Title().c_str(), Samples(call.Samples()).c_str(),
              SummaryText(summary).c_str());
  if (run.correlations != nullptr) std::printf("\n%s", CorrelationsText(run.correlations->Table()).c_str());
  if (!run.file.empty()) std::printf("\n%s\n", DestinationText(run).c_str());
}

void ReportNothing(const SimulateCall& call) {
  constexpr const char* kTitle = "Normal to anything method";
  constexpr const char* kNothing = "nothing was produced; this method has no generator";
  if (call.format == ReportFormat::kJson) {
    const Json report = {
        {"method", kTitle}, {"samples", 0}, {"variables", Json::array()}, {"note", kNothing}};
    std::fputs(JsonText(report).c_str(), stdout);
    return;
  }
  std::printf("%s: %s.\n", kTitle, kNothing);
}

// The data are written before anything is reported, so that a report stands for a finished job.
void Simulate(const SimulateCall& call) {
  Recording recording(call.record);
  TerminalUserInterface terminal(kProgram);
  const SimulationRun run = call.job.Run(terminal, recording.Job());
  if (run.summary == nullptr) {
    ReportNothing(call);
  } else {
    Report(call, run);
  }
  recording.Commit();
}

}  // namespace

void AddSimulateCommand(CLI::App& program) {
  CLI::App* command =
      program.add_subcommand("simulate", "Draw samples from the distributions saved in a project");
  const auto call = std::make_shared<SimulateCall>();
  SimulateJob& job = call->job;
  command->add_option("PROJECT", job.data.file, "Project (.bvw) whose variables carry fitted distributions")
      ->required();
  command
      ->add_option("--sheet", job.data.sheet,
                   "Sheet of the project; default: the first whose variables carry distributions")
      ->type_name("NAME");
  AddList(*command, "--variables", job.variables, "V,V",
          "Variables to simulate; default: all with distributions");
  command->add_option("--method", job.method, "How samples are drawn (default monte-carlo)")
      ->type_name("monte-carlo|latin-hypercube|iman-conover|latin-hypercube-iman-conover|norta");
  command
      ->add_option("--matrix", job.matrix,
                   "Correlation matrix for the iman-conover methods: a sheet of the project, a CSV file, or "
                   "PROJECT.bvw[:SHEET]; default: the one saved with the fits")
      ->type_name("SHEET|FILE");
  AddNumber(*command, "--samples", "samples", job.samples, "N", "Number of samples (default 1000)");
  AddNumber(*command, "--seed", "seed", job.seed, "S",
            "Seed, 0 or more: the same seed gives the same samples");
  command->add_flag("--truncate", job.truncate, "Keep each variable within its 0.5 % and 99.5 % quantiles");
  command
      ->add_option(
          "-o,--output", job.output,
          "Where the data go, by ending: .csv, .npz for NumPy arrays, or .bvw for a project; the first "
          "two take any number of samples of the methods without correlation")
      ->type_name("OUT");
  AddRecordOption(*command, call->record);
  AddFormatOption(*command, call->format);
  command->footer(
      "Example:\n  brenvolt simulate geyser.bvw --method iman-conover --samples 10000 --seed 7 -o "
      "simulated.csv");
  command->callback([call] { Simulate(*call); });
}

}  // namespace brenvolt::cli
