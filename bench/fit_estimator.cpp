// Fits one distribution to the first column of a separated-values file whose first line is a heading, and
// prints the status and the parameters on one line, for comparison with other programs.
//   fit_estimator ESTIMATOR FILE [OFFSET | NUMBER OF COMPONENTS | SPACING]
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "host/numeric/distributions/half_normal.h"
#include "host/numeric/distributions/log_normal.h"
#include "host/numeric/distributions/rayleigh.h"
#include "host/numeric/estimation/folded_normal_estimator.h"
#include "host/numeric/estimation/gev_estimators.h"
#include "host/numeric/estimation/gpd_estimators.h"
#include "host/numeric/estimation/johnson/johnson_estimators.h"
#include "host/numeric/estimation/mixture/gaussian_mixture_estimator.h"
#include "host/numeric/estimation/normal_estimator.h"

namespace brenvolt {
namespace {

using Values = std::vector<double>;
using Estimator = std::function<EstimationResult<Values>(const Values& data, double option)>;

// The numbers of an estimate, or its fault.
template <class T, class Numbers>
EstimationResult<Values> Taken(const EstimationResult<T>& fit, const Numbers& numbers) {
  if (!fit) return fit.Reason();
  return numbers(*fit);
}

// The sample's moments as the summary of a variable has them: divisor n - 1, skewness and kurtosis corrected
// for n.
std::array<double, 4> MomentsOf(const Values& data) {
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
  return {static_cast<double>(mean), std::sqrt(variance), skewness, kurtosis};
}

EstimationResult<Values> FitJohnsonMoments(const Values& data, double /*option*/) {
  const auto moments = MomentsOf(data);
  return Taken(EstimateJohnsonByMoments(moments[0], moments[1], moments[2], moments[3]),
               [&](const JohnsonEstimate& fit) {
                 Values values(fit.begin(), fit.end());
                 values.insert(values.end(), moments.begin(), moments.end());
                 return values;
               });
}

EstimationResult<Values> FitJohnsonPercentiles(const Values& data, double spacing) {
  Values sorted = data;
  std::sort(sorted.begin(), sorted.end());
  return Taken(EstimateJohnsonByPercentiles(sorted, spacing),
               [](const JohnsonEstimate& fit) { return Values(fit.begin(), fit.end()); });
}

Values OfScale(const ScaleEstimate& fit) {
  return {fit.scale, fit.standardError, fit.logLikelihood};
}

Values OfExtremeValue(const ExtremeValueEstimate& fit) {
  Values values(fit.parameters.begin(), fit.parameters.end());
  values.insert(values.end(), fit.covariance.begin(), fit.covariance.end());
  return values;
}

const std::map<std::string, Estimator>& Estimators() {
  const auto ofNormal = [](const NormalEstimate& fit) { return Values{fit.mean, fit.standardDeviation}; };
  const auto ofFolded = [](const FoldedNormalEstimate& fit) { return Values{fit.location, fit.scale}; };
  const auto above = [](double threshold) {
    return [threshold](const ParetoEstimate& fit) { return Values{threshold, fit.scale, fit.shape}; };
  };
  static const std::map<std::string, Estimator> estimators = {
      {"lognormal", [=](const Values& x, double o) { return Taken(EstimateLogNormal(x, o), ofNormal); }},
      {"half_normal", [](const Values& x, double o) { return Taken(EstimateHalfNormal(x, o), OfScale); }},
      {"rayleigh", [](const Values& x, double o) { return Taken(EstimateRayleigh(x, o), OfScale); }},
      {"folded_normal",
       [=](const Values& x, double o) { return Taken(EstimateFoldedNormal(x, o), ofFolded); }},
      {"gev", [](const Values& x, double) { return Taken(EstimateExtremeValue(x), OfExtremeValue); }},
      {"gev_moments",
       [](const Values& x, double) { return Taken(EstimateExtremeValueByMoments(x), OfExtremeValue); }},
      {"mixture",
       [](const Values& x, double components) {
         return EstimateGaussianMixture(x, static_cast<std::int32_t>(components));
       }},
      {"johnson_moments", FitJohnsonMoments},
      {"johnson_percentiles", FitJohnsonPercentiles},
      {"gpd", [=](const Values& x, double o) { return Taken(EstimatePareto(x, o), above(o)); }},
      {"gpd_moments",
       [=](const Values& x, double o) { return Taken(EstimateParetoByMoments(x, o), above(o)); }},
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
  const auto fit = found->second(brenvolt::ReadFirstColumn(argv[2]), option);
  // 0, or the number of the fault.
  std::printf("%d", fit ? 0 : 1 + static_cast<int>(fit.Reason().identifier));
  for (const double parameter : fit ? *fit : std::vector<double>()) std::printf(" %.17g", parameter);
  std::printf("\n");
  return 0;
}
