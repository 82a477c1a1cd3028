#include "apps/cli/fit_report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <vector>

#include "apps/cli/fit_json.h"
#include "apps/cli/text_table.h"
#include "apps/cli/wrong_call.h"
#include "host/numeric/distributions/distribution_types.h"

namespace brenvolt::cli {
namespace {

// What fits are ranked by, as the table for people shows it: the statistic and, of a test, its p-values.
struct CriterionColumns {
  std::string_view name;  // as in the options of the command
  const char* heading;
  const ResultColumn& statistic;
  const char* pHeading = nullptr;
  const ResultColumn* pValue = nullptr;
  const ResultColumn* bootstrapPValue = nullptr;

  bool IsTest() const { return pValue != nullptr; }
};
constexpr std::array<CriterionColumns, 5> kCriteria{
    {{"ks", "K-S d", "ks"_column, "K-S p", &"ks_p"_column, &"bootstrap_ks_p"_column},
     {"chi-square", "Chi-sq.", "chi_square"_column, "Chi-sq. p", &"chi_square_p"_column,
      &"bootstrap_chi_square_p"_column},
     {"anderson-darling", "A-D", "ad"_column, "A-D p", &"ad_p"_column, &"bootstrap_ad_p"_column},
     {"aic", "AIC", "aic"_column},
     {"bic", "BIC", "bic"_column}}};

const CriterionColumns& Criterion(std::string_view name) {
  return *std::ranges::find(kCriteria, name, &CriterionColumns::name);
}

// A description of more characters goes on in the next line, broken behind a comma.
constexpr std::size_t kDescriptionWidth = 46;

std::vector<std::string> BrokenAtCommas(std::string text) {
  std::vector<std::string> lines;
  while (text.size() > kDescriptionWidth) {
    const std::size_t comma = text.rfind(", ", kDescriptionWidth - 1);
    if (comma == std::string::npos) break;
    lines.push_back(text.substr(0, comma + 1));
    text = "  " + text.substr(comma + 2);
  }
  lines.push_back(std::move(text));
  return lines;
}

// The same of a sentence, broken at blanks, the lines after the first indented by so much.
std::vector<std::string> BrokenAtBlanks(std::string text, std::size_t width, std::size_t indent) {
  std::vector<std::string> lines;
  while (text.size() > width) {
    const std::size_t blank = text.rfind(' ', width);
    if (blank == std::string::npos || text.find_first_not_of(' ') > blank) break;
    lines.push_back(text.substr(0, blank));
    text = std::string(indent, ' ') + text.substr(blank + 1);
  }
  lines.push_back(std::move(text));
  return lines;
}

// Why there is no fit, in lines of its own.
std::string ReasonText(const std::string& text) {
  constexpr std::size_t kWidth = 96;
  constexpr std::size_t kIndent = 4;
  std::string lines;
  for (const std::string& line : BrokenAtBlanks("  " + text, kWidth, kIndent)) lines += line + "\n";
  return lines;
}

// The statistic that ranks, then the p-values of the tests, first that of a test that ranks, then the AIC
// where it does not rank. The p-values are the bootstrap's when `bootstrapped`, none for a fit without.
class RankingText {
 public:
  RankingText(const FittedVariable& variable, const std::string& rankedBy, bool bootstrapped)
      : bootstrapped_(bootstrapped),
        criterion_(Criterion(rankedBy)),
        count_(Cell(variable.moments, "n"_column)),
        deviation_(variable.moments.Number("standard_deviation"_column)) {
    for (const CriterionColumns& test : kCriteria) {
      if (!test.IsTest()) continue;
      const bool applies = variable.isContinuous || test.name != "anderson-darling";
      if (test.name == rankedBy) tests_.insert(tests_.begin(), &test);
      if (test.name != rankedBy && applies) tests_.push_back(&test);
    }
    table_.AddColumn("Rank", TextTable::Align::kRight);
    table_.AddColumn("Distribution", TextTable::Align::kLeft);
    table_.AddColumn(criterion_.heading, TextTable::Align::kRight);
    for (const CriterionColumns* test : tests_) table_.AddColumn(test->pHeading, TextTable::Align::kRight);
    if (ShowsAicBeside()) table_.AddColumn(aic_.heading, TextTable::Align::kRight);
    for (const FittedDistribution& fit : variable.fits) AddFit(fit);
  }

  std::string Text() const { return table_.Text() + failures_; }

 private:
  bool ShowsAicBeside() const { return &criterion_ != &aic_; }

