#include "host/jobs/notation/value_words.h"

#include "host/base/number_text.h"
#include "host/jobs/base/dialog_words.h"
#include "host/numeric/distributions/distribution_table.h"
#include "host/numeric/distributions/rules/value_rules.h"

namespace brenvolt {
namespace {

std::string GroupCountText(DistributionCode code, std::size_t count) {
  const GroupCounts counts = GroupCountsOf(code);
  return "a " + std::string(kNamedDistributions[static_cast<std::size_t>(code)].name) + " has from " +
         std::to_string(counts.fewest) + " to " + std::to_string(counts.most) + " components, not " +
         std::to_string(count);
}

}  // namespace

std::string_view RangeText(ParameterRange range) {
  switch (range) {
    case ParameterRange::kFinite:
      return "a finite number";
    case ParameterRange::kPositive:
      return "a number above 0";
    case ParameterRange::kProportion:
      return "a number from 0 to 1";
    case ParameterRange::kPositiveProportion:
      return "a number above 0 and up to 1";
    case ParameterRange::kTrials:
      return "a whole number from 1 to 2**53";
    case ParameterRange::kJohnsonFamily:
      return "SL, SU, SB or SN";
  }
  return "a number";
}

std::optional<std::string> WrongTogether(DistributionCode code, std::span<const double> values) {
  const auto broken = BrokenRule(code, values);
  if (!broken) return std::nullopt;
  switch (*broken) {
    case ValueRule::kGroupCount:
      return GroupCountText(code, values.size() / EntryOf(code).facts.ParameterCount());
    case ValueRule::kMinUpToMode:
    case ValueRule::kModeUpToMax:
      return values[0] > values[1] ? "min must not be above max" : "the mode must lie between min and max";
    case ValueRule::kTotalProportion:
      return "the proportions must add up to 1; they add up to " +
             ShortestNumber(TotalProportion(code, values));
    case ValueRule::kOther:
      break;
  }
  return "the values do not make a distribution";
}

}  // namespace brenvolt
