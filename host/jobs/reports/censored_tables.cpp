#include "host/jobs/reports/censored_tables.h"

#include <cmath>
#include <utility>

#include "host/analysis/quantity_text.h"
#include "host/base/number_text.h"

namespace brenvolt {
namespace {

using namespace result_columns;

std::string CountsText(const CensoredVariable& variable) {
  std::string text = std::to_string(variable.exact) + " exact";
  const std::pair<const char*, std::size_t> counts[] = {{"right censored", variable.right},
                                                        {"left censored", variable.left},
                                                        {"in intervals", variable.interval}};
  for (const auto& [word, count] : counts) {
    if (count > 0) text += ", " + std::to_string(count) + " " + word;
  }
  return text;
}

// To four digits, or to units where that is more.
std::string ErrorText(double error) {
  constexpr int kDigits = 4;
  constexpr double kHundredUnits = 100;
  constexpr double kLongest = 1e15;
  return ReadableNumber(error, error < kLongest ? DigitsFor(error, kHundredUnits, kDigits) : kDigits);
}

// "83.35 (2.527)" for each value with its standard error, of which the value shows a hundredth.
std::string ValuesText(const CensoredFit& fit) {
  constexpr int kDigits = 6;
  std::string text;
  for (std::size_t i = 0; i < fit.values.values.size(); ++i) {
    const double value = fit.values.values[i];
    const double error = i < fit.standardErrors.size() ? fit.standardErrors[i] : 0;
    text += (i == 0 ? "" : ", ") + ReadableNumber(value, DigitsFor(value, error, kDigits));
    if (error > 0) text += " (" + ErrorText(error) + ")";
  }
  return text;
}

}  // namespace

std::string CensoringText(const CensoredVariable& variable) {
  std::string text = "n " + std::to_string(variable.Count()) + ", missing " +
                     std::to_string(variable.missing) + ": " + CountsText(variable);
  return variable.reading.empty() ? text : text + " (read: " + variable.reading + ")";
}

std::string RankingText(const CensoredVariable& variable) {
  return "Ranked by " + std::string(variable.rankedBy == "bic" ? "BIC" : "AIC") +
         "; values with their standard errors; distance from the " +
         (variable.isKaplanMeier ? "Kaplan-Meier" : "Turnbull") + " curve";
}

ReportTable CensoredRankingTable(const CensoredVariable& variable) {
  ReportTable table;
  table.AddText("Distribution");
  table.AddText("Values");
  for (const char* heading : {"Log-likelihood", "AIC", "BIC", "Distance"}) table.AddNumber(heading);
  for (const CensoredFit& fit : variable.fits) {
    if (!fit.IsValid()) {
      table.notes.push_back(fit.name + ": no fit: " + fit.reason);
      continue;
    }
    const ResultRow statistics = fit.Statistics();
    std::vector<std::string> cells{fit.name, ValuesText(fit)};
    for (const std::span<const ResultColumn> columns :
         {std::span<const ResultColumn>(kLikelihood), std::span<const ResultColumn>(kCurveDistance)}) {
      for (const ResultColumn& column : columns) cells.push_back(Cell(statistics, column));
    }
    table.AddRow(std::move(cells));
  }
  return table;
}

double SpreadOf(const FittedValues& fit) {
  constexpr double kLow = 0.1587;
  return (fit.Quantile(1 - kLow) - fit.Quantile(kLow)) / 2;
}

std::string UntestedText() {
  return "The Kolmogorov-Smirnov, chi-square and Anderson-Darling tests need every value, so none is "
         "given. AIC "
         "and BIC\nhold for censored values, and the distance from the curve compares fits.";
}

}  // namespace brenvolt
