// brenvolt fit: distributions fitted to the variables of a data file, tested, ranked and saved.
#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/session.h"
#include "apps/cli/text_table.h"
#include "host/base/error.h"
#include "host/base/number_text.h"

namespace brenvolt::cli {
namespace {

using Json = nlohmann::ordered_json;

struct FitOptions {
  InputOptions input;
  std::vector<std::string> continuous;
  std::vector<std::string> discrete;
  std::vector<std::string> distributions;
  std::vector<std::string> offsets;
  std::string missing = "pairwise";
  std::string weights;
  std::string selection;
  std::filesystem::path project;
  ReportFormat format = ReportFormat::kTable;
};

// A distribution as the command names it, and the members of the fit dialog that stand for it.
struct FittedType {
  std::string_view name;
  bool continuous;
  std::string_view check;
  std::string_view offset;  // empty: it has none
};
constexpr std::array<FittedType, 4> kTypes{{
    {"normal", true, "IsNormalDistribution", ""},
    {"lognormal", true, "IsLogNormalDistribution", "LogNormalOffset"},
    {"weibull", true, "IsWeibullDistribution", "WeibullOffset"},
    {"poisson", false, "IsPoissonDistribution", ""},
}};

const FittedType& TypeNamed(std::string_view name) {
  std::string known;
  for (const FittedType& type : kTypes) {
    if (type.name == name) return type;
    known += (known.empty() ? "" : ", ") + std::string(type.name);
  }
  throw WrongCall("no distribution called " + std::string(name) + "; there are " + known);
}

std::vector<const FittedType*> ChosenTypes(const FitOptions& options) {
  std::vector<const FittedType*> chosen;
  for (const FittedType& type : kTypes) {
    const bool wanted = options.distributions.empty() ||
                        std::ranges::find(options.distributions, type.name) != options.distributions.end();
    if (wanted) chosen.push_back(&type);
  }
  return chosen;
}

struct OffsetChoice {
  std::string variable;
  const FittedType* type;
  double value;
};

// "V:DISTRIBUTION=NUMBER"; the variable's name may itself hold colons.
OffsetChoice ParseOffset(const std::string& text) {
  const auto equals = text.rfind('=');
  const auto colon = equals == std::string::npos ? equals : text.rfind(':', equals);
  if (colon == std::string::npos) throw WrongCall("--offset wants VARIABLE:DISTRIBUTION=NUMBER, not " + text);
  const FittedType& type = TypeNamed(text.substr(colon + 1, equals - colon - 1));
  if (type.offset.empty()) throw WrongCall("the " + std::string(type.name) + " distribution has no offset");
  const auto value = ParseNumber(text.substr(equals + 1));
  if (!value) throw WrongCall("not a number in --offset " + text);
  return {text.substr(0, colon), &type, *value};
}

struct Lists {
  std::vector<std::int16_t> continuous;
  std::vector<std::int16_t> discrete;
};

// The variables named, or every numeric variable but the weights as continuous ones.
Lists ChooseVariables(const FitOptions& options, const Spreadsheet& sheet) {
  Lists lists{NumbersOf(sheet, options.continuous), NumbersOf(sheet, options.discrete)};
  if (!lists.continuous.empty() || !lists.discrete.empty()) return lists;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const bool numeric = sheet.VariableAt(i).Type() == VariableType::kNumeric;
    if (numeric && sheet.WeightVariable() != i) lists.continuous.push_back(static_cast<std::int16_t>(i + 1));
  }
  if (lists.continuous.empty()) throw Error("has no numeric variable", "sheet " + sheet.Name());
  return lists;
}

void CheckDistributions(AutomationObject& dialog, const FitOptions& options, const Lists& lists) {
  for (const FittedType* type : ChosenTypes(options)) {
    const std::size_t count = (type->continuous ? lists.continuous : lists.discrete).size();
    for (std::size_t i = 1; i <= count; ++i) dialog.Put(type->check, static_cast<std::int32_t>(i), true);
  }
}

// A new variable has some distributions checked: those not asked for are unchecked.
void UncheckOthers(AutomationObject& dialog, const FitOptions& options, const Lists& lists) {
  const auto chosen = ChosenTypes(options);
  for (const FittedType& type : kTypes) {
    if (std::ranges::find(chosen, &type) != chosen.end()) continue;
    const std::size_t count = (type.continuous ? lists.continuous : lists.discrete).size();
    for (std::size_t i = 1; i <= count; ++i) dialog.Put(type.check, static_cast<std::int32_t>(i), false);
  }
}

void EnterOffsets(AutomationObject& dialog, const FitOptions& options, const Lists& lists,
                  const Spreadsheet& sheet) {
  for (const std::string& text : options.offsets) {
    const OffsetChoice offset = ParseOffset(text);
    const std::int16_t number = NumbersOf(sheet, {offset.variable}).front();
    const auto place = std::ranges::find(lists.continuous, number);
    if (place == lists.continuous.end())
      throw WrongCall(offset.variable + " is not fitted as a continuous variable");
    dialog.Put(offset.type->offset, static_cast<std::int32_t>(place - lists.continuous.begin() + 1),
               offset.value);
  }
}

void Specify(Session& session, const FitOptions& options, const Lists& lists, const Spreadsheet& sheet) {
  const auto dialog = session.Dialog();
  dialog->Put("ContinuousVariable", AsVariant(lists.continuous));
  dialog->Put("DiscreteVariable", AsVariant(lists.discrete));
  dialog->Put(options.missing == "casewise" ? "IsCasewise" : "IsPairwise", true);
  CheckDistributions(*dialog, options, lists);
  UncheckOthers(*dialog, options, lists);
  EnterOffsets(*dialog, options, lists, sheet);
}

// A column of a result table by its name.
class Columns {
 public:
  explicit Columns(const Spreadsheet& table) : table_(table) {}
  double Number(std::string_view column, std::size_t row) const {
    const auto index = table_.FindVariable(column);
    return index ? table_.VariableAt(*index).Values()[row] : std::numeric_limits<double>::quiet_NaN();
  }
  std::string Text(std::string_view column, std::size_t row) const {
    const auto index = table_.FindVariable(column);
    if (!index) return {};
    const Variable& variable = table_.VariableAt(*index);
    return std::string(variable.Label(variable.Values()[row]).value_or(""));
  }

