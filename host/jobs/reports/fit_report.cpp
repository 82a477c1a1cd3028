#include "host/jobs/reports/fit_report.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include "host/analysis/quantity_text.h"
#include "host/base/number_text.h"
#include "host/jobs/fit_graphs.h"
#include "host/jobs/fit_results.h"
#include "host/jobs/reports/fit_tables.h"
#include "host/jobs/reports/fit_workbook.h"
#include "host/jobs/reports/repeating_command.h"
#include "host/reporting/report_file.h"
#include "host/tables/formats/workbook_file.h"

namespace brenvolt {
namespace {

// What the words of a job mean, for people.
const std::map<std::string, std::string, std::less<>> kMeanings{
    {"ks", "the Kolmogorov-Smirnov test"},
    {"chi-square", "the chi-square test"},
    {"anderson-darling", "the Anderson-Darling test"},
    {"aic", "the Akaike information criterion"},
    {"bic", "the Bayesian information criterion"},
    {"pairwise", "left out alone"},
    {"casewise", "left out with their case, for all variables"},
    {"equal-probability", "of equal probability"},
    {"equal-interval", "of equal width"}};

bool IsBootstrapped(const FitJob& job) {
  return job.bootstrap.value_or(0) > 0;
}

class FitReportMaker {
 public:
  FitReportMaker(const FitJob& job, AutomationObject& dialog, const ReportContext& context)
      : job_(job),
        sheet_(context.sheet),
        dialog_(dialog),
        variables_(ReadFitResults(
            dialog_, job.AsksForQuantiles() ? Covariances::kRead : Covariances::kLeftOut, job.Top())),
        quantiles_(AllQuantiles(job, variables_, sheet_)) {
    for (const FittedVariable& variable : variables_) {
      (variable.isContinuous ? continuous_ : discrete_).push_back(variable.name);
      rankings_.push_back(RankingTable(variable, job.RankedBy(variable.isContinuous), IsBootstrapped(job)));
    }
    ChooseShown();
    const std::string source =
        job.data.file.empty() ? context.sheet.Name() : job.data.file.filename().string();
    report_.title = "Distributions fitted to " + source;
    report_.summary = CountText(variables_.size(), "variable") + ", " +
                      CountText(context.sheet.CaseCount(), "case") + ", fitted, tested and ranked.";
    report_.sections.push_back(AskedSection(Sentence(source), Facts(), CommandOf(job), context.obstacle));
    report_.sections.push_back(DataSection(job.data, context));
    report_.sections.push_back(IndexSection());
    report_.sections.push_back(NotesSection(Notes(), context.messages));
    report_.sections.push_back(VariablesSection());
    const bool hasSeed = IsBootstrapped(job);
    report_.sections.push_back(
        MadeSection(hasSeed ? std::optional(AsInteger(job.bootstrapSeed.value_or(1))) : std::nullopt));
  }

  Report Made() && { return std::move(report_); }

 private:
  // In the order of the results; of many the worst fitted, worst first: those without a fit, then by the p-value of the
  // Kolmogorov-Smirnov test of the fit that is saved first, then by its statistic for as many values.
  void ChooseShown() {
    for (std::size_t i = 0; i < variables_.size(); ++i) shown_.push_back(i);
    if (shown_.size() <= kMostShown) return;
    const auto misfit = [this](std::size_t place) {
      const FittedDistribution* best = variables_[place].Best();
      if (best == nullptr) return std::tuple(0, 0.0, 0.0, place);
      const double p = KsPValueIn(best->statistics);
      const double d =
          best->statistics.Number("ks"_column) * std::sqrt(variables_[place].moments.Number("n"_column));
      return std::tuple(1, std::isnan(p) ? 0 : p, std::isnan(d) ? 0 : -d, place);
    };
    std::vector<std::tuple<int, double, double, std::size_t>> order;
    for (const std::size_t place : shown_) order.push_back(misfit(place));
    std::ranges::sort(order);
    shown_.clear();
    for (std::size_t i = 0; i < kMostShown; ++i) shown_.push_back(std::get<3>(order[i]));
  }

