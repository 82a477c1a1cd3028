// brenvolt fit: distributions fitted to the variables of a data file, tested, ranked and saved.
#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

#include "apps/cli/command_recording.h"
#include "apps/cli/commands.h"
#include "apps/cli/data_options.h"
#include "apps/cli/fit_report.h"
#include "apps/cli/measured_report.h"
#include "apps/cli/print.h"
#include "apps/cli/wrong_call.h"
#include "host/analysis/ports/terminal_user_interface.h"
#include "host/base/number_text.h"
#include "host/base/visible_text.h"
#include "host/jobs/fit_graphs.h"
#include "host/jobs/fit_job.h"
#include "host/jobs/fit_quantiles.h"
#include "host/jobs/json/measured_json.h"
#include "host/jobs/measured/censored_fit_job.h"
#include "host/jobs/reports/reported_jobs.h"
#include "host/jobs/reports/result_sheets.h"
#include "host/numeric/distributions/gaussian_mixture.h"

namespace brenvolt::cli {
namespace {

struct FitCall {
  CensoredFitJob censored;  // a plain fit unless it is asked for
  FitJob& job = censored.fit;
  std::filesystem::path record;
  bool chart = false;
  ReportFormat format = ReportFormat::kTable;
};

// "V:DISTRIBUTION=NUMBER"; the variable's name may itself hold colons.
FitJob::Offset ParseOffset(const std::string& text) {
  constexpr const char* kForm = "VARIABLE:DISTRIBUTION=NUMBER";
  const auto [name, number] = SplitEntry("offsets", kForm, text);
  const auto colon = name.rfind(':');
  if (colon == std::string::npos) RefuseEntry("offsets", kForm, text);
  return {name.substr(0, colon), name.substr(colon + 1), NumberIn("offsets", number)};
}

FitJob::Count ParseCount(const std::string& field, const std::string& text) {
  const auto [name, number] = SplitEntry(field, "VARIABLE=COUNT", text);
  return {name, NumberIn(field, number)};
}
FitJob::Count ParseMixtures(const std::string& text) {
  return ParseCount("mixtures", text);
}
FitJob::Count ParseTrials(const std::string& text) {
  return ParseCount("trials", text);
}

// "V=LOW:HIGH", either bound left out if there is none.
FitJob::Truncation ParseTruncation(const std::string& text) {
  constexpr const char* kForm = "VARIABLE=LOW:HIGH";
  const auto [name, bounds] = SplitEntry("truncate", kForm, text);
  const auto [low, high] = BoundsIn("truncate", kForm, text, bounds);
  return {name, low, high};
}

// "V=NAME,NAME".
FitJob::Order ParseOrder(const std::string& text) {
  constexpr const char* kForm = "VARIABLE=NAME,NAME";
  const auto [name, names] = SplitEntry("order", kForm, text);
  if (names.empty()) RefuseEntry("order", kForm, text);
  return {name, SplitAtCommas(names)};
}

// Holds messages back that the results give as well, as the reasons of variables: the table says them itself.
class FitTerminal : public TerminalUserInterface {
 public:
  FitTerminal() : TerminalUserInterface(kProgram) {}
  FitTerminal(const FitTerminal&) = delete;
  FitTerminal& operator=(const FitTerminal&) = delete;
  ~FitTerminal() override { SayReasons(); }

  MessageAnswer ShowMessage(const Message& message) override {
    if (message.kind != MessageKind::kReasonOfVariable) return TerminalUserInterface::ShowMessage(message);
    held_.push_back(message);
    return ProgramInterface::ShowMessage(message);
  }
  void SayReasons() {
    for (const Message& message : std::exchange(held_, {})) TerminalUserInterface::ShowMessage(message);
  }
  void LeaveReasonsToTable() { held_.clear(); }

