#include "brv_sra/profiler/profiler_design.h"

#include <algorithm>
#include <utility>

namespace brenvolt::sra {
namespace {

template <class Named>
std::optional<std::size_t> Find(const std::vector<Named>& list, std::string_view name) {
  const auto found = std::ranges::find(list, name, &Named::name);
  if (found == list.end()) return std::nullopt;
  return static_cast<std::size_t>(found - list.begin());
}

// The k x k matrix with one more row and column, of an element that is uncorrelated with the others.
std::vector<double> Extended(const std::vector<double>& matrix, std::size_t k) {
  std::vector<double> result((k + 1) * (k + 1), 0.0);
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t j = 0; j < k; ++j) result[i * (k + 1) + j] = matrix[i * k + j];
  }
  result.back() = 1.0;
  return result;
}

// The k x k matrix without a row and its column.
std::vector<double> Without(const std::vector<double>& matrix, std::size_t k, std::size_t place) {
  std::vector<double> result;
  for (std::size_t i = 0; i < k; ++i) {
    for (std::size_t j = 0; j < k; ++j) {
      if (i != place && j != place) result.push_back(matrix[i * k + j]);
    }
  }
  return result;
}

}  // namespace

std::vector<NumberRange> ProfilerPredictor::Gaps() const {
  std::vector<NumberRange> gaps;
  for (std::size_t i = 1; keepsToParts && i < parts.size(); ++i)
    gaps.push_back({parts[i - 1].high, parts[i].low});
  return gaps;
}

std::optional<std::size_t> ProfilerDesign::FindPredictor(std::string_view name) const {
  return Find(predictors, name);
}

std::optional<std::size_t> ProfilerDesign::FindDependent(std::string_view name) const {
  return Find(dependents, name);
}

std::size_t ProfilerDesign::AddPredictor(ProfilerPredictor predictor) {
  correlations = Extended(correlations, predictors.size());
  predictors.push_back(std::move(predictor));
  return predictors.size() - 1;
}

std::size_t ProfilerDesign::AddDependent(ProfilerDependent dependent) {
  correlationsY = Extended(correlationsY, dependents.size());
  dependents.push_back(std::move(dependent));
  return dependents.size() - 1;
}

void ProfilerDesign::RetirePredictor(std::size_t place) {
  correlations = Without(correlations, predictors.size(), place);
  retired.push_back(std::move(predictors[place]));
  predictors.erase(predictors.begin() + static_cast<std::ptrdiff_t>(place));
}

}  // namespace brenvolt::sra
