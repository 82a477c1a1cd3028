#include "brv_sra/fitting/fit_correlation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "host/base/number_text.h"
#include "host/numeric/algebra/correlation.h"
#include "host/statistics/moments.h"

namespace brenvolt::sra {
namespace {

// The values of one variable over the cases, NaN if missing, with its own moments.
struct Column {
  std::vector<double> values;
  Moments moments;
};

bool IsWeighted(const CaseSet& cases) {
  return std::ranges::any_of(cases.weights, [](std::int32_t weight) { return weight != 1; });
}

Column ReadColumn(const Variable& variable, const CaseSet& cases) {
  Column column;
  column.values.reserve(cases.cases.size());
  MomentAccumulator moments;
  for (std::size_t i = 0; i < cases.cases.size(); ++i) {
    const double x = variable.Values()[cases.cases[i]];
    const bool valid = !IsMissingValue(x, variable.MissingCode()) && std::isfinite(x);
    column.values.push_back(valid ? x : std::numeric_limits<double>::quiet_NaN());
    if (valid) moments.Add(x, cases.weights.empty() ? 1 : cases.weights[i]);
  }
  column.moments = moments.Finish();
  return column;
}

// Pearson's coefficient of a pair with case weights, centred by the weighted means of the common cases.
double WeightedCorrelation(const Column& a, const Column& b, const CaseSet& cases) {
  double weight = 0;
  double meanA = 0;
  double meanB = 0;
  const auto forCommon = [&](const auto& take) {
    for (std::size_t i = 0; i < a.values.size(); ++i) {
      if (!std::isnan(a.values[i]) && !std::isnan(b.values[i])) {
        take(a.values[i], b.values[i], static_cast<double>(cases.weights[i]));
      }
    }
  };
  forCommon([&](double x, double y, double w) {
    weight += w;
    meanA += (x - meanA) * w / weight;
    meanB += (y - meanB) * w / weight;
  });
  double xx = 0;
  double yy = 0;
  double xy = 0;
  double x1 = 0;
  double y1 = 0;
  forCommon([&](double x, double y, double w) {
    xx += w * (x - meanA) * (x - meanA);
    yy += w * (y - meanB) * (y - meanB);
    xy += w * (x - meanA) * (y - meanB);
    x1 += w * (x - meanA);
    y1 += w * (y - meanB);
  });
  // What the rounded means left (Chan, Golub & LeVeque 1983).
  xx -= x1 * x1 / weight;
  yy -= y1 * y1 / weight;
  xy -= x1 * y1 / weight;
  if (!(weight >= 2) || !(xx > 0) || !(yy > 0)) return std::numeric_limits<double>::quiet_NaN();
  return std::clamp(xy / std::sqrt(xx) / std::sqrt(yy), -1.0, 1.0);
}

std::vector<double> WeightedCorrelations(const std::vector<Column>& columns, const CaseSet& cases) {
  const std::size_t k = columns.size();
  std::vector<double> correlations(k * k, 1.0);
  for (std::size_t a = 0; a < k; ++a) {
    for (std::size_t b = a + 1; b < k; ++b) {
      correlations[a * k + b] = correlations[b * k + a] = WeightedCorrelation(columns[a], columns[b], cases);
    }
  }
  return correlations;
}

std::vector<double> PlainCorrelations(const std::vector<Column>& columns, std::size_t n) {
  const std::size_t k = columns.size();
  std::vector<double> data(n * k);
  for (std::size_t v = 0; v < k; ++v) {
    for (std::size_t i = 0; i < n; ++i) data[i * k + v] = columns[v].values[i];
  }
  std::vector<double> correlations(k * k);
  PearsonCorrelation(data, n, k, correlations);
  return correlations;
}

// How many cases, with their weights, both variables have.
std::int64_t CommonCases(const Column& a, const Column& b, const CaseSet& cases) {
  std::int64_t common = 0;
  for (std::size_t i = 0; i < a.values.size(); ++i) {
    const bool both = !std::isnan(a.values[i]) && !std::isnan(b.values[i]);
    if (both) common += cases.weights.empty() ? 1 : cases.weights[i];
  }
  return common;
}

// Only variables with missing values can have fewer cases in common than either has.
std::int64_t FewestCommonCases(const std::vector<Column>& columns, const CaseSet& cases) {
  std::int64_t fewest = std::numeric_limits<std::int32_t>::max();
  for (const Column& column : columns) fewest = std::min(fewest, column.moments.count);
  const auto complete = [](const Column& column) {
    return std::ranges::none_of(column.values, [](double x) { return std::isnan(x); });
  };
  std::vector<const Column*> incomplete;
  for (const Column& column : columns) {
    if (!complete(column)) incomplete.push_back(&column);
  }
  for (std::size_t a = 0; a < incomplete.size(); ++a) {
    for (std::size_t b = a + 1; b < incomplete.size(); ++b) {
      fewest = std::min(fewest, CommonCases(*incomplete[a], *incomplete[b], cases));
    }
  }
  return std::max<std::int64_t>(fewest, 1);
}

// Puts 0 if a coefficient is not defined, and 1 on the diagonal.
void FillUndefined(std::vector<double>& correlations, FitCorrelations& result) {
  const std::size_t k = result.file.variables.size();
  for (std::size_t a = 0; a < k; ++a) {
    correlations[a * k + a] = 1;
    for (std::size_t b = a + 1; b < k; ++b) {
      if (!std::isnan(correlations[a * k + b])) continue;
      correlations[a * k + b] = correlations[b * k + a] = 0;
      result.undefined.emplace_back(a, b);
    }
  }
}

}  // namespace

FitCorrelations CorrelateVariables(const Spreadsheet& sheet, std::span<const int> variables,
                                   const CaseSet& cases) {
  FitCorrelations result;
  std::vector<Column> columns;
  for (const int number : variables) {
    const Variable& variable = sheet.VariableAt(static_cast<std::size_t>(number - 1));
    Column column = ReadColumn(variable, cases);
    const Moments& moments = column.moments;
    if (moments.count == 0 || !std::isfinite(moments.mean)) continue;
    const bool spread = !IsNotSet(moments.standardDeviation) && std::isfinite(moments.standardDeviation);
    result.file.variables.emplace_back(Trim(variable.Name()));
    result.file.means.push_back(moments.mean);
    result.file.standardDeviations.push_back(spread ? moments.standardDeviation : 0.0);
    columns.push_back(std::move(column));
  }
  std::vector<double> correlations = IsWeighted(cases) ? WeightedCorrelations(columns, cases)
                                                       : PlainCorrelations(columns, cases.cases.size());
  FillUndefined(correlations, result);
  result.file.SetCorrelations(correlations);
  result.file.validCases = static_cast<std::int32_t>(FewestCommonCases(columns, cases));
  return result;
}

}  // namespace brenvolt::sra
