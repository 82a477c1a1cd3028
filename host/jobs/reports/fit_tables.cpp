#include "host/jobs/reports/fit_tables.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

#include "host/analysis/quantity_text.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt {
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

// The statistic that ranks, then the p-values of the tests, first that of a test that ranks, then the AIC
// where it does not rank. The p-values are the bootstrap's when `bootstrapped`, none for a fit without.
class Ranking {
 public:
  Ranking(const FittedVariable& variable, const std::string& rankedBy, bool bootstrapped)
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
    table_.AddNumber("Rank");
    table_.AddText("Distribution");
    table_.AddNumber(criterion_.heading);
    for (const CriterionColumns* test : tests_) table_.AddNumber(test->pHeading);
    if (ShowsAicBeside()) table_.AddNumber(aic_.heading);
    for (const FittedDistribution& fit : variable.Shown()) AddFit(fit);
  }

  ReportTable Table() && { return std::move(table_); }

 private:
  bool ShowsAicBeside() const { return &criterion_ != &aic_; }

  void AddFit(const FittedDistribution& fit) {
    ++rank_;
    if (fit.parameters.empty()) {
      table_.notes.push_back("no fit: " + fit.name + ", " + fit.reason);
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
    ReportRow row{
        {std::to_string(rank_), std::move(description), Cell(fit.statistics, criterion_.statistic)}};
    if (!fit.note.empty()) row.notes.push_back(fit.note);
    if (fit.statistics.Number("without_density"_column) > 0) {
      row.notes.push_back("density 0 at " + Cell(fit.statistics, "without_density"_column) + " of " + count_ +
                          " values");
    }
    for (const CriterionColumns* test : tests_) row.cells.push_back(PValueText(fit, *test));
    if (ShowsAicBeside()) row.cells.push_back(Cell(fit.statistics, aic_.statistic));
    table_.rows.push_back(std::move(row));
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
    const DistributionFacts& facts = EntryOf(static_cast<DistributionCode>(fit.code)).facts;
    return facts.parameters[i % facts.ParameterCount()];
  }

  // Against what a parameter has to show: a place or a size in the unit of the data against their spread, the
  // location of their logarithm against that, which is the last parameter. NaN for those without a unit.
  double SpreadAbout(const FittedDistribution& fit, std::size_t i) const {
    switch (ParameterOf(fit, i).unit) {
      case ParameterUnit::kData:
        return deviation_;
      case ParameterUnit::kLogarithmOfData:
        return fit.parameters.back();
      case ParameterUnit::kNone:
        break;
    }
    return std::numeric_limits<double>::quiet_NaN();
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
  ReportTable table_;
  std::size_t rank_ = 0;
};

}  // namespace

std::string ShapeText(const ResultRow& moments, const ResultColumn& column) {
  constexpr double kRoundings = 8;
  const double largest =
      std::max(std::abs(moments.Number("minimum"_column)), std::abs(moments.Number("maximum"_column)));
  const double rounding = kRoundings * std::numeric_limits<double>::epsilon() *
                          (1 + largest / moments.Number("standard_deviation"_column));
  return std::abs(moments.Number(column)) < rounding ? "0" : Cell(moments, column);
}

ReportTable RankingTable(const FittedVariable& variable, const std::string& rankedBy, bool bootstrapped) {
  return Ranking(variable, rankedBy, bootstrapped).Table();
}

ReportTable QuantileTable(const FitQuantiles& found, double spread) {
  constexpr int kDigits = 5;
  const auto value = [&](double x) { return ReadableNumber(x, DigitsFor(x, spread, kDigits)); };
  const auto probability = [](double p) { return ReadableNumber(p, kDigits); };
  const auto between = [](const ConfidenceInterval& interval, const auto& text) {
    return IsNotSet(interval.lower) ? std::string("-") : text(interval.lower) + " to " + text(interval.upper);
  };
  ReportTable table;
  table.AddText("Of " + found.distribution);
  for (const char* heading : {"Estimate", "by covariance"}) table.AddNumber(heading);
  if (found.isProfiled) table.AddNumber("by profile likelihood");
  if (found.samples > 0) table.AddNumber("by bootstrap");
  const auto add = [&](std::string name, double read, const FitQuantiles::Row& row, const auto& text) {
    std::vector<std::string> cells{std::move(name), text(read), between(row.byCovariance, text)};
    if (found.isProfiled) cells.push_back(between(row.byProfile, text));
    if (found.samples > 0) cells.push_back(between(row.byBootstrap, text));
    table.AddRow(std::move(cells));
  };
  for (const FitQuantiles::Row& row : found.quantiles) {
    const std::string name = row.returnPeriod ? "level of return period " + ReadableNumber(*row.returnPeriod)
                                              : "quantile " + ReadableNumber(row.probability);
    add(name, row.value, row, value);
  }
  for (const FitQuantiles::Row& row : found.exceedances)
    add("probability above " + ReadableNumber(row.value), row.probability, row, probability);
  table.notes.push_back("Intervals have a confidence of " + ReadableNumber(100 * found.confidence) + " %");
  if (!found.note.empty()) table.notes.push_back("note: " + found.note);
  return table;
}

std::string PValueNote(std::int32_t bootstrapSamples) {
  if (bootstrapSamples > 0) {
    return "P-values by parametric bootstrap, " + std::to_string(bootstrapSamples) +
           " samples per distribution; - for a fit whose bootstrap is not valid (a shape below -1).";
  }
  return "Parameters were estimated from the same data, so the p-values are too large: they compare fits, "
         "but "
         "prove none. --bootstrap N gives p-values that allow for the estimation.";
}

}  // namespace brenvolt
