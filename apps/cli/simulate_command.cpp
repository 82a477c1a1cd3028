// brenvolt simulate: samples drawn from the distributions that a project's variables carry.
#include <array>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>

#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/correlation_report.h"
#include "apps/cli/data_options.h"
#include "apps/cli/session.h"
#include "apps/cli/text_table.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/jobs/dialog_words.h"
#include "host/tables/numpy_archive.h"

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
  std::string matrix;
  std::filesystem::path output;
  std::filesystem::path record;
  ReportFormat format = ReportFormat::kTable;
};

void CheckSeed(const SimulateOptions& options) {
  if (options.seed && !ParseInteger(*options.seed)) {
    throw WrongCall("--seed wants a whole number from 0 to 2147483647, not " + *options.seed);
  }
}

// The design's correlation matrix: the one named, else the one saved beside the fits; null without either.
std::unique_ptr<Spreadsheet> ChosenMatrix(const SimulateOptions& options, const Workbook& project,
                                          const Spreadsheet& sheet) {
  if (!options.matrix.empty()) return NamedMatrix(options.matrix, project, "--matrix " + options.matrix);
  return SavedMatrix(project, sheet);
}

void CheckMatrixOption(const SimulateOptions& options) {
  if (options.matrix.empty() || InducesCorrelation(options.method)) return;
  throw WrongCall("--matrix is for methods that induce correlation, which " + options.method + " does not");
}

void RecordMatrix(const SimulateOptions& options, const Spreadsheet& sheet, const void* matrix,
                  JobRecorder& job) {
  if (options.matrix.empty()) {
    job.Gave("matrix", nullptr, "SavedMatrix", {job.NameOf(&sheet)}, matrix);
  } else {
    job.Gave("matrix", nullptr, "NamedMatrix", {PythonText(options.matrix), job.NameOf(&sheet)}, matrix);
  }
}