 private:
  const Spreadsheet& table_;
};

// The ranked table of a variable (from 0), or nothing where the variable has no fit.
std::optional<Spreadsheet> RankedTable(AutomationObject& dialog, std::size_t variable) {
  dialog.Put("QuickTabVariable", static_cast<std::int32_t>(variable + 1));
  if (dialog.Get("QuickTabDistribution").ToInteger() == 0) return std::nullopt;
  return TableOf(dialog.Get("QuickTabDistributionSummaryStats"));
}

Json NumberOrNull(double value) {
  return std::isfinite(value) ? Json(value) : Json(nullptr);
}

Json FitJson(const Spreadsheet& table, std::size_t row) {
  const Columns columns(table);
  Json parameters = Json::array();
  for (int p = 1;; ++p) {
    const double value = columns.Number("Parameter " + std::to_string(p), row);
    if (std::isnan(value)) break;
    parameters.push_back(value);
  }
  const bool valid = !parameters.empty();
  Json none = {{"statistic", nullptr}, {"pValue", nullptr}};
  return {{"rank", row + 1},
          {"code", static_cast<int>(columns.Number("Code", row))},
          {"distribution", table.CaseName(row)},
          {"description", columns.Text("(Params Description)", row)},
          {"parameters", valid ? parameters : Json(nullptr)},
          {"offset", NumberOrNull(columns.Number("Offset", row))},
          {"logLikelihood", NumberOrNull(columns.Number("Log-likelihood", row))},
          {"kolmogorovSmirnov",
           {{"statistic", NumberOrNull(columns.Number("K-S d", row))},
            {"pValue", NumberOrNull(columns.Number("K-S p-value", row))}}},
          {"chiSquare", {{"statistic", nullptr}, {"degreesOfFreedom", nullptr}, {"pValue", nullptr}}},
          {"andersonDarling", none}};
}

Json VariableJson(const Spreadsheet& summary, std::size_t variable,
                  const std::optional<Spreadsheet>& ranked) {
  const Columns columns(summary);
  Json fits = Json::array();
  for (std::size_t row = 0; ranked && row < ranked->CaseCount(); ++row) fits.push_back(FitJson(*ranked, row));
  return {{"name", summary.CaseName(variable)},
          {"kind", columns.Text("Kind", variable)},
          {"n", static_cast<std::int64_t>(columns.Number("Valid N", variable))},
          {"missing", static_cast<std::int64_t>(columns.Number("Missing", variable))},
          {"mean", NumberOrNull(columns.Number("Mean", variable))},
          {"standardDeviation", NumberOrNull(columns.Number("Std.Dev.", variable))},
          {"skewness", NumberOrNull(columns.Number("Skewness", variable))},
          {"kurtosis", NumberOrNull(columns.Number("Kurtosis", variable))},
          {"minimum", NumberOrNull(columns.Number("Minimum", variable))},
          {"maximum", NumberOrNull(columns.Number("Maximum", variable))},
          {"rankedBy", "ks"},
          {"fits", fits}};
}

std::string RankingText(const Spreadsheet& ranked) {
  const Columns columns(ranked);
  TextTable table;
  table.AddColumn("Rank", TextTable::Align::kRight);
  table.AddColumn("Distribution", TextTable::Align::kLeft);
  table.AddColumn("Offset", TextTable::Align::kRight);
  table.AddColumn("K-S d", TextTable::Align::kRight);
  table.AddColumn("p-value", TextTable::Align::kRight);
  table.AddColumn("Log-likelihood", TextTable::Align::kRight);
  for (std::size_t row = 0; row < ranked.CaseCount(); ++row) {
    const bool valid = !std::isnan(columns.Number("Parameter 1", row));
    table.AddRow({std::to_string(row + 1),
                  columns.Text("(Params Description)", row) + (valid ? "" : " (no fit)"),
                  ReadableNumber(columns.Number("Offset", row)), ReadableNumber(columns.Number("K-S d", row)),
                  ReadableNumber(columns.Number("K-S p-value", row)),
                  ReadableNumber(columns.Number("Log-likelihood", row))});
  }
  return table.Text();
}

std::string VariableText(const Spreadsheet& summary, std::size_t variable,
                         const std::optional<Spreadsheet>& ranked) {
  const Columns columns(summary);
  const auto number = [&](std::string_view column) {
    return ReadableNumber(columns.Number(column, variable));
  };
  std::string text = std::string(summary.CaseName(variable)) + " (" + columns.Text("Kind", variable) + ")\n";
  text += "  n " + number("Valid N") + ", missing " + number("Missing") + ", mean " + number("Mean") +
          ", std.dev. " + number("Std.Dev.") + ", skewness " + number("Skewness") + ", kurtosis " +
          number("Kurtosis") + ", range " + number("Minimum") + " to " + number("Maximum") + "\n";
  if (!ranked) return text + "  nothing to fit: no valid values, or all of them equal\n";
  return text + "  " + ranked->Title() + "\n" + RankingText(*ranked);
}

void Report(Session& session, ReportFormat format) {
  const auto dialog = session.Dialog();
  const Variant summaryDocument = dialog->Get("SummaryStats");
  const Spreadsheet& summary = TableOf(summaryDocument);
  Json variables = Json::array();
  for (std::size_t i = 0; i < summary.CaseCount(); ++i) {
    const auto ranked = RankedTable(*dialog, i);
    if (format == ReportFormat::kJson) {
      variables.push_back(VariableJson(summary, i, ranked));
    } else {
      std::printf("%s%s", i > 0 ? "\n" : "", VariableText(summary, i, ranked).c_str());
    }
  }
  if (format == ReportFormat::kJson) std::printf("%s\n", Json{{"variables", variables}}.dump(2).c_str());
}

// The fits are on the sheet's variables by now; the sheet goes into the project.
void Save(const FitOptions& options, DataFile& data, Spreadsheet& sheet) {
  std::error_code ignored;
  if (data.isProject && std::filesystem::equivalent(options.project, data.path, ignored)) {
    data.workbook.Save(options.project);
  } else {
    AddToProject(options.project, std::make_unique<Spreadsheet>(sheet), NameClash::kRefuse);
  }
  if (options.format == ReportFormat::kTable) std::printf("\nFits saved in %s\n", options.project.c_str());
}

void Fit(const FitOptions& options) {
  for (const std::string& name : options.distributions) TypeNamed(name);
  for (const std::string& offset : options.offsets) ParseOffset(offset);
  DataFile data = OpenDataFile(options.input.path, options.input.Format());
  Spreadsheet& sheet = data.Sheet(options.input.sheet);
  if (!options.weights.empty()) {
    sheet.SetWeightVariable(static_cast<std::size_t>(NumbersOf(sheet, {options.weights}).front() - 1));
  }
  if (!options.selection.empty()) ApplySelection(sheet, options.selection);
  Session session(sheet, Task::kFit);
  const Lists lists = ChooseVariables(options, sheet);
  Specify(session, options, lists, sheet);
  session.Ok();
  if (!options.project.empty()) session.Dialog()->Get("SaveDistributionFit");
  Report(session, options.format);
  if (!options.project.empty()) Save(options, data, sheet);
}

}  // namespace

void AddFitCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("fit", "Fit distributions to the variables of a data file");
  const auto options = std::make_shared<FitOptions>();
  std::string names;
  for (const FittedType& type : kTypes) names += (names.empty() ? "" : ", ") + std::string(type.name);
  command->add_option("DATA", options->input.path, "CSV file with a header row, or a project (.bvw)")
      ->required();
  command->add_option("--sheet", options->input.sheet, "Sheet of the project; default: its first data sheet")
      ->type_name("NAME");
  AddDecimalCommaOption(*command, options->input);
  command
      ->add_option("--continuous", options->continuous,
                   "Variables to fit as continuous; without this and --discrete, every numeric variable is")
      ->delimiter(',')
      ->type_name("V,V");
  command->add_option("--discrete", options->discrete, "Variables to fit as discrete")
      ->delimiter(',')
      ->type_name("V,V");
  command
      ->add_option("--distributions", options->distributions, "Distributions to try; default all: " + names)
      ->delimiter(',')
      ->type_name("NAME,NAME");
  command->add_option("--offset", options->offsets, "Threshold of a distribution of a variable; default 0")
      ->type_name("V:DISTRIBUTION=NUMBER");
  command
      ->add_option("--missing", options->missing,
                   "Leave out a missing value alone, or its case for all variables")
      ->check(CLI::IsMember({"pairwise", "casewise"}).description(""))
      ->type_name("pairwise|casewise");
  command
      ->add_option("--weights", options->weights,
                   "Variable whose whole numbers say how often each case counts")
      ->type_name("V");
  command->add_option("--select", options->selection, "Use only the cases that meet a condition")
      ->type_name("'X > 3 and Y = 1'");
  command->add_option("--save", options->project, "Project that takes the data with the fits as properties")
      ->type_name("PROJECT.bvw");
  AddFormatOption(*command, options->format);
  command->footer("Example:\n  brenvolt fit examples/groundbeef.csv --save beef.bvw");
  command->callback([options] { Fit(*options); });
}

}  // namespace brenvolt::cli
