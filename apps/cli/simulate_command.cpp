// brenvolt simulate: samples drawn from the distributions that a project's variables carry.
#include <array>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>

#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/session.h"
#include "apps/cli/text_table.h"
#include "host/base/error.h"
#include "host/base/number_text.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;

struct SimulateOptions {
  std::filesystem::path project;
  std::string sheet;
  std::vector<std::string> variables;
  std::string method = "monte-carlo";
  std::int64_t samples = 1000;
  std::optional<std::string> seed;
  bool truncate = false;
  std::filesystem::path output;
  ReportFormat format = ReportFormat::kTable;
};

// Methods as the command names them, and the dialog's members.
const std::map<std::string, std::string_view> kMethods{{"monte-carlo", "MonteCarloMethod"},
                                                       {"latin-hypercube", "LHSMethod"}};

// The property that marks a variable with distributions.
constexpr std::string_view kOrderProperty = "zOrder";

void CheckSeed(const SimulateOptions& options) {
  if (options.seed && !ParseInteger(*options.seed)) {
    throw WrongCall("--seed wants a whole number from 0 to 2147483647, not " + *options.seed);
  }
}

void Specify(Session& session, const SimulateOptions& options, const Spreadsheet& sheet) {
  const auto dialog = session.Dialog();
  if (!options.variables.empty()) dialog->Put("Variables", AsVariant(NumbersOf(sheet, options.variables)));
  dialog->Put(kMethods.at(options.method), true);
  dialog->Put("NumberOfSamples", options.samples);
  dialog->Put("IsSeedRandomNumber", options.seed.has_value());
  if (options.seed) dialog->Put("RandomSeedNumber", *options.seed);
  dialog->Put("TruncateSimulationData", options.truncate);
}

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
      if (c < kMomentNames.size()) {
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

// Writes the data and answers with the line that says where.
std::string Write(const SimulateOptions& options, CAnalysisTableDoc& document) {
  if (HasProjectEnding(options.output)) {
    const std::string name = AppendToProject(options.output, document.ReleaseTable());
    return "Simulated data saved in " + options.output.string() + ", sheet " + name;
  }
  WriteCsvFile(document.Table(), options.output, {});
  return "Simulated data written to " + options.output.string();
}

// The sheet named, or the first data sheet whose variables carry distributions: simulated data stand beside
// the sheet that they came from.
Spreadsheet& InputSheet(const SimulateOptions& options, DataFile& data) {
  for (std::size_t i = 0; options.sheet.empty() && i < data.workbook.SheetCount(); ++i) {
    Spreadsheet& sheet = data.workbook.SheetAt(i);
    for (std::size_t v = 0; v < sheet.VariableCount(); ++v) {
      if (sheet.VariableAt(v).Property(kOrderProperty)) return sheet;
    }
  }
  return data.Sheet(options.sheet);
}

// CSV also goes to devices and pipes, whatever they are called.
void CheckOutputEnding(const std::filesystem::path& output) {
  if (output.empty() || HasProjectEnding(output) || output.extension() == ".csv") return;
  std::error_code ignored;
  const auto status = std::filesystem::status(output, ignored);
  if (std::filesystem::is_character_file(status) || std::filesystem::is_fifo(status)) return;
  throw WrongCall("-o wants a file ending in .csv or .bvw, not " + output.string());
}

void Report(const SimulateOptions& options, const std::string& method, const Spreadsheet& summary,
            const std::string& written) {
  if (options.format == ReportFormat::kJson) {
    const Json report = {
        {"method", method}, {"samples", options.samples}, {"variables", SummaryJson(summary)}};
    std::fputs(JsonText(report).c_str(), stdout);
    return;
  }
  std::printf("%s, %lld samples\n%s", method.c_str(), static_cast<long long>(options.samples),
              SummaryText(summary).c_str());
  if (!written.empty()) std::printf("\n%s\n", written.c_str());
}

// The data are written before anything is reported, so that a report stands for a finished job.
void Simulate(const SimulateOptions& options) {
  CheckOutputEnding(options.output);
  CheckSeed(options);
  DataFile data = OpenProject(options.project);
  Spreadsheet& sheet = InputSheet(options, data);
  std::shared_ptr<CAnalysisTableDoc> output;
  std::shared_ptr<CAnalysisTableDoc> summary;
  {
    Session session(sheet, Task::kSimulate);
    Specify(session, options, sheet);
    session.Ok();
    output = session.Documents().back();
    session.Ok();
    summary = session.Documents().back();
  }
  const std::string method = output->Table().Title();
  const std::string written = options.output.empty() ? std::string() : Write(options, *output);
  Report(options, method, summary->Table(), written);
}

}  // namespace

void AddSimulateCommand(CLI::App& program) {
  CLI::App* command =
      program.add_subcommand("simulate", "Draw samples from the distributions saved in a project");
  const auto options = std::make_shared<SimulateOptions>();
  command
      ->add_option("PROJECT", options->project, "Project (.bvw) whose variables carry fitted distributions")
      ->required();
  command
      ->add_option("--sheet", options->sheet,
                   "Sheet of the project; default: the first whose variables carry distributions")
      ->type_name("NAME");
  command
      ->add_option("--variables", options->variables,
                   "Variables to simulate; default: all with distributions")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->type_name("V,V");
  command->add_option("--method", options->method, "How samples are drawn (default monte-carlo)")
      ->check(CLI::IsMember(kMethods).description(""))
      ->type_name("monte-carlo|latin-hypercube");
  command->add_option("--samples", options->samples, "Number of samples (default 1000)")->type_name("N");
  command->add_option("--seed", options->seed, "Seed, 0 or more: the same seed gives the same samples")
      ->type_name("S");
  command->add_flag("--truncate", options->truncate,
                    "Keep each variable within its 0.5 % and 99.5 % quantiles");
  command
      ->add_option("-o,--output", options->output,
                   "Where the data go, by ending: .csv, or .bvw for a project")
      ->type_name("OUT");
  AddFormatOption(*command, options->format);
  command->footer("Example:\n  brenvolt simulate beef.bvw --samples 10000 --seed 7 -o simulated.csv");
  command->callback([options] { Simulate(*options); });
}

}  // namespace brenvolt::cli
