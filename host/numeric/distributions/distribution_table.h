// All distributions, for callers that are told at run time which.
#pragma once

#include <cstddef>
#include <span>

#include "host/numeric/distributions/common/distribution.h"

namespace brenvolt {

// In the order of their codes.
std::span<const DistributionEntry* const> DistributionTable();

// Throws std::out_of_range for an unknown code.
const DistributionEntry& EntryOf(DistributionCode code);

// A view of a distribution with its values and its offset; the values must outlive it. What the functions
// answer: distribution.h.
class AnyDistribution {
 public:
  using In = DistributionEntry::In;
  using Out = DistributionEntry::Out;

  AnyDistribution(DistributionCode code, In values, double offset)
      : entry_(&EntryOf(code)), values_(values), offset_(offset) {}

  // From a list of all parameters, from which a threshold may be left out; it is then 0.
  AnyDistribution(const DistributionEntry& entry, In parameters);

  const DistributionFacts& Facts() const { return entry_->facts; }
  bool IsValid() const { return entry_->isValid(values_, offset_); }

  double At(DistributionFunction function, double x) const {
    return entry_->atOne[static_cast<std::size_t>(function)](x, values_, offset_);
  }
  void At(DistributionFunction function, In x, Out out) const {
    entry_->overArray[static_cast<std::size_t>(function)](x, values_, offset_, out);
  }

  double Density(double x) const { return At(DistributionFunction::kDensity, x); }
  double LogDensity(double x) const { return At(DistributionFunction::kLogDensity, x); }
  double Cdf(double x) const { return At(DistributionFunction::kCdf, x); }
  double Complement(double x) const { return At(DistributionFunction::kComplement, x); }
  double Quantile(double p) const { return At(DistributionFunction::kQuantile, p); }
  double ComplementQuantile(double q) const { return At(DistributionFunction::kComplementQuantile, q); }
  void Density(In x, Out out) const { At(DistributionFunction::kDensity, x, out); }
  void LogDensity(In x, Out out) const { At(DistributionFunction::kLogDensity, x, out); }
  void Cdf(In x, Out out) const { At(DistributionFunction::kCdf, x, out); }
  void Complement(In x, Out out) const { At(DistributionFunction::kComplement, x, out); }
  void Quantile(In p, Out out) const { At(DistributionFunction::kQuantile, p, out); }
  void ComplementQuantile(In q, Out out) const { At(DistributionFunction::kComplementQuantile, q, out); }

  double Mean() const { return entry_->mean(values_, offset_); }
  double Variance() const { return entry_->variance(values_, offset_); }
  double LogLikelihood(In sorted) const { return entry_->logLikelihood(sorted, values_, offset_); }

 private:
  const DistributionEntry* entry_;
  In values_;
  double offset_;
};

}  // namespace brenvolt
