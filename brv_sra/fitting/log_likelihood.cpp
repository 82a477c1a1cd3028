// Per type, the part of the log-density that depends on x, over a block of values; what does not is counted
// once for all values.
#include "brv_sra/fitting/log_likelihood.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

#include "brv_sra/distributions/law.h"
#include "host/numeric/estimation/estimator_support.h"
#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt::sra {
namespace {

using estimation::CompensatedSum;
using estimation::kBlock;
using estimation::SumOfBlock;
using estimation::SumOverBlocks;
using In = std::span<const double>;
using Out = std::span<double>;

// -(x - centre)^2 / (2 scale^2) for each x.
void HalfSquares(In x, double centre, double scale, Out out) {
  for (std::size_t i = 0; i < x.size(); ++i) {
    const double z = (x[i] - centre) / scale;
    out[i] = -0.5 * z * z;
  }
}

double Normal(In sorted, In v, double /*offset*/) {
  const double sum = SumOverBlocks(sorted, [&](In x, Out out) { HalfSquares(x, v[0], v[1], out); });
  return sum - static_cast<double>(sorted.size()) * (std::log(v[1]) + kLogSqrtTwoPi);
}

double LogNormal(In sorted, In v, double offset) {
  const double sum = SumOverBlocks(sorted, [&](In x, Out out) {
    for (std::size_t i = 0; i < x.size(); ++i) out[i] = x[i] - offset;
    elementary::Log(out, out);
    for (double& l : out) {
      const double z = (l - v[0]) / v[1];
      l = -0.5 * z * z - l;
    }
  });
  return sum - static_cast<double>(sorted.size()) * (std::log(v[1]) + kLogSqrtTwoPi);
}

double FoldedNormal(In sorted, In v, double offset) {
  const double centre = std::abs(v[0]);
  const double apart = -2 * (centre / v[1]) / v[1];
  const double sum = SumOverBlocks(sorted, [&](In x, Out out) {
    for (std::size_t i = 0; i < x.size(); ++i) out[i] = apart * (x[i] - offset);
    elementary::Exp(out, out);
    elementary::Log1p(out, out);
    for (std::size_t i = 0; i < x.size(); ++i) {
      const double z = ((x[i] - offset) - centre) / v[1];
      out[i] -= 0.5 * z * z;
    }
  });
  return sum - static_cast<double>(sorted.size()) * (std::log(v[1]) + kLogSqrtTwoPi);
}

double HalfNormal(In sorted, In v, double offset) {
  const double sum = SumOverBlocks(sorted, [&](In x, Out out) { HalfSquares(x, offset, v[0], out); });
  return sum + static_cast<double>(sorted.size()) * (std::numbers::ln2 - std::log(v[0]) - kLogSqrtTwoPi);
}

double Rayleigh(In sorted, In v, double offset) {
  const double sum = SumOverBlocks(sorted, [&](In x, Out out) {
    for (std::size_t i = 0; i < x.size(); ++i) out[i] = (x[i] - offset) / v[0];
    elementary::Log(out, out);
    for (std::size_t i = 0; i < x.size(); ++i) {
      const double z = (x[i] - offset) / v[0];
      out[i] -= 0.5 * z * z;
    }
  });
  return sum - static_cast<double>(sorted.size()) * std::log(v[0]);
}

double Weibull(In sorted, In v, double offset) {
  std::array<double, kBlock> buffer;
  const double sum = SumOverBlocks(sorted, [&](In x, Out out) {
    const Out logarithms(buffer.data(), x.size());
    for (std::size_t i = 0; i < x.size(); ++i) out[i] = (x[i] - offset) / v[0];
    elementary::Log(out, logarithms);
    for (std::size_t i = 0; i < x.size(); ++i) out[i] = v[1] * logarithms[i];
    elementary::Exp(out, out);
    for (std::size_t i = 0; i < x.size(); ++i) out[i] = (v[1] - 1) * logarithms[i] - out[i];
  });
  return sum + static_cast<double>(sorted.size()) * std::log(v[1] / v[0]);
}

// w(z) = ln(1 + shape z) / shape for each z = (x - location) / scale, and its limit z for shape 0.
void LogOnePlusOverShape(In x, double location, double scale, double shape, Out out) {
  for (std::size_t i = 0; i < x.size(); ++i) out[i] = (x[i] - location) / scale;
  if (shape == 0) return;
  for (double& z : out) z *= shape;
  elementary::Log1p(out, out);
  for (double& l : out) l /= shape;
}

double ExtremeValue(In sorted, In v, double /*offset*/) {
  std::array<double, kBlock> buffer;
  const double sum = SumOverBlocks(sorted, [&](In x, Out out) {
    const Out w(buffer.data(), x.size());
    LogOnePlusOverShape(x, v[0], v[1], v[2], w);
    for (std::size_t i = 0; i < x.size(); ++i) out[i] = -w[i];
    elementary::Exp(out, out);
    for (std::size_t i = 0; i < x.size(); ++i) out[i] = -(1 + v[2]) * w[i] - out[i];
  });
  return sum - static_cast<double>(sorted.size()) * std::log(v[1]);
}

double Pareto(In sorted, In v, double offset) {
  const double sum = SumOverBlocks(sorted, [&](In x, Out out) {
    LogOnePlusOverShape(x, offset, v[0], v[1], out);
    for (double& w : out) w *= -(1 + v[1]);
  });
  return sum - static_cast<double>(sorted.size()) * std::log(v[0]);
}

// ln of the sum of the components' densities, the greatest taken out before the exponentials.
double GaussianMixture(In sorted, In v, double /*offset*/) {
  const std::size_t components = v.size() / 3;
  std::vector<double> rows(components * kBlock);
  std::array<double, kBlock> greatest;
  return SumOverBlocks(sorted, [&](In x, Out out) {
    std::fill_n(greatest.begin(), x.size(), -std::numeric_limits<double>::infinity());
    for (std::size_t c = 0; c < components; ++c) {
      const Out row(&rows[c * kBlock], x.size());
      const double constant = std::log(v[3 * c] / v[3 * c + 2]) - kLogSqrtTwoPi;
      HalfSquares(x, v[3 * c + 1], v[3 * c + 2], row);
      for (std::size_t i = 0; i < x.size(); ++i) {
        row[i] += constant;
        greatest[i] = std::max(greatest[i], row[i]);
      }
    }
    std::ranges::fill(out, 0.0);
    for (std::size_t c = 0; c < components; ++c) {
      const Out row(&rows[c * kBlock], x.size());
      for (std::size_t i = 0; i < x.size(); ++i) row[i] -= greatest[i];
      elementary::Exp(row, row);
      for (std::size_t i = 0; i < x.size(); ++i) out[i] += row[i];
    }
    elementary::Log(out, out);
    for (std::size_t i = 0; i < x.size(); ++i) out[i] += greatest[i];
  });
}

// Types without a formula of their own: the log-density of each distinct value, as often as it occurs.
double ByDistinctValues(DistributionCode code, In values, double offset, In sorted) {
  constexpr std::size_t kTogether = 65'536;  // distinct values: few calls, little memory
  const Law law(code, values, offset);
  std::vector<double> distinct;
  std::vector<double> occurrences;
  CompensatedSum sum;
  for (std::size_t i = 0; i < sorted.size();) {
    std::size_t end = i + 1;
    while (end < sorted.size() && sorted[end] == sorted[i]) ++end;
    distinct.push_back(sorted[i]);
    occurrences.push_back(static_cast<double>(end - i));
    i = end;
    if (distinct.size() < kTogether && i < sorted.size()) continue;
    law.LogDensity(distinct, distinct);
    for (std::size_t j = 0; j < distinct.size(); ++j) sum.Add(occurrences[j] * distinct[j]);
    distinct.clear();
    occurrences.clear();
  }
  return sum.Value();
}

using Formula = double (*)(In sorted, In values, double offset);

// By distribution code.
constexpr std::array<Formula, kDistributionCount> kFormulas{
    Normal,          LogNormal, FoldedNormal, HalfNormal, Rayleigh, Weibull,
    GaussianMixture, nullptr,   ExtremeValue, Pareto,     nullptr};

}  // namespace

double LogLikelihood(DistributionCode code, std::span<const double> values, double offset,
                     std::span<const double> sorted) {
  const double threshold = IsNotSet(offset) ? 0 : offset;
  const Formula formula = kFormulas[static_cast<std::size_t>(code)];
  return formula != nullptr ? formula(sorted, values, threshold)
                            : ByDistinctValues(code, values, threshold, sorted);
}

}  // namespace brenvolt::sra
