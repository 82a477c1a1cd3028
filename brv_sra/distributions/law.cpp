#include "brv_sra/distributions/law.h"

#include <algorithm>
#include <cmath>

#include "host/numeric/distributions/law_functions.h"
#include "host/numeric/vector/distribution_values.h"

namespace brenvolt::sra {
namespace {

using In = LawFunctions::In;
using Out = LawFunctions::Out;

const LawFunctions& FunctionsOf(DistributionCode code) {
  return AllLawFunctions()[static_cast<std::size_t>(code)];
}

// Too few values for a type are invalid, whatever they are.
bool HasItsValues(const LawFunctions& functions, In values) {
  return functions.valueCount == 0 || values.size() == functions.valueCount;
}

}  // namespace

Law::Law(const DistributionSpecification& specification)
    : Law(specification.code, specification.values, specification.offset) {}

Law::Law(DistributionCode code, std::span<const double> values, double offset)
    : code_(code), values_(values), offset_(IsNotSet(offset) ? 0.0 : offset) {}

bool Law::IsValid() const {
  const LawFunctions& functions = FunctionsOf(code_);
  return HasItsValues(functions, values_) && functions.isValid(values_) && std::isfinite(offset_);
}

namespace {

double Evaluate(double (*LawFunctions::*function)(double, In, double), DistributionCode code, double x,
                In values, double offset, double invalid) {
  const LawFunctions& functions = FunctionsOf(code);
  return HasItsValues(functions, values) ? (functions.*function)(x, values, offset) : invalid;
}

}  // namespace

double Law::Density(double x) const {
  return Evaluate(&LawFunctions::density, code_, x, values_, offset_, kInvalidProbability);
}
double Law::LogDensity(double x) const {
  return Evaluate(&LawFunctions::logDensity, code_, x, values_, offset_, kInvalidProbability);
}
double Law::Cdf(double x) const {
  return Evaluate(&LawFunctions::cdf, code_, x, values_, offset_, kInvalidProbability);
}
double Law::Complement(double x) const {
  return Evaluate(&LawFunctions::complement, code_, x, values_, offset_, kInvalidProbability);
}
double Law::Quantile(double p) const {
  return Evaluate(&LawFunctions::quantile, code_, p, values_, offset_, kInvalidQuantile);
}
double Law::ComplementQuantile(double q) const {
  return Evaluate(&LawFunctions::complementQuantile, code_, q, values_, offset_, kInvalidQuantile);
}

namespace {

void EvaluateAll(void (*LawFunctions::*function)(In, In, double, Out), DistributionCode code, In x, In values,
                 double offset, double invalid, Out out) {
  const LawFunctions& functions = FunctionsOf(code);
  if (HasItsValues(functions, values)) return (functions.*function)(x, values, offset, out);
  std::fill_n(out.begin(), x.size(), invalid);
}

}  // namespace

void Law::Density(std::span<const double> x, std::span<double> out) const {
  EvaluateAll(&LawFunctions::densities, code_, x, values_, offset_, kInvalidProbability, out);
}
void Law::LogDensity(std::span<const double> x, std::span<double> out) const {
  EvaluateAll(&LawFunctions::logDensities, code_, x, values_, offset_, kInvalidProbability, out);
}
void Law::Cdf(std::span<const double> x, std::span<double> out) const {
  EvaluateAll(&LawFunctions::cdfs, code_, x, values_, offset_, kInvalidProbability, out);
}
void Law::Complement(std::span<const double> x, std::span<double> out) const {
  EvaluateAll(&LawFunctions::complements, code_, x, values_, offset_, kInvalidProbability, out);
}
void Law::Quantile(std::span<const double> p, std::span<double> out) const {
  EvaluateAll(&LawFunctions::quantiles, code_, p, values_, offset_, kInvalidQuantile, out);
}
void Law::ComplementQuantile(std::span<const double> q, std::span<double> out) const {
  EvaluateAll(&LawFunctions::complementQuantiles, code_, q, values_, offset_, kInvalidQuantile, out);
}

}  // namespace brenvolt::sra
