// brenvolt fit: distributions fitted to the variables of a data file, tested, ranked and saved.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/fit_report.h"
#include "apps/cli/session.h"
#include "host/automation/variable_list.h"
#include "host/base/almost_equal.h"
#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/base/quoted.h"
#include "host/jobs/dialog_words.h"
#include "host/jobs/fit_graphs.h"

namespace brenvolt::cli {
namespace {

struct FitOptions {
  InputOptions input;
  std::vector<std::string> continuous;
  std::vector<std::string> discrete;
  std::vector<std::string> distributions;
  std::string rankBy = "ks";
  std::string discreteRankBy = "ks";
  bool rankByGiven = false;
  bool discreteRankByGiven = false;
  std::string binning = "equal-probability";
  std::vector<std::string> offsets;
  std::vector<std::string> mixtures;
  std::vector<std::string> trials;
  bool johnsonPercentiles = false;
  std::int32_t bootstrapSamples = 0;
  std::int32_t bootstrapSeed = 1;
  std::string missing = "pairwise";
  std::optional<std::string> weights;
  std::optional<std::string> selection;
  std::vector<std::string> truncations;
  std::vector<std::string> orders;
  std::filesystem::path project;
  std::filesystem::path graphs;
  std::filesystem::path record;
  ReportFormat format = ReportFormat::kTable;
};

constexpr std::int32_t kMostCount = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMostBootstrapSamples = 1'000'000;

const FittedType& TypeNamed(std::string_view name) {
  if (const FittedType* type = FindFittedType(name)) return *type;
  throw WrongCall("no distribution called " + Quoted(name) + "; there are " + FittedTypeNames());
}

bool IsChosen(const FitOptions& options, std::string_view name) {
  return options.distributions.empty() ||
         std::ranges::find(options.distributions, name) != options.distributions.end();
}

// An option about a distribution that is not tried would do nothing.
void RequireChosen(const FitOptions& options, std::string_view name, const std::string& option) {
  if (IsChosen(options, name)) return;
  throw WrongCall(option + " is about the " + std::string(name) +
                  " distribution, which --distributions leaves out");
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
  if (colon == std::string::npos)
    throw WrongCall("--offset wants VARIABLE:DISTRIBUTION=NUMBER, not " + Quoted(text));
  const FittedType& type = TypeNamed(text.substr(colon + 1, equals - colon - 1));
  if (type.offset.empty()) throw WrongCall("the " + std::string(type.name) + " distribution has no offset");
  const auto value = ParseNumber(text.substr(equals + 1));
  if (!value) throw WrongCall("not a number in --offset " + Quoted(text));
  if (IsNotSet(*value))
    throw WrongCall("-444 stands for no offset and cannot be one (--offset " + Quoted(text) + ")");
  return {text.substr(0, colon), &type, *value};
}

struct CountChoice {
  std::string variable;
  std::int32_t value;
};

// "V=COUNT" with a whole number of at least 1; the variable's name may itself hold equals signs.
CountChoice ParseCount(const std::string& option, const std::string& text) {
  const auto equals = text.rfind('=');
  if (equals == std::string::npos) throw WrongCall(option + " wants VARIABLE=COUNT, not " + Quoted(text));
  const auto value = ParseInteger(text.substr(equals + 1));
  if (!value || *value < 1) {
    throw WrongCall(option + " wants a whole number from 1 to " + std::to_string(kMostCount) + ", not " +
                    Quoted(text));
  }
  return {text.substr(0, equals), *value};
}

// How many components a variable's cases allow is the fit's business; it says which number it took instead.
CountChoice ParseMixtures(const std::string& text) {
  return ParseCount("--mixtures", text);
}
CountChoice ParseTrials(const std::string& text) {
  return ParseCount("--trials", text);
}

struct TruncationChoice {
  std::string variable;
  std::optional<double> low;
  std::optional<double> high;
};

std::optional<double> ParseBound(const std::string& text, const std::string& option) {
  if (text.empty()) return std::nullopt;
  const auto value = ParseNumber(text);
  if (!value) throw WrongCall("not a number in --truncate " + option);
  if (IsNotSet(*value))
    throw WrongCall("-444 stands for no bound and cannot be one (--truncate " + option + ")");
  return value;
}

// "V=LOW:HIGH", either bound left out where there is none; the variable's name may itself hold equals signs.
TruncationChoice ParseTruncation(const std::string& text) {
  const auto equals = text.rfind('=');
  const auto colon = equals == std::string::npos ? equals : text.find(':', equals);
  if (colon == std::string::npos) throw WrongCall("--truncate wants VARIABLE=LOW:HIGH, not " + text);
  const TruncationChoice choice{text.substr(0, equals),
                                ParseBound(text.substr(equals + 1, colon - equals - 1), text),
                                ParseBound(text.substr(colon + 1), text)};
  if (choice.low && choice.high && !(*choice.low < *choice.high)) {
    throw WrongCall("the lower bound must be less than the upper one (--truncate " + text + ")");
  }
  return choice;
}

struct OrderChoice {
  std::string variable;
  std::vector<const FittedType*> types;
};

// "V=NAME,NAME".
OrderChoice ParseOrder(const std::string& text) {
  const auto equals = text.rfind('=');
  if (equals == std::string::npos || equals + 1 == text.size()) {
    throw WrongCall("--order wants VARIABLE=NAME,NAME, not " + text);
  }
  OrderChoice choice{text.substr(0, equals), {}};
  for (std::size_t begin = equals + 1; begin <= text.size();) {
    const std::size_t end = std::min(text.find(',', begin), text.size());
    choice.types.push_back(&TypeNamed(text.substr(begin, end - begin)));
    if (std::ranges::count(choice.types, choice.types.back()) > 1) {
      throw WrongCall(std::string(choice.types.back()->name) + " stands twice in --order " + text);
    }
    begin = end + 1;
  }
  return choice;
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

// A list without any distribution to try would end the job; the call is at fault.
void RequireTypes(const FitOptions& options, const Lists& lists) {
  for (const bool continuous : {true, false}) {
    if ((continuous ? lists.continuous : lists.discrete).empty()) continue;
    const bool any = std::ranges::any_of(kFittedTypes, [&](const FittedType& type) {
      return type.continuous == continuous && IsChosen(options, type.name);
    });
    if (any) continue;
    throw WrongCall(continuous ? "--distributions names none for continuous variables; --discrete names "
                                 "variables to fit as discrete"
                               : "--distributions names none for discrete variables");
  }
}

// An option about a kind of variables of which there are none would do nothing.
void RequireLists(const FitOptions& options, const Lists& lists) {
  const auto require = [](bool given, const std::vector<std::int16_t>& list, const char* option,
                          const char* kind) {
    if (!given || !list.empty()) return;
    throw WrongCall(std::string(option) + " is about " + kind + " variables, of which none is fitted");
  };
  require(options.johnsonPercentiles, lists.continuous, "--johnson-percentiles", "continuous");
  require(options.rankByGiven, lists.continuous, "--rank-by", "continuous");
  require(options.discreteRankByGiven, lists.discrete, "--discrete-rank-by", "discrete");
}

// The place of a variable in its list, from 1.
std::int32_t PlaceOf(const std::string& variable, const std::vector<std::int16_t>& list, const char* kind,
                     const Spreadsheet& sheet) {
  const auto place = std::ranges::find(list, NumbersOf(sheet, {variable}).front());
  if (place == list.end()) throw WrongCall(Quoted(variable) + " is not fitted as a " + kind + " variable");
  return static_cast<std::int32_t>(place - list.begin() + 1);
}

// A new variable has some distributions checked: all are put, the ones not asked for as unchecked.
void CheckDistributions(AutomationObject& dialog, const FitOptions& options, const Lists& lists) {
  for (const bool continuous : {true, false}) {
    const std::size_t count = (continuous ? lists.continuous : lists.discrete).size();
    for (std::size_t i = 1; i <= count; ++i) {
      const auto place = static_cast<std::int32_t>(i);
      for (const FittedType& type : kFittedTypes) {
        if (type.continuous == continuous) dialog.Put(type.check, place, IsChosen(options, type.name));
      }
      if (continuous) dialog.Put("FitJohnsonByPercentile", place, options.johnsonPercentiles);
    }
  }
}

void EnterNumbers(AutomationObject& dialog, const FitOptions& options, const Lists& lists,
                  const Spreadsheet& sheet) {
  for (const std::string& text : options.offsets) {
    const OffsetChoice offset = ParseOffset(text);
    const auto place = PlaceOf(offset.variable, lists.continuous, "continuous", sheet);
    dialog.Put(offset.type->offset, place, offset.value);
  }
  for (const std::string& text : options.mixtures) {
    const CountChoice mixtures = ParseMixtures(text);
    const auto place = PlaceOf(mixtures.variable, lists.continuous, "continuous", sheet);
    dialog.Put("NumberOfMixtures", place, mixtures.value);
  }
  for (const std::string& text : options.trials) {
    const CountChoice trials = ParseTrials(text);
    const auto place = PlaceOf(trials.variable, lists.discrete, "discrete", sheet);
    dialog.Put("NumberOfTrials", place, trials.value);
    dialog.Put("IsNumberOfTrials", place, true);
  }
}

void Specify(Session& session, const FitOptions& options, const Lists& lists, const Spreadsheet& sheet) {
  const auto dialog = session.Dialog();
  dialog->Put("ContinuousVariable", AsVariant(lists.continuous));
  dialog->Put("DiscreteVariable", AsVariant(lists.discrete));
  dialog->Put(kDeletions.at(options.missing), true);
  dialog->Put(kCriteria.at(options.rankBy), true);
  dialog->Put(kDiscreteCriteria.at(options.discreteRankBy), true);
  dialog->Put(kBinnings.at(options.binning), true);
  dialog->Put("BootstrapSamples", options.bootstrapSamples);
  dialog->Put("BootstrapSeed", options.bootstrapSeed);
  CheckDistributions(*dialog, options, lists);
  EnterNumbers(*dialog, options, lists, sheet);
}

// The place of a variable among the results: continuous ones first, from 1.
std::int32_t ResultPlaceOf(const std::string& variable, const Lists& lists, const Spreadsheet& sheet) {
  std::vector<std::int16_t> all = lists.continuous;
  all.insert(all.end(), lists.discrete.begin(), lists.discrete.end());
  const auto place = std::ranges::find(all, NumbersOf(sheet, {variable}).front());
  if (place == all.end()) throw WrongCall(variable + " is not fitted");
  return static_cast<std::int32_t>(place - all.begin() + 1);
}

// Codes are the places in the catalogue, whose order kFittedTypes follows.
Variant CodesOf(const std::vector<const FittedType*>& types) {
  Variant::Array codes;
  for (const FittedType* type : types)
    codes.emplace_back(static_cast<std::int32_t>(type - kFittedTypes.data()));
  return codes;
}

void PutBound(AutomationObject& dialog, std::int32_t place, const std::string& end,
              const std::optional<double>& bound) {
  dialog.Put("IsUserDefinedTrunc" + end, place, bound.has_value());
  dialog.Put("UserDefinedTrunc" + end, place, bound.value_or(kNotSet));
}

void SpecifySaving(AutomationObject& dialog, const FitOptions& options, const Lists& lists,
                   const Spreadsheet& sheet) {
  for (const std::string& text : options.truncations) {
    const TruncationChoice choice = ParseTruncation(text);
    const auto place = ResultPlaceOf(choice.variable, lists, sheet);
    PutBound(dialog, place, "Min", choice.low);
    PutBound(dialog, place, "Max", choice.high);
  }
  for (const std::string& text : options.orders) {
    const OrderChoice choice = ParseOrder(text);
    dialog.Put("DistributionOrder", ResultPlaceOf(choice.variable, lists, sheet), CodesOf(choice.types));
  }
}

bool IsInputProject(const FitOptions& options, const DataFile& data) {
  std::error_code ignored;
  return data.isProject && std::filesystem::equivalent(options.project, data.path, ignored);
}

// Puts the fits on the sheet's variables, and the sheet with its correlation matrix into the project.
void Save(Session& session, const FitOptions& options, DataFile& data, const Spreadsheet& sheet,
          JobRecorder& job) {
  const Variant document = session.Dialog()->Get("SaveDistributionFit");
  auto matrix = std::make_unique<Spreadsheet>(TableOf(document));
  if (IsInputProject(options, data)) {
    PutCorrelationMatrix(data.workbook, sheet.Name(), std::move(matrix));
    data.workbook.Save(options.project);
  } else {
    MergeIntoProject(options.project, sheet, std::move(matrix));
  }
  job.Called(nullptr, "SaveFits",
             {job.NameOf(&sheet), job.NameOf(document.ToObject().get()), PythonPath(options.project)});
}

// Case weights and selection from the command; an empty text takes away what the project holds.
void ApplyCaseOptions(const FitOptions& options, Spreadsheet& sheet, JobRecorder& job) {
  if (options.weights && options.weights->empty()) sheet.SetWeightVariable(std::nullopt);
  if (options.weights && !options.weights->empty()) {
    sheet.SetWeightVariable(static_cast<std::size_t>(NumbersOf(sheet, {*options.weights}).front() - 1));
  }
  if (options.selection && options.selection->empty()) sheet.SetSelection({});
  if (options.selection && !options.selection->empty()) ApplySelection(sheet, *options.selection);
  const auto orNone = [](const std::optional<std::string>& text) {
    return text->empty() ? std::nullopt : text;
  };
  if (options.weights) job.Set(&sheet, "weight_variable", orNone(options.weights));
  if (options.selection) job.Set(&sheet, "selection", orNone(options.selection));
}

// Of two numbers for the same thing one would be ignored. `things` are texts of `option` without the number.
void RequireOnce(std::vector<std::string> things, const std::string& option) {
  std::ranges::sort(things);
  const auto twice = std::ranges::adjacent_find(things);
  if (twice != things.end()) throw WrongCall(option + " is given twice for " + Quoted(*twice));
}

void RequireEachNumberOnce(const FitOptions& options) {
  std::vector<std::string> offsets;
  std::vector<std::string> mixtures;
  std::vector<std::string> trials;
  for (const std::string& text : options.offsets) {
    const OffsetChoice choice = ParseOffset(text);
    offsets.push_back(choice.variable + ":" + std::string(choice.type->name));
  }
  for (const std::string& text : options.mixtures) mixtures.push_back(ParseMixtures(text).variable);
  for (const std::string& text : options.trials) trials.push_back(ParseTrials(text).variable);
  RequireOnce(std::move(offsets), "--offset");
  RequireOnce(std::move(mixtures), "--mixtures");
  RequireOnce(std::move(trials), "--trials");
}

// What can be seen to be wrong before any data are read.
void CheckCall(const FitOptions& options) {
  RequireEachNumberOnce(options);
  for (const std::string& text : options.offsets) {
    RequireChosen(options, ParseOffset(text).type->name, "--offset " + Quoted(text));
  }
  for (const std::string& text : options.mixtures) {
    ParseMixtures(text);
    RequireChosen(options, "gaussianmixture", "--mixtures");
  }
  for (const std::string& text : options.trials) {
    ParseTrials(text);
    RequireChosen(options, "binomial", "--trials");
  }
  if (options.johnsonPercentiles) RequireChosen(options, "johnson", "--johnson-percentiles");
  for (const std::string& text : options.truncations) ParseTruncation(text);
  for (const std::string& text : options.orders) {
    for (const FittedType* type : ParseOrder(text).types)
      RequireChosen(options, type->name, "--order " + text);
  }
  if (!options.project.empty()) RequireProjectEnding(options.project, "--save");
}

// The fits are saved and the graphs written before anything is reported, so that a report stands for a
// finished job.
void Fit(const FitOptions& options) {
  CheckCall(options);
  Recording recording(options.record);
  JobRecorder& job = recording.Job();
  DataFile data = OpenDataFile(options.input.path, options.input.Format());
  Spreadsheet& sheet = data.Sheet(options.input.sheet);
  // What the project holds of these data, truncations and other variables' fits, is part of what is saved.
  job.Opened(options.input.path, options.input.decimalComma, &data.workbook);
  job.Took(&data.workbook, data.isProject ? sheet.Name() : "", &sheet);
  if (!options.project.empty() && !IsInputProject(options, data)) {
    TakeFormerProperties(options.project, sheet);
    job.Called(nullptr, "TakeFormerProperties", {job.NameOf(&sheet), PythonPath(options.project)});
  }
  ApplyCaseOptions(options, sheet, job);
  const Lists lists = ChooseVariables(options, sheet);
  RequireTypes(options, lists);
  RequireLists(options, lists);
  Session session(sheet, Task::kFit, job);
  Specify(session, options, lists, sheet);
  session.Ok();
  if (!options.project.empty()) {
    SpecifySaving(*session.Dialog(), options, lists, sheet);
    Save(session, options, data, sheet, job);
  }
  if (!options.graphs.empty()) WriteFitGraphs(session.Analysis(), options.graphs, job);
  ReportFit(*session.Dialog(), sheet,
            {options.rankBy, options.discreteRankBy, options.bootstrapSamples, options.format});
  if (!options.project.empty() && options.format == ReportFormat::kTable) {
    std::printf("\nFits saved in %s\n", options.project.c_str());
  }
  recording.Commit();
}

// What the command line says besides the values themselves.
void Complete(FitOptions& options, const CLI::App& command) {
  for (std::string& name : options.distributions) name = TypeNamed(name).name;
  options.rankByGiven = command.count("--rank-by") > 0;
  options.discreteRankByGiven = command.count("--discrete-rank-by") > 0;
}

// One argument for each occurrence: the option must not swallow the name of the data file. Names stand
// between commas.
void AddList(CLI::App& command, const std::string& name, std::vector<std::string>& list,
             const std::string& type, const std::string& help) {
  command.add_option(name, list, help)->delimiter(',')->allow_extra_args(false)->type_name(type);
}

// No commas: a name of a variable may hold one.
CLI::Option* AddNumbers(CLI::App& command, const std::string& name, std::vector<std::string>& numbers,
                        const std::string& type, const std::string& help) {
  return command.add_option(name, numbers, help)->allow_extra_args(false)->type_name(type);
}

// A choice by name; the help lists the names and says the default.
void AddChoice(CLI::App& command, const std::string& name, std::string& value, const Choices& choices,
               const std::string& help) {
  std::vector<std::string> all;
  std::string names;
  for (const auto& [choice, member] : choices) {
    all.push_back(choice);
    names += (names.empty() ? "" : "|") + choice;
  }
  command.add_option(name, value, help + "; default " + value)
      ->check(CLI::IsMember(all).description(""))
      ->type_name(names);
}

void AddVariableOptions(CLI::App& command, FitOptions& options) {
  AddList(command, "--continuous", options.continuous, "V,V",
          "Variables to fit as continuous; without this and --discrete, every numeric variable is");
  AddList(command, "--discrete", options.discrete, "V,V", "Variables to fit as discrete");
  AddChoice(command, "--missing", options.missing, kDeletions,
            "Leave out a missing value alone, or its case for all variables");
  command
      .add_option("--weights", options.weights,
                  "Variable whose whole numbers say how often each case counts; '' for none")
      ->type_name("V");
  command
      .add_option("--select", options.selection,
                  "Use only the cases that meet a condition; names with blanks between single quotes")
      ->type_name("'X > 3 and Y = 1'");
}

void AddDistributionOptions(CLI::App& command, FitOptions& options) {
  AddList(command, "--distributions", options.distributions, "NAME,NAME",
          "Distributions to try; default all that apply to a variable: " + FittedTypeNames());
  AddNumbers(
      command, "--offset", options.offsets, "V:DISTRIBUTION=NUMBER",
      "Where a distribution of a variable starts; default 0. One that is not below all values makes that "
      "fit fail");
  AddNumbers(command, "--mixtures", options.mixtures, "V=COUNT",
             "Components of a variable's Gaussian mixture, 2 to 20 and at most half its cases; default 2");
  AddNumbers(command, "--trials", options.trials, "V=COUNT",
             "Trials of a variable's binomial distribution; estimated where not given");
  command.add_flag("--johnson-percentiles", options.johnsonPercentiles,
                   "Fit the Johnson distribution from percentiles instead of moments");
}

void AddTestOptions(CLI::App& command, FitOptions& options) {
  AddChoice(command, "--rank-by", options.rankBy, kCriteria,
            "Test that ranks the fits of continuous variables");
  AddChoice(command, "--discrete-rank-by", options.discreteRankBy, kDiscreteCriteria,
            "Test that ranks the fits of discrete variables");
  AddChoice(command, "--binning", options.binning, kBinnings, "Bins of the chi-square test");
  CLI::Option* samples =
      command
          .add_option("--bootstrap", options.bootstrapSamples,
                      "Samples of a parametric bootstrap that gives p-values for estimated parameters")
          ->check(CLI::Range(1, kMostBootstrapSamples).description(""))
          ->type_name("N");
  command.add_option("--bootstrap-seed", options.bootstrapSeed, "Where its random numbers start; default 1")
      ->check(CLI::Range(0, std::numeric_limits<std::int32_t>::max()).description(""))
      ->needs(samples)
      ->type_name("S");
}

void AddSaveOptions(CLI::App& command, FitOptions& options) {
  CLI::Option* save = command
                          .add_option("--save", options.project,
                                      "Project that takes the data with the fits as properties, and their "
                                      "correlation matrix")
                          ->type_name("PROJECT.bvw");
  AddNumbers(command, "--truncate", options.truncations, "V=LOW:HIGH",
             "Bounds within which a variable is simulated, saved with its fits; either may be left out")
      ->needs(save);
  AddNumbers(command, "--order", options.orders, "V=NAME,NAME",
             "The fits of a variable to save, best first; default: all valid ones by rank")
      ->needs(save);
}

}  // namespace

void AddFitCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("fit", "Fit distributions to the variables of a data file");
  const auto options = std::make_shared<FitOptions>();
  command->add_option("DATA", options->input.path, "CSV file with a header row, or a project (.bvw)")
      ->required();
  command->add_option("--sheet", options->input.sheet, "Sheet of the project; default: its first data sheet")
      ->type_name("NAME");
  AddDecimalCommaOption(*command, options->input);
  AddVariableOptions(*command, *options);
  AddDistributionOptions(*command, *options);
  AddTestOptions(*command, *options);
  AddSaveOptions(*command, *options);
  command
      ->add_option("--graphs", options->graphs,
                   "File for the data of each variable's graphs with the fit that is saved first, as JSON")
      ->type_name("FILE.json");
  AddRecordOption(*command, options->record);
  AddFormatOption(*command, options->format);
  command->footer(
      "Example:\n"
      "  brenvolt fit examples/groundbeef.csv --save beef.bvw\n"
      "  brenvolt fit examples/toxocara.csv --discrete number --discrete-rank-by chi-square\n"
      "  brenvolt fit examples/faithful.csv --distributions weibull,gaussianmixture --offset "
      "eruptions:weibull=1 \\\n"
      "      --mixtures waiting=3 --rank-by anderson-darling");
  command->callback([options, command] {
    Complete(*options, *command);
    Fit(*options);
  });
}

}  // namespace brenvolt::cli
