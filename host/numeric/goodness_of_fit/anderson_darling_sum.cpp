#include "host/numeric/goodness_of_fit/anderson_darling_sum.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/numeric/special/exact_sums.h"
#include "host/numeric/vector/vector_forms.h"

namespace brenvolt {
namespace {

constexpr double kLowestProbability = 0x1p-53;
constexpr std::size_t kBlock = 512;
constexpr std::size_t kLanes = 8;

}  // namespace

void AndersonDarlingSum::AddTerm(double term) {
  const TwoPartSum sum = ExactSum(total_, term);
  total_ = sum.high;
  lost_ += sum.low;
}

// Of at most a block, which it overwrites. Terms in lanes that the compiler keeps apart.
void AndersonDarlingSum::AddBlock(std::span<double> lower, std::span<double> upper) {
  elementary::Log(lower, lower);
  elementary::Log(upper, upper);
  std::array<double, kLanes> lanes{};
  for (std::size_t i = 0; i < lower.size(); ++i) {
    const double weight = 2.0 * static_cast<double>(added_ + i) + 1.0;
    lanes[i % kLanes] += weight * lower[i] + (2.0 * count_ - weight) * upper[i];
  }
  for (const double lane : lanes) AddTerm(lane);
  added_ += lower.size();
}

void AndersonDarlingSum::Add(std::span<const double> probabilities) {
  std::array<double, kBlock> lower;
  std::array<double, kBlock> upper;
  for (std::size_t begin = 0; begin < probabilities.size(); begin += kBlock) {
    const auto z = probabilities.subspan(begin, std::min(kBlock, probabilities.size() - begin));
    for (std::size_t i = 0; i < z.size(); ++i) {
      lower[i] = std::max(z[i], kLowestProbability);
      upper[i] = std::max(1.0 - z[i], kLowestProbability);
    }
    AddBlock(std::span(lower).first(z.size()), std::span(upper).first(z.size()));
  }
}

void AndersonDarlingSum::Add(std::span<const double> probabilities, std::span<const double> complements) {
  std::array<double, kBlock> lower;
  std::array<double, kBlock> upper;
  for (std::size_t begin = 0; begin < probabilities.size(); begin += kBlock) {
    const std::size_t count = std::min(kBlock, probabilities.size() - begin);
    std::ranges::copy(probabilities.subspan(begin, count), lower.begin());
    std::ranges::copy(complements.subspan(begin, count), upper.begin());
    AddBlock(std::span(lower).first(count), std::span(upper).first(count));
  }
}

// The sum over n, plus n: the two nearly cancel.
double AndersonDarlingSum::Statistic() const {
  const double quotient = total_ / count_;
  const double rest = std::fma(-quotient, count_, total_) + lost_;
  return -((quotient + count_) + rest / count_);
}

}  // namespace brenvolt
