// Our fits held to those of others: reference/compare_fits.csv, by reference/compare_fits.py.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <sstream>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/fitting/estimation.h"

namespace brenvolt::sra {
namespace {

const std::string kFolder = BRENVOLT_SOURCE_DIR "/brv_sra/fitting/reference/";

// How far a fit may be from the optimum. The references of the searched distributions are good to some 1e-7, as they
// come from a search that knows no derivatives; those of the others to rounding.
struct Tolerance {
  double shortfall;   // of the log-likelihood, relative; a higher one is not a fault
  double parameters;  // relative to max(0.001, value)
  double kolmogorovSmirnov;
  double andersonDarling;  // relative to max(1, value)
};
constexpr Tolerance kClosedForm{1e-13, 1e-12, 1e-12, 1e-7};
constexpr Tolerance kSearched{1e-12, 1e-6, 1e-7, 1e-5};
const std::map<DistributionCode, Tolerance> kTolerances{
    {DistributionCode::kNormal, kClosedForm},
    {DistributionCode::kLogNormal, kClosedForm},
    {DistributionCode::kFoldedNormal, kSearched},
    {DistributionCode::kHalfNormal, kClosedForm},
    {DistributionCode::kRayleigh, kClosedForm},
    {DistributionCode::kWeibull, kSearched},
    // Expectation-maximisation of the reference creeps where the components overlap.
    {DistributionCode::kGaussianMixture, {1e-11, 1e-4, 1e-6, 1e-4}},
    {DistributionCode::kJohnson, {1e-11, 1e-9, 1e-11, 1e-9}},
    // A shape close to zero is known to some 1e-8 only.
    {DistributionCode::kGeneralExtremeValue, {1e-12, 5e-5, 1e-7, 1e-5}},
    {DistributionCode::kGeneralPareto, kSearched},
    // The search goes over midpoints between values, while the likelihood peaks at values.
    {DistributionCode::kTriangular, {2e-3, 0.15, 0.01, 0}},
    {DistributionCode::kBinomial, kClosedForm},
    {DistributionCode::kPoisson, kClosedForm},
    {DistributionCode::kGeometric, kClosedForm},
    {DistributionCode::kBernoulli, kClosedForm},
};

std::vector<std::string> Split(const std::string& line, char separator) {
  std::vector<std::string> fields;
  std::istringstream stream(line);
  for (std::string field; std::getline(stream, field, separator);) fields.push_back(field);
  if (!line.empty() && line.back() == separator) fields.emplace_back();
  return fields;
}

struct Sample {
  std::vector<double> sorted;
  std::vector<DistributionFit> fits;  // at the place of the code, or after the continuous ones
};

Sample FitFile(const std::string& name, bool continuous) {
  Sample sample;
  std::ifstream file(kFolder + "data/" + name + ".csv");
  std::string line;
  std::getline(file, line);
  MomentAccumulator moments;
  while (std::getline(file, line)) {
    sample.sorted.push_back(std::stod(line));
    moments.Add(sample.sorted.back(), 1);
  }
  std::ranges::sort(sample.sorted);
  const SortedSample input{sample.sorted, moments.Finish()};
  ContinuousSpecification specification;
  specification.fit.fill(true);
  specification.offsets.fill(0);
  specification.mixtures = 2;
  DiscreteSpecification discrete;
  discrete.fit.fill(true);
  constexpr auto kBinning = ChiSquareBinning::kEqualProbabilities;
  sample.fits = continuous ? *FitContinuousDistributions(input, specification, kBinning, [] {})
                           : FitDiscreteDistributions(input, discrete, kBinning, [] {});
  return sample;
}

// One row of the table.
struct Reference {
  std::string data;
  bool continuous;
  DistributionCode code;
  std::vector<double> parameters;
  double logLikelihood;  // kNotSet: the data reach beyond the support
  double kolmogorovSmirnov;
  TestResult andersonDarling;
};

// The rows of the optimum; the others say what the programs give by default.
std::vector<Reference> Optima() {
  std::ifstream file(kFolder + "compare_fits.csv");
  std::string line;
  std::getline(file, line);
  std::vector<Reference> found;
  const auto number = [](const std::string& text) { return text.empty() ? kNotSet : std::stod(text); };
  while (std::getline(file, line)) {
    const std::vector<std::string> row = Split(line, ',');
    if (row[3] != "optimum") continue;
    Reference reference{
        row[0],         row[1] == "continuous",          *CodeFromKey(row[2]), {}, number(row[5]),
        number(row[6]), {number(row[7]), number(row[8])}};
    for (const std::string& value : Split(row[4], ' ')) reference.parameters.push_back(std::stod(value));
    found.push_back(reference);
  }
  return found;
}

// The components of a mixture by their means.
std::vector<double> Ordered(const DistributionFit& fit) {
  std::vector<double> values = fit.specification.values;
  if (fit.specification.code != DistributionCode::kGaussianMixture || values[1] <= values[4]) return values;
  std::rotate(values.begin(), values.begin() + 3, values.end());
  return values;
}

// The references of the triangular distribution leave out the extremes, whose density is 0.
double LogLikelihoodOf(const DistributionFit& fit, const Sample& sample) {
  if (fit.specification.code != DistributionCode::kTriangular) return fit.logLikelihood;
  EXPECT_TRUE(IsNotSet(fit.logLikelihood));
  double sum = 0;
  for (const double x : sample.sorted) {
    const double logDensity = SpecifiedDistribution(fit.specification).LogDensity(x);
    if (std::isfinite(logDensity)) sum += logDensity;
  }
  return sum;
}

// The Anderson-Darling statistic takes a probability that rounding cannot tell from 0 for 2^-53, which the
// reference does not.
double AndersonDarlingTolerance(const DistributionFit& fit, const Sample& sample, const Reference& reference,
                                const Tolerance& tolerance) {
  constexpr double kLeastProbability = 0x1p-53;
  constexpr double kClamped = 0.01;
  const bool clamped =
      SpecifiedDistribution(fit.specification).Cdf(sample.sorted.front()) < kLeastProbability;
  const double relative = clamped ? kClamped : tolerance.andersonDarling;
  return relative * std::max(1.0, reference.andersonDarling.statistic);
}

void ExpectSame(const DistributionFit& fit, const Sample& sample, const Reference& reference) {
  constexpr double kLeastParameter = 1e-3;
  constexpr double kPValueTolerance = 1e-3;  // that of the tables behind them
  const Tolerance& tolerance = kTolerances.at(reference.code);
  ASSERT_TRUE(fit.IsValid());
  const double logLikelihood = LogLikelihoodOf(fit, sample);
  ASSERT_EQ(IsNotSet(logLikelihood), IsNotSet(reference.logLikelihood));
  const double slack = std::max(1.0, std::abs(reference.logLikelihood)) * tolerance.shortfall;
  EXPECT_GE(logLikelihood, reference.logLikelihood - slack);
  // Of several maxima of a mixture ours may be a higher one, and then is another.
  if (reference.code == DistributionCode::kGaussianMixture && logLikelihood > reference.logLikelihood + slack)
    return;
  const std::vector<double> values = Ordered(fit);
  ASSERT_EQ(values.size(), reference.parameters.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    const double expected = reference.parameters[i];
    EXPECT_NEAR(values[i], expected, tolerance.parameters * std::max(kLeastParameter, std::abs(expected)))
        << "parameter " << i + 1;
  }
  EXPECT_NEAR(fit.kolmogorovSmirnov.statistic, reference.kolmogorovSmirnov, tolerance.kolmogorovSmirnov);
  if (IsNotSet(reference.andersonDarling.statistic)) return;
  EXPECT_NEAR(fit.andersonDarling.statistic, reference.andersonDarling.statistic,
              AndersonDarlingTolerance(fit, sample, reference, tolerance));
  if (IsNotSet(reference.andersonDarling.pValue)) return;
  EXPECT_NEAR(fit.andersonDarling.pValue, reference.andersonDarling.pValue, kPValueTolerance);
}

TEST(FitsOfOthersReference, EveryFitReachesTheLikelihoodAndTheStatisticsOfSciPyAndR) {
  std::map<std::string, Sample> samples;
  int higher = 0;
  for (const Reference& reference : Optima()) {
    SCOPED_TRACE(reference.data + ", " + std::string(SpacedKey(reference.code)));
    auto found = samples.find(reference.data);
    if (found == samples.end()) {
      found = samples.emplace(reference.data, FitFile(reference.data, reference.continuous)).first;
    }
    const Sample& sample = found->second;
    const auto place =
        static_cast<std::size_t>(reference.code) - (reference.continuous ? 0 : kContinuousCount);
    ASSERT_LT(place, sample.fits.size());
    ExpectSame(sample.fits[place], sample, reference);
    higher += LogLikelihoodOf(sample.fits[place], sample) > reference.logLikelihood + 1e-6;
  }
  EXPECT_EQ(samples.size(), 43U);
  EXPECT_LE(higher, 5) << "maxima that the reference does not know";
}

}  // namespace
}  // namespace brenvolt::sra
