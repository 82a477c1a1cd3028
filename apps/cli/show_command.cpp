// brenvolt show: what a project holds.
#include <cstdio>
#include <nlohmann/json.hpp>

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
#include "host/jobs/json/design_json.h"
#include "host/jobs/reports/project_report.h"
#include "host/jobs/reports/show_job.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;

struct ShowCall {
  ShowJob job;
  ReportFormat format = ReportFormat::kTable;
};

void ShowSheetsAsJson(const Workbook& workbook) {
  Json sheets = Json::array();
  for (std::size_t i = 0; i < workbook.SheetCount(); ++i) {
    const Spreadsheet& sheet = workbook.SheetAt(i);
    sheets.push_back({{"name", sheet.Name()},
                      {"kind", KindName(sheet.Kind())},
                      {"cases", sheet.CaseCount()},
                      {"variables", sheet.VariableCount()},
                      {"title", sheet.Title()}});
  }
  Print(JsonText(Json{{"sheets", sheets}}));
}

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

void ShowVariablesAsJson(const Spreadsheet& sheet, const DesignText& design) {
  Json variables = Json::array();
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    Json properties = Json::object();
    for (const auto& [key, value] : variable.Properties()) properties[key] = value;
    variables.push_back({{"name", variable.Name()},
                         {"type", TypeName(variable.Type())},
                         {"missing", CountMissing(variable)},
                         {"properties", properties}});
  }
  Print(JsonText(Json{{"name", sheet.Name()},
                      {"kind", KindName(sheet.Kind())},
                      {"cases", sheet.CaseCount()},
                      {"variables", variables},
                      {"design", DesignJson(design)}}));
}

void ShowMatrixAsTable(const Spreadsheet& matrix) {
  std::printf("%s, %s\n%s", VisibleLine(matrix.Name()).c_str(), MatrixText(matrix).c_str(),
              TextOf(MatrixTable(matrix, matrix.VariableCount())).c_str());
}

void ShowMatrixAsJson(const Spreadsheet& matrix) {
  const std::size_t size = matrix.VariableCount();
  const MatrixSummaryRows rows(matrix.CaseCount());
  Json variables = Json::array();
  for (std::size_t row = 0; row < size; ++row) {
    Json correlations = Json::array();
    for (std::size_t c = 0; c < size; ++c)
      correlations.push_back(NumberOrNull(matrix.VariableAt(c).Values()[row]));
    const Variable& variable = matrix.VariableAt(row);
    variables.push_back({{"name", variable.Name()},
                         {"mean", NumberOrNull(variable.Values()[rows.means])},
                         {"standardDeviation", NumberOrNull(variable.Values()[rows.standardDeviations])},
                         {"correlations", correlations}});
  }
  Print(JsonText(Json{{"name", matrix.Name()},
                      {"kind", KindName(matrix.Kind())},
                      {"validCases", NumberOrNull(ValidCases(matrix))},
                      {"variables", variables}}));
}

// A matrix that lacks rows is shown as data are.
void ShowSheet(const ShowCall& call, const Spreadsheet& sheet, ProgramInterface& interface) {
  const bool json = call.format == ReportFormat::kJson;
  if (HasMatrixRows(sheet)) {
    json ? ShowMatrixAsJson(sheet) : ShowMatrixAsTable(sheet);
    return;
  }
  const DesignText design = DesignOf(call.job.project, sheet, interface);
  json ? ShowVariablesAsJson(sheet, design) : ShowVariablesAsTable(sheet, design);
}

void Show(const ShowCall& call) {
  TerminalUserInterface terminal(kProgram);
  DataFile project = call.job.Run(terminal, JobRecorder());
  const bool json = call.format == ReportFormat::kJson;
  if (!call.job.sheet.empty()) {
    ShowSheet(call, project.Sheet(call.job.sheet), terminal);
  } else if (json) {
    ShowSheetsAsJson(project.workbook);
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
