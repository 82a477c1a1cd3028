// Why cases have no prediction: which values of which fields a model refused or lost, and in how many cases.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace brenvolt {

enum class NoPrediction : std::uint8_t {
  kMissingValue,  // the field has no value
  kUnknownValue,  // the value is none of those that the model knows
  kOutsideRange,  // the number is outside of what the model declares as valid
  kNoResult       // all values were taken, and the model gives none
};

// "missing", "unknown", "outside-range" or "no-result", for programs.
std::string_view NoPredictionName(NoPrediction reason);

struct UnpredictedReason {
  NoPrediction reason = NoPrediction::kNoResult;
  std::string field;  // empty for kNoResult
  std::string value;  // for kUnknownValue: the category, or the number, as text
  // For numbers that are not valid: the least and the greatest of them; NaN for other reasons.
  double lowest = 0;
  double highest = 0;
  std::size_t cases = 0;

  // The category, the number, "LOWEST to HIGHEST", or nothing.
  std::string Values() const;
};

// Every case without a prediction counts once, with the first reason that the model met.
class UnpredictedCases {
 public:
  // The most frequent reason first; equally frequent ones by field and value.
  std::vector<UnpredictedReason> Reasons() const;
  std::size_t Total() const;

  // Counts further cases. The order of the calls does not matter.
  void Add(const UnpredictedReason& counted);
  void Add(const UnpredictedCases& others);

 private:
  using Key = std::tuple<std::string, NoPrediction, std::string>;  // field, reason, value
  std::map<Key, UnpredictedReason> reasons_;
};

}  // namespace brenvolt
