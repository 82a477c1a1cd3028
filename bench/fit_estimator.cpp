// Fits one distribution to the first column of a separated-values file whose first line is a heading, and
// prints the status and the parameters on one line, for comparison with other programs.
//   fit_estimator ESTIMATOR FILE [OFFSET | NUMBER OF COMPONENTS | SPACING]
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "host/numeric/estimation/estimators.h"

namespace brenvolt {
namespace {

struct Fit {
  std::vector<double> parameters;
  EstimationError error = EstimationError::kNone;
};

using Estimator = std::function<Fit(const std::vector<double>& data, double option)>;

// An estimator with a flag and an offset, as one of the table.
// `More`: a poll, which nobody needs here, where the estimator searches.
template <std::size_t count, class... More>
Estimator WithOffset(std::int32_t (*fit)(std::int32_t, std::span<const double>, double,
                                         std::span<double, count>, EstimationError&, More...)) {
  return [fit](const std::vector<double>& data, double offset) {
    Fit result{std::vector<double>(count), {}};
    fit(0, data, offset, std::span<double, count>(result.parameters), result.error,
        std::remove_cvref_t<More>{}...);
    return result;
  };
}

template <std::size_t count, class... More>
Estimator WithThreshold(std::int32_t (*fit)(std::span<const double>, double, std::span<double, count>,
                                            EstimationError&, More...)) {
  return [fit](const std::vector<double>& data, double threshold) {
    Fit result{std::vector<double>(count), {}};
    fit(data, threshold, std::span<double, count>(result.parameters), result.error,
        std::remove_cvref_t<More>{}...);
    return result;
  };
}

Fit FitGev(const std::vector<double>& data, double /*option*/) {
  Fit result{std::vector<double>(12), {}};
  const std::span<double> slots(result.parameters);
  GEV_MLE(data, slots.first<3>(), slots.subspan<3, 9>(), result.error);
  return result;
}

Fit FitGevMoments(const std::vector<double>& data, double /*option*/) {
  Fit result{std::vector<double>(3), {}};
  GEV_ProbWeightMoments(data, std::span<double, 3>(result.parameters), result.error);
  return result;
}

Fit FitMixture(const std::vector<double>& data, double components) {
  auto count = static_cast<std::int32_t>(components);
  Fit result{std::vector<double>(3 * static_cast<std::size_t>(count)), {}};
  FitGaussianMixture(data, result.parameters, count, result.error);
  return result;
}

// The sample's moments as the summary of a variable has them: divisor n - 1, skewness and kurtosis corrected
// for n.
Fit FitJohnsonMoments(const std::vector<double>& data, double /*option*/) {
  const auto n = static_cast<double>(data.size());
  long double mean = 0.0L;
  for (const double x : data) mean += x / n;
  long double m2 = 0.0L;
  long double m3 = 0.0L;
  long double m4 = 0.0L;
  for (const double x : data) {
    const long double d = x - mean;
    m2 += d * d / n;
    m3 += d * d * d / n;
    m4 += d * d * d * d / n;
  }
  const auto variance = static_cast<double>(m2) * n / (n - 1);
  const double skewness = static_cast<double>(m3) * n * n / ((n - 1) * (n - 2) * std::pow(variance, 1.5));
  const double kurtosis = static_cast<double>((n + 1) * n * n * m4 - 3 * n * n * (n - 1) * m2 * m2) /
                          (variance * variance * (n - 1) * (n - 2) * (n - 3));
  Fit result{std::vector<double>(5), {}};
  FitJohnsonFromMoments(static_cast<double>(mean), std::sqrt(variance), skewness, kurtosis,
                        std::span<double, 5>(result.parameters), result.error);
  result.parameters.insert(result.parameters.end(),
                           {static_cast<double>(mean), std::sqrt(variance), skewness, kurtosis});
  return result;
}

Fit FitJohnsonPercentiles(const std::vector<double>& data, double spacing) {
  std::vector<double> sorted = data;
  std::sort(sorted.begin(), sorted.end());
  Fit result{std::vector<double>(5), {}};
  FitJohnsonFromPercentiles(sorted, std::span<double, 5>(result.parameters), spacing, 1, result.error);
  return result;
}

const std::map<std::string, Estimator>& Estimators() {
  static const std::map<std::string, Estimator> estimators = {
      {"lognormal", WithOffset(FitLognormalDistribution)},
      {"half_normal", WithOffset(FitHalfNormalDistribution)},
      {"rayleigh", WithOffset(FitRayleighDistribution)},
      {"folded_normal", WithOffset(FitFoldedNormalDistribution)},
      {"gev", FitGev},
      {"gev_moments", FitGevMoments},
      {"mixture", FitMixture},
      {"johnson_moments", FitJohnsonMoments},
      {"johnson_percentiles", FitJohnsonPercentiles},
      {"gpd", WithThreshold(FitGPDMaximumLikelihood)},
      {"gpd_moments", WithThreshold(FitGPDProbabilityWeightedMoments)},
  };
  return estimators;
}

std::vector<double> ReadFirstColumn(const std::string& path) {
  std::ifstream file(path);
  std::vector<double> values;
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) {
    if (!line.empty()) values.push_back(std::strtod(line.c_str(), nullptr));
  }
  return values;
}

}  // namespace
}  // namespace brenvolt

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: fit_estimator ESTIMATOR FILE [OPTION]\n");
    return 2;
  }
  const auto found = brenvolt::Estimators().find(argv[1]);
  if (found == brenvolt::Estimators().end()) {
    std::fprintf(stderr, "unknown estimator %s\n", argv[1]);
    return 2;
  }
  const double option = argc > 3 ? std::strtod(argv[3], nullptr) : 0.0;
  const brenvolt::Fit fit = found->second(brenvolt::ReadFirstColumn(argv[2]), option);
  std::printf("%d", static_cast<int>(fit.error));
  for (const double parameter : fit.parameters) std::printf(" %.17g", parameter);
  std::printf("\n");
  return 0;
}
