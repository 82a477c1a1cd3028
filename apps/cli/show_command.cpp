// brenvolt show: what a project holds.
#include <cstdio>

#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/print.h"
#include "apps/cli/text_table.h"
#include "apps/cli/wrong_call.h"
#include "host/analysis/ports/terminal_user_interface.h"
#include "host/base/visible_text.h"
#include "host/jobs/base/dialog_words.h"
#include "host/jobs/data_plots.h"
#include "host/jobs/design_job.h"
#include "host/jobs/json/project_json.h"
#include "host/jobs/reports/project_report.h"
#include "host/jobs/reports/show_job.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt::cli {
namespace {

struct ShowCall {
  ShowJob job;
  ReportFormat format = ReportFormat::kTable;
};

void ShowVariablesAsTable(const Spreadsheet& sheet, const DesignText& design) {
  std::printf("%s, %zu cases\n%s", VisibleLine(sheet.Name()).c_str(), sheet.CaseCount(),
              TextOf(VariableTable(sheet)).c_str());
  if (sheet.WeightVariable()) {
    std::printf("\nCases weighted by %s\n",
                VisibleLine(sheet.VariableAt(*sheet.WeightVariable()).Name()).c_str());
  }
  if (sheet.Selection().enabled)
    std::printf("\nCases with %s\n", VisibleLine(sheet.Selection().condition).c_str());
  if (!design.variables.empty()) std::printf("\nSimulated from\n%s", VisibleText(TextOf(design)).c_str());
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    if (variable.Properties().empty()) continue;
    std::printf("\nProperties of %s\n", VisibleLine(variable.Name()).c_str());
    for (const auto& [key, value] : variable.Properties())
      std::printf("  %s: %s\n", VisibleLine(key).c_str(), VisibleLine(value).c_str());
  }
}

void ShowMatrixAsTable(const Spreadsheet& matrix) {
  std::printf("%s, %s\n%s", VisibleLine(matrix.Name()).c_str(), MatrixText(matrix).c_str(),
              TextOf(MatrixTable(matrix, matrix.VariableCount())).c_str());
}

// A matrix that lacks rows is shown as data are.
void ShowSheet(const ShowCall& call, const Spreadsheet& sheet, ProgramInterface& interface) {
  const bool json = call.format == ReportFormat::kJson;
  if (HasMatrixRows(sheet)) {
    json ? Print(JsonText(MatrixJson(sheet))) : ShowMatrixAsTable(sheet);
    return;
  }
  const DesignText design = DesignOf(call.job.project, sheet, interface);
  json ? Print(JsonText(SheetJson(sheet, design))) : ShowVariablesAsTable(sheet, design);
}

void Show(const ShowCall& call) {
  TerminalUserInterface terminal(kProgram);
  DataFile project = call.job.Run(terminal, JobRecorder());
  const bool json = call.format == ReportFormat::kJson;
  if (!call.job.sheet.empty()) {
    ShowSheet(call, project.Sheet(call.job.sheet), terminal);
  } else if (json) {
    Print(JsonText(ProjectJson(project.workbook)));
  } else {
    Print(TextOf(SheetTable(project.workbook)));
  }
  if (json) return;
  ReportPlot(call.job.plot);
  SayReportWritten(call.job.report);
}

}  // namespace

void AddShowCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("show", "Show the sheets of a project, or a sheet's variables");
  const auto call = std::make_shared<ShowCall>();
  ShowJob& job = call->job;
  command->add_option("PROJECT", job.project, "Project (.bvw)")->required();
  command->add_option("SHEET", job.sheet, "Sheet whose variables and properties, or correlations, are shown");
  AddPlotOptions(*command, job.plot, kDataPlotKinds);
  command
      ->add_option(
          "--plot-matrix", job.plotMatrix,
          "With --plot of simulated data, the correlations that were asked for: a sheet of the project, a "
          "CSV file, or PROJECT.bvw[:SHEET]")
      ->type_name("SHEET|FILE");
  AddReportOption(*command, job.report);
  AddFormatOption(*command, call->format);
  command->footer("Example:\n  brenvolt show beef.bvw groundbeef");
  command->callback([call] { Show(*call); });
}

}  // namespace brenvolt::cli
