// brenvolt capability: how well a measured process keeps its specification.
#include <cstdio>

#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/measured_report.h"
#include "apps/cli/print.h"
#include "apps/cli/specification_option.h"
#include "host/application/json_text.h"
#include "host/base/number_text.h"
#include "host/jobs/json/measured_json.h"
#include "host/jobs/measured/capability_job.h"
#include "host/jobs/reports/reported_jobs.h"
#include "host/jobs/reports/result_sheets.h"

namespace brenvolt::cli {
namespace {

struct CapabilityCall {
  CapabilityJob job;
  ReportFormat format = ReportFormat::kTable;
};

std::string Words(const Choices& choices) {
  std::string words;
  for (const auto& [word, member] : choices) words += (words.empty() ? "" : "|") + word;
  return words;
}

void Judge(const CapabilityCall& call) {
  RequireWords(call.job);
  const CapabilityFindings found = RunReported(call.job, JobRecorder());
  if (call.format == ReportFormat::kCsv) return PrintCsv(CapabilitySheet(found), call.job.data);
  const bool isJson = call.format == ReportFormat::kJson;
  Print(isJson ? JsonText(CapabilityJson(found)) : CapabilityText(found));
  if (isJson) return;
  ReportPlot(call.job.plot);
  SayReportWritten(call.job.report);
}

void AddChoices(CLI::App& command, CapabilityJob& job) {
  command
      .add_option("--within", job.within,
                  "How the deviation within subgroups is estimated; default " +
                      std::string(CapabilityJob::kUsualWithinSubgroups) + ", without subgroups " +
                      CapabilityJob::kUsualWithin)
      ->type_name(Words(kWithinEstimates));
  command
      .add_option(
          "--control-chart", job.controlChart,
          "Which control charts; default x-bar-r for subgroups of up to 8, x-bar-s for larger ones, i-mr "
          "without subgroups")
      ->type_name(Words(kControlCharts));
  command
      .add_option("--rules", job.rules,
                  std::string("By what rules points are signals; default ") + CapabilityJob::kUsualRules)
      ->type_name(Words(kControlRules));
  command
      .add_option(
          "--distribution", job.distribution,
          "Distribution whose percentiles are used; default: the one that fits best where the values are "
          "not normal")
      ->type_name("NAME");
  command
      .add_option("--rank-by", job.rankBy,
                  "Test or information criterion by which that one fits best; default ks")
      ->type_name(Words(kCriteria));
  AddNumber(
      command, "--bootstrap", "bootstrap", job.bootstrap, "N",
      "Samples of a parametric bootstrap, which gives intervals to what rests on a fitted distribution");
  AddNumber(command, "--bootstrap-seed", "bootstrapSeed", job.bootstrapSeed, "S",
            "With --bootstrap, where its random numbers start; default " +
                ShortestNumber(CapabilityJob::kUsualBootstrapSeed));
  AddNumber(command, "--confidence", "confidence", job.confidence, "NUMBER",
            "Of the intervals, between 0 and 1; default " + ShortestNumber(CapabilityJob::kUsualConfidence));
}

}  // namespace

void AddCapabilityCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("capability", "Judge measured values against a specification");
  const auto call = std::make_shared<CapabilityCall>();
  CapabilityJob& job = call->job;
  AddDataOptions(*command, job.data)->required();
  command
      ->add_option("--response", job.response,
                   "Variable that was measured; default: the one that --spec names")
      ->type_name("Y");
  AddEntries(*command, "--spec", job.specifications, ParseSpecification, "Y=LSL,TARGET,USL",
             "Its specification; each part may be empty, as in 'Y=,,25'");
  command
      ->add_option("--subgroup", job.subgroup,
                   "Column that tells the subgroups apart, or how many cases in a row make one")
      ->type_name("COLUMN|SIZE");
  AddChoices(*command, job);
  command->add_option("--select", job.select, "Use only the cases that meet a condition")
      ->type_name("'X > 3 and Y = 1'");
  AddPlotOptions(*command, job.plot, kCapabilityPlotKinds);
  AddReportOption(*command, job.report);
  AddReadingOptions(*command, job.data);
  AddTableFormatOption(*command, call->format);
  command->footer(
      "Example:\n  brenvolt capability examples/process.csv --spec size=5.49,5.64,5.79 --subgroup sample");
  command->callback([call] { Judge(*call); });
}

}  // namespace brenvolt::cli
