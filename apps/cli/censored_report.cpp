#include "apps/cli/censored_report.h"

#include <cmath>

#include "apps/cli/fit_report.h"
#include "apps/cli/text_table.h"
#include "host/base/number_text.h"

namespace brenvolt::cli {
namespace {

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

// "83.35 (2.527)" for each value with its standard error.
std::string ValuesText(const CensoredFit& fit) {
  std::string text;
  for (std::size_t i = 0; i < fit.values.values.size(); ++i) {
    const std::string error =
        i < fit.standardErrors.size() ? " (" + ReadableNumber(fit.standardErrors[i], 4) + ")" : "";
    text += (i == 0 ? "" : ", ") + ReadableNumber(fit.values.values[i]) + error;
  }
  return text;
}

std::string VariableText(const CensoredVariable& variable) {
  std::string text = variable.name + "\n  n " + std::to_string(variable.Count()) + ", missing " +
                     std::to_string(variable.missing) + ": " + CountsText(variable);
  if (!variable.reading.empty()) text += " (read: " + variable.reading + ")";
  text += "\n  Ranked by " + std::string(variable.rankedBy == "bic" ? "BIC" : "AIC") +
          "; values with their standard errors; distance from the " +
          (variable.isKaplanMeier ? "Kaplan-Meier" : "Turnbull") + " curve\n";
  TextTable table;
  table.AddColumn("Distribution", TextTable::Align::kLeft);
  table.AddColumn("Values", TextTable::Align::kLeft);
  for (const char* heading : {"Log-likelihood", "AIC", "BIC", "Distance"})
    table.AddColumn(heading, TextTable::Align::kRight);
  std::string failures;
  for (const CensoredFit& fit : variable.fits) {
    if (!fit.IsValid()) {
      failures += "  " + fit.name + ": no fit: " + fit.reason + "\n";
      continue;
    }
    table.AddRow({fit.name, ValuesText(fit), FormatNumber("%.3f", fit.logLikelihood),
                  FormatNumber("%.2f", fit.aic), FormatNumber("%.2f", fit.bic),
                  FormatNumber("%.4f", fit.distance)});
  }
  text += table.Text() + failures;
  if (!variable.quantiles) return text;
  const FittedValues& best = variable.fits.front().values;
  constexpr double kLow = 0.1587;
  return text + QuantilesText(*variable.quantiles, (best.Quantile(1 - kLow) - best.Quantile(kLow)) / 2);
}

}  // namespace

std::string CensoredText(const CensoredFindings& found) {
  std::string text;
  for (const CensoredVariable& variable : found.variables)
    text += (text.empty() ? "" : "\n") + VariableText(variable);
  return text +
         "\nThe Kolmogorov-Smirnov, chi-square and Anderson-Darling tests need every value, so none is "
         "given. AIC "
         "and BIC\nhold for censored values, and the distance from the curve compares fits.\n";
}

}  // namespace brenvolt::cli
