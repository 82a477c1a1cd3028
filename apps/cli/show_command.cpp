// brenvolt show: what a project holds.
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/design_report.h"
#include "apps/cli/text_table.h"
#include "apps/cli/wrong_call.h"
#include "host/analysis/ports/terminal_user_interface.h"
#include "host/jobs/base/dialog_words.h"
#include "host/jobs/base/output_files.h"
#include "host/jobs/base/project_files.h"
#include "host/jobs/data_plots.h"
#include "host/jobs/design_job.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;

// Enough to show any count whole.
constexpr int kCountDigits = 15;
constexpr int kMatrixDigits = 6;

struct ShowOptions {
  std::filesystem::path project;
  std::string sheet;
  Plot plot;
  std::string plotMatrix;
  ReportFormat format = ReportFormat::kTable;
};

std::string KindName(SheetKind kind) {
  return kind == SheetKind::kMatrix ? "matrix" : "data";
}

std::string TypeName(VariableType type) {
  return type == VariableType::kText ? "text" : "numeric";
}

std::size_t CountMissing(const Variable& variable) {
  std::size_t missing = 0;
  for (std::size_t i = 0; i < variable.Size(); ++i) missing += variable.IsMissing(i) ? 1 : 0;
  return missing;
}

void ShowSheetsAsTable(const Workbook& workbook) {
  TextTable table;
  table.AddColumn("Sheet", TextTable::Align::kLeft);
  table.AddColumn("Kind", TextTable::Align::kLeft);
  table.AddColumn("Cases", TextTable::Align::kRight);
  table.AddColumn("Variables", TextTable::Align::kRight);
  table.AddColumn("Title", TextTable::Align::kLeft);
  for (std::size_t i = 0; i < workbook.SheetCount(); ++i) {
    const Spreadsheet& sheet = workbook.SheetAt(i);
    table.AddRow({sheet.Name(), KindName(sheet.Kind()), std::to_string(sheet.CaseCount()),
                  std::to_string(sheet.VariableCount()), sheet.Title()});
  }
  std::fputs(table.Text().c_str(), stdout);
}

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

// What the variables of a sheet are simulated from; nothing where none carries a distribution. Properties that are none
// stand in the list of the properties alone.
DesignText DesignOf(const ShowOptions& options, const Spreadsheet& sheet) {
  bool any = false;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i)
    any = any || sheet.VariableAt(i).Property(kOrderProperty).has_value();
  if (!any) return {};
  DesignJob job;
  job.project = options.project;
  job.sheet = sheet.Name();
  TerminalUserInterface terminal(kProgram);
  JobRecorder none;
  return job.Run(terminal, none).design;
}

void ShowVariablesAsTable(const Spreadsheet& sheet, const DesignText& design) {
  TextTable table;
  table.AddColumn("Variable", TextTable::Align::kLeft);
  table.AddColumn("Type", TextTable::Align::kLeft);
  table.AddColumn("Valid", TextTable::Align::kRight);
  table.AddColumn("Missing", TextTable::Align::kRight);
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    const std::size_t missing = CountMissing(variable);
    table.AddRow({variable.Name(), TypeName(variable.Type()), std::to_string(variable.Size() - missing),
                  std::to_string(missing)});
  }
  std::printf("%s, %zu cases\n%s", sheet.Name().c_str(), sheet.CaseCount(), table.Text().c_str());
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

double ValidCases(const Spreadsheet& matrix) {
  return matrix.VariableAt(0).Values()[MatrixSummaryRows(matrix.CaseCount()).validCases];
}

void ShowMatrixAsTable(const Spreadsheet& matrix) {
  const std::size_t size = matrix.VariableCount();
  const MatrixSummaryRows rows(matrix.CaseCount());
  TextTable table;
  table.AddColumn("Variable", TextTable::Align::kLeft);
  for (std::size_t c = 0; c < size; ++c)
    table.AddColumn(matrix.VariableAt(c).Name(), TextTable::Align::kRight);
  table.AddColumn("Mean", TextTable::Align::kRight);
  table.AddColumn("Std.Dev.", TextTable::Align::kRight);
  for (std::size_t row = 0; row < size; ++row) {
    std::vector<std::string> cells{matrix.VariableAt(row).Name()};
    for (std::size_t c = 0; c < size; ++c)
      cells.push_back(ReadableNumber(matrix.VariableAt(c).Values()[row]));
    const double mean = matrix.VariableAt(row).Values()[rows.means];
    const double deviation = matrix.VariableAt(row).Values()[rows.standardDeviations];
    cells.push_back(ReadableNumber(mean, DigitsFor(mean, deviation, kMatrixDigits)));
    cells.push_back(ReadableNumber(deviation, kMatrixDigits));
    table.AddRow(std::move(cells));
  }
  std::printf("%s, matrix of %zu variables, number of valid cases %s\n%s", matrix.Name().c_str(), size,
              ReadableNumber(ValidCases(matrix), kCountDigits).c_str(), table.Text().c_str());
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
  const DesignText design = DesignOf(options, sheet);
  json ? ShowVariablesAsJson(sheet, design) : ShowVariablesAsTable(sheet, design);
}

// What the matrix of that name asks for.
DataOrigin OriginOf(const std::string& matrix, const Workbook& workbook) {
  DataOrigin origin;
  if (!matrix.empty()) TakeAsked(*NamedMatrix(matrix, workbook, "matrix " + matrix), origin);
  return origin;
}

// A picture is that of the sheet, or of the first one with data.
void Show(const ShowOptions& options) {
  JobFaults faults;
  CheckPlot(options.plot, kDataPlotKinds, faults);
  if (!options.plotMatrix.empty() && !options.plot.IsAsked())
    faults.push_back({"plotMatrix", "there is no picture without a file for it"});
  CheckTargetsApart({{"project", options.project}}, {{"plot", options.plot.file}}, faults);
  RequireNone(std::move(faults));
  DataFile project = OpenProject(options.project);
  if (options.plot.IsAsked()) {
    const Spreadsheet& drawn = project.Sheet(options.sheet);
    WritePlot(options.plot, drawn.Name(),
              DataPlots(drawn, options.plot.Kind(), OriginOf(options.plotMatrix, project.workbook)));
  }
  const bool json = options.format == ReportFormat::kJson;
  if (!options.sheet.empty()) {
    ShowSheet(options, project.Sheet(options.sheet));
  } else {
    json ? ShowSheetsAsJson(project.workbook) : ShowSheetsAsTable(project.workbook);
  }
  if (!json) ReportPlot(options.plot);
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
  AddFormatOption(*command, options->format);
  command->footer("Example:\n  brenvolt show beef.bvw groundbeef");
  command->callback([options] { Show(*options); });
}

}  // namespace brenvolt::cli
