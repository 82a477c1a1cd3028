// brenvolt profile: how predictions vary when their predictors do, and how often they miss a specification.
#include <algorithm>
#include <cstdio>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>

#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/profile_report.h"
#include "apps/cli/profiler_session.h"
#include "host/application/graph_json.h"
#include "host/base/error.h"
#include "host/base/files/output_file.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/formula/compiler.h"
#include "host/formula/formula.h"
#include "host/tables/numpy_archive.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::int32_t kFewestRuns = 100;
constexpr std::int32_t kMostRuns = 100000;

struct ProfileOptions {
  InputOptions input;
  std::vector<std::string> models;
  std::vector<std::string> formulas;
  std::string samples = "5000";
  std::optional<std::string> seed;
  bool correlated = false;
  bool fitBest = false;
  std::vector<std::string> noise;
  std::vector<std::string> specifications;
  std::vector<std::string> fixed;
  std::vector<std::string> truncations;
  std::filesystem::path output;
  std::filesystem::path graphs;
  std::filesystem::path record;
  ReportFormat format = ReportFormat::kTable;
};

// "NAME=NUMBER" or "NAME=NUMBER,NUMBER…": what an option says of a predictor or a response.
struct Statement {
  std::string option;  // as it was given, for complaints
  std::string name;
  std::vector<std::optional<double>> values;
};

// A name may itself hold equals signs; the values hold none. A value may be empty where `mayBeEmpty`.
Statement ParseStatement(const std::string& option, const std::string& wanted, const std::string& text,
                         std::size_t count, bool mayBeEmpty) {
  const std::string given = option + " " + Quoted(text);
  const auto equals = text.rfind('=');
  if (equals == std::string::npos || equals == 0) {
    throw WrongCall(option + " wants " + wanted + ", not " + Quoted(text));
  }
  Statement statement{given, text.substr(0, equals), {}};
  std::size_t begin = equals + 1;
  for (std::size_t end = begin; end != std::string::npos; begin = end + 1) {
    end = text.find(',', begin);
    const std::string part(Trim(std::string_view(text).substr(begin, end - begin)));
    const auto value = ParseNumber(part);
    if (!value && !(part.empty() && mayBeEmpty)) throw WrongCall(Quoted(part) + " is no number in " + given);
    statement.values.push_back(value);
  }
  if (statement.values.size() != count)
    throw WrongCall(option + " wants " + wanted + ", not " + Quoted(text));
  return statement;
}

std::vector<Statement> ParseAll(const std::string& option, const std::string& wanted,
                                const std::vector<std::string>& texts, std::size_t count,
                                bool mayBeEmpty = false) {
  std::vector<Statement> statements;
  for (const std::string& text : texts) {
    statements.push_back(ParseStatement(option, wanted, text, count, mayBeEmpty));
    const std::string& name = statements.back().name;
    if (std::ranges::count(statements, name, &Statement::name) > 1) {
      throw WrongCall(option + " is given twice for " + Quoted(name));
    }
  }
  return statements;
}

std::int32_t WholeNumber(const std::string& option, const std::string& text, std::int32_t fewest,
                         std::int32_t most) {
  const auto value = ParseInteger(text);
  if (value && *value >= fewest && *value <= most) return *value;
  throw WrongCall(option + " wants a whole number from " + std::to_string(fewest) + " to " +
                  std::to_string(most) + ", not " + text);
}

// What the options ask for, read and checked as far as that goes without the data.
struct Request {
  std::vector<std::filesystem::path> models;
  std::vector<ResponseFormula> formulas;
  std::int32_t runs = 0;
  std::optional<std::int32_t> seed;
  std::vector<Statement> noise;
  std::vector<Statement> specifications;
  std::vector<Statement> fixed;
  std::vector<Statement> truncations;
};

