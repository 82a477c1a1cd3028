// The rules of sample generation once more, one value and one draw at a time, as plainly as they can be put:
// what the fast engine must agree with bit for bit.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "brv_sra/distributions/catalogue.h"
#include "brv_sra/distributions/specified_distribution.h"
#include "brv_sra/simulation/sampling/simulation_design.h"
#include "host/numeric/distributions/binomial.h"
#include "host/numeric/distributions/poisson.h"
#include "host/numeric/random/random_stream.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt::sra::reference {

// 30-bit probabilities and their five tables AA, BB, CC, DD, EE.
struct Table {
  double first = 0;
  std::vector<std::uint32_t> p;
  std::vector<double> digits[5];
  std::uint32_t t[4] = {};

  void Keep(double probability) {
    p.push_back(static_cast<std::uint32_t>(std::floor(probability * 1073741824.0 + 0.5)));
  }

  void Build() {
    for (int d = 0; d < 5; ++d)
      for (std::size_t i = 0; i < p.size(); ++i)
        for (std::uint32_t c = 0; c < ((p[i] >> (24 - 6 * d)) & (d == 0 ? 127U : 63U)); ++c)
          digits[d].push_back(first + static_cast<double>(i));
    t[0] = static_cast<std::uint32_t>(digits[0].size() << 24);
    t[1] = t[0] + static_cast<std::uint32_t>(digits[1].size() << 18);
    t[2] = t[1] + static_cast<std::uint32_t>(digits[2].size() << 12);
    t[3] = t[2] + static_cast<std::uint32_t>(digits[3].size() << 6);
  }

  double Lookup(double u) const {
    auto x = static_cast<std::uint32_t>(std::floor(u * 4294967295.0));
    if (x == 4294967295U) x = 4294967294U;
    const std::uint32_t j = x >> 2;
    if (j < t[0]) return digits[0][x >> 26];
    if (j < t[1]) return digits[1][(j - t[0]) >> 18];
    if (j < t[2]) return digits[2][(j - t[1]) >> 12];
    if (j < t[3]) return digits[3][(j - t[2]) >> 6];
    if (j - t[3] < digits[4].size()) return digits[4][j - t[3]];
    return first + static_cast<double>(std::ranges::max_element(p) - p.begin());  // beyond the rounded sum
  }
};

inline Table MakeTable(const DistributionSpecification& s) {
  constexpr double kTwo31 = 2147483648.0;
  Table table;
  const double a = s.values[0];
  std::vector<double> down;
  double start = 0;
  double atStart = 0;
  const double n = s.values.size() > 1 ? s.values[1] : 0;
  if (s.code == DistributionCode::kPoisson) {
    start = a < 21.4 ? 0 : std::round(a);
    atStart = a < 21.4 ? std::exp(-a) : Distribution<Poisson>(a).Density(start);
  } else if (s.code == DistributionCode::kBinomial) {
    if (!(Distribution<Binomial>(a, n).Density(0) * kTwo31 > 1)) start = std::min(n, std::floor((n + 1) * a));
    atStart = Distribution<Binomial>(a, n).Density(start);
  } else {
    atStart = a;
  }
  const auto stepUp = [&](double p, double k) {  // from k - 1 to k
    if (s.code == DistributionCode::kPoisson) return p * a / k;
    if (s.code == DistributionCode::kBinomial) return p * ((n - k + 1) * a) / (k * (1 - a));
    return p * (1 - a);
  };
  const auto stepDown = [&](double p, double k) {  // from k to k - 1
    if (s.code == DistributionCode::kPoisson) return p * k / a;
    return p * (k * (1 - a)) / ((n - k + 1) * a);
  };
  double p = atStart;
  for (double k = start; k > 0; --k) {
    p = stepDown(p, k);
    if (p * kTwo31 < 1) break;
    down.push_back(p);
  }
  table.first = start - static_cast<double>(down.size());
  for (std::size_t i = down.size(); i-- > 0;) table.Keep(down[i]);
  p = atStart;
  for (double k = start; k == start || p * kTwo31 > 1; p = stepUp(p, ++k)) table.Keep(p);
  table.Build();
  return table;
}

struct Variable {
  DistributionSpecification s;
  SpecifiedDistribution distribution;
  double offset;
  double pLo = 0;
  double pHi = 1;
  double lo = -1e300;
  double hi = 1e300;
  Table table;

