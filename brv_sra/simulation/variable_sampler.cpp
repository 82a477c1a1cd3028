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

// How one type is sampled. A type without a natural generator is always inverted; the discrete ones that have
// a table draw their candidates from it.
struct SamplingMethod {
  DistributionCode code;
  bool (*isValid)(const Values&);
  double (*cdf)(double x, const Values&, double offset);
  double (*quantile)(double p, const Values&, double offset);
  double (*candidate)(const Values&, double offset);
};

namespace {

constexpr std::array<SamplingMethod, 4> kMethods{{
    {DistributionCode::kNormal, [](const Values& v) { return v.size() == 2 && normal::IsValid(v[0], v[1]); },
     [](double x, const Values& v, double) { return normal::Cdf(x, v[0], v[1]); },
     [](double p, const Values& v, double) { return normal::Quantile(p, v[0], v[1]); },
     [](const Values& v, double) { return znormal_(v[1]) + v[0]; }},
    {DistributionCode::kLogNormal,
     [](const Values& v) { return v.size() == 2 && lognormal::IsValid(v[0], v[1]); },
     [](double x, const Values& v, double t) { return lognormal::Cdf(x, v[0], v[1], t); },
     [](double p, const Values& v, double t) { return lognormal::Quantile(p, v[0], v[1], t); },
     [](const Values& v, double t) { return std::exp(znormal_(v[1]) + v[0]) + t; }},
    {DistributionCode::kWeibull,
     [](const Values& v) { return v.size() == 2 && weibull::IsValid(v[0], v[1]); },
     [](double x, const Values& v, double t) { return weibull::Cdf(x, v[0], v[1], t); },
     [](double p, const Values& v, double t) { return weibull::Quantile(p, v[0], v[1], t); }, nullptr},
    {DistributionCode::kPoisson, [](const Values& v) { return v.size() == 1 && poisson::IsValid(v[0]); },
     [](double x, const Values& v, double) { return poisson::Cdf(x, v[0]); },
     [](double p, const Values& v, double) { return poisson::Quantile(p, v[0]); }, nullptr},
}};

const SamplingMethod* FindMethod(DistributionCode code) {
  const auto found = std::ranges::find(kMethods, code, &SamplingMethod::code);
  return found != kMethods.end() ? &*found : nullptr;
}

bool IsSentinel(double x) {
  return std::isnan(x) || x == kInvalidQuantile;
}

}  // namespace

bool CanSample(DistributionCode code) {
  return FindMethod(code) != nullptr;
}

VariableSampler::VariableSampler(const DistributionSpecification& specification, bool truncate)
    : specification_(specification),
      method_(FindMethod(specification.code)),
      offset_(IsNotSet(specification.offset) ? 0.0 : specification.offset),
      lowest_(-kUnbounded),
      highest_(kUnbounded) {
  if (method_ == nullptr || !method_->isValid(specification_.values)) return;
  if (specification_.code == DistributionCode::kPoisson &&
      specification_.values[0] <= DiscreteTable::kLargestPoissonMean) {
    table_ = DiscreteTable::Poisson(specification_.values[0]);
  }
  natural_ = method_->candidate != nullptr || table_.has_value();
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
    lowerProbability_ = std::max(lowerProbability_, Cdf(specification_.truncationMinimum));
    lowest_ = std::max(lowest_, specification_.truncationMinimum);
  }
  if (specification_.truncateAbove) {
    upperProbability_ = std::min(upperProbability_, Cdf(specification_.truncationMaximum));
    highest_ = std::min(highest_, specification_.truncationMaximum);
  }
  valid_ = lowerProbability_ <= upperProbability_ && lowest_ <= highest_ && upperProbability_ > 0 &&
           lowerProbability_ < 1 && !IsSentinel(Inverse(0.5));
}

double VariableSampler::Cdf(double x) const {
  return method_->cdf(x, specification_.values, offset_);
}

double VariableSampler::Inverse(double p) const {
  return method_->quantile(p, specification_.values, offset_);
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
