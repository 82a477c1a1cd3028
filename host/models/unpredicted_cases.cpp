#include "host/models/unpredicted_cases.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

#include "host/base/number_text.h"

namespace brenvolt {
namespace {

struct Words {
  std::string_view name;
  std::string_view text;
};
constexpr std::array<Words, 4> kWords{{{"missing", "the value is missing"},
                                       {"unknown", "the model does not know the value"},
                                       {"outside-range", "the model does not accept the number"},
                                       {"no-result", "the model gives no result"}}};

const Words& WordsOf(NoPrediction reason) {
  return kWords[static_cast<std::size_t>(reason)];
}

}  // namespace

std::string_view NoPredictionName(NoPrediction reason) {
  return WordsOf(reason).name;
}

std::string_view NoPredictionText(NoPrediction reason) {
  return WordsOf(reason).text;
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
