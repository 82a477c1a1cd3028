#include "host/statistics/equal_count_classes.h"

#include <algorithm>
#include <cmath>

#include "host/numeric/vector/sorting.h"
#include "host/statistics/percentiles.h"

namespace brenvolt {
namespace {

std::size_t UsualClassCount(std::size_t cases) {
  constexpr std::size_t kUsual = 20;
  constexpr std::size_t kCasesOfAClass = 50;
  return std::clamp<std::size_t>(cases / kCasesOfAClass, 2, kUsual);
}

}  // namespace

std::vector<EqualCountClass> EqualCountClasses(std::span<const double> sorted, std::size_t classes) {
  std::vector<EqualCountClass> result;
  std::size_t begin = 0;
  for (std::size_t i = 1; i <= classes; ++i) {
    const std::size_t nominal = sorted.size() * i / classes;
    if (nominal <= begin) continue;
    const auto after = std::ranges::upper_bound(sorted.subspan(nominal - 1), sorted[nominal - 1]);
    const auto end = static_cast<std::size_t>(after - sorted.begin());
    const auto members = sorted.subspan(begin, end - begin);
    result.push_back({begin, end, members.front(), Percentile(members, 50), members.back()});
    begin = end;
  }
  return result;
}

OrderedCases OrderCases(std::span<const double> variable, std::size_t classes) {
  OrderedCases cases;
  cases.order.resize(variable.size());
  SortedOrder(variable, cases.order);
  std::vector<double> sorted;
  for (const std::size_t i : cases.order) {
    if (!std::isnan(variable[i])) sorted.push_back(variable[i]);
  }
  cases.classes = EqualCountClasses(sorted, classes == 0 ? UsualClassCount(sorted.size()) : classes);
  return cases;
}

}  // namespace brenvolt