ResponseFormula ParseFormula(const std::string& text) {
  const FormulaAssignment assignment = SplitAssignment(text, "--formula");
  const std::string expression(Trim(std::string_view(text).substr(assignment.begin)));
  if (!assignment.name || expression.empty()) {
    throw WrongCall("--formula wants RESPONSE=EXPRESSION, not " + Quoted(text));
  }
  // Which names there are is the profiler's business; here only the grammar counts.
  const auto anyName = [](std::string_view, bool) { return std::optional<std::size_t>(0); };
  Compile(text, anyName, "formula for " + *assignment.name, assignment.begin);
  return {*assignment.name, expression};
}

SpecificationLimits LimitsOf(const Statement& statement) {
  SpecificationLimits limits;
  limits.lower = statement.values[0].value_or(limits.lower);
  limits.target = statement.values[1].value_or(limits.target);
  limits.upper = statement.values[2].value_or(limits.upper);
  return limits;
}

void CheckLimits(const Statement& statement) {
  const SpecificationLimits limits = LimitsOf(statement);
  if (limits.IsValid()) return;
  if (!limits.HasLower() && !limits.HasUpper()) throw WrongCall(statement.option + " has neither limit");
  if (limits.lower >= limits.upper) {
    throw WrongCall("the lower limit is not below the upper one in " + statement.option);
  }
  throw WrongCall("the target lies outside the limits in " + statement.option);
}

Request Read(const ProfileOptions& options) {
  if (options.models.empty() && options.formulas.empty()) {
    throw WrongCall("what shall be predicted? Name a model with --model or a formula with --formula");
  }
  Request request;
  request.models.assign(options.models.begin(), options.models.end());
  for (const std::string& text : options.formulas) {
    request.formulas.push_back(ParseFormula(text));
    const std::string& response = request.formulas.back().response;
    if (std::ranges::count(request.formulas, response, &ResponseFormula::response) > 1) {
      throw WrongCall("--formula is given twice for " + Quoted(response));
    }
  }
  request.runs = WholeNumber("--samples", options.samples, kFewestRuns, kMostRuns);
  if (options.seed) {
    request.seed = WholeNumber("--seed", *options.seed, 1, std::numeric_limits<std::int32_t>::max());
  }
  request.noise = ParseAll("--noise", "RESPONSE=STANDARD-DEVIATION", options.noise, 1);
  for (const Statement& noise : request.noise) {
    if (*noise.values[0] < 0) throw WrongCall("a standard deviation is not below 0, as in " + noise.option);
  }
  request.specifications = ParseAll("--spec", "RESPONSE=LSL,TARGET,USL, each of which may be empty",
                                    options.specifications, 3, true);
  std::ranges::for_each(request.specifications, CheckLimits);
  request.fixed = ParseAll("--fix", "PREDICTOR=VALUE", options.fixed, 1);
  request.truncations = ParseAll("--truncate", "PREDICTOR=MIN,MAX", options.truncations, 2);
  for (const Statement& truncation : request.truncations) {
    if (*truncation.values[0] >= *truncation.values[1]) {
      throw WrongCall("the minimum is not below the maximum in " + truncation.option);
    }
  }
  return request;
}

// The place of a name in a list of the profiler's; the complaint says which names there are.
std::size_t PlaceOf(const Statement& statement, const std::vector<std::string>& names,
                    const std::string& kind) {
  const auto found = std::ranges::find(names, statement.name);
  if (found != names.end()) return static_cast<std::size_t>(found - names.begin());
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
  throw WrongCall("no " + kind + " called " + Quoted(statement.name) + " (" + statement.option +
                  "); there are " + list);
}

