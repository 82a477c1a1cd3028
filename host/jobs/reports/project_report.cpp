#include "host/jobs/reports/project_report.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "host/analysis/quantity_text.h"
#include "host/jobs/base/dialog_words.h"
#include "host/jobs/base/project_files.h"
#include "host/jobs/data_plots.h"
#include "host/jobs/reports/repeating_command.h"
#include "host/jobs/sheet_words.h"
#include "host/statistics/moments.h"
#include "host/tables/matrix_sheet.h"

namespace brenvolt {
namespace {

// Enough to show any count whole.
constexpr int kCountDigits = 15;
constexpr int kMatrixDigits = 6;
// Variables of a matrix in a report, beyond which no page is wide enough.
constexpr std::size_t kMostColumns = 25;

std::string NumberText(double value, double spread) {
  constexpr int kDigits = 6;
  if (value == kNotSet) return "-";
  return ReadableNumber(value, DigitsFor(value, spread, kDigits));
}

// Of the numeric variables, in the cases that the selection accepts.
ReportTable MomentTable(const Spreadsheet& sheet) {
  ReportTable table;
  table.isIndex = true;
  table.AddText("Variable");
  for (const char* heading : {"n", "Mean", "Std.Dev.", "Skewness", "Kurtosis", "Minimum", "Maximum"})
    table.AddNumber(heading);
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    if (variable.Type() != VariableType::kNumeric) continue;
    MomentAccumulator accumulator;
    accumulator.Add(SortedValues(sheet, variable));
    const Moments moments = accumulator.Finish();
    const double spread = moments.standardDeviation;
    table.AddRow({variable.Name(), std::to_string(moments.count), NumberText(moments.mean, spread),
                  NumberText(spread, 0), NumberText(moments.skewness, 0), NumberText(moments.kurtosis, 0),
                  NumberText(moments.minimum, spread), NumberText(moments.maximum, spread)});
  }
  return table;
}

ReportSection PropertySection(const Spreadsheet& sheet) {
  ReportSection section{"Properties"};
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    if (variable.Properties().empty()) continue;
    ReportTable table;
    table.title = variable.Name();
    table.AddText("Property");
    table.AddText("Value");
    for (const auto& [key, value] : variable.Properties()) table.AddRow({key, value});
    section.Show(std::move(table));
  }
  return section;
}

void AddMatrix(const Spreadsheet& matrix, ReportSection& section) {
  const std::size_t shown = std::min(matrix.VariableCount(), kMostColumns);
  section.Say("A " + MatrixText(matrix) + ".");
  if (shown < matrix.VariableCount())
    section.Warn(kNote, "The first " + std::to_string(shown) + " variables are shown.");
  section.Show(MatrixTable(matrix, shown));
}

void AddData(const std::filesystem::path& project, const Spreadsheet& sheet, ProgramInterface& interface,
             ReportSection& section) {
  section.Say(CountText(sheet.CaseCount(), "case") + ".");
  if (sheet.WeightVariable())
    section.Say("Cases weighted by " + sheet.VariableAt(*sheet.WeightVariable()).Name() +
                "; the moments and pictures here count each case once.");
  if (sheet.Selection().enabled) section.Say("Cases with " + sheet.Selection().condition);
  section.Show(VariableTable(sheet));
  if (sheet.CaseCount() > 0) section.Show(MomentTable(sheet));
  const DesignText design = DesignOf(project, sheet, interface);
  if (!design.variables.empty()) {
    section.Say("Simulated from");
    section.blocks.emplace_back(ReportCode{TextOf(design)});
  }
  if (sheet.CaseCount() > 0)
    section.sections.push_back(PicturesSection("Pictures", DataPlots(sheet, kOverview)));
  ReportSection properties = PropertySection(sheet);
  if (!properties.blocks.empty()) section.sections.push_back(std::move(properties));
}

}  // namespace

ReportTable SheetTable(const Workbook& workbook) {
  ReportTable table;
  table.isIndex = true;
  table.AddText("Sheet");
  table.AddText("Kind");
  table.AddNumber("Cases");
  table.AddNumber("Variables");
  table.AddText("Title");
  for (std::size_t i = 0; i < workbook.SheetCount(); ++i) {
    const Spreadsheet& sheet = workbook.SheetAt(i);
    table.AddRow({sheet.Name(), std::string(KindName(sheet.Kind())), std::to_string(sheet.CaseCount()),
                  std::to_string(sheet.VariableCount()), sheet.Title()});
  }
  return table;
}

ReportTable VariableTable(const Spreadsheet& sheet) {
  ReportTable table;
  table.AddText("Variable");
  table.AddText("Type");
  table.AddNumber("Valid");
  table.AddNumber("Missing");
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const Variable& variable = sheet.VariableAt(i);
    const std::size_t missing = CountMissing(variable);
    table.AddRow({variable.Name(), std::string(TypeName(variable.Type())),
                  std::to_string(variable.Size() - missing), std::to_string(missing)});
  }
  return table;
}

ReportTable MatrixTable(const Spreadsheet& matrix, std::size_t most) {
  const MatrixSummaryRows rows(matrix.CaseCount());
  const std::size_t size = std::min(matrix.VariableCount(), most);
  ReportTable table;
  table.AddText("Variable");
  for (std::size_t c = 0; c < size; ++c) table.AddNumber(matrix.VariableAt(c).Name());
  table.AddNumber("Mean");
  table.AddNumber("Std.Dev.");
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
  return table;
}

std::string MatrixText(const Spreadsheet& matrix) {
  return "matrix of " + std::to_string(matrix.VariableCount()) + " variables, number of valid cases " +
         ReadableNumber(ValidCases(matrix), kCountDigits);
}

DesignText DesignOf(const std::filesystem::path& project, const Spreadsheet& sheet,
                    ProgramInterface& interface) {
  if (!CarriesDistributions(sheet)) return {};
  DesignJob job;
  job.project = project;
  job.sheet = sheet.Name();
  JobRecorder none;
  return job.Run(interface, none).design;
}

Report ProjectReport(const std::filesystem::path& path, DataFile& project, const std::string& sheet,
                     const std::filesystem::path& file, ProgramInterface& interface) {
  Workbook& workbook = project.workbook;
  std::vector<const Spreadsheet*> sheets;
  if (sheet.empty()) {
    for (std::size_t i = 0; i < workbook.SheetCount(); ++i) sheets.push_back(&workbook.SheetAt(i));
  } else {
    sheets.push_back(&project.Sheet(sheet));
  }
  const std::string name = path.filename().string();
  Report report;
  report.title = sheet.empty() ? "Project " + name : "Sheet " + sheet + " of " + name;
  report.summary = CountText(sheets.size(), "sheet") + ".";
  report.sections.push_back(AskedSection(sheet.empty() ? "What the project holds." : "What the sheet holds.",
                                         {}, ShowCommandOf(path, sheet, file)));
  ReportSection index{"Sheets"};
  index.Show(SheetTable(workbook));
  report.sections.push_back(std::move(index));
  for (const Spreadsheet* one : sheets) {
    ReportSection section{one->Name()};
    if (HasMatrixRows(*one)) {
      AddMatrix(*one, section);
    } else {
      AddData(path, *one, interface, section);
    }
    report.sections.push_back(std::move(section));
  }
  report.sections.push_back(NotesSection({}, interface.Messages()));
  report.sections.push_back(MadeSection(std::nullopt));
  return report;
}

}  // namespace brenvolt