  void AddFit(const FittedDistribution& fit) {
    ++rank_;
    if (fit.parameters.empty()) {
      failures_ += ReasonText("no fit: " + fit.name + ", " + fit.reason);
      return;
    }
    std::string description = fit.description;
    if (HasLongNumbers(fit)) {
      description = fit.name + ValuesText(fit);
    } else if (description.find('(') == std::string::npos) {
      description += ValuesText(fit);
    } else if (!FourDecimalsShow(fit)) {
      description += " = " + ValuesText(fit);
    }
    if (!std::isnan(fit.offset) && fit.offset != 0) description += ", offset " + ReadableNumber(fit.offset);
    std::vector<std::string> lines = BrokenAtCommas(std::move(description));
    if (!fit.note.empty()) {
      for (const std::string& line : BrokenAtBlanks("  " + fit.note, kDescriptionWidth, 2))
        lines.push_back(line);
    }
    if (fit.statistics.Number("without_density"_column) > 0) {
      lines.push_back("  density 0 at " + Cell(fit.statistics, "without_density"_column) + " of " + count_ +
                      " values");
    }
    std::vector<std::string> cells{std::to_string(rank_), lines.front(),
                                   Cell(fit.statistics, criterion_.statistic)};
    for (const CriterionColumns* test : tests_) cells.push_back(PValueText(fit, *test));
    if (ShowsAicBeside()) cells.push_back(Cell(fit.statistics, aic_.statistic));
    table_.AddRow(std::move(cells));
    for (std::size_t i = 1; i < lines.size(); ++i) table_.AddRow({"", lines[i]});
  }

  // The values as a description has none, or too few digits of them; of a histogram there would be too many.
  std::string ValuesText(const FittedDistribution& fit) const {
    constexpr int kValueDigits = 5;
    std::string text;
    if (static_cast<DistributionCode>(fit.code) == DistributionCode::kHistogram) return text;
    for (std::size_t i = 0; i < fit.parameters.size(); ++i) {
      const int digits = DigitsFor(fit.parameters[i], SpreadAbout(fit, i), kValueDigits);
      text += (text.empty() ? "(" : ", ") + ReadableNumber(fit.parameters[i], digits);
    }
    return text.empty() ? text : text + ")";
  }

  // Whether a description, which has no exponents, would show hundreds of digits.
  static bool HasLongNumbers(const FittedDistribution& fit) {
    constexpr double kLongest = 1e15;
    return std::ranges::any_of(fit.parameters, [](double value) { return std::abs(value) >= kLongest; });
  }

  // Whether the four decimals of a description tell the distribution: a place among the data to a hundredth of
  // their spread, any other value but one that may be 0 to two digits.
  bool FourDecimalsShow(const FittedDistribution& fit) const {
    constexpr double kLeastSpread = 0.005;
    constexpr double kLeastValue = 0.001;
    for (std::size_t i = 0; i < fit.parameters.size(); ++i) {
      const double spread = SpreadAbout(fit, i);
      const bool mayBeZero = ParameterOf(fit, i).range == ParameterRange::kFinite;
      if (spread < kLeastSpread || (!mayBeZero && std::abs(fit.parameters[i]) < kLeastValue)) return false;
    }
    return true;
  }

  static const ParameterFacts& ParameterOf(const FittedDistribution& fit, std::size_t i) {
    const DistributionFacts& facts = TypeOf(static_cast<DistributionCode>(fit.code)).facts;
    return facts.parameters[i % facts.ParameterCount()];
  }

  // Against what a parameter has to show: a place or a size in the unit of the data against their spread, the
  // location of their logarithm against that. NaN for those without a unit.
  double SpreadAbout(const FittedDistribution& fit, std::size_t i) const {
    static constexpr std::string_view kWithoutUnit[] = {"shape",      "type", "gamma", "delta",
                                                        "proportion", "code", "trials"};
    const std::string_view name = ParameterOf(fit, i).name;
    if (std::ranges::find(kWithoutUnit, name) != std::end(kWithoutUnit))
      return std::numeric_limits<double>::quiet_NaN();
    const bool isOfLogarithms = static_cast<DistributionCode>(fit.code) == DistributionCode::kLogNormal;
    return isOfLogarithms ? fit.parameters.back() : deviation_;
  }

  // A table in which no fit has a bootstrap lacks its columns.
  std::string PValueText(const FittedDistribution& fit, const CriterionColumns& test) const {
    const ResultColumn& column = *(bootstrapped_ ? test.bootstrapPValue : test.pValue);
    return fit.statistics.Has(column) ? Cell(fit.statistics, column) : "-";
  }

