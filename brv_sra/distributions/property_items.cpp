#include "brv_sra/distributions/property_items.h"

#include <array>
#include <cstddef>

#include "brv_sra/distributions/variable_properties.h"

namespace brenvolt::sra {
namespace {

constexpr const char* kShortFormat = "%e";
constexpr const char* kFullFormat = "%.12e";

constexpr std::size_t kMostKeys = 3;

struct ItemRow {
  std::array<std::string_view, kMostKeys> keys;  // filled from the left
  const char* format = kFullFormat;
};

using namespace property_key;

// In code order.
constexpr std::array<ItemRow, kDistributionCount> kItems{{
    {{kLocation, kScale}},             // Normal
    {{kScale, kShape}},                // Log Normal
    {{kScale, kShape}},                // Folded Normal: its location, its scale
    {{kScale}},                        // Half Normal
    {{kScale}},                        // Rayleigh
    {{kScale, kShape}},                // Weibull
    {{}, kShortFormat},                // Gaussian Mixture
    {{}, kShortFormat},                // Johnson
    {{kLocation, kScale, kShape}},     // General Extreme Value
    {{kScale, kShape}},                // General Pareto
    {{kMin, kMax, kMode}},             // Triangular
    {{kProportion, kNumberOfTrials}},  // Binomial
    {{kMean}},                         // Poisson
    {{kProportion}},                   // Geometric
    {{kProportion}},                   // Bernoulli
    {{}},                              // Histogram
}};

const ItemRow& Row(DistributionCode code) {
  return kItems.at(static_cast<std::size_t>(code));
}

}  // namespace

std::span<const std::string_view> ItemKeys(DistributionCode code) {
  const std::span keys = Row(code).keys;
  std::size_t count = 0;
  while (count < keys.size() && !keys[count].empty()) ++count;
  return keys.first(count);
}

const char* ItemFormat(DistributionCode code) {
  return Row(code).format;
}

}  // namespace brenvolt::sra