 private:
  std::vector<Message> held_;
};

void FitCensored(const FitCall& call) {
  RequireWords(call.censored);
  Recording recording(call.record);
  const CensoredFindings found = RunReported(call.censored, recording.Job());
  if (call.format == ReportFormat::kCsv) return PrintCsv(CensoredSheet(found), call.job.data);
  const bool isJson = call.format == ReportFormat::kJson;
  Print(isJson ? JsonText(CensoredJson(found)) : CensoredText(found));
  if (isJson) return;
  ReportPlot(call.job.plot);
  SayReportWritten(call.job.report);
}

// The fits are saved and the graphs written before anything is reported, so that a report means a
// finished job.
void Fit(const FitCall& call) {
  if (call.censored.IsAsked()) {
    FitCensored(call);
    return;
  }
  RequireWords(call.job);
  Recording recording(call.record);
  FitTerminal terminal;
  const FitJob& job = call.job;
  const FitRun run = RunReported(job, terminal, recording.Job());
  const bool json = call.format == ReportFormat::kJson;
  const bool readsCovariances = json || job.AsksForQuantiles();
  const auto variables = ReadFitResults(
      *run.session->Dialog(), readsCovariances ? Covariances::kRead : Covariances::kLeftOut, job.Top());
  if (json) {
    terminal.SayReasons();
  } else {
    terminal.LeaveReasonsToTable();
  }
  if (call.format == ReportFormat::kCsv) {
    PrintCsv(FitSheet(variables, AllQuantiles(job, variables, *run.sheet)), job.data);
    recording.Commit();
    return;
  }
  ReportFit(variables, *run.sheet,
            {job.RankedBy(true), job.RankedBy(false), AsInteger(job.bootstrap.value_or(0)), call.format,
             AllQuantiles(job, variables, *run.sheet)});
  if (!job.save.empty() && !json) {
    std::printf("\nFits saved in %s\n", VisibleLine(job.save.string()).c_str());
  }
  if (call.format == ReportFormat::kTable) {
    ReportPlot(job.plot);
    SayReportWritten(job.report);
  }
  if (call.format == ReportFormat::kTable && call.chart)
    PrintCharts(FitPlots(*run.session->Dialog(), *run.sheet, {{}, "histogram", {}, {}}));
  recording.Commit();
}

// A choice by name; the help lists the names.
template <class Word>
void AddChoice(CLI::App& command, const std::string& name, Word& value, const Choices& choices,
               const std::string& help) {
  std::string names;
  for (const auto& [choice, member] : choices) names += (names.empty() ? "" : "|") + choice;
  command.add_option(name, value, help)->type_name(names);
}

void AddVariableOptions(CLI::App& command, FitJob& job) {
  AddList(command, "--continuous", job.variables.continuous, "V,V",
          "Variables to fit as continuous; without this and --discrete, every numeric variable is");
  AddList(command, "--discrete", job.variables.discrete, "V,V", "Variables to fit as discrete");
  AddChoice(command, "--missing", job.missing, kDeletions,
            "Leave out a missing value alone, or its case for all variables; default " + job.missing);
  command
      .add_option("--weights", job.weights,
                  "Variable whose whole numbers say how often each case counts; '' for none")
      ->type_name("V");
  command
      .add_option("--select", job.select,
                  "Use only the cases that meet a condition; names with blanks between single quotes")
      ->type_name("'X > 3 and Y = 1'");
}

void AddDistributionOptions(CLI::App& command, FitJob& job) {
  AddList(command, "--distributions", job.distributions, "NAME,NAME",
          "Distributions to try; default all that apply to a variable: " + AllDistributionNames());
  AddEntries(
      command, "--offset", job.offsets, ParseOffset, "V:DISTRIBUTION=NUMBER",
      "Where a distribution of a variable starts; default 0. One that is not below all values makes that "
      "fit fail");
  AddEntries(command, "--mixtures", job.mixtures, ParseMixtures, "V=COUNT",
             "Components of a variable's Gaussian mixture, " + std::to_string(kFewestMixtures) + " to " +
                 std::to_string(kMostMixtures) + " and at most half its cases; default " +
                 std::to_string(kFewestMixtures));
  AddEntries(command, "--trials", job.trials, ParseTrials, "V=COUNT",
             "Trials of a variable's binomial distribution; estimated where not given");
  command.add_flag("--johnson-percentiles", job.johnsonPercentiles,
                   "Fit the Johnson distribution from percentiles instead of moments");
}

void AddTestOptions(CLI::App& command, FitJob& job) {
  AddChoice(
      command, "--rank-by", job.rankBy, kCriteria,
      std::string("Test or information criterion that ranks the fits of continuous variables; default ") +
          FitJob::kUsualCriterion);
  AddChoice(command, "--discrete-rank-by", job.discreteRankBy, kDiscreteCriteria,
            std::string("Test or information criterion that ranks the fits of discrete variables; default ") +
                FitJob::kUsualCriterion);
  AddChoice(
      command, "--binning", job.binning, kBinnings,
      std::string("Bins of the chi-square test of continuous variables; default ") + FitJob::kUsualBinning);
  AddNumber(command, "--bootstrap", "bootstrap", job.bootstrap, "N",
            "Samples of a parametric bootstrap that gives p-values for estimated parameters");
  AddNumber(command, "--bootstrap-seed", "bootstrapSeed", job.bootstrapSeed, "S",
            "With --bootstrap, where its random numbers start; default " +
                ShortestNumber(FitJob::kUsualBootstrapSeed));
}

// Numbers between commas.
void AddNumbers(CLI::App& command, const std::string& name, const std::string& field,
                std::vector<double>& numbers, const std::string& help) {
  command
      .add_option_function<std::string>(
          name,
          [&numbers, field](const std::string& text) {
            for (const std::string& part : SplitAtCommas(text))
              KeepingFaults([&] { numbers.push_back(NumberIn(field, std::string(Trim(part)))); });
          },
          help)
      ->type_name("NUMBER,NUMBER");
}

void AddQuantileOptions(CLI::App& command, FitJob& job) {
  AddNumbers(
      command, "--quantiles", "quantiles", job.quantiles,
      "Quantiles of each continuous variable's best fit with their intervals: 0.1 is the value that a tenth "
      "does not exceed");
  AddNumbers(command, "--exceed", "exceed", job.exceed, "Probabilities of exceeding values, in the same way");
  AddNumbers(command, "--return-periods", "returnPeriods", job.returnPeriods,
             "Return levels: 100 is the value that one in a hundred exceeds");
  AddChoice(
      command, "--intervals", job.intervals, kIntervals,
      "By what these have intervals: the covariance of the fit, or its profile likelihood as well, which "
      "holds for small samples and far tails; default covariance");
  AddNumber(command, "--confidence", "confidence", job.confidence, "NUMBER",
            "Of these intervals, between 0 and 1; default " + ShortestNumber(FitJob::kUsualConfidence));
}

void AddTopOption(CLI::App& command, FitJob& job) {
  AddNumber(command, "--top", "top", job.top, "N",
            "Report so many fits of each variable, the best; default all");
}

void AddCensoringOptions(CLI::App& command, CensoredFitJob& job) {
  command
      .add_option(
          "--censor", job.censor,
          "Column that says how each value is known: 1 or exact, 0 or right censored, 2 or left, 3 or "
          "interval, or true and false; in a column called after censoring, 1 is right censored and 0 exact")
      ->type_name("COLUMN");
  command
      .add_option("--censor-event", job.censorEvent,
                  "What the column of --censor holds where a value is exact, as 2 where 1 is censored; all "
                  "others are then right censored")
      ->type_name("CODE");
  command
      .add_option(
          "--censor-upper", job.censorUpper,
          "Column of upper bounds, of which the variable has the lower ones; without --censor, a missing "
          "bound is infinite and equal ones are an exact value")
      ->type_name("COLUMN");
}

void AddSaveOptions(CLI::App& command, FitJob& job) {
  command
      .add_option("--save", job.save,
                  "Project that takes the data with the fits as properties, and their correlation matrix")
      ->type_name("PROJECT.bvw");
  AddWaitOption(command);
  AddEntries(command, "--truncate", job.truncate, ParseTruncation, "V=LOW:HIGH",
             "With --save, bounds within which a variable is simulated, saved with its fits; either may be "
             "left out");
  AddEntries(command, "--order", job.order, ParseOrder, "V=NAME,NAME",
             "With --save, the fits of a variable to save, best first; default: all valid ones by rank");
}

}  // namespace

void AddFitCommand(CLI::App& program) {
  CLI::App* command = program.add_subcommand("fit", "Fit distributions to the variables of a data file");
  const auto call = std::make_shared<FitCall>();
  FitJob& job = call->job;
  AddDataOptions(*command, job.data)->required();
  AddReadingOptions(*command, job.data);
  AddYesOption(*command, job.data);
  AddVariableOptions(*command, job);
  AddDistributionOptions(*command, job);
  AddTestOptions(*command, job);
  AddQuantileOptions(*command, job);
  AddTopOption(*command, job);
  AddCensoringOptions(*command, call->censored);
  AddSaveOptions(*command, job);
  command
      ->add_option("--graphs", job.graphs,
                   "File for the data of each variable's graphs with the fit that is saved first, as JSON")
      ->type_name("FILE.json");
  AddPlotOptions(*command, job.plot, kFitPlotKinds);
  command->add_flag(
      "--plot-band", job.plot.band,
      "With --plot, the limits within which 95 % of samples from a continuous fit lie, in P-P and Q-Q "
      "plots");
  AddReportOption(
      *command, job.report,
      "; .xlsx with the data, all fits, correlations, summaries and charts on sheets of their own");
  AddChartOption(*command, call->chart);
  AddRecordOption(*command, call->record);
  AddTableFormatOption(*command, call->format);
  command->footer(
      "Example:\n"
      "  brenvolt fit examples/groundbeef.csv --save beef.bvw\n"
      "  brenvolt fit examples/toxocara.csv --discrete number --discrete-rank-by chi-square\n"
      "  brenvolt fit examples/faithful.csv --distributions weibull,gaussianmixture --offset "
      "eruptions:weibull=1 \\\n"
      "      --mixtures waiting=3 --rank-by anderson-darling");
  command->callback([call] { Fit(*call); });
}

}  // namespace brenvolt::cli