  bool bootstrapped_;
  const CriterionColumns& criterion_;
  const CriterionColumns& aic_ = Criterion("aic");
  std::string count_;  // of the values
  double deviation_;   // of the values
  std::vector<const CriterionColumns*> tests_;
  TextTable table_;
  std::string failures_;
  std::size_t rank_ = 0;
};

// Skewness or kurtosis, which are 0 where they are no more than what the deviations from the mean, in units of their
// standard deviation, are rounded by.
std::string ShapeText(const ResultRow& moments, const ResultColumn& column) {
  constexpr double kRoundings = 8;
  const double largest =
      std::max(std::abs(moments.Number("minimum"_column)), std::abs(moments.Number("maximum"_column)));
  const double rounding = kRoundings * std::numeric_limits<double>::epsilon() *
                          (1 + largest / moments.Number("standard_deviation"_column));
  return std::abs(moments.Number(column)) < rounding ? "0" : Cell(moments, column);
}

std::string VariableText(const FittedVariable& variable, const std::string& rankedBy, bool bootstrapped) {
  const auto cell = [&](const ResultColumn& column) { return Cell(variable.moments, column); };
  std::string text = variable.name + (variable.isContinuous ? " (continuous)\n" : " (discrete)\n");
  text += "  n " + cell("n"_column) + ", missing " + cell("missing"_column) + ", mean " +
          cell("mean"_column) + ", std.dev. " + cell("standard_deviation"_column) + "\n  skewness " +
          ShapeText(variable.moments, "skewness"_column) + ", kurtosis " +
          ShapeText(variable.moments, "kurtosis"_column) + ", range " + cell("minimum"_column) + " to " +
          cell("maximum"_column) + "\n";
  if (variable.fits.empty()) return text + ReasonText("nothing to fit: " + variable.reason);
  text += "  " + variable.ranking + "\n" + RankingText(variable, rankedBy, bootstrapped).Text();
  for (const std::string& note : variable.Notes()) text += "  note: " + note + "\n";
  return text + CautionsText(variable.Cautions());
}

std::string Footnote(const FitReportOptions& options) {
  if (options.bootstrapSamples > 0) {
    return "\nP-values by parametric bootstrap, " + std::to_string(options.bootstrapSamples) +
           " samples per distribution; - for a fit whose bootstrap is not\nvalid (a shape below -1).\n";
  }
  return "\nParameters were estimated from the same data, so the p-values are too large: they compare fits, "
         "but\nprove none. --bootstrap N gives p-values that allow for the estimation.\n";
}

}  // namespace

// Each begins on a line of its own and goes on behind its semicolon in the next.
std::string CautionsText(const std::vector<FitCaution>& cautions) {
  std::string text;
  for (const FitCaution& caution : cautions) {
    std::string lines = caution.Text();
    lines.replace(lines.find("; "), 2, ";\n    ");
    text += "  caution: " + lines + "\n";
  }
  return text;
}

std::string QuantilesText(const FitQuantiles& found, double spread) {
  constexpr int kDigits = 5;
  const auto value = [&](double x) { return ReadableNumber(x, DigitsFor(x, spread, kDigits)); };
  const auto probability = [](double p) { return ReadableNumber(p, kDigits); };
  const auto between = [](const ConfidenceInterval& interval, const auto& text) {
    return IsNotSet(interval.lower) ? std::string("-") : text(interval.lower) + " to " + text(interval.upper);
  };
  TextTable table;
  table.AddColumn("Of " + found.distribution, TextTable::Align::kLeft);
  for (const char* heading : {"Estimate", "by covariance"})
    table.AddColumn(heading, TextTable::Align::kRight);
  if (found.samples > 0) table.AddColumn("by bootstrap", TextTable::Align::kRight);
  for (const FitQuantiles::Row& row : found.quantiles) {
    const std::string name = row.returnPeriod ? "level of return period " + ReadableNumber(*row.returnPeriod)
                                              : "quantile " + ReadableNumber(row.probability);
    table.AddRow({name, value(row.value), between(row.byCovariance, value), between(row.byBootstrap, value)});
  }
  for (const FitQuantiles::Row& row : found.exceedances)
    table.AddRow({"probability above " + ReadableNumber(row.value), probability(row.probability),
                  between(row.byCovariance, probability), between(row.byBootstrap, probability)});
  return "\n" + table.Text() + "  Intervals have a confidence of " + ReadableNumber(100 * found.confidence) +
         " %\n" + (found.note.empty() ? "" : "  note: " + found.note + "\n");
}

void ReportFit(const std::vector<FittedVariable>& variables, const Spreadsheet& input,
               const FitReportOptions& options) {
  const std::string weights = input.WeightVariable() ? input.VariableAt(*input.WeightVariable()).Name() : "";
  const std::string selection = input.Selection().enabled ? input.Selection().condition : "";
  const bool json = options.format == ReportFormat::kJson;
  nlohmann::ordered_json report = {{"variables", nlohmann::ordered_json::array()}};
  if (!weights.empty()) report["weights"] = weights;
  if (!selection.empty()) report["selection"] = selection;
  std::string text;
  if (!weights.empty()) text += "Cases weighted by " + weights + "\n";
  if (!selection.empty()) text += "Cases with " + selection + "\n";
  for (std::size_t i = 0; i < variables.size(); ++i) {
    const FittedVariable& variable = variables[i];
    const std::string& rankedBy = variable.isContinuous ? options.rankBy : options.discreteRankBy;
    if (json) {
      report["variables"].push_back(VariableJson(variable, rankedBy));
      report["variables"].back()["quantiles"] = QuantilesJson(options.quantiles[i]);
    } else {
      text += (text.empty() ? "" : "\n") + VariableText(variable, rankedBy, options.bootstrapSamples > 0);
      if (options.quantiles[i])
        text += QuantilesText(*options.quantiles[i], variable.moments.Number("standard_deviation"_column));
    }
  }
  std::fputs(json ? JsonText(report).c_str() : (text + Footnote(options)).c_str(), stdout);
}

}  // namespace brenvolt::cli