void Prepare(ProfilerSession& profiler, const Request& request, const ProfileOptions& options) {
  if (!request.models.empty()) profiler.LoadModels(request.models);
  if (!request.formulas.empty()) profiler.SetFormulas(request.formulas);
  profiler.SetRuns(request.runs);
  if (request.seed) profiler.SetSeed(*request.seed);
  if (options.correlated) profiler.Correlate();
  if (options.fitBest) profiler.FitBest();
  for (const Statement& one : request.fixed) {
    profiler.Fix(PlaceOf(one, profiler.Predictors(), "predictor"), *one.values[0]);
  }
  for (std::size_t i = 0; i < profiler.Predictors().size(); ++i) {
    const std::string& name = profiler.Predictors()[i];
    if (profiler.IsPredictorSpecified(i)) continue;
    throw Error("the data have no variable called " + Quoted(name) +
                    " with values to start the predictor from; --fix may give it a value",
                options.input.path.string());
  }
  for (const Statement& one : request.truncations) {
    profiler.Truncate(PlaceOf(one, profiler.Predictors(), "predictor"), *one.values[0], *one.values[1]);
  }
  for (const Statement& one : request.noise) {
    profiler.AddNoise(PlaceOf(one, profiler.Responses(), "response"), *one.values[0]);
  }
  for (const Statement& one : request.specifications) {
    profiler.Specify(PlaceOf(one, profiler.Responses(), "response"), LimitsOf(one));
  }
}

bool IsSpecified(const Request& request, const std::string& response) {
  return std::ranges::find(request.specifications, response, &Statement::name) !=
         request.specifications.end();
}

// Returns the sheet's name where it goes into a project.
std::string WriteSimulated(const std::filesystem::path& path, CAnalysisTableDoc& simulated,
                           JobRecorder& job) {
  if (HasProjectEnding(path)) {
    std::vector<std::unique_ptr<Spreadsheet>> sheets;
    sheets.push_back(std::make_unique<Spreadsheet>(simulated.Table()));
    job.Called(nullptr, "Append", {PythonPath(path), job.NameOf(&simulated)});
    return AppendToProject(path, std::move(sheets)).front();
  }
  WriteRecorded(path, simulated, job);
  return {};
}

void WriteGraphs(const std::filesystem::path& path, ProfilerSession& profiler,
                 const std::optional<Graph>& defects) {
  Json report = {{"responses", Json::array()}};
  for (std::size_t i = 0; i < profiler.Responses().size(); ++i) {
    report["responses"].push_back(
        {{"name", profiler.Responses()[i]}, {"graphs", GraphJson(profiler.GraphsOf(i))["panels"]}});
  }
  if (defects) report["defectProfile"] = GraphJson(*defects);
  OutputFile file(path);
  file.Write(JsonText(report));
  file.Commit();
}

void Report(const ProfileOptions& options, const ProfileResults& results, const std::string& sheet) {
  if (options.format == ReportFormat::kJson) {
    Json report = ProfileJson(results);
    if (!options.output.empty()) report["output"] = {{"file", options.output.string()}};
    if (!sheet.empty()) report["output"]["sheet"] = sheet;
    if (!options.graphs.empty()) report["graphs"] = options.graphs.string();
    std::fputs(JsonText(report).c_str(), stdout);
    return;
  }
  std::fputs(ProfileText(results).c_str(), stdout);
  if (!options.output.empty()) {
    std::printf("\nSimulated data %s %s%s\n", sheet.empty() ? "written to" : "saved in",
                options.output.c_str(), (sheet.empty() ? "" : ", sheet " + sheet).c_str());
  }
  if (!options.graphs.empty()) std::printf("\nGraphs written to %s\n", options.graphs.c_str());
}

