#include "brv_sra/simulation/sampling/candidates.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "host/numeric/vector/standard_normal.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt::sra {

namespace {

using In = std::span<const double>;
using Out = std::span<double>;

struct Source {
  In values;
  double offset;
  const DiscreteTable* table;
};

struct Bounds {
  double lowest;
  double highest;
};

}  // namespace

struct NaturalGenerator {
  DistributionCode code;
  std::size_t draws;
  void (*fill)(const Source& source, In first, In second, Out out);
  Bounds (*bounds)(const Source& source);
};

namespace {

constexpr std::size_t kComponentSize = 3;  // of a mixture: weight, mean, standard deviation
constexpr std::size_t kLevelSize = 2;      // of user-defined levels: code, proportion

// The largest normal deviate that the stream gives; the smallest is its negative.
double LargestNormal() {
  return -NormalFromUniform(0.0);
}

void FillNormal(const Source& s, In first, In /*second*/, Out out) {
  vector_forms::NormalsFromUniforms(first, s.values[1], s.values[0], out);
}
Bounds NormalBounds(const Source& s) {
  const double reach = s.values[1] * LargestNormal();
  return {s.values[0] - reach, s.values[0] + reach};
}

void FillLogNormal(const Source& s, In first, In /*second*/, Out out) {
  vector_forms::NormalsFromUniforms(first, s.values[1], s.values[0], out);
  elementary::Exp(out, out);
  for (double& x : out) x += s.offset;
}
Bounds LogNormalBounds(const Source& s) {
  const Bounds logarithms = NormalBounds(s);
  return {elementary::Exp(logarithms.lowest) + s.offset, elementary::Exp(logarithms.highest) + s.offset};
}

void FillFolded(In uniforms, double sd, double location, double offset, Out out) {
  vector_forms::NormalsFromUniforms(uniforms, sd, location, out);
  for (double& x : out) x = std::abs(x) + offset;
}
void FillFoldedNormal(const Source& s, In first, In /*second*/, Out out) {
  FillFolded(first, s.values[1], s.values[0], s.offset, out);
}
Bounds FoldedNormalBounds(const Source& s) {
  return {s.offset, std::abs(s.values[0]) + s.values[1] * LargestNormal() + s.offset};
}

void FillHalfNormal(const Source& s, In first, In /*second*/, Out out) {
  FillFolded(first, s.values[0], 0.0, s.offset, out);
}
Bounds HalfNormalBounds(const Source& s) {
  return {s.offset, s.values[0] * LargestNormal() + s.offset};
}

// A component is passed over while the uniform deviate is above the running sum of the weights.
void FillMixture(const Source& s, In first, In second, Out out) {
  const std::size_t components = s.values.size() / kComponentSize;
  std::vector<double> sums(components - 1);
  double sum = 0;
  for (std::size_t c = 0; c + 1 < components; ++c) sums[c] = sum += s.values[kComponentSize * c];
  vector_forms::NormalsFromUniforms(second, 1.0, out);
  for (std::size_t i = 0; i < out.size(); ++i) {
    std::size_t component = 0;
    for (const double reached : sums) component += first[i] > reached ? 1 : 0;
    const double* parameters = s.values.data() + kComponentSize * component;
    out[i] = parameters[2] * out[i] + parameters[1];
  }
}
Bounds MixtureBounds(const Source& s) {
  Bounds bounds{s.values[1], s.values[1]};
  for (std::size_t c = 0; c < s.values.size(); c += kComponentSize) {
    const double reach = s.values[c + 2] * LargestNormal();
    bounds.lowest = std::min(bounds.lowest, s.values[c + 1] - reach);
    bounds.highest = std::max(bounds.highest, s.values[c + 1] + reach);
  }
  return bounds;
}

void FillFromTable(const Source& s, In first, In /*second*/, Out out) {
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = s.table->Lookup(first[i]);
}
Bounds TableBounds(const Source& s) {
  return {s.table->Lowest(), s.table->Highest()};
}

void FillBernoulli(const Source& s, In first, In /*second*/, Out out) {
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = first[i] < s.values[0] ? 1.0 : 0.0;
}
Bounds BernoulliBounds(const Source& /*s*/) {
  return {0.0, 1.0};
}

void FillLevels(const Source& s, In first, In /*second*/, Out out) {
  SpecifiedDistribution(DistributionCode::kHistogram, s.values, 0.0).Quantile(first, out);
}
Bounds LevelBounds(const Source& s) {
  Bounds bounds{s.values[0], s.values[0]};
  for (std::size_t level = 0; level < s.values.size(); level += kLevelSize) {
    bounds.lowest = std::min(bounds.lowest, s.values[level]);
    bounds.highest = std::max(bounds.highest, s.values[level]);
  }
  return bounds;
}

constexpr std::array<NaturalGenerator, 10> kGenerators{{
    {DistributionCode::kNormal, 1, FillNormal, NormalBounds},
    {DistributionCode::kLogNormal, 1, FillLogNormal, LogNormalBounds},
    {DistributionCode::kFoldedNormal, 1, FillFoldedNormal, FoldedNormalBounds},
    {DistributionCode::kHalfNormal, 1, FillHalfNormal, HalfNormalBounds},
    {DistributionCode::kGaussianMixture, 2, FillMixture, MixtureBounds},
    {DistributionCode::kBinomial, 1, FillFromTable, TableBounds},
    {DistributionCode::kPoisson, 1, FillFromTable, TableBounds},
    {DistributionCode::kGeometric, 1, FillFromTable, TableBounds},
    {DistributionCode::kBernoulli, 1, FillBernoulli, BernoulliBounds},
    {DistributionCode::kHistogram, 1, FillLevels, LevelBounds},
}};

const NaturalGenerator* FindGenerator(DistributionCode code, bool hasTable) {
  const auto found = std::ranges::find(kGenerators, code, &NaturalGenerator::code);
  if (found == kGenerators.end()) return nullptr;
  return found->fill == FillFromTable && !hasTable ? nullptr : &*found;
}

double OffsetOf(const DistributionSpecification& specification) {
  return IsNotSet(specification.offset) ? 0.0 : specification.offset;
}

}  // namespace

Candidates::Candidates(const DistributionSpecification& specification)
    : specification_(specification), table_(DiscreteTable::Of(specification)), draws_(0) {
  generator_ = FindGenerator(specification.code, table_.has_value());
  if (generator_ == nullptr) return;
  draws_ = generator_->draws;
  const Bounds bounds =
      generator_->bounds({specification.values, OffsetOf(specification), table_ ? &*table_ : nullptr});
  lowest_ = bounds.lowest;
  highest_ = bounds.highest;
}

void Candidates::Fill(std::span<const double> first, std::span<const double> second,
                      std::span<double> out) const {
  generator_->fill({specification_.values, OffsetOf(specification_), table_ ? &*table_ : nullptr}, first,
                   second, out);
}

}  // namespace brenvolt::sra
