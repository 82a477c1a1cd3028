#include "host/jobs/fit_results.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <utility>

#include "host/base/error.h"
#include "host/base/number_text.h"
#include "host/jobs/base/dialog_words.h"
#include "host/numeric/distributions/distribution_table.h"
#include "host/numeric/estimation/distribution_estimate.h"

namespace brenvolt {
namespace {

std::vector<std::vector<double>> ReadCovariance(AutomationObject& dialog, std::size_t place) {
  dialog.Put("QuickTabDistribution", static_cast<std::int32_t>(place + 1));
  std::vector<std::vector<double>> covariance;
  for (const ResultRow& row : ReadResultTable(dialog.Get("DistributionDetails")).rows) {
    std::vector<double> numbers = row.Numbered("covariance"_column);
    if (!numbers.empty()) covariance.push_back(std::move(numbers));
  }
  return covariance;
}

// As programs know it.
std::string_view NameOf(EstimateOrigin origin) {
  switch (origin) {
    case EstimateOrigin::kLikelihood:
      return "likelihood";
    case EstimateOrigin::kMoments:
      return "moments";
    case EstimateOrigin::kPercentiles:
      return "percentiles";
    case EstimateOrigin::kExtremes:
      return "extremes";
    case EstimateOrigin::kNone:
      break;
  }
  return {};
}

std::string_view IdentifierIn(const ResultRow& row) {
  return kNamedDistributions.at(static_cast<std::size_t>(row.Number("code"_column))).name;
}

FittedDistribution TakeFit(ResultRow row) {
  FittedDistribution fit;
  fit.code = static_cast<int>(row.Number("code"_column));
  fit.identifier = IdentifierIn(row);
  fit.name = row.name;
  fit.description = row.Text("description"_column);
  fit.reason = row.Text("reason"_column);
  fit.note = row.Text("note"_column);
  if (const double origin = row.Number("origin"_column); !std::isnan(origin))
    fit.origin = NameOf(static_cast<EstimateOrigin>(static_cast<int>(origin)));
  fit.parameters = row.Numbered("parameter"_column);
  fit.offset = row.Number("offset"_column);
  fit.standardErrors = row.Numbered("standard_error"_column);
  const double place = row.Number("saved_place"_column);
  if (!std::isnan(place)) fit.savedPlace = static_cast<std::size_t>(place) - 1;
  fit.statistics = std::move(row);
  return fit;
}

FittedVariable ReadVariable(AutomationObject& dialog, std::size_t place, ResultRow summary,
                            Covariances covariances) {
  FittedVariable variable;
  variable.name = summary.name;
  variable.reason = summary.Text("reason"_column);
  variable.isContinuous = summary.Number("kind"_column) == kContinuousKind;
  variable.moments = std::move(summary);
  dialog.Put("QuickTabVariable", static_cast<std::int32_t>(place + 1));
  if (dialog.Get("QuickTabDistribution").ToInteger() == 0) return variable;
  ResultTable ranked = ReadResultTable(dialog.Get("QuickTabDistributionSummaryStats"));
  variable.ranking = std::move(ranked.title);
  for (std::size_t i = 0; i < ranked.rows.size(); ++i) {
    FittedDistribution& fit = variable.fits.emplace_back(TakeFit(std::move(ranked.rows[i])));
    const bool isWanted = covariances == Covariances::kRead && !fit.parameters.empty();
    if (isWanted) fit.covariance = ReadCovariance(dialog, i);
  }
  return variable;
}

// The saved fits, best first.
std::vector<const FittedDistribution*> SavedFits(const FittedVariable& variable) {
  std::vector<const FittedDistribution*> saved(variable.fits.size());
  for (const FittedDistribution& fit : variable.fits) {
    if (fit.savedPlace) saved[*fit.savedPlace] = &fit;
  }
  std::erase(saved, nullptr);
  return saved;
}

}  // namespace

double KsPValueIn(const ResultRow& row) {
  const bool isBootstrapped =
      row.Has("bootstrap_samples"_column) && row.Number("bootstrap_samples"_column) > 0;
  const ResultColumn& column = isBootstrapped ? "bootstrap_ks_p"_column : "ks_p"_column;
  return row.Has(column) ? row.Number(column) : std::numeric_limits<double>::quiet_NaN();
}

std::optional<std::size_t> FirstSaved(AutomationObject& dialog, std::int32_t variable,
                                      std::span<const int> fits) {
  const Variant index(variable);
  const std::string order = dialog.Get("DistributionOrder", {&index, 1}).ToText();
  const NamedDistribution* distribution = FindDistribution(order.substr(0, order.find(';')));
  if (distribution == nullptr) return std::nullopt;
  const auto first = std::ranges::find(fits, static_cast<int>(distribution - kNamedDistributions.data()));
  if (first == fits.end()) return std::nullopt;
  return static_cast<std::size_t>(first - fits.begin());
}

const FittedDistribution* FittedVariable::Best() const {
  const auto saved = SavedFits(*this);
  return saved.empty() ? nullptr : saved.front();
}

std::span<const FittedDistribution> FittedVariable::Shown() const {
  const FittedDistribution* best = Best();
  const std::size_t least = best == nullptr ? 0 : static_cast<std::size_t>(best - fits.data()) + 1;
  return std::span(fits).first(std::min(std::max(top, least), fits.size()));
}

std::vector<FitCaution> FittedVariable::Cautions() const {
  std::vector<FitReach> reaches;
  for (const FittedDistribution* fit : SavedFits(*this)) reaches.push_back(ReachIn(fit->statistics));
  return CautionsAgainstFirst(reaches);
}

FitReach ReachIn(const ResultRow& row) {
  return {row.name,
          row.Number("below_zero"_column),
          row.Number("above_zero"_column),
          row.Number("infinite_moment"_column),
          KsPValueIn(row),
          IdentifierIn(row)};
}

std::vector<std::string> FittedVariable::Notes() const {
  constexpr double kLevel = 0.05;
  constexpr double kFewestPerValue = 3;
  std::vector<std::string> notes;
  bool isTested = false;
  bool isBootstrapped = false;
  bool isAnyPassed = false;
  for (const FittedDistribution& fit : fits) {
    const double pValue = KsPValueIn(fit.statistics);
    // A histogram of the data passes any test against them.
    if (std::isnan(pValue) || static_cast<DistributionCode>(fit.code) == DistributionCode::kHistogram)
      continue;
    isTested = true;
    isBootstrapped = isBootstrapped || fit.IsBootstrapped();
    isAnyPassed = isAnyPassed || pValue >= kLevel;
  }
  if (isTested && !isAnyPassed)
    notes.push_back(std::string("no fit passes the Kolmogorov-Smirnov test at 5 %") +
                    (isBootstrapped ? "" : ", although these p-values are too large"));
  const double n = moments.Number("n"_column);
  const double distinct = moments.Number("distinct"_column);
  if (isContinuous && !fits.empty() && kFewestPerValue * distinct < n)
    notes.push_back(FormatNumber("%.0f", distinct) + " distinct values among " + FormatNumber("%.0f", n) +
                    ": the tests take the values for unrounded");
  return notes;
}

std::vector<VariableCautions> ReadSavedCautions(AutomationObject& dialog, const Spreadsheet& sheet) {
  std::map<std::size_t, std::vector<FitReach>> reaches;  // by the variables' places
  try {
    for (const ResultRow& row : ReadResultTable(dialog.Get("SavedFits")).rows)
      reaches[static_cast<std::size_t>(row.Number("variable_number"_column)) - 1].push_back(ReachIn(row));
  } catch (const AutomationError&) {
    return {};  // the run says what is wrong with the fits
  }
  std::vector<VariableCautions> found;
  for (const auto& [place, fits] : reaches) {
    auto cautions = CautionsAgainstFirst(fits);
    if (!cautions.empty()) found.push_back({sheet.VariableAt(place).Name(), std::move(cautions)});
  }
  return found;
}

std::vector<FittedVariable> ReadFitResults(AutomationObject& dialog, Covariances covariances,
                                           std::size_t top) {
  ResultTable summary = ReadResultTable(dialog.Get("SummaryStats"));
  std::vector<FittedVariable> variables;
  for (ResultRow& row : summary.rows) {
    variables.push_back(ReadVariable(dialog, variables.size(), std::move(row), covariances));
    variables.back().top = top;
  }
  return variables;
}

}  // namespace brenvolt
