#include "brv_sra/simulation/variable_sampler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "host/numeric/distributions.h"
#include "host/numeric/random_stream.h"

namespace brenvolt::sra {
namespace {

constexpr double kTruncatedLower = 0.005;
constexpr double kTruncatedUpper = 0.995;
constexpr double kUnbounded = 1e300;
constexpr int kMostCandidates = 5;

using Values = std::vector<double>;

}  // namespace

// The candidate of a type with a natural generator. The others are always inverted; the discrete ones that
// have a table draw their candidates from it.
struct SamplingMethod {
  DistributionCode code;
  double (*candidate)(const Values&, double offset);
};

namespace {

double MixtureCandidate(const Values& v, double /*offset*/) {
  const double u = rnd_(0);
  std::size_t component = 0;
  double sum = v[0];
  while (u > sum && component + 3 < v.size()) {
    component += 3;
    sum += v[component];
  }
  return znormal_(v[component + 2]) + v[component + 1];
}

constexpr std::array<SamplingMethod, 5> kMethods{{
    {DistributionCode::kNormal, [](const Values& v, double) { return znormal_(v[1]) + v[0]; }},
    {DistributionCode::kLogNormal,
     [](const Values& v, double t) { return std::exp(znormal_(v[1]) + v[0]) + t; }},
    {DistributionCode::kFoldedNormal,
     [](const Values& v, double t) { return std::abs(znormal_(v[1]) + v[0]) + t; }},
    {DistributionCode::kHalfNormal, [](const Values& v, double t) { return std::abs(znormal_(v[0])) + t; }},
    {DistributionCode::kGaussianMixture, MixtureCandidate},
}};

const SamplingMethod* FindMethod(DistributionCode code) {
  const auto found = std::ranges::find(kMethods, code, &SamplingMethod::code);
  return found != kMethods.end() ? &*found : nullptr;
}

bool IsSentinel(double x) {
  return std::isnan(x) || x == kInvalidQuantile;
}

}  // namespace

VariableSampler::VariableSampler(const DistributionSpecification& specification, bool truncate)
    : specification_(specification),
      law_(specification_),
      method_(FindMethod(specification.code)),
      offset_(IsNotSet(specification.offset) ? 0.0 : specification.offset),
      lowest_(-kUnbounded),
      highest_(kUnbounded) {
  if (!law_.IsValid()) return;
  if (specification_.code == DistributionCode::kPoisson &&
      specification_.values[0] <= DiscreteTable::kLargestPoissonMean) {
    table_ = DiscreteTable::Poisson(specification_.values[0]);
  }
  natural_ = method_ != nullptr || table_.has_value();
  SetRanges(truncate);
}

void VariableSampler::SetRanges(bool truncate) {
  if (truncate) {
    lowerProbability_ = kTruncatedLower;
    upperProbability_ = kTruncatedUpper;
    lowest_ = Inverse(kTruncatedLower);
    highest_ = Inverse(kTruncatedUpper);
  }
  if (specification_.truncateBelow) {
    lowerProbability_ = std::max(lowerProbability_, law_.Cdf(specification_.truncationMinimum));
    lowest_ = std::max(lowest_, specification_.truncationMinimum);
  }
  if (specification_.truncateAbove) {
    upperProbability_ = std::min(upperProbability_, law_.Cdf(specification_.truncationMaximum));
    highest_ = std::min(highest_, specification_.truncationMaximum);
  }
  valid_ = lowerProbability_ <= upperProbability_ && lowest_ <= highest_ && upperProbability_ > 0 &&
           lowerProbability_ < 1 && !IsSentinel(Inverse(0.5));
}

double VariableSampler::Inverse(double p) const {
  return law_.Quantile(p);
}

double VariableSampler::Candidate() const {
  if (table_) return table_->Lookup(rnd_(0));
  return method_->candidate(specification_.values, offset_);
}

double VariableSampler::DrawMonteCarlo() const {
  const double fallback = lowerProbability_ + rnd_(0) * (upperProbability_ - lowerProbability_);
  if (natural_) {
    for (int i = 0; i < kMostCandidates; ++i) {
      const double x = Candidate();
      if (x >= lowest_ && x <= highest_) return x;
    }
  }
  return Inverse(fallback);
}

}  // namespace brenvolt::sra