  std::string Sentence(const std::string& source) const {
    std::string what;
    if (!continuous_.empty()) what = CountText(continuous_.size(), "continuous variable");
    if (!discrete_.empty())
      what += (what.empty() ? "" : " and ") + CountText(discrete_.size(), "discrete variable");
    return "Distributions were fitted to " + what + " of " + source +
           ", tested against the data, and ranked.";
  }

  ReportFacts Facts() const {
    ReportFacts facts;
    const auto add = [&facts](const char* name, std::string value) {
      facts.facts.emplace_back(name, std::move(value));
    };
    if (!continuous_.empty()) {
      add("Continuous", NamesText(continuous_));
      add("Ranked by", kMeanings.at(job_.RankedBy(true)));
    }
    if (!discrete_.empty()) {
      add("Discrete", NamesText(discrete_));
      add("Ranked by", kMeanings.at(job_.RankedBy(false)));
    }
    add("Distributions", job_.distributions.empty() ? "all that apply to a variable" : Tried());
    add("Missing values", kMeanings.at(job_.missing));
    if (job_.binning) add("Bins of the chi-square test", kMeanings.at(*job_.binning));
    for (const FitJob::Offset& one : job_.offsets)
      add("Offset", one.variable + ", " + one.distribution + ": " + ShortestNumber(one.value));
    for (const FitJob::Count& one : job_.mixtures)
      add("Components of the mixture", one.variable + ": " + ShortestNumber(one.value));
    for (const FitJob::Count& one : job_.trials)
      add("Trials", one.variable + ": " + ShortestNumber(one.value));
    if (job_.johnsonPercentiles) add("Johnson", "fitted from percentiles");
    if (IsBootstrapped(job_))
      add("Bootstrap", CountText(static_cast<std::size_t>(*job_.bootstrap), "sample") + " of each fit");
    if (!job_.save.empty()) add("Saved in", job_.save.string());
    return facts;
  }

  std::string Tried() const {
    std::vector<std::string> names;
    for (const std::string& name : job_.distributions) names.push_back(FindDistribution(name)->name);
    return NamesText(names);
  }

  // The row of the fit that is saved first.
  const ReportRow* BestRow(std::size_t place) const {
    const FittedVariable& variable = variables_[place];
    const FittedDistribution* best = variable.Best();
    if (best == nullptr) return nullptr;
    const std::string rank = std::to_string(best - variable.fits.data() + 1);
    for (const ReportRow& row : rankings_[place].rows) {
      if (row.cells.front() == rank) return &row;
    }
    return nullptr;
  }

  ReportSection IndexSection() const {
    ReportTable table;
    table.isIndex = true;
    table.AddText("Variable");
    table.AddText("Type");
    for (const char* heading : {"n", "Missing", "Mean", "Std.Dev."}) table.AddNumber(heading);
    table.AddText("Best fit");
    for (const char* heading : {"K-S d", "K-S p"}) table.AddNumber(heading);
    for (std::size_t i = 0; i < variables_.size(); ++i) table.AddRow(IndexCells(i));
    ReportSection section{"Best fits"};
    if (shown_.size() < variables_.size())
      section.Warn(
          kNote,
          "Of " + std::to_string(variables_.size()) + " variables the " + std::to_string(shown_.size()) +
              " that their fits miss most, by the Kolmogorov-Smirnov test, are shown one by one below.");
    section.Show(std::move(table));
    section.Say(PValueNote(AsInteger(job_.bootstrap.value_or(0))));
    return section;
  }