void Specify(Session& session, const SimulateOptions& options, const Spreadsheet& sheet,
             std::unique_ptr<Spreadsheet> matrix, JobRecorder& job) {
  const auto dialog = session.Dialog();
  if (!options.variables.empty()) dialog->Put("Variables", AsVariant(NumbersOf(sheet, options.variables)));
  dialog->Put(kSimulationMethods.at(options.method), true);
  dialog->Put("NumberOfSamples", options.samples);
  dialog->Put("IsSeedRandomNumber", options.seed.has_value());
  if (options.seed) dialog->Put("RandomSeedNumber", *options.seed);
  dialog->Put("TruncateSimulationData", options.truncate);
  if (matrix != nullptr) {
    const Variant::Object document = std::make_shared<CAnalysisTableDoc>(std::move(matrix));
    RecordMatrix(options, sheet, document.get(), job);
    dialog->Put("CorrelationMatrix", document);
  }
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

// What a run produced; null what it did not. The data of the methods without correlation go to their file
// while they are drawn, so that there is no sheet of them unless they go into a project.
struct Products {
  std::shared_ptr<CAnalysisTableDoc> output;
  std::shared_ptr<CAnalysisTableDoc> repairedMatrix;
  std::shared_ptr<CAnalysisTableDoc> summary;
  std::shared_ptr<CAnalysisTableDoc> correlations;
};

// Where what went: a file, and the sheets in it where it is a project.
struct Destination {
  std::filesystem::path file;
  std::string sheet;
  std::filesystem::path matrixFile;
  std::string matrixSheet;

  std::string Text() const {
    if (file.empty()) return {};
    if (!sheet.empty()) {
      return "Simulated data saved in " + file.string() + ", sheet " + sheet +
             (matrixSheet.empty() ? "" : "; the repaired matrix in sheet " + matrixSheet);
    }
    return "Simulated data written to " + file.string() +
           (matrixFile.empty() ? "" : "; the repaired matrix to " + matrixFile.string());
  }
};

Destination WriteIntoProject(const std::filesystem::path& path, const Products& products, JobRecorder& job) {
  std::vector<std::unique_ptr<Spreadsheet>> sheets;
  sheets.push_back(std::make_unique<Spreadsheet>(products.output->Table()));
  const bool isRepaired = products.repairedMatrix != nullptr;
  if (isRepaired) sheets.push_back(std::make_unique<Spreadsheet>(products.repairedMatrix->Table()));
  const auto names = AppendToProject(path, std::move(sheets));
  job.Called(nullptr, "Append",
             {PythonPath(path), job.NameOf(products.output.get()),
              isRepaired ? job.NameOf(products.repairedMatrix.get()) : ""});
  return {path, names.front(), {}, isRepaired ? names.back() : ""};
}

// Writes what is not written yet. A repaired matrix goes beside the data: "x.csv" and
// "x-repaired-matrix.csv".
Destination Write(const SimulateOptions& options, const Products& products, JobRecorder& job) {
  const std::filesystem::path& path = options.output;
  if (path.empty()) return {};
  if (HasProjectEnding(path)) return WriteIntoProject(path, products, job);
  if (products.output == nullptr) return {path, {}, {}, {}};
  WriteRecorded(path, *products.output, job);
  if (products.repairedMatrix == nullptr || !IsRegularTarget(path)) return {path, {}, {}, {}};
  const auto matrix = path.parent_path() / (path.stem().string() + "-repaired-matrix.csv");
  WriteRecorded(matrix, *products.repairedMatrix, job);
  return {path, {}, matrix, {}};
}

// The sheet named, or the first data sheet whose variables carry distributions: simulated data stand beside
// the sheet that they came from.
Spreadsheet& InputSheet(const SimulateOptions& options, DataFile& data) {
  Spreadsheet* fitted = options.sheet.empty() ? FirstFittedSheet(data.workbook) : nullptr;
  return fitted != nullptr ? *fitted : data.Sheet(options.sheet);
}

Json ReportJson(const SimulateOptions& options, const Products& products, const Destination& written) {
  Json report = {{"method", products.summary->Table().Title()},
                 {"samples", options.samples},
                 {"variables", SummaryJson(products.summary->Table())}};
  if (products.correlations != nullptr)
    report["correlations"] = CorrelationsJson(products.correlations->Table(), products.output->Table());
  if (products.repairedMatrix != nullptr) {
    report["repair"] = RepairJson(products.correlations->Table(), products.output->Table());
    report["repairedMatrix"] = MatrixJson(products.repairedMatrix->Table());
  }
  if (written.file.empty()) return report;
  report["output"] = {{"file", written.file.string()}};
  if (!written.sheet.empty()) report["output"]["sheet"] = written.sheet;
  if (!written.matrixFile.empty()) report["output"]["matrixFile"] = written.matrixFile.string();
  if (!written.matrixSheet.empty()) report["output"]["matrixSheet"] = written.matrixSheet;
  return report;
}

std::string Samples(std::int64_t count) {
  return std::to_string(count) + (count == 1 ? " sample" : " samples");
}

void Report(const SimulateOptions& options, const Products& products, const Destination& written) {
  if (options.format == ReportFormat::kJson) {
    std::fputs(JsonText(ReportJson(options, products, written)).c_str(), stdout);
    return;
  }
  const Spreadsheet& summary = products.summary->Table();
  std::printf("%s, %s\n%s", summary.Title().c_str(), Samples(options.samples).c_str(),
              SummaryText(summary).c_str());
  if (products.correlations != nullptr)
    std::printf("\n%s", CorrelationsText(products.correlations->Table()).c_str());
  if (!written.file.empty()) std::printf("\n%s\n", written.Text().c_str());
}

void ReportNothing(const SimulateOptions& options) {
  constexpr const char* kTitle = "Normal to anything method";
  constexpr const char* kNothing = "nothing was produced; this method has no generator";
  if (options.format == ReportFormat::kJson) {
    const Json report = {
        {"method", kTitle}, {"samples", 0}, {"variables", Json::array()}, {"note", kNothing}};
    std::fputs(JsonText(report).c_str(), stdout);
    return;
  }
  std::printf("%s: %s.\n", kTitle, kNothing);
}

// The run shows its output, then a repaired matrix; its results show the summary, then correlations.
Products RunToSheet(Session& session) {
  session.Ok();
  Products products;
  auto& documents = session.Documents();
  if (documents.empty()) return products;
  products.output = documents.front();
  if (documents.size() > 1) products.repairedMatrix = documents.back();
  const std::size_t produced = documents.size();
  session.Ok();
  products.summary = documents[produced];
  if (documents.size() > produced + 1) products.correlations = documents.back();
  return products;
}

Products RunToFile(Session& session, const std::filesystem::path& file) {
  Products products;
  products.summary =
      std::dynamic_pointer_cast<CAnalysisTableDoc>(session.Produce("SimulationFile", file.string()));
  return products;
}

// The data are written before anything is reported, so that a report stands for a finished job.
void Simulate(const SimulateOptions& options) {
  CheckSimulatedTarget(options.output);
  CheckSeed(options);
  CheckMatrixOption(options);
  Recording recording(options.record);
  DataFile data = OpenProject(options.project);
  Spreadsheet& sheet = InputSheet(options, data);
  const bool isCorrelated = InducesCorrelation(options.method);
  auto matrix = isCorrelated ? ChosenMatrix(options, data.workbook, sheet) : nullptr;
  JobRecorder& job = recording.Job();
  job.Opened(options.project, false, &data.workbook);
  job.Took(&data.workbook, sheet.Name(), &sheet);
  Session session(sheet, Task::kSimulate, job);
  Specify(session, options, sheet, std::move(matrix), job);
  const Products products = isCorrelated || HasProjectEnding(options.output)
                                ? RunToSheet(session)
                                : RunToFile(session, options.output);
  if (products.summary == nullptr) {
    ReportNothing(options);
    recording.Commit();
    return;
  }
  for (std::size_t i = 0; i < session.Documents().size(); ++i)
    job.Shown(session.Analysis(), i, session.Documents()[i].get());
  const Destination written = Write(options, products, job);
  Report(options, products, written);
  recording.Commit();
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
      ->check(CLI::IsMember(kSimulationMethods).description(""))
      ->type_name("monte-carlo|latin-hypercube|iman-conover|latin-hypercube-iman-conover|norta");
  command
      ->add_option("--matrix", options->matrix,
                   "Correlation matrix for the iman-conover methods: a sheet of the project, a CSV file, or "
                   "PROJECT.bvw[:SHEET]; default: the one saved with the fits")
      ->type_name("SHEET|FILE");
  command->add_option("--samples", options->samples, "Number of samples (default 1000)")->type_name("N");
  command->add_option("--seed", options->seed, "Seed, 0 or more: the same seed gives the same samples")
      ->type_name("S");
  command->add_flag("--truncate", options->truncate,
                    "Keep each variable within its 0.5 % and 99.5 % quantiles");
  command
      ->add_option(
          "-o,--output", options->output,
          "Where the data go, by ending: .csv, .npz for NumPy arrays, or .bvw for a project; the first "
          "two take any number of samples of the methods without correlation")
      ->type_name("OUT");
  AddRecordOption(*command, options->record);
  AddFormatOption(*command, options->format);
  command->footer(
      "Example:\n  brenvolt simulate geyser.bvw --method iman-conover --samples 10000 --seed 7 -o "
      "simulated.csv");
  command->callback([options] { Simulate(*options); });
}

}  // namespace brenvolt::cli