  Variable(const DistributionSpecification& specification, bool truncate, ParameterSource source)
      : s(specification), distribution(specification), offset(IsNotSet(s.offset) ? 0 : s.offset) {
    if (truncate) {
      pLo = 0.005;
      pHi = 0.995;
      lo = distribution.Quantile(0.005);
      hi = distribution.Quantile(0.995);
    }
    if (source == ParameterSource::kUserSpecified) {
      if (s.truncateBelow && distribution.Cdf(s.truncationMinimum) > pLo)
        pLo = distribution.Cdf(s.truncationMinimum);
      if (s.truncateAbove && distribution.Cdf(s.truncationMaximum) < pHi)
        pHi = distribution.Cdf(s.truncationMaximum);
      if (s.truncateBelow) lo = std::max(lo, s.truncationMinimum);
      if (s.truncateAbove) hi = std::min(hi, s.truncationMaximum);
    }
    using enum DistributionCode;
    if (s.code == kBinomial || s.code == kPoisson || s.code == kGeometric) table = MakeTable(s);
  }

  // The inverse; rounding never leads out of the range, nor to a probability of 0 or 1 where others are left.
  double Inverse(double p) const {
    if (p <= 0 || p < pLo) p = pLo > 0 ? pLo : 0x1p-54 * pHi;
    if (p > 1 - 0x1p-53 && pLo < 1 - 0x1p-53) p = 1 - 0x1p-53;
    const double x = distribution.Quantile(std::min(p, pHi));
    if (x >= lo && x <= hi) return x;
    if (IsContinuous(s.code)) return x < lo ? lo : hi;
    if (s.code != DistributionCode::kHistogram) return x < lo ? std::ceil(lo) : std::floor(hi);
    double nearest = x < lo ? INFINITY : -INFINITY;
    for (std::size_t i = 0; i < s.values.size(); i += 2) {
      if (x < lo && s.values[i] >= lo) nearest = std::min(nearest, s.values[i]);
      if (x > hi && s.values[i] <= hi) nearest = std::max(nearest, s.values[i]);
    }
    return nearest;
  }

  bool IsNatural() const {
    using enum DistributionCode;
    constexpr std::array kInverted{kRayleigh,      kWeibull,   kJohnson, kGeneralExtremeValue,
                                   kGeneralPareto, kTriangular};
    return std::ranges::find(kInverted, s.code) == kInverted.end();
  }

  double Candidate() const {
    const std::vector<double>& v = s.values;
    switch (s.code) {
      case DistributionCode::kNormal:
        return NextNormal(v[1]) + v[0];
      case DistributionCode::kLogNormal:
        return elementary::Exp(NextNormal(v[1]) + v[0]) + offset;
      case DistributionCode::kFoldedNormal:
        return std::abs(NextNormal(v[1]) + v[0]) + offset;
      case DistributionCode::kHalfNormal:
        return std::abs(NextNormal(v[0])) + offset;
      case DistributionCode::kGaussianMixture: {
        const double u = NextUniform();
        std::size_t c = 0;
        for (double sum = v[0]; u > sum && 3 * c + 3 < v.size(); sum += v[3 * c]) ++c;
        return NextNormal(v[3 * c + 2]) + v[3 * c + 1];
      }
      case DistributionCode::kBernoulli:
        return NextUniform() < v[0] ? 1 : 0;
      case DistributionCode::kHistogram:
        return distribution.Quantile(NextUniform());
      default:
        return table.Lookup(NextUniform());
    }
  }

  double MonteCarlo() const {
    const double u = NextUniform();
    const double p = pLo + u * (pHi - pLo);
    for (int i = 0; IsNatural() && i < 5; ++i) {
      const double x = Candidate();
      if (lo <= x && x <= hi) return x;
    }
    return Inverse(p);
  }
};

inline std::vector<double> Permutation(std::size_t n) {
  std::vector<double> a(n);
  for (std::size_t i = 0; i < n; ++i) a[i] = static_cast<double>(i + 1);
  if (n == 1) return a;
  for (std::size_t t = 1; t <= n; ++t) {
    auto r = static_cast<std::size_t>(std::floor(NextUniform() * static_cast<double>(n - t + 1)));
    if (r == n) r = n - 1;
    std::swap(a[r], a[n - t]);
  }
  return a;
}

// The sample matrix of a design, row-major, from the process's stream.
inline std::vector<double> Generate(const SimulationDesign& design, bool latinHypercube) {
  const auto n = static_cast<std::size_t>(design.numberOfSamples);
  const std::size_t k = design.variables.size();
  std::vector<double> matrix(n * k);
  for (std::size_t j = 0; j < k; ++j) {
    if (design.IsExcluded(j)) continue;
    const Variable v(design.variables[j].specification, design.truncate, design.source);
    if (!latinHypercube) {
      for (std::size_t i = 0; i < n; ++i) matrix[i * k + j] = v.MonteCarlo();
      continue;
    }
    const std::vector<double> perm = Permutation(n);
    const double d = (v.pHi - v.pLo) / static_cast<double>(n);
    for (std::size_t i = 0; i < n; ++i) {
      const double u = NextUniform();
      matrix[i * k + j] = v.Inverse(v.pLo + (perm[i] - 1) * d + u * d);
    }
  }
  return matrix;
}

}  // namespace brenvolt::sra::reference