  std::vector<std::string> IndexCells(std::size_t place) const {
    const FittedVariable& variable = variables_[place];
    std::vector<std::string> cells{variable.name, variable.isContinuous ? "continuous" : "discrete"};
    for (const ResultColumn* column :
         {&"n"_column, &"missing"_column, &"mean"_column, &"standard_deviation"_column})
      cells.push_back(Cell(variable.moments, *column));
    const FittedDistribution* best = variable.Best();
    const ReportRow* row = BestRow(place);
    if (best == nullptr || row == nullptr) {
      cells.insert(cells.end(), {"none", "-", "-"});
      return cells;
    }
    cells.insert(cells.end(), {row->cells[1], Cell(best->statistics, "ks"_column),
                               QuantityText(KsPValueIn(best->statistics), Quantity::kPValue)});
    return cells;
  }

  // What speaks against fits, of the variables shown.
  std::vector<ReportNote> Notes() const {
    std::vector<ReportNote> notes;
    for (const std::size_t place : shown_) {
      const FittedVariable& variable = variables_[place];
      if (variable.fits.empty())
        notes.push_back({kWarning, variable.name + ": nothing to fit: " + variable.reason});
      for (const FitCaution& caution : variable.Cautions())
        notes.push_back({kCaution, variable.name + ": " + caution.Text()});
      for (const std::string& note : variable.Notes()) notes.push_back({kNote, variable.name + ": " + note});
    }
    return notes;
  }

  ReportSection VariablesSection() {
    ReportSection section{"Variables"};
    const ResultTable summary = ReadResultTable(dialog_.Get("SummaryStats"));
    for (const std::size_t place : shown_) section.sections.push_back(VariableSection(summary, place));
    return section;
  }

  ReportSection VariableSection(const ResultTable& summary, std::size_t place) {
    const FittedVariable& variable = variables_[place];
    ReportSection section{variable.name};
    section.blocks.emplace_back(Moments(variable));
    if (variable.fits.empty()) {
      section.Warn(kWarning, "nothing to fit: " + variable.reason);
      section.blocks.emplace_back(PicturesOf(FitPlotOf(dialog_, summary, place, sheet_, {})));
      return section;
    }
    section.Say(variable.ranking);
    section.Show(std::move(rankings_[place]));
    for (const FitCaution& caution : variable.Cautions()) section.Warn(kCaution, caution.Text());
    for (const std::string& note : variable.Notes()) section.Warn(kNote, note);
    if (quantiles_[place])
      section.Show(QuantileTable(*quantiles_[place], variable.moments.Number("standard_deviation"_column)));
    section.blocks.emplace_back(PicturesOf(FitPlotOf(dialog_, summary, place, sheet_, {})));
    return section;
  }

  static ReportFacts Moments(const FittedVariable& variable) {
    const auto cell = [&](const ResultColumn& column) { return Cell(variable.moments, column); };
    return {{{"Type", variable.isContinuous ? "continuous" : "discrete"},
             {"n", cell("n"_column)},
             {"Missing", cell("missing"_column)},
             {"Mean", cell("mean"_column)},
             {"Std.Dev.", cell("standard_deviation"_column)},
             {"Skewness", ShapeText(variable.moments, "skewness"_column)},
             {"Kurtosis", ShapeText(variable.moments, "kurtosis"_column)},
             {"Range", cell("minimum"_column) + " to " + cell("maximum"_column)}}};
  }

  const FitJob& job_;
  const Spreadsheet& sheet_;
  AutomationObject& dialog_;
  std::vector<FittedVariable> variables_;
  std::vector<std::optional<FitQuantiles>> quantiles_;  // of each
  std::vector<ReportTable> rankings_;                   // of the variables
  std::vector<std::string> continuous_;
  std::vector<std::string> discrete_;
  std::vector<std::size_t> shown_;  // places of variables
  Report report_;
};

}  // namespace

Report FitReport(const FitJob& job, AutomationObject& dialog, const ReportContext& context) {
  return FitReportMaker(job, dialog, context).Made();
}

void WriteReportOfFit(const FitJob& job, AnalysisSession& session, const ReportContext& context) {
  if (IsWorkbookName(job.report)) return WriteFitWorkbook(session, context, job.report);
  WriteReport(FitReport(job, *session.Dialog(), context), job.report);
}

}  // namespace brenvolt
