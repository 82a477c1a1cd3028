// brenvolt fit: distributions fitted to the variables of a data file, tested, ranked and saved.
#include <array>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/fit_report.h"
#include "apps/cli/session.h"
#include "host/automation/variable_list.h"
#include "host/base/error.h"
#include "host/base/number_text.h"

namespace brenvolt::cli {
namespace {

struct FitOptions {
  InputOptions input;
  std::vector<std::string> continuous;
  std::vector<std::string> discrete;
  std::vector<std::string> distributions;
  std::vector<std::string> offsets;
  std::string missing = "pairwise";
  std::optional<std::string> weights;
  std::optional<std::string> selection;
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

// Text variables are no data to fit; a number misspelt in one line makes a column one.
void SayWhatIsLeftOut(const Spreadsheet& sheet) {
  std::string names;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    if (sheet.VariableAt(i).Type() != VariableType::kText) continue;
    names += (names.empty() ? "" : ", ") + sheet.VariableAt(i).Name();
  }
  if (!names.empty()) std::fprintf(stderr, "%s: text variables are left out: %s\n", kProgram, names.c_str());
}

// The variables named, or every numeric variable but the weights as continuous ones.
Lists ChooseVariables(const FitOptions& options, const Spreadsheet& sheet) {
  Lists lists{NumbersOf(sheet, options.continuous), NumbersOf(sheet, options.discrete)};
  for (const std::int16_t number : lists.discrete) {
    if (std::ranges::find(lists.continuous, number) == lists.continuous.end()) continue;
    throw WrongCall("a variable is named as continuous and as discrete");
  }
  if (!lists.continuous.empty() || !lists.discrete.empty()) return lists;
  for (std::size_t i = 0; i < sheet.VariableCount(); ++i) {
    const bool numeric = sheet.VariableAt(i).Type() == VariableType::kNumeric;
    if (numeric && sheet.WeightVariable() != i) lists.continuous.push_back(VariableNumberOf(i));
  }
  if (lists.continuous.empty()) throw Error("has no numeric variable", "sheet " + sheet.Name());
  SayWhatIsLeftOut(sheet);
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

// The fits are on the sheet's variables by now; the sheet goes into the project.
void Save(const FitOptions& options, DataFile& data, const Spreadsheet& sheet) {
  std::error_code ignored;
  if (data.isProject && std::filesystem::equivalent(options.project, data.path, ignored)) {
    data.workbook.Save(options.project);
  } else {
    MergeIntoProject(options.project, sheet);
  }
}

// Case weights and selection from the command; an empty text takes away what the project holds.
void ApplyCaseOptions(const FitOptions& options, Spreadsheet& sheet) {
  if (options.weights && options.weights->empty()) sheet.SetWeightVariable(std::nullopt);
  if (options.weights && !options.weights->empty()) {
    sheet.SetWeightVariable(static_cast<std::size_t>(NumbersOf(sheet, {*options.weights}).front() - 1));
  }
  if (options.selection && options.selection->empty()) sheet.SetSelection({});
  if (options.selection && !options.selection->empty()) ApplySelection(sheet, *options.selection);
}

void CheckNames(const FitOptions& options) {
  for (const std::string& name : options.distributions) TypeNamed(name);
  for (const std::string& offset : options.offsets) ParseOffset(offset);
  if (!options.project.empty()) RequireProjectEnding(options.project, "--save");
}

// The fits are saved before anything is reported, so that a report stands for a finished job.
void Fit(const FitOptions& options) {
  CheckNames(options);
  DataFile data = OpenDataFile(options.input.path, options.input.Format());
  Spreadsheet& sheet = data.Sheet(options.input.sheet);
  ApplyCaseOptions(options, sheet);
  const Lists lists = ChooseVariables(options, sheet);
  Session session(sheet, Task::kFit);
  Specify(session, options, lists, sheet);
  session.Ok();
  if (!options.project.empty()) {
    session.Dialog()->Get("SaveDistributionFit");
    Save(options, data, sheet);
  }
  ReportFit(*session.Dialog(), sheet, options.format);
  if (!options.project.empty() && options.format == ReportFormat::kTable) {
    std::printf("\nFits saved in %s\n", options.project.c_str());
  }
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
                   "Variable whose whole numbers say how often each case counts; '' for none")
      ->type_name("V");
  command
      ->add_option("--select", options->selection,
                   "Use only the cases that meet a condition; names with blanks between single quotes")
      ->type_name("'X > 3 and Y = 1'");
  command->add_option("--save", options->project, "Project that takes the data with the fits as properties")
      ->type_name("PROJECT.bvw");
  AddFormatOption(*command, options->format);
  command->footer("Example:\n  brenvolt fit examples/groundbeef.csv --save beef.bvw");
  command->callback([options] { Fit(*options); });
}

}  // namespace brenvolt::cli
