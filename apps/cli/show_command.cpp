// brenvolt show: what a project holds.
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/text_table.h"
#include "apps/cli/wrong_call.h"
#include "host/analysis/ports/terminal_user_interface.h"
#include "host/jobs/base/dialog_words.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"
#include "host/jobs/base/report_target.h"
#include "host/jobs/data_plots.h"
#include "host/jobs/design_job.h"
#include "host/jobs/json/design_json.h"
#include "host/jobs/reports/project_report.h"
#include "host/reporting/report_file.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;

struct ShowOptions {
  std::filesystem::path project;
  std::string sheet;
  std::filesystem::path report;
  Plot plot;
  std::string plotMatrix;
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
  std::fputs(JsonText(Json{{"sheets", sheets}}).c_str(), stdout);
}

void ShowVariablesAsTable(const Spreadsheet& sheet, const DesignText& design) {
  std::printf("%s, %zu cases\n%s", sheet.Name().c_str(), sheet.CaseCount(),
              TextOf(VariableTable(sheet)).c_str());
  if (sheet.WeightVariable()) {
    std::printf("\nCases weighted by %s\n", sheet.VariableAt(*sheet.WeightVariable()).Name().c_str());
  }
  if (sheet.Selection().enabled) std::printf("\nCases with %s\n", sheet.Selection().condition.c_str());
  if (!design.variables.empty()) std::printf("\nSimulated from\n%s", TextOf(design).c_str());
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    if (variable.Properties().empty()) continue;
    std::printf("\nProperties of %s\n", variable.Name().c_str());
    for (const auto& [key, value] : variable.Properties())
      std::printf("  %s: %s\n", key.c_str(), value.c_str());
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
  std::fputs(JsonText(Json{{"name", sheet.Name()},
                           {"kind", KindName(sheet.Kind())},
                           {"cases", sheet.CaseCount()},
                           {"variables", variables},
                           {"design", DesignJson(design)}})
                 .c_str(),
             stdout);
}

void ShowMatrixAsTable(const Spreadsheet& matrix) {
  std::printf("%s, %s\n%s", matrix.Name().c_str(), MatrixText(matrix).c_str(),
              TextOf(MatrixTable(matrix, matrix.VariableCount())).c_str());
}

Json NumberOrNull(double value) {
  return std::isfinite(value) ? Json(value) : Json(nullptr);
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
  std::fputs(JsonText(Json{{"name", matrix.Name()},
                           {"kind", KindName(matrix.Kind())},
                           {"validCases", NumberOrNull(ValidCases(matrix))},
                           {"variables", variables}})
                 .c_str(),
             stdout);
}

// A matrix that lacks rows is shown as data are.
void ShowSheet(const ShowOptions& options, const Spreadsheet& sheet) {
  const bool json = options.format == ReportFormat::kJson;
  if (HasMatrixRows(sheet)) {
    json ? ShowMatrixAsJson(sheet) : ShowMatrixAsTable(sheet);
    return;
  }
  TerminalUserInterface terminal(kProgram);
  const DesignText design = DesignOf(options.project, sheet, terminal);
  json ? ShowVariablesAsJson(sheet, design) : ShowVariablesAsTable(sheet, design);
}

// What the matrix of that name asks for.
DataOrigin OriginOf(const std::string& matrix, const Workbook& workbook) {
  DataOrigin origin;
  if (!matrix.empty()) TakeAsked(*NamedMatrix(matrix, workbook, "matrix " + matrix), origin);
  return origin;
}

// A picture is that of the sheet, or of the first one with data; a report is that of the sheet, or of all.
void Show(const ShowOptions& options) {
  JobFaults faults;
  CheckPlot(options.plot, kDataPlotKinds, faults);
  if (!options.plotMatrix.empty() && !options.plot.IsAsked())
    faults.push_back({"plotMatrix", "this affects only a picture; give the file of the picture as well"});
  CheckReport(options.report, faults);
  CheckTargetsApart({{"project", options.project}}, {{"plot", options.plot.file}, {"report", options.report}},
                    faults);
  RequireNone(std::move(faults));
  DataFile project = OpenProject(options.project);
  if (options.plot.IsAsked()) {
    const Spreadsheet& drawn = project.Sheet(options.sheet);
    WritePlot(options.plot, drawn.Name(),
              DataPlots(drawn, options.plot.Kind(), OriginOf(options.plotMatrix, project.workbook)));
  }
  if (!options.report.empty()) {
    TerminalUserInterface terminal(kProgram);
    WriteReport(ProjectReport(options.project, project, options.sheet, options.report, terminal),
                options.report);
  }
  const bool json = options.format == ReportFormat::kJson;
  if (!options.sheet.empty()) {
    ShowSheet(options, project.Sheet(options.sheet));
  } else {
    json ? ShowSheetsAsJson(project.workbook)
         : static_cast<void>(std::fputs(TextOf(SheetTable(project.workbook)).c_str(), stdout));
  }
  if (json) return;
  ReportPlot(options.plot);
  SayReportWritten(options.report);
}

}  // namespace

void AddShowCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("show", "Show the sheets of a project, or a sheet's variables");
  const auto options = std::make_shared<ShowOptions>();
  command->add_option("PROJECT", options->project, "Project (.bvw)")->required();
  command->add_option("SHEET", options->sheet,
                      "Sheet whose variables and properties, or correlations, are shown");
  AddPlotOptions(*command, options->plot, kDataPlotKinds);
  command
      ->add_option(
          "--plot-matrix", options->plotMatrix,
          "With --plot of simulated data, the correlations that were asked for: a sheet of the project, a "
          "CSV file, or PROJECT.bvw[:SHEET]")
      ->type_name("SHEET|FILE");
  AddReportOption(*command, options->report);
  AddFormatOption(*command, options->format);
  command->footer("Example:\n  brenvolt show beef.bvw groundbeef");
  command->callback([options] { Show(*options); });
}

}  // namespace brenvolt::cli
