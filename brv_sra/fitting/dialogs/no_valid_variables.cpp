#include "brv_sra/fitting/dialogs/no_valid_variables.h"

#include <algorithm>
#include <string>
#include <utility>

#include "brv_sra/fitting/dialogs/estimation_reason.h"
#include "brv_sra/frame/distribution_texts.h"

namespace brenvolt::sra {
namespace {

std::string WhyInvalid(const VariableFit& fit) {
  if (fit.moments.count == 0 || fit.invalid) {
    std::string reason = FailureReason(fit);
    if (!reason.empty()) return reason;
  }
  std::string reasons;
  for (const DistributionFit& one : fit.fits) {
    if (!reasons.empty()) reasons += ", ";
    reasons += std::string(DisplayName(one.specification.code)) + " cannot be fitted: " + FailureReason(one);
  }
  return reasons;
}

}  // namespace

Fault NoValidVariables(const std::vector<VariableFit>& results) {
  constexpr std::size_t kNamed = 8;
  std::vector<std::pair<std::string, std::string>> reasons;  // with the names of their variables
  for (std::size_t i = 0; i < results.size() && i < kNamed; ++i) {
    const std::string why = WhyInvalid(results[i]);
    const auto known = std::ranges::find(reasons, why, &std::pair<std::string, std::string>::first);
    if (known == reasons.end()) {
      reasons.emplace_back(why, results[i].name);
    } else {
      known->second += ", " + results[i].name;
    }
  }
  std::string text;
  for (const auto& [why, names] : reasons) text += (text.empty() ? "" : "; ") + names + ": " + why;
  if (results.size() > kNamed) text += "; and " + std::to_string(results.size() - kNamed) + " more";
  return {FaultIdentifier::kNoValidVariables, "", text};
}

}  // namespace brenvolt::sra
