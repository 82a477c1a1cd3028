#include "brv_sra/profiler/dialogs/response_values.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "host/numeric/vector/sorting.h"
#include "host/statistics/frequency_table.h"

namespace brenvolt::sra {
namespace {

std::vector<double> ColumnValues(const Variable& column) {
  std::vector<double> values(column.Values().begin(), column.Values().end());
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (column.IsMissing(i) || !std::isfinite(values[i]))
      values[i] = std::numeric_limits<double>::quiet_NaN();
  }
  return values;
}

}  // namespace

std::vector<double> ResponseValues(const SimulatedResponse& response) {
  return ColumnValues(response.Column());
}

std::vector<double> SortedValues(std::span<const double> values) {
  std::vector<double> sorted;
  sorted.reserve(values.size());
  for (const double value : values) {
    if (!std::isnan(value)) sorted.push_back(value);
  }
  SortAscending(sorted);
  return sorted;
}

bool HasFewValues(std::span<const double> sorted) {
  std::size_t different = sorted.empty() ? 0 : 1;
  for (std::size_t i = 1; i < sorted.size() && different <= kMostSingleValues; ++i) {
    if (sorted[i] != sorted[i - 1]) ++different;
  }
  return different <= kMostSingleValues;
}

Moments MomentsOf(const SimulatedResponse& response) {
  MomentAccumulator moments;
  for (const double value : ResponseValues(response)) {
    if (std::isnan(value)) {
      moments.CountMissing();
    } else {
      moments.Add(value, 1);
    }
  }
  return moments.Finish();
}

SensitivityTable ResponseSensitivity(const SimulatedResponse& response) {
  std::vector<std::vector<double>> columns;
  for (std::size_t i = 0; i < response.predictors; ++i) {
    columns.push_back(ColumnValues(response.sheet.VariableAt(i)));
  }
  const std::vector<std::span<const double>> predictors(columns.begin(), columns.end());
  return AnalyseSensitivity(ResponseValues(response), predictors);
}

}  // namespace brenvolt::sra