// The files are written before anything is reported, so that a report stands for a finished job.
void Profile(const ProfileOptions& options) {
  CheckSimulatedTarget(options.output);
  if (!options.graphs.empty()) RefuseProjectTarget(options.graphs);
  if (!options.graphs.empty() && !options.record.empty())
    throw WrongCall("--graphs cannot be recorded; leave out --record");
  const Request request = Read(options);
  Recording recording(options.record);
  JobRecorder& job = recording.Job();
  DataFile data = OpenDataFile(options.input.path, options.input.Format());
  Spreadsheet& input = data.Sheet(options.input.sheet);
  job.Opened(options.input.path, options.input.decimalComma, &data.workbook);
  job.Took(&data.workbook, options.input.sheet, &input);
  ProfilerSession profiler(input, job);
  Prepare(profiler, request, options);
  const Table simulated = profiler.Simulate();
  ProfileResults results;
  results.runs = request.runs;
  std::optional<Graph> defectProfile;
  for (std::size_t i = 0; i < profiler.Responses().size(); ++i) {
    const bool isSpecified = IsSpecified(request, profiler.Responses()[i]);
    results.responses.push_back(profiler.ResultsOf(i, isSpecified));
    if (isSpecified && results.defects == nullptr) {
      auto [table, graph] = profiler.Defects(i);
      results.defects = std::move(table);
      defectProfile = std::move(graph);
    }
  }
  const std::string sheet =
      options.output.empty() ? std::string() : WriteSimulated(options.output, *simulated, job);
  if (!options.graphs.empty()) WriteGraphs(options.graphs, profiler, defectProfile);
  Report(options, results, sheet);
  recording.Commit();
}

// An option that takes one value and may be repeated.
void AddRepeated(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                 const std::string& type, const std::string& help) {
  command.add_option(name, values, help)->type_name(type)->allow_extra_args(false);
}

}  // namespace

void AddProfileCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand(
      "profile", "Simulate what models or formulas predict, and compare it with specifications");
  const auto options = std::make_shared<ProfileOptions>();
  command
      ->add_option("DATA", options->input.path,
                   "CSV file with a header row, or project (.bvw), whose columns the predictors start from: "
                   "Normal with the mean and standard deviation of the column of the predictor's name")
      ->required();
  command->add_option("--sheet", options->input.sheet, "Sheet of a project; default: its first data sheet")
      ->type_name("NAME");
  AddRepeated(*command, "--model", options->models, "FILE.pmml",
              "Model that predicts its dependents; may be repeated");
  AddRepeated(*command, "--formula", options->formulas, "'Y=...'",
              "Formula that predicts a response, in the place of a model's; may be repeated");
  command->add_option("--samples", options->samples, "Number of runs, 100 to 100000 (default 5000)")
      ->type_name("N");
  command->add_option("--seed", options->seed, "Seed, 1 or more: the same seed gives the same runs")
      ->type_name("S");
  command->add_flag("--correlated", options->correlated, "Correlate the predictors as their columns are");
  command->add_flag("--fit-best", options->fitBest,
                    "Draw each predictor from the distribution that fits its column best");
  AddRepeated(*command, "--noise", options->noise, "Y=SD",
              "Add normal noise of this standard deviation to a response; may be repeated");
  AddRepeated(*command, "--spec", options->specifications, "Y=LSL,TARGET,USL",
              "Specification of a response; each part may be empty, as in 'Y=,,25'; may be repeated");
  AddRepeated(*command, "--fix", options->fixed, "X=VALUE", "Keep a predictor at a value; may be repeated");
  AddRepeated(*command, "--truncate", options->truncations, "X=MIN,MAX",
              "Keep the draws of a predictor within bounds; may be repeated");
  command
      ->add_option(
          "-o,--output", options->output,
          "Where the simulated runs go, by ending: .csv, .npz for NumPy arrays, or .bvw for a project")
      ->type_name("OUT");
  command
      ->add_option("--graphs", options->graphs,
                   "File for the data of the graphs as JSON: histograms with the best fit and the limits, "
                   "tornado graphs, defect profiles")
      ->type_name("FILE.json");
  AddDecimalCommaOption(*command, options->input);
  AddRecordOption(*command, options->record);
  AddFormatOption(*command, options->format);
  command->footer(
      "Example:\n  brenvolt profile examples/ozone.csv --model examples/ozone_regression.pmml --fit-best "
      "--correlated --noise O3=4.75 --spec O3=,,25 --seed 7");
  command->callback([options] { Profile(*options); });
}

}  // namespace brenvolt::cli
