// brenvolt design: distributions and correlations entered by hand, in a project.
#include <cstdio>
#include <nlohmann/json.hpp>

#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/print.h"
#include "apps/cli/wrong_call.h"
#include "host/analysis/ports/terminal_user_interface.h"
#include "host/base/correlation_rules.h"
#include "host/base/visible_text.h"
#include "host/jobs/design_job.h"
#include "host/jobs/json/design_json.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;

struct DesignCall {
  DesignJob job;
  std::filesystem::path record;
  ReportFormat format = ReportFormat::kTable;
};

Json ReportJson(const DesignCall& call, const DesignFindings& findings, double smallest) {
  Json report = {{"project", call.job.project.string()}, {"sheet", findings.sheet}};
  report.update(DesignJson(findings.design));
  report["smallestEigenvalue"] = smallest;
  report["notes"] = findings.notes;
  return report;
}

// The lines read back as the design.
void Report(const DesignCall& call, const DesignFindings& findings) {
  const double smallest = SmallestEigenvalue(findings.design);
  if (call.format == ReportFormat::kJson) {
    Print(JsonText(ReportJson(call, findings, smallest)));
    return;
  }
  if (findings.design.variables.empty()) {
    std::printf("# No variable of sheet %s has a distribution.\n", VisibleLine(findings.sheet).c_str());
    return;
  }
  Print(TextOf(findings.design));
  for (const std::string& note : findings.notes) std::printf("# %s\n", VisibleLine(note).c_str());
  if (IsPositiveEigenvalue(smallest)) return;
  std::printf(
      "# These correlations contradict each other: the matrix has the eigenvalue %.3g. A simulation changes "
      "them as\n"
      "# little as it has to, and says how.\n",
      smallest);
}

void Design(const DesignCall& call) {
  Recording recording(call.record);
  TerminalUserInterface terminal(kProgram);
  Report(call, call.job.Run(terminal, recording.Job()));
  recording.Commit();
}

}  // namespace

void AddDesignCommand(CLI::App& program) {
  const auto call = std::make_shared<DesignCall>();
  DesignJob& job = call->job;
  CLI::App* command = program.add_subcommand(
      "design", "Enter distributions and correlations by hand; without any, print those of a project");
  command->add_option("project,-o,--output", job.project, "Project (.bvw) to make, or to change")
      ->type_name("PROJECT.bvw");
  AddWaitOption(*command);
  command
      ->add_option("--sheet", job.sheet,
                   "Sheet of the project; default: the first whose variables carry distributions")
      ->type_name("NAME");
  AddHandInputs(*command, job.inputs);
  command
      ->add_option(
          "--matrix", job.inputs.matrix,
          "Correlations to begin with: a sheet of the project, a CSV file, or PROJECT.bvw[:SHEET]; default: "
          "those of the project")
      ->type_name("SHEET|FILE");
  AddRecordOption(*command, call->record);
  AddFormatOption(*command, call->format);
  command->footer(
      "Example:\n  brenvolt design plan.bvw --variable 'h ~ normal(50.2, 0.05)' \\\n"
      "    --variable 'cost ~ triangular(100, 180, 120) in [, 170]' --correlation h,cost=0.4");
  command->callback([call] { Design(*call); });
}

}  // namespace brenvolt::cli
