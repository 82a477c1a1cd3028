#include "apps/cli/data_options.h"

#include <cstdio>
#include <map>

#include "apps/cli/print.h"
#include "apps/cli/wrong_call.h"
#include "host/base/nearest_name.h"
#include "host/base/number_text.h"
#include "host/base/process/terminal.h"
#include "host/base/quoted.h"
#include "host/base/visible_text.h"
#include "host/graphs/chart_text.h"
#include "host/jobs/base/project_files.h"
#include "host/tables/csv.h"
#include "host/tables/formats/safe_cells.h"

namespace brenvolt::cli {
JobFaults& FaultyWords() {
  static JobFaults faults;
  return faults;
}

namespace {

using Formats = std::map<std::string, ReportFormat>;

void AddFormats(CLI::App& command, const Formats& formats, const std::string& expected,
                const std::string& type, const std::string& help, ReportFormat& format) {
  command
      .add_option_function<std::string>(
          "--format",
          [&format, formats, expected](const std::string& name) {
            const auto found = formats.find(name);
            if (found == formats.end()) {
              std::vector<std::string> names;
              for (const auto& [known, ignored] : formats) names.push_back(known);
              throw WrongJob("format",
                             "expected " + expected + ", got " + Quoted(name) + NearestNameHint(name, names));
            }
            format = found->second;
          },
          help)
      ->type_name(type);
}

}  // namespace

void AddFormatOption(CLI::App& command, ReportFormat& format) {
  AddFormats(command, {{"table", ReportFormat::kTable}, {"json", ReportFormat::kJson}}, "table or json",
             "table|json", "table for people (default), json for programs", format);
}

void AddTableFormatOption(CLI::App& command, ReportFormat& format) {
  AddFormats(
      command, {{"table", ReportFormat::kTable}, {"json", ReportFormat::kJson}, {"csv", ReportFormat::kCsv}},
      "table, json or csv", "table|json|csv",
      "table for people (default); for programs json, or csv with a row for each line of the main table",
      format);
}

void PrintCsv(const Spreadsheet& sheet, const JobData& data) {
  PrintData(CsvText(WithSafeCells(sheet), data.Format()));
}

CLI::Option* AddDataOptions(CLI::App& command, JobData& data, const std::string& about) {
  CLI::Option* const option = command.add_option(
      "DATA", data.file,
      "Data file (text, xlsx, ods, SPSS, Stata, SAS, npz, JSON lines) or project (.bvw); - is "
      "standard input" +
          about);
  command.add_option("--sheet", data.sheet, "Sheet of the project; default: its first data sheet")
      ->type_name("NAME");
  return option;
}

void AddWaitOption(CLI::App& command) {
  command
      .add_option_function<std::string>(
          "--wait",
          [](const std::string& text) { KeepingFaults([&] { SetProjectWait(NumberIn("wait", text)); }); },
          "How long to wait for a project that other programs save or use; default 60")
      ->type_name("SECONDS");
}

void AddYesOption(CLI::App& command, JobData& data) {
  command.add_flag("--yes", data.yes,
                   "Fit the rows of a correlation matrix as data; without, a matrix is refused");
}

void AddHandInputs(CLI::App& command, HandInputs& inputs) {
  command.add_option("--variable", inputs.designed, "A variable with its distribution, once for each")
      ->allow_extra_args(false)
      ->type_name("'V ~ DISTRIBUTION(…)'");
  command
      .add_option("--correlation", inputs.correlations,
                  "The correlation of two variables, once for each pair")
      ->allow_extra_args(false)
      ->type_name("V,V=NUMBER");
  command.add_option("--from", inputs.fromFile, "A text file of variables and correlations, one a line")
      ->type_name("FILE");
}

void AddSafeCellsOption(CLI::App& command, bool& safeCells) {
  command.add_flag(
      "--safe-cells", safeCells,
      "In CSV, texts that spreadsheet programs would run as formulas, as they begin with =, +, - or @, "
      "get an apostrophe before them");
}

void AddDecimalCommaOption(CLI::App& command, bool& decimalComma) {
  command.add_flag("--decimal-comma", decimalComma, "CSV with decimal commas, semicolons between the fields");
}

namespace {

void TellReading(const DataFile& file) {
  if (const std::string text = ReadAsText(file); !text.empty()) PrintMessage(kProgram + (": " + text));
  for (const ReadingNote& doubt : file.doubts) {
    const std::string option = doubt.field.empty() ? "" : " (" + OptionOf(doubt.field) + ")";
    PrintMessage(kProgram + (": " + doubt.message) + option);
  }
}

}  // namespace

void AddReadingOptions(CLI::App& command, JobData& data) {
  data.tell = TellReading;
  TextOptions& text = data.text;
  CLI::Option_group* group = command.add_option_group(
      "How a text file is laid out",
      "What is not given here is found by looking at the file, and said if it is unusual");
  AddDecimalCommaOption(*group, data.decimalComma);
  group->add_option("--delimiter", text.delimiter, "What stands between the fields")
      ->type_name("CHARACTER|tab|blanks");
  group->add_option("--decimal", text.decimal, "The decimal sign")->type_name(".|,");
  group->add_option("--thousands", text.thousands, "What separates groups of digits")
      ->type_name("CHARACTER|none");
  group->add_option("--header", text.header, "The line of the names of the columns, or no if there is none")
      ->type_name("N|no");
  group->add_flag_function(
      "--units-row,!--no-units-row", [&text](std::int64_t count) { text.unitsRow = count > 0; },
      "The line after the header holds the units, or does not");
  group->add_option("--comment", text.comment, "What begins lines that are passed over")
      ->type_name("CHARACTER|none");
  group->add_option("--encoding", text.encoding, "UTF-8, UTF-16, windows-1252, …")->type_name("NAME");
  AddList(*group, "--missing-text", text.missingText, "TEXT,…",
          "Texts that mean a missing value, besides NA and nan");
  AddList(*group, "--text", text.text, "NAME,…", "Columns that are texts whatever they hold");
}

void AddPlotOptions(CLI::App& command, Plot& plot, std::span<const std::string_view> kinds) {
  command
      .add_option(
          "--plot", plot.file,
          "Picture, by ending: .png, .svg, or .pdf with a page for each variable; with {name} in its name "
          "a file for each")
      ->type_name("FILE");
  command
      .add_option("--plot-kind", plot.kind,
                  "With --plot, which graphs (default " + std::string(Plot().Kind()) + ")")
      ->type_name(Alternatives(kinds));
  command.add_option("--plot-theme", plot.theme, "With --plot, the colours (default light)")
      ->type_name("light|dark");
  AddNumber(command, "--plot-width", "plotWidth", plot.width, "PIXELS",
            "With --plot, how wide a picture is, 320 to 8000; default: what its graphs need");
}

void ReportPlot(const Plot& plot) {
  if (!plot.IsAsked()) return;
  const bool isSeveral = plot.file.string().find(kNamePlace) != std::string::npos;
  std::printf("\n%s written to %s\n", isSeveral ? "Pictures" : "Picture",
              VisibleLine(plot.file.string()).c_str());
}

void AddReportOption(CLI::App& command, std::filesystem::path& report, const std::string& more) {
  command
      .add_option("--report", report,
                  std::string("Report with tables, pictures and notes, by ending: .html as one file, .pdf, "
                              "or .md with its ") +
                      "pictures in a folder beside it" + more)
      ->type_name("FILE");
}

void SayReportWritten(const std::filesystem::path& report) {
  if (!report.empty()) std::printf("\nReport written to %s\n", VisibleLine(report.string()).c_str());
}

void AddChartOption(CLI::App& command, bool& chart) {
  command.add_flag("--chart", chart,
                   "Print a histogram of each variable in characters, where the output is a terminal");
}

void PrintCharts(const std::vector<PlotPage>& pages) {
  const auto width = StandardOutputWidth();
  if (!width) return;
  for (const PlotPage& page : pages) {
    const std::string chart = ChartText(page.page, *width);
    if (!chart.empty()) Print("\n" + chart);
  }
}

void AddList(CLI::App& command, const std::string& name, std::vector<std::string>& list,
             const std::string& type, const std::string& help) {
  command.add_option(name, list, help)->delimiter(',')->allow_extra_args(false)->type_name(type);
}

double NumberIn(const std::string& field, const std::string& text) {
  if (const auto number = ParseNumber(text)) return *number;
  throw WrongJob(field, "expected a number, got " + Quoted(text));
}

void RefuseEntry(const std::string& field, const std::string& form, const std::string& text) {
  throw WrongJob(field, "expected " + form + ", got " + Quoted(text));
}

std::pair<std::string, std::string> SplitEntry(const std::string& field, const std::string& form,
                                               const std::string& text) {
  const auto equals = text.rfind('=');
  if (equals == std::string::npos || equals == 0) RefuseEntry(field, form, text);
  return {text.substr(0, equals), text.substr(equals + 1)};
}

std::vector<std::string> SplitAtCommas(const std::string& text) {
  std::vector<std::string> parts;
  std::size_t begin = 0;
  for (std::size_t end = begin; end != std::string::npos; begin = end + 1) {
    end = text.find(',', begin);
    parts.push_back(text.substr(begin, end - begin));
  }
  return parts;
}

std::pair<std::optional<double>, std::optional<double>> BoundsIn(const std::string& field,
                                                                 const std::string& form,
                                                                 const std::string& text,
                                                                 const std::string& bounds) {
  const auto separator = bounds.find_first_of(":,");
  if (separator == std::string::npos) RefuseEntry(field, form, text);
  const auto bound = [&field](const std::string& part) {
    const std::string number(Trim(part));
    return number.empty() ? std::nullopt : std::optional(NumberIn(field, number));
  };
  return {bound(bounds.substr(0, separator)), bound(bounds.substr(separator + 1))};
}

}  // namespace brenvolt::cli
