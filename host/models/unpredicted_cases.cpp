#include "host/models/unpredicted_cases.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

#include "host/base/number_text.h"

namespace brenvolt {
namespace {

constexpr std::array<std::string_view, 4> kNames{"missing", "unknown", "outside-range", "no-result"};

}  // namespace

std::string_view NoPredictionName(NoPrediction reason) {
  return kNames[static_cast<std::size_t>(reason)];
}

std::string UnpredictedReason::Values() const {
  if (!value.empty() || std::isnan(lowest)) return value;
  if (lowest == highest) return ShortestNumber(lowest);
  // As many digits as tell the ends apart.
  constexpr int kLeastDigits = 5;
  constexpr int kExact = 17;  // of a double
  const double larger = std::fmax(std::abs(lowest), std::abs(highest));
  const int leading = static_cast<int>(std::floor(std::log10(larger / (highest - lowest))));
  const std::string form = "%." + std::to_string(std::clamp(leading + 3, kLeastDigits, kExact)) + "g";
  return FormatNumber(form.c_str(), lowest) + " to " + FormatNumber(form.c_str(), highest);
}

std::vector<UnpredictedReason> UnpredictedCases::Reasons() const {
  std::vector<UnpredictedReason> list;
  for (const auto& [key, reason] : reasons_) list.push_back(reason);
  std::ranges::stable_sort(list, std::ranges::greater(), &UnpredictedReason::cases);
  return list;
}

std::size_t UnpredictedCases::Total() const {
  std::size_t total = 0;
  for (const auto& [key, reason] : reasons_) total += reason.cases;
  return total;
}

void UnpredictedCases::Add(const UnpredictedReason& counted) {
  const auto [at, isNew] = reasons_.try_emplace({counted.field, counted.reason, counted.value}, counted);
  if (isNew) return;
  UnpredictedReason& known = at->second;
  known.lowest = std::fmin(known.lowest, counted.lowest);
  known.highest = std::fmax(known.highest, counted.highest);
  known.cases += counted.cases;
}

void UnpredictedCases::Add(const UnpredictedCases& others) {
  for (const auto& [key, reason] : others.reasons_) Add(reason);
}

}  // namespace brenvolt
