#include "host/jobs/base/specification_check.h"

#include <string_view>

#include "host/analysis/specification_words.h"
#include "host/base/quoted.h"

namespace brenvolt {

void CheckLimits(const std::string& response, const SpecificationLimits& limits, JobFaults& faults) {
  if (limits.IsValid()) return;
  const auto add = [&](std::string_view message) {
    faults.push_back({"specifications", Quoted(response) + ": " + std::string(message)});
  };
  if (!limits.HasLower() && !limits.HasUpper()) {
    add("expected a lower or an upper limit");
  } else if (const std::string_view fault = ContradictionIn(limits); !fault.empty()) {
    add(fault);
  } else {
    add("expected finite numbers");
  }
}

}  // namespace brenvolt
