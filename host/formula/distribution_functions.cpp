#include "host/formula/distribution_functions.h"

#include <algorithm>
#include <array>
#include <deque>
#include <string>
#include <vector>

#include "host/numeric/distributions/all_distributions.h"
#include "host/numeric/distributions/distribution_table.h"

namespace brenvolt {
namespace {

using enum DistributionFunction;

// The sentinels of a function become missing values.
template <DistributionFunction kFunction>
double OrMissing(double value) {
  const bool isInvalid = TakesProbability(kFunction) ? value == kInvalidQuantile : IsNotSet(value);
  return isInvalid ? kMissingResult : value;
}

// A function whose form over arrays takes the parameters once; that at one value serves parameters that
// change from case to case. A threshold comes after the parameters, but for curves that take it first.
template <class D, DistributionFunction kFunction, bool kIsCurve>
void Kernel(std::span<const BlockArgument> arguments, std::span<double> out) {
  constexpr bool kThresholdFirst = kIsCurve && D::kFacts.offset == OffsetPlace::kFirst;
  const BlockArgument x = arguments[0];
  const auto given = arguments.subspan(1);
  std::array<double, kMostArguments> storage;
  const std::span<const double> parameters(storage.data(), given.size());
  const auto distributionOf = [&](std::size_t i) {
    for (std::size_t p = 0; p < given.size(); ++p) storage[p] = given[p].At(i);
    const std::size_t count = D::kFacts.isUserDefined ? given.size() : D::kFacts.ParameterCount();
    const bool hasThreshold = given.size() > count;
    if constexpr (kThresholdFirst) return AnyDistribution(D::kFacts.code, parameters.last(count), storage[0]);
    return AnyDistribution(D::kFacts.code, parameters.first(count), hasThreshold ? storage[count] : 0.0);
  };
  if (!x.constant && std::ranges::all_of(given, &BlockArgument::constant)) {
    distributionOf(0).At(kFunction, std::span(x.values, out.size()), out);
    for (double& value : out) value = OrMissing<kFunction>(value);
    return;
  }
  for (std::size_t i = 0; i < out.size(); ++i) {
    out[i] = OrMissing<kFunction>(distributionOf(i).At(kFunction, x.At(i)));
  }
}

class Functions {
 public:
  std::span<const NamedKernel> All() const { return all_; }

  // Steps draw a distribution without curves; its functions have no names in formulas either, unless it is
  // continuous.
  template <class D>
  void AddNamed() {
    constexpr const DistributionFacts& kFacts = D::kFacts;
    if (!kFacts.isContinuous && kFacts.curves.density.empty()) return;
    const std::size_t fewest = 1 + kFacts.ParameterCount();
    const std::size_t most = kFacts.isUserDefined ? kMostArguments : fewest + (kFacts.HasOffset() ? 1 : 0);
    Add(kFacts.longName, "Density", Kernel<D, kDensity, false>, fewest, most);
    Add(kFacts.longName, "Cdf", Kernel<D, kCdf, false>, fewest, most);
    Add(kFacts.longName, "Quantile", Kernel<D, kQuantile, false>, fewest, most);
  }

  template <class D>
  void AddCurves() {
    constexpr const DistributionFacts& kFacts = D::kFacts;
    if (kFacts.curves.density.empty()) return;
    const std::size_t most = 1 + kFacts.ParameterCount() + (kFacts.HasOffset() ? 1 : 0);
    const std::size_t fewest = most - (kFacts.offset == OffsetPlace::kWithX ? 1 : 0);
    Add(kFacts.curves.density, "", Kernel<D, kDensity, true>, fewest, most);
    Add(kFacts.curves.cumulative, "", Kernel<D, kCdf, true>, fewest, most);
    if (kFacts.curves.shiftedDensity != kFacts.curves.density)
      Add(kFacts.curves.shiftedDensity, "", Kernel<D, kDensity, true>, fewest, most);
  }

 private:
  void Add(std::string_view name, std::string_view ending, BlockKernel kernel, std::size_t fewest,
           std::size_t most) {
    names_.push_back(std::string(name) + std::string(ending));
    all_.push_back({names_.back().c_str(), kernel, fewest, most});
  }

  std::deque<std::string> names_;  // where they stay
  std::vector<NamedKernel> all_;
};

template <class... D>
Functions FunctionsOf(DistributionList<D...> /*list*/) {
  Functions functions;
  (functions.AddNamed<D>(), ...);
  (functions.AddCurves<D>(), ...);
  return functions;
}

}  // namespace

std::span<const NamedKernel> DistributionFunctions() {
  static const Functions kFunctions = FunctionsOf(AllDistributions());
  return kFunctions.All();
}

}  // namespace brenvolt
