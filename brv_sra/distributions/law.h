// The functions of a distribution of any of the sixteen types with its values: what estimation, tests, curves
// and tables call, so that none of them knows the types apart.
#pragma once

#include <span>

#include "brv_sra/distributions/specification.h"

namespace brenvolt::sra {

// A view of a type with its values in catalogue order and its offset; the values must outlive it. An offset
// that is not set counts as 0; types without one ignore it. Functions, their accuracy, and what they answer
// for invalid values (kInvalidProbability, kInvalidQuantile): host/numeric/distributions/distributions.h.
class Law {
 public:
  explicit Law(const DistributionSpecification& specification);
  Law(DistributionCode code, std::span<const double> values, double offset);

  bool IsValid() const;
  // Discrete types: the probability of x.
  double Density(double x) const;
  double LogDensity(double x) const;
  double Cdf(double x) const;
  double Complement(double x) const;
  double Quantile(double p) const;
  double ComplementQuantile(double q) const;
  // `out` has the length of the input at least, and may be the input.
  void Density(std::span<const double> x, std::span<double> out) const;
  void LogDensity(std::span<const double> x, std::span<double> out) const;
  void Cdf(std::span<const double> x, std::span<double> out) const;
  void Complement(std::span<const double> x, std::span<double> out) const;
  void Quantile(std::span<const double> p, std::span<double> out) const;
  void ComplementQuantile(std::span<const double> q, std::span<double> out) const;

 private:
  DistributionCode code_;
  std::span<const double> values_;
  double offset_;
};

}  // namespace brenvolt::sra
